#include <builtin/types/ArgType.hpp>
#include <builtin/types/NumericScalarTypes.hpp>

#include <string>

namespace Velloc::builtin::types {

ArgTypeList NumericScalarTypes::getGreaterPrecedenceTypes() const { return {}; }

std::string NumericScalarTypes::toString() const {
    if (isComplex() && (element_ == oxDOUBLE_CLASS || element_ == oxSINGLE_CLASS)) {
        return "complex_" + std::string(numericClassName(element_));
    }
    return std::string(numericClassName(element_));
}

} // namespace Velloc::builtin::types
