// Session statements about the variables themselves, written as array languages write
// them (command syntax: the words after the command are names):
//
//     who              the names of the variables, in order
//     whos             their names, sizes and classes, one a line
//     who x y, whos x  only those named
//     clear            removes every variable; so do "clear all" and "clear variables"
//     clear x y        removes those named; a name with no variable is passed over
//
// "who = 3" or "clear(1)" are not these commands: they assign or call as usual.
#pragma once

#include <matrix/oxArray.hpp>

#include <functional>
#include <iosfwd>
#include <map>
#include <string>
#include <string_view>

namespace orvex {

// A session's variables by name, in the order of their names.
using Variables = std::map<std::string, matrix::ArrayPtr, std::less<>>;

// Runs statement when it is one of the commands above and returns true; false for any
// other statement.
bool runWorkspaceCommand(std::string_view statement, Variables& variables, std::ostream& out);

} // namespace orvex
