#include <orvex/parseLiteral.hpp>

#include <strings/StringArray.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace {

using matrix::ArrayPtr;
using Dims = std::vector<std::size_t>;

Dims dimsOf(const ArrayPtr& a) {
    const matrix::Dims dims = matrix::getDimensions(a.get());
    return {dims.begin(), dims.end()};
}

template <class T>
std::vector<T> dataOf(const ArrayPtr& a) {
    const T* data = matrix::getTypedData<T>(a.get());
    const std::size_t count = matrix::getNumberOfElements(a.get()) * (matrix::isComplex(a.get()) ? 2 : 1);
    return std::vector<T>(data, data + count);
}

// Checks class, size, complexity and every element (interleaved when complex).
template <class T>
void expectArray(const std::string& text, oxClassID classId, Dims dims, bool complex, std::vector<T> data) {
    SCOPED_TRACE(text);
    const ArrayPtr a = orvex::parseLiteral(text);
    EXPECT_EQ(matrix::getClassID(a.get()), classId);
    EXPECT_EQ(dimsOf(a), dims);
    EXPECT_EQ(matrix::isComplex(a.get()), complex);
    EXPECT_EQ(dataOf<T>(a), data);
}

double parseDouble(const std::string& text) {
    const ArrayPtr a = orvex::parseLiteral(text);
    EXPECT_EQ(matrix::getClassID(a.get()), oxDOUBLE_CLASS) << text;
    EXPECT_TRUE(matrix::isScalar(a.get()) && !matrix::isComplex(a.get())) << text;
    return *matrix::getTypedData<double>(a.get());
}

TEST(ParseLiteral, RealNumbersAreDoubleScalars) {
    EXPECT_EQ(parseDouble("3"), 3.0);
    EXPECT_EQ(parseDouble("-2.5"), -2.5);
    EXPECT_EQ(parseDouble("+4"), 4.0);
    EXPECT_EQ(parseDouble("1e3"), 1000.0);
    EXPECT_EQ(parseDouble("2.5E-3"), 0.0025);
    EXPECT_EQ(parseDouble(".5"), 0.5);
    EXPECT_EQ(parseDouble("1."), 1.0);
    EXPECT_EQ(parseDouble("0.1"), 0.1);
    EXPECT_EQ(parseDouble(" \t7  "), 7.0);
    EXPECT_EQ(parseDouble("Inf"), std::numeric_limits<double>::infinity());
    EXPECT_EQ(parseDouble("-Inf"), -std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(parseDouble("NaN")));
    // Out of the double range, as the language reads such numbers.
    EXPECT_EQ(parseDouble("1e400"), std::numeric_limits<double>::infinity());
    EXPECT_EQ(parseDouble("12345678901234567890e300"), std::numeric_limits<double>::infinity());
    EXPECT_EQ(parseDouble("0.0001e-400"), 0.0);
    EXPECT_EQ(parseDouble("-1e99999999999999999999"), -std::numeric_limits<double>::infinity());
}

TEST(ParseLiteral, ComplexNumbersKeepBothParts) {
    expectArray<double>("3+4i", oxDOUBLE_CLASS, {1, 1}, true, {3, 4});
    expectArray<double>("1-0.5j", oxDOUBLE_CLASS, {1, 1}, true, {1, -0.5});
    expectArray<double>(" 3 + 4i ", oxDOUBLE_CLASS, {1, 1}, true, {3, 4});
    expectArray<double>("3+0i", oxDOUBLE_CLASS, {1, 1}, true, {3, 0});
    const ArrayPtr imaginary = orvex::parseLiteral("-2i");
    EXPECT_EQ(dataOf<double>(imaginary), (std::vector<double>{0, -2}));
    EXPECT_FALSE(std::signbit(dataOf<double>(imaginary)[0])) << "the real part of -2i is +0";
}

TEST(ParseLiteral, MatricesAreColumnMajorRowsOfEqualLength) {
    expectArray<double>("[1 2; 3 4]", oxDOUBLE_CLASS, {2, 2}, false, {1, 3, 2, 4});
    expectArray<double>("[1, 2, 3]", oxDOUBLE_CLASS, {1, 3}, false, {1, 2, 3});
    expectArray<double>("[1;2;3]", oxDOUBLE_CLASS, {3, 1}, false, {1, 2, 3});
    expectArray<double>("[1 2;]", oxDOUBLE_CLASS, {1, 2}, false, {1, 2});
    expectArray<double>("[1 2\n 3 4\n]", oxDOUBLE_CLASS, {2, 2}, false, {1, 3, 2, 4});
    expectArray<double>("[]", oxDOUBLE_CLASS, {0, 0}, false, {});
    expectArray<double>("[ ; ]", oxDOUBLE_CLASS, {0, 0}, false, {});
    // A sign after a space that sticks to its number starts the next element.
    expectArray<double>("[1 -2]", oxDOUBLE_CLASS, {1, 2}, false, {1, -2});
    expectArray<double>("[1 - 2i]", oxDOUBLE_CLASS, {1, 1}, true, {1, -2});
    expectArray<double>("[1 -2i]", oxDOUBLE_CLASS, {1, 2}, true, {1, 0, 0, -2});
    expectArray<double>("[Inf 2i; 3 4]", oxDOUBLE_CLASS, {2, 2}, true,
                        {std::numeric_limits<double>::infinity(), 0, 3, 0, 0, 2, 4, 0});
    expectArray<bool>("[true false]", oxLOGICAL_CLASS, {1, 2}, false, {true, false});
    expectArray<double>("[true 2]", oxDOUBLE_CLASS, {1, 2}, false, {1, 2});
    expectArray<bool>("false", oxLOGICAL_CLASS, {1, 1}, false, {false});
}

TEST(ParseLiteral, IntegerCastsRoundHalfAwayAndSaturate) {
    expectArray<std::int8_t>("int8(5)", oxINT8_CLASS, {1, 1}, false, {5});
    expectArray<std::int8_t>("int8([1.5 -2.5 300 -300 NaN Inf])", oxINT8_CLASS, {1, 6}, false,
                             {2, -3, 127, -128, 0, 127});
    expectArray<std::uint8_t>("uint8([-1 255.5])", oxUINT8_CLASS, {1, 2}, false, {0, 255});
    expectArray<std::int16_t>("int16(-32768.4)", oxINT16_CLASS, {1, 1}, false, {-32768});
    expectArray<std::uint16_t>("uint16('A')", oxUINT16_CLASS, {1, 1}, false, {65});
    expectArray<std::int32_t>("int32(2147483647.4)", oxINT32_CLASS, {1, 1}, false, {2147483647});
    expectArray<std::uint32_t>("uint32(1e10)", oxUINT32_CLASS, {1, 1}, false, {4294967295u});
    expectArray<std::int64_t>("int64([1e30 -1e30])", oxINT64_CLASS, {1, 2}, false,
                              {std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()});
    expectArray<std::uint64_t>("uint64(1e30)", oxUINT64_CLASS, {1, 1}, false,
                               {std::numeric_limits<std::uint64_t>::max()});
    // Casts nest: the inner class's value is what the outer one converts.
    expectArray<double>("double(int8(200.7))", oxDOUBLE_CLASS, {1, 1}, false, {127});
    expectArray<std::uint8_t>("uint8 ( true )", oxUINT8_CLASS, {1, 1}, false, {1});
}

TEST(ParseLiteral, SingleDoubleAndLogicalCasts) {
    expectArray<float>("single(0.1)", oxSINGLE_CLASS, {1, 1}, false, {0.1f});
    expectArray<float>("single([1e300 -1e300])", oxSINGLE_CLASS, {1, 2}, false,
                       {std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity()});
    expectArray<float>("single(3+4i)", oxSINGLE_CLASS, {1, 1}, true, {3, 4});
    expectArray<double>("double(single(0.1))", oxDOUBLE_CLASS, {1, 1}, false, {static_cast<double>(0.1f)});
    expectArray<double>("double('hi')", oxDOUBLE_CLASS, {1, 2}, false, {104, 105});
    expectArray<bool>("logical([2 0; -Inf 0.1])", oxLOGICAL_CLASS, {2, 2}, false, {true, true, false, true});
}

TEST(ParseLiteral, CharArraysHoldUtf16) {
    expectArray<char16_t>("'chars'", oxCHAR_CLASS, {1, 5}, false, {u'c', u'h', u'a', u'r', u's'});
    expectArray<char16_t>("'it''s'", oxCHAR_CLASS, {1, 4}, false, {u'i', u't', u'\'', u's'});
    expectArray<char16_t>("'a\"b'", oxCHAR_CLASS, {1, 3}, false, {u'a', u'"', u'b'});
    expectArray<char16_t>("''", oxCHAR_CLASS, {0, 0}, false, {});
    expectArray<char16_t>("'\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80'", oxCHAR_CLASS, {1, 4}, false,
                          {u'\u00e9', u'\u20ac', 0xd83d, 0xde00});
}

TEST(ParseLiteral, StringsAreScalarHostStrings) {
    const auto expectString = [](const std::string& text, const std::u16string& expected) {
        SCOPED_TRACE(text);
        const ArrayPtr a = orvex::parseLiteral(text);
        ASSERT_TRUE(Velloc::String::isStringArray(a.get()));
        EXPECT_EQ(dimsOf(a), (Dims{1, 1}));
        EXPECT_EQ(Velloc::String::getStringElement(a.get(), 0).text(), expected);
    };
    expectString("\"string\"", u"string");
    expectString("\"\"", u"");
    expectString(" \"say \"\"hi\"\"\" ", u"say \"hi\"");
    expectString("\"it's \xe2\x82\xac\"", u"it's \u20ac");
}

} // namespace
