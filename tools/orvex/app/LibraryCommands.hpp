// Session statements that change which defining libraries are loaded while it runs:
//
//     load PATH      installs and starts the bundles at PATH (a bundle's directory, or a
//                    directory of them), each on its own: one that fails is reported with
//                    its path and the reason, and the others load; their builtins become
//                    callable
//     unload NAME    stops the bundle of the library NAME, as `list` names it; its builtins
//                    go with it once the calls running them return
#pragma once

#include "Libraries.hpp"

#include <iosfwd>
#include <string_view>
#include <vector>

namespace orvex {

// Runs statement when it is one of the commands above and returns true; false for any
// other statement. A bad path or an unknown library throws std::invalid_argument.
bool runLibraryCommand(std::string_view statement, const std::vector<LoadedBuiltin>& builtins, std::ostream& out);

} // namespace orvex
