// Readable C++ type names for messages and for default service interface names.
#pragma once

#include <string>
#include <typeinfo>

namespace cppmicroservices::detail {

// The name the compiler's demangler gives the mangled name; the input itself when it
// does not demangle.
std::string demangle(const char* mangledName);

std::string demangledName(const std::type_info& type);

} // namespace cppmicroservices::detail
