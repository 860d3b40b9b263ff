#include <builtin/builtinreg/ParameterConversion.hpp>

#include <builtin/types/ArgTypeOfOxArray.hpp>

#include <foundation/core/demangle.hpp>
#include <foundation/core/diag/terminate.hpp>

#include <boost/lexical_cast.hpp>

#include <array>
#include <typeinfo>

namespace Velloc::builtin::types::detail {

namespace {

constexpr const char* SOURCE = "ParameterConversion";

std::string nameOf(const std::type_info& type) {
    return foundation::core::demangle_typeid_name(type.name());
}

} // namespace

const std::type_info& heldType(const Parameter& parameter) {
    // In the order of the alternatives.
    static const std::array<const std::type_info*, NUM_PARAMETER_ALTERNATIVES> types{
        &typeid(unsigned long), &typeid(double), &typeid(float), &typeid(bool),
        &typeid(signed char), &typeid(short), &typeid(int), &typeid(long),
        &typeid(unsigned char), &typeid(unsigned short), &typeid(unsigned int), &typeid(std::complex<double>),
        &typeid(std::complex<float>), &typeid(oxArray*), &typeid(Velloc::String::String*),
        &typeid(Velloc::lxe::LxeObject*)};
    return *types[static_cast<std::size_t>(parameter.which())];
}

void assertFromParameterType(const std::type_info& expected, const oxArray* array) {
    foundation::core::diag::terminate(
        "expected oxArray to be " + nameOf(expected) + " but was " +
            boost::lexical_cast<std::string>(getArgTypeOfOxArray(array)),
        SOURCE, __LINE__,
        "void Velloc::builtin::types::detail::assertFromParameterType(const std::type_info&, const oxArray*)");
}

void assertLxeObjectFromParameterType(const std::type_info& expected, const Parameter& parameter) {
    foundation::core::diag::terminate(
        "expected Parameter to contain " + nameOf(expected) + " but actually contains " + nameOf(heldType(parameter)),
        SOURCE, __LINE__,
        "void Velloc::builtin::types::detail::assertLxeObjectFromParameterType(const std::type_info&, const "
        "Velloc::builtin::Parameter&)");
}

void assertParameterContainsType(const std::type_info& expected, const Parameter& parameter) {
    const std::type_info& held = heldType(parameter);
    if (expected == held || !fl_diag_terminate()) {
        return;
    }
    foundation::core::diag::terminate(
        "Parameter created with incorrect type.\nExpected: " + nameOf(expected) + "\nActual: " + nameOf(held), SOURCE,
        __LINE__,
        "void Velloc::builtin::types::detail::assertParameterContainsType(const std::type_info&, const "
        "Velloc::builtin::Parameter&)");
}

} // namespace Velloc::builtin::types::detail
