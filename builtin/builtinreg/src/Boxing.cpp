#include <builtin/builtinreg/Boxing.hpp>

#include <foundation/core/demangle.hpp>
#include <foundation/core/diag/terminate.hpp>
#include <foundation/log/Channel.hpp>

#include <algorithm>

namespace Velloc::builtin::builtinreg::detail {

namespace {

constexpr int BOXING_SEVERITY = 4;

std::string joinedNames(std::initializer_list<std::reference_wrapper<const std::type_info>> types) {
    std::string text;
    for (const std::type_info& type : types) {
        text += (text.empty() ? "" : "\", \"") + foundation::core::demangle_typeid_name(type.name());
    }
    return text;
}

void checkBoxing(bool holds, const char* condition, int line) {
    if (!holds && fl_diag_terminate()) {
        foundation::core::diag::terminate(
            condition, "MakeVariant", line,
            "void Velloc::builtin::builtinreg::detail::assertBoxingVariantConsistent(const "
            "Velloc::builtin::BuiltinVariant&, const Velloc::builtin::BuiltinVariant&)");
    }
}

} // namespace

void fillBoxedVariants(const BuiltinVariant& original, std::vector<BuiltinVariant>& out,
                       std::vector<std::vector<types::ArgType>>& boxedInputTypes) {
    for (std::vector<types::ArgType>& inputs : boxedInputTypes) {
        BuiltinVariant boxed(original);
        boxed.inputArgTypes = std::move(inputs);
        inputs.clear();
        boxed.inputTypes = typeTexts(boxed.inputArgTypes, types::ArgTypeDirection::INPUT);
        boxed.lxeSupportLevel = supportLevelOfTypes(types::LxeSupportLevel::EQUIVALENT_SUPPORT, boxed);
        out.push_back(std::move(boxed));
    }
}

void assertBoxingVariantConsistent(const BuiltinVariant& boxingVariant, const BuiltinVariant& originalVariant) {
    checkBoxing(boxingVariant.inputTypes.size() == originalVariant.inputTypes.size(),
                "boxingVariant.inputTypes.size() == originalVariant.inputTypes.size()", __LINE__);
    checkBoxing(boxingVariant.inputArgTypes.size() == originalVariant.inputArgTypes.size(),
                "boxingVariant.inputArgTypes.size() == originalVariant.inputArgTypes.size()", __LINE__);
    checkBoxing(std::equal(boxingVariant.outputTypes.cbegin(), boxingVariant.outputTypes.cend(),
                           originalVariant.outputTypes.cbegin(), originalVariant.outputTypes.cend()),
                "std::equal(boxingVariant.outputTypes.cbegin(), boxingVariant.outputTypes.cend(), "
                "originalVariant.outputTypes.cbegin(), originalVariant.outputTypes.cend())",
                __LINE__);
    checkBoxing(std::equal(boxingVariant.outputArgTypes.cbegin(), boxingVariant.outputArgTypes.cend(),
                           originalVariant.outputArgTypes.cbegin(), originalVariant.outputArgTypes.cend(),
                           [](const types::ArgType& a, const types::ArgType& b) { return types::operator==(a, b); }),
                "std::equal(boxingVariant.outputArgTypes.cbegin(), boxingVariant.outputArgTypes.cend(), "
                "originalVariant.outputArgTypes.cbegin(), originalVariant.outputArgTypes.cend())",
                __LINE__);
}

void logBoxingInputConversions(std::initializer_list<std::reference_wrapper<const std::type_info>> developerInputs,
                               std::initializer_list<std::reference_wrapper<const std::type_info>> boxedInputs,
                               const BuiltinVariant& variant) {
    static const foundation::log::Channel& channel = foundation::log::channel("builtin2::Boxing");
    foundation::log::logIf(channel, BOXING_SEVERITY, "Boxing", __LINE__, [&] {
        std::string argTypes;
        for (const std::string& text : variant.inputTypes) {
            argTypes += (argTypes.empty() ? "" : "\"\n") + text;
        }
        // No closing quote after the last input text: readers of the log match on it.
        return "Developer inputs: \"" + joinedNames(developerInputs) + "\"\nBoxed inputs: \"" +
               joinedNames(boxedInputs) + "\"\nArgTypes: \"" + argTypes;
    });
}

void handleBoxingException(bool& exceptionRaised, lxe::ILxeBuiltinEnvironment* env) noexcept {
    exceptionRaised = true;
    if (env == nullptr) {
        return;
    }
    if (lxe::ILxeBuiltinAccessors* accessors = env->GetLxeBuiltinAccessors()) {
        accessors->SetInternalPendingException();
    }
}

} // namespace Velloc::builtin::builtinreg::detail
