// Host class ids as the argument types see them: their printed names and the two
// class sets that the acceptance and precedence rules single out.
#pragma once

#include <matrix/oxArray.hpp>

#include <string>
#include <string_view>

namespace Velloc::builtin::types {

// Classes that travel unboxed as C++ numeric scalars: logical, char, double to uint64.
constexpr bool isNumericScalarClass(oxClassID id) noexcept {
    return id == oxLOGICAL_CLASS || id == oxCHAR_CLASS ||
           (id >= oxDOUBLE_CLASS && id <= oxUINT64_CLASS);
}

// Classes of the class-object system: every user or system class has an id from 18 up.
constexpr bool isObjectClass(oxClassID id) noexcept { return id >= oxFIRST_OBJECT_CLASS; }

// "oxDOUBLE_CLASS", "oxOBJECT_CLASS(42)", "?-1?", ...
std::string toString(oxClassID id);

// The short scalar name used in type expressions ("boolean", "oxChar", "double", "int8",
// ...); empty for classes that are not numeric-scalar classes.
std::string_view numericClassName(oxClassID id) noexcept;

} // namespace Velloc::builtin::types
