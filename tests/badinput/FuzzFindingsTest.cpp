// Inputs on which fuzzing once found a fault, kept as ordinary cases (their seeds are in
// fuzz/corpus as well): each now ends in its documented outcome.
#include <builtin/lxeobject/LxeObjectRuntimeInfo.hpp>
#include <matrix/oxArray.hpp>
#include <orvex/formatArray.hpp>
#include <orvex/parseLiteral.hpp>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <complex>
#include <limits>
#include <string>

namespace {

std::complex<double> complexScalar(const matrix::ArrayPtr& array) {
    const double* parts = matrix::getTypedData<double>(array.get());
    return {parts[0], parts[1]};
}

TEST(FuzzFindings, ExponentsBeyondEveryIntegerOnlyDecideTheSign) {
    // The digit count added to an exponent of 2^63 - 1 overflowed.
    const double inf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(*matrix::getTypedData<double>(orvex::parseLiteral("123e9223372036854775807").get()), inf);
    EXPECT_EQ(*matrix::getTypedData<double>(orvex::parseLiteral("0.001e-9223372036854775807").get()), 0.0);
    EXPECT_EQ(*matrix::getTypedData<double>(orvex::parseLiteral("-1e99999999999999999999999").get()), -inf);
}

TEST(FuzzFindings, InfiniteAndNaNImaginaryPartsReadBackAsPrinted) {
    // 1e999i printed as "0 + Infi", which did not read back.
    const matrix::ArrayPtr value = orvex::parseLiteral("1e999i");
    const std::string printed = orvex::formatArray(value.get());
    EXPECT_EQ(printed, "0 + Infi");
    EXPECT_EQ(complexScalar(orvex::parseLiteral(printed)), complexScalar(value));
    EXPECT_EQ(complexScalar(orvex::parseLiteral("2-Infj")), std::complex<double>(2, -std::numeric_limits<double>::infinity()));
    const matrix::ArrayPtr nan = orvex::parseLiteral("[1+NaNi Infi]");
    EXPECT_EQ(orvex::formatArray(nan.get()), "[1+NaNi 0+Infi]");
    EXPECT_TRUE(std::isnan(matrix::getTypedData<double>(nan.get())[1]));
}

TEST(FuzzFindings, CellCountsWhoseStorageCannotBeSizedAreShapeErrors) {
    // 2^61 cells fit a count but not a vector of handles: this was std::length_error.
    const std::array<std::size_t, 2> dims{std::size_t{1} << 31, std::size_t{1} << 30};
    EXPECT_THROW(matrix::createCell(dims), matrix::ShapeError);
}

} // namespace
