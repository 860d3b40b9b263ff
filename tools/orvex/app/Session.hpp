// A session: statements evaluated one at a time, each a call whose result is printed and
// kept under a name for later statements.
//
//     b = lxebuffer.Buffer.create([1 2 3])   static method of a class
//     b.append([4 5])                        method of an object
//     b(2)                                   indexing an object
//     x = plus(b(4), 10)                     builtin call; arguments are literals or names
//     help plus                              what a builtin does and the variants it has
//
// A statement that fails leaves the variables as they were. Errors that belong to a
// place in the statement are reported with a caret under it, aligned for a statement
// echoed after the three-character prompt ">> ".
#pragma once

#include "Libraries.hpp"

#include <matrix/oxArray.hpp>

#include <iosfwd>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace orvex {

class Session {
public:
    Session(const std::vector<LoadedBuiltin>& builtins, std::ostream& out);

    // Runs one statement and prints its result or its error; false when it failed.
    bool run(std::string_view statement);

private:
    matrix::ArrayPtr evaluate(std::string_view expression);
    matrix::ArrayPtr callMethod(const std::string& callee, std::string_view expression,
                                std::vector<matrix::ArrayPtr>& arguments);
    matrix::ArrayPtr value(std::string_view text);
    const Velloc::builtin::BuiltinFcn* findBuiltin(std::string_view name) const;
    void help(std::string_view name);
    [[noreturn]] void unrecognized(std::string_view name) const;
    std::size_t columnOf(std::string_view part) const;

    const std::vector<LoadedBuiltin>& builtins_;
    std::ostream& out_;
    std::map<std::string, matrix::ArrayPtr, std::less<>> variables_;
    std::string_view statement_;
};

// text without the blanks around it.
std::string_view trimmed(std::string_view text);

// Runs the statements of a script, one per line (blank lines and lines starting with %
// are skipped), echoing each; stops at the first that fails. Returns 1 then, naming the
// line, else 0.
int runScript(const std::vector<LoadedBuiltin>& builtins, std::istream& in, std::ostream& out);

} // namespace orvex
