// A session: statements read one per line, each a call whose result is printed and kept
// under a name for later lines.
//
//     b = lxebuffer.Buffer.create([1 2 3])   static method of a class
//     b.append([4 5])                        method of an object
//     b(2)                                   indexing an object
//     x = plus(b(4), 10)                     builtin call; arguments are literals or names
//
// Blank lines and lines starting with % are skipped.
#pragma once

#include "Libraries.hpp"

#include <iosfwd>
#include <vector>

namespace orvex {

// Runs every statement, reporting errors as calls do and going on with the next line;
// returns 1 when any statement failed, else 0.
int runSession(const std::vector<LoadedBuiltin>& builtins, std::istream& in, std::ostream& out);

} // namespace orvex
