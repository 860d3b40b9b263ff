#include <builtin/builtinreg/Rejection.hpp>

#include "ObjectClassText.hpp"

#include <builtin/types/ArgType.hpp>

#include <string>

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

} // namespace

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
    return "input " + std::to_string(refused + 1) + " is " + describeArgument(call, refused) +
           ", the variant takes " +
           detail::describeDeclaredObject(variant.inputArgTypes[refused], variant.inputTypes[refused]);
}

} // namespace Velloc::builtin::builtinreg
