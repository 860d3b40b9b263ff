// The argument-type sum, named before its alternatives are complete so that each
// alternative can return lists of ArgType (its greater-precedence types).
#pragma once

#include <variant>
#include <vector>

namespace Velloc::builtin::types {

struct UnsupportedArgType;
class FlagInputType;
class NumericScalarTypes;
class OrvexStringType;
class LxeObjectPlaceTypes;
class LxeObjectTypes;
class OxArrayTypes;

// The order of the alternatives is their tag; ordering across alternatives follows it.
using ArgType = std::variant<UnsupportedArgType, FlagInputType, NumericScalarTypes,
                             OrvexStringType, LxeObjectPlaceTypes, LxeObjectTypes, OxArrayTypes>;

using ArgTypeList = std::vector<ArgType>;

} // namespace Velloc::builtin::types
