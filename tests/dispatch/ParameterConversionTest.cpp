#include <builtin/builtinreg/ParameterConversion.hpp>

#include <foundation/core/diag/terminate.hpp>

#include <gtest/gtest.h>

#include <complex>
#include <cstring>

namespace {

using Velloc::builtin::Parameter;
using Velloc::builtin::builtinreg::detail::parameterConversionImpl;
namespace reporters = Velloc::builtin::types::detail;

template <class T>
matrix::ArrayPtr convert(T value) {
    oxArray* out = nullptr;
    oxArray* returned = parameterConversionImpl(&out, value);
    EXPECT_EQ(out, returned);
    return matrix::ArrayPtr(out);
}

TEST(ParameterConversion, ScalarsBecomeOneByOneArraysOfTheirClass) {
    const auto yes = convert(true);
    EXPECT_EQ(matrix::getClassID(yes.get()), oxLOGICAL_CLASS);
    EXPECT_EQ(*static_cast<const unsigned char*>(matrix::getData(yes.get())), 1);
    EXPECT_EQ(*static_cast<const unsigned char*>(matrix::getData(convert(false).get())), 0);

    const auto z = convert(std::complex<float>(1, -2));
    EXPECT_EQ(matrix::getClassID(z.get()), oxSINGLE_CLASS);
    EXPECT_TRUE(matrix::isComplex(z.get()));
    EXPECT_EQ(*matrix::getTypedData<std::complex<float>>(z.get()), std::complex<float>(1, -2));

    const auto a = convert(u'A');
    EXPECT_EQ(matrix::getClassID(a.get()), oxCHAR_CLASS);
    EXPECT_EQ(*matrix::getTypedData<char16_t>(a.get()), 0x41);

    EXPECT_EQ(matrix::getClassID(convert(static_cast<signed char>(-1)).get()), oxINT8_CLASS);
    EXPECT_EQ(matrix::getClassID(convert(static_cast<unsigned short>(1)).get()), oxUINT16_CLASS);
    EXPECT_EQ(matrix::getClassID(convert(7UL).get()), oxUINT64_CLASS);
    const auto big = convert(-5L);
    EXPECT_EQ(matrix::getClassID(big.get()), oxINT64_CLASS);
    EXPECT_EQ(*matrix::getTypedData<long>(big.get()), -5L);
    const auto dims = matrix::getDimensions(big.get());
    EXPECT_EQ(std::vector<std::size_t>(dims.begin(), dims.end()), (std::vector<std::size_t>{1, 1}));
}

TEST(ParameterConversion, NullObjectsGiveNoArray) {
    oxArray* out = reinterpret_cast<oxArray*>(1);
    EXPECT_EQ(parameterConversionImpl(&out, static_cast<Velloc::lxe::LxeObject*>(nullptr)), nullptr);
    EXPECT_EQ(out, nullptr);
    out = reinterpret_cast<oxArray*>(1);
    EXPECT_EQ(parameterConversionImpl(&out, static_cast<Velloc::String::String*>(nullptr)), nullptr);
    EXPECT_EQ(out, nullptr);
}

TEST(ParameterConversion, HeldTypeFollowsTheAlternative) {
    EXPECT_EQ(reporters::heldType(Parameter()), typeid(unsigned long));
    EXPECT_EQ(reporters::heldType(Parameter(2.5F)), typeid(float));
    EXPECT_EQ(reporters::heldType(Parameter(static_cast<oxArray*>(nullptr))), typeid(oxArray*));
    reporters::assertParameterContainsType(typeid(int), Parameter(3));
}

TEST(ParameterConversionDeathTest, WrongTypesEndTheProcessWhenDiagnosticsAreArmed) {
    foundation::core::diag::setTerminationsArmed(false);
    reporters::assertParameterContainsType(typeid(double), Parameter(3));
    foundation::core::diag::setTerminationsArmed(true);
    EXPECT_DEATH(reporters::assertParameterContainsType(typeid(double), Parameter(3)),
                 "Parameter created with incorrect type.\nExpected: double\nActual: int");
    matrix::ArrayPtr text(matrix::createCharRow(u"ab"));
    EXPECT_DEATH(reporters::assertFromParameterType(typeid(double), text.get()), "expected oxArray to be double but was ");
    EXPECT_DEATH(reporters::assertLxeObjectFromParameterType(typeid(Velloc::lxe::LxeObject*), Parameter(1.0)),
                 "expected Parameter to contain .*LxeObject.* but actually contains double");
    foundation::core::diag::setTerminationsArmed(false);
}

} // namespace
