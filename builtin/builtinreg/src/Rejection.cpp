#include <builtin/builtinreg/Rejection.hpp>

#include "ObjectClassText.hpp"

#include <builtin/types/ArgType.hpp>

#include <fl/i18n.hpp>
#include <ocos/ClassRegistry.hpp>

#include <string>
#include <variant>

namespace Velloc::builtin::builtinreg {

namespace {

using types::ArgTypeDirection;

std::string plural(std::size_t count, const char* noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

// The first input the variant's own types refuse, or the input count when none does.
std::size_t firstRefusedInput(const BuiltinVariant& variant, const VariantSignature& call, bool elementWise) {
    for (std::size_t i = 0; i < variant.inputArgTypes.size(); ++i) {
        const types::ArgType& declared = variant.inputArgTypes[i];
        const bool accepted = elementWise ? types::isAcceptableElementWise(declared, call.getArgType(i))
                                          : types::isAcceptable(declared, call.getArgType(i));
        if (!accepted) {
            return i;
        }
    }
    return variant.inputArgTypes.size();
}

using types::OxArrayTypes;

std::string arrayInWords(const OxArrayTypes& type, ArgTypeDirection direction, std::size_t position) {
    const oxClassID element = type.getElement();
    const OxArrayTypes::Shape shape = type.getShape().first;
    if (type == OxArrayTypes::fullyOpen() ||
        (element == oxUNKNOWN_CLASS && shape == OxArrayTypes::Shape::UNKNOWN &&
         type.getDensity() == OxArrayTypes::Density::UNKNOWN &&
         type.getComplexity() == OxArrayTypes::Complexity::UNKNOWN)) {
        return "any array";
    }
    if (element == ocos::STRING_CLASS_ID) {
        return shape == OxArrayTypes::Shape::SCALAR ? "a scalar string" : "a string array";
    }
    if (element == oxCHAR_CLASS && shape == OxArrayTypes::Shape::ROW) {
        return "a char row vector";
    }
    if (element == oxCHAR_CLASS && shape == OxArrayTypes::Shape::EMPTY) {
        return "an empty char array";
    }
    const std::string text = type.toString(direction, position);
    if (types::isNumericScalarClass(element) && type.getDensity() == OxArrayTypes::Density::FULL) {
        const std::string kind = (type.getComplexity() == OxArrayTypes::Complexity::COMPLEX ? "complex " : "") +
                                 languageClassName(element);
        const std::string article = kind.front() == 'i' ? "an " : "a "; // an int8, a uint8
        switch (shape) {
        case OxArrayTypes::Shape::SCALAR:
            return article + kind + " scalar (" + text + ")";
        case OxArrayTypes::Shape::UNKNOWN:
            return article + kind + " array of any size (" + text + ")";
        default:
            break;
        }
    }
    return "an array " + text;
}

} // namespace

std::string languageClassName(oxClassID classId) {
    switch (classId) {
    case oxCELL_CLASS: return "cell";
    case oxSTRUCT_CLASS: return "struct";
    case oxLOGICAL_CLASS: return "logical";
    case oxCHAR_CLASS: return "char";
    case oxDOUBLE_CLASS: return "double";
    case oxSINGLE_CLASS: return "single";
    case oxINT8_CLASS: return "int8";
    case oxUINT8_CLASS: return "uint8";
    case oxINT16_CLASS: return "int16";
    case oxUINT16_CLASS: return "uint16";
    case oxINT32_CLASS: return "int32";
    case oxUINT32_CLASS: return "uint32";
    case oxINT64_CLASS: return "int64";
    case oxUINT64_CLASS: return "uint64";
    case oxFUNCTION_CLASS: return "function_handle";
    default: break;
    }
    if (classId == ocos::STRING_CLASS_ID) {
        return "string";
    }
    return "class " + std::to_string(static_cast<int>(classId));
}

std::string describeDeclaredType(const types::ArgType& type, ArgTypeDirection direction, std::size_t position) {
    if (detail::declaredObjectClass(type)) {
        return detail::describeDeclaredObject(type, types::toString(type, direction, position));
    }
    return std::visit(
        [&](const auto& alternative) -> std::string {
            using T = std::decay_t<decltype(alternative)>;
            if constexpr (std::is_same_v<T, types::UnsupportedArgType>) {
                return "a type the framework cannot describe";
            } else if constexpr (std::is_same_v<T, types::FlagInputType>) {
                return "the option text '" + fl::i18n::ustring_to_utf8(alternative.getValue()) + "'";
            } else if constexpr (std::is_same_v<T, types::NumericScalarTypes>) {
                return std::string("an unboxed ") + (alternative.isComplex() ? "complex " : "") +
                       languageClassName(alternative.getElement()) + " scalar" +
                       (direction == ArgTypeDirection::INPUT ? " (compiled callers pass it)" : "");
            } else if constexpr (std::is_same_v<T, types::OrvexStringType>) {
                return alternative.getShape() == types::OrvexStringType::Shape::SCALAR
                           ? "a host string object (scalar_orvex_string)"
                           : "host string objects (" + alternative.toString(direction, position) + ")";
            } else if constexpr (std::is_same_v<T, types::LxeObjectPlaceTypes>) {
                return "an engine object place (" + alternative.toString(direction, position) + ")";
            } else if constexpr (std::is_same_v<T, types::LxeObjectTypes>) {
                return "an engine object (" + alternative.toString(direction, position) + ")";
            } else {
                return arrayInWords(alternative, direction, position);
            }
        },
        type);
}

std::string describeArgument(const VariantSignature& call, std::size_t position) {
    const oxArray* array = call.getArray(position);
    if (array == nullptr) {
        return "a null array";
    }
    const std::string text = types::toString(call.getArgType(position), ArgTypeDirection::INPUT, position);
    if (text.empty()) {
        return "a value of no supported type";
    }
    const std::string object = detail::describeObjectArray(array);
    return object.empty() ? text : object;
}

std::string describeRejection(const BuiltinVariant& variant, const VariantSignature& call) {
    const std::size_t inputs = variant.inputArgTypes.size();
    const std::size_t outputs = variant.outputArgTypes.size();
    if (inputs != call.getNrhs()) {
        return "takes " + plural(inputs, "input") + ", the call passes " + std::to_string(call.getNrhs());
    }
    const bool outputsFit = outputs == call.getNlhs() || (call.getNlhs() == 0 && outputs == 1);
    if (!outputsFit) {
        return "returns " + plural(outputs, "output") + ", the call asks for " + std::to_string(call.getNlhs());
    }
    if (variant == call) {
        return {};
    }
    // An element-wise variant also takes arrays of its element types; when every input
    // passes that way, only the broadcast test can have refused the call.
    const std::size_t refused = firstRefusedInput(variant, call, variant.isElementWise);
    if (refused == inputs) {
        return "element-wise: the array arguments do not broadcast against each other";
    }
    const oxArray* array = call.getArray(refused);
    const std::string object = array == nullptr ? std::string() : detail::describeObjectArray(array);
    const std::string actual =
        !object.empty() ? object
        : array == nullptr || std::holds_alternative<types::UnsupportedArgType>(call.getArgType(refused))
            ? describeArgument(call, refused)
            : describeDeclaredType(call.getArgType(refused), ArgTypeDirection::INPUT, refused);
    // An element-wise variant takes arrays where it declares scalars: say so.
    const types::ArgType declared = variant.isElementWise ? types::asElementWiseArrayType(variant.inputArgTypes[refused])
                                                          : variant.inputArgTypes[refused];
    return "input " + std::to_string(refused + 1) + " is " + actual + ", the variant takes " +
           describeDeclaredType(declared, ArgTypeDirection::INPUT, refused);
}

} // namespace Velloc::builtin::builtinreg
