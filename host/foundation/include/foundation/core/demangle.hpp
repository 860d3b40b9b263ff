// Readable C++ type names for diagnostics.
#pragma once

#include <string>

namespace foundation::core {

// The demangled form of a std::type_info name. A leading '*' (the platform's mark for
// names compared by address) is skipped; a name that does not demangle comes back as
// given, and a null name as the empty string.
std::string demangle_typeid_name(const char* name);

} // namespace foundation::core
