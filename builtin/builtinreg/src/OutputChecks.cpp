#include <builtin/builtinreg/OutputChecks.hpp>

#include <builtin/builtinreg/ParameterConversion.hpp>
#include <builtin/types/ArgTypeOfOxArray.hpp>

#include <foundation/core/demangle.hpp>
#include <foundation/core/diag/terminate.hpp>

#include <boost/lexical_cast.hpp>

#include <array>

namespace Velloc::builtin {

namespace {

std::string slotMessage(std::int64_t nlhs, std::int64_t index, const BuiltinVariant& variant, const char* what) {
    return "ORVEX Builtin: \"" + variant.orvexFunctionName + "\" of dominant class \"" + variant.dominantClass +
           "\" implemented by \"" + variant.cppFunctionName + what + std::to_string(index) + "] but nlhs is " +
           std::to_string(nlhs);
}

std::string textOf(const types::ArgType& type) {
    return boost::lexical_cast<std::string>(type);
}

} // namespace

void throwIfUnassignedOutputs(const std::u16string& fcnName, int nlhs, oxArray** plhs) {
    bool missing = false;
    for (int i = 0; i < nlhs && !missing; ++i) {
        missing = plhs[i] == nullptr;
    }
    if (!missing) {
        return;
    }
    // The caller never sees a partly filled plhs.
    for (int i = 0; i < nlhs; ++i) {
        matrix::destroyArray(plhs[i]);
        plhs[i] = nullptr;
    }
    throw UnassignedOutputsError({fcnName});
}

namespace builtinreg::detail {

void assertLhsIsNotNull(std::int64_t nlhs, std::int64_t index, const BuiltinVariant& variant) {
    foundation::core::diag::terminate(
        slotMessage(nlhs, index, variant, "\" did not populate plhs["), "getDefaultImplementationVariant", __LINE__,
        "void Velloc::builtin::builtinreg::detail::assertLhsIsNotNull(int64_t, int64_t, const "
        "Velloc::builtin::BuiltinVariant&)");
}

void assertLhsOverflow(std::int64_t nlhs, std::int64_t index, const BuiltinVariant& variant) {
    foundation::core::diag::terminate(
        slotMessage(nlhs, index, variant, "\" wrote to plhs["), "getDefaultImplementationVariant", __LINE__,
        "void Velloc::builtin::builtinreg::detail::assertLhsOverflow(int64_t, int64_t, const "
        "Velloc::builtin::BuiltinVariant&)");
}

void assertLhsWrongType(const BuiltinVariant& variant, const oxArray* returned) {
    const types::ArgType& expected = variant.outputArgTypes.at(0);
    const types::ArgType actual = types::getArgTypeOfOxArray(returned);
    if (types::isAcceptable(expected, actual)) {
        return;
    }
    static const std::array<types::ArgType, 1> indescribable{types::OxArrayTypes(
        oxUNKNOWN_CLASS, types::OxArrayTypes::Shape::UNKNOWN, types::OxArrayTypes::Density::UNKNOWN,
        types::OxArrayTypes::Complexity::UNKNOWN, 0)};
    if (types::operator==(actual, indescribable[0])) {
        return;
    }
    foundation::core::diag::terminate(
        "incorrect type returned from builtin: \"" + variant.cppFunctionName + "\"\nExpected: " + textOf(expected) +
            "\nActual: " + textOf(actual),
        "getFunctionDescriptor", __LINE__,
        "void Velloc::builtin::builtinreg::detail::assertLhsWrongType(const Velloc::builtin::BuiltinVariant&, const "
        "oxArray*)");
}

void assertParameterWrongType(const std::type_info& expected, const Parameter& parameter,
                              const types::ArgType& argType) {
    foundation::core::diag::terminate(
        "expected Parameter containing: " + foundation::core::demangle_typeid_name(expected.name()) +
            "\nactual Parameter containing: " +
            foundation::core::demangle_typeid_name(types::detail::heldType(parameter).name()) +
            "\nExpected ArgType: " + textOf(argType),
        "getFunctionDescriptor", __LINE__,
        "void Velloc::builtin::builtinreg::detail::assertParameterWrongType(const std::type_info&, const "
        "Velloc::builtin::Parameter&, const Velloc::builtin::types::ArgType&)");
}

} // namespace builtinreg::detail

} // namespace Velloc::builtin
