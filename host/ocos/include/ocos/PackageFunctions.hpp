// Functions the host calls by a package-qualified name ("pkg.sub.fcn").
#pragma once

#include <ocos/Ofh.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace ocos {

// Binds the qualified name (the package parts and the function name joined with ".")
// to function. Returns false, and changes nothing, when the name is already bound to a
// different function; binding the same function again succeeds. An empty part or name,
// or a null function, throws std::invalid_argument.
bool registerPackageFunction(const std::vector<std::string>& packageParts, const std::string& functionName,
                             Ofh_ORVEX_fn* function);

// Null when nothing is bound to the qualified name.
Ofh_ORVEX_fn* findPackageFunction(std::string_view qualifiedName);

} // namespace ocos
