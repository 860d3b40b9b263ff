#include <orvex/formatArray.hpp>
#include <orvex/parseLiteral.hpp>

#include <strings/StringArray.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <numeric>
#include <string>
#include <vector>

namespace {

using matrix::ArrayPtr;

std::string formatLiteral(const std::string& text) { return orvex::formatArray(orvex::parseLiteral(text).get()); }

ArrayPtr doubles(std::vector<std::size_t> dims, bool complex = false) {
    ArrayPtr a(matrix::detail::do_create_uninitnumeric(dims, oxDOUBLE_CLASS, complex ? oxCOMPLEX : oxREAL));
    double* data = matrix::getTypedData<double>(a.get());
    std::iota(data, data + matrix::getNumberOfElements(a.get()) * (complex ? 2 : 1), 1.0);
    return a;
}

// Values print in the literal language, so each line is also a literal that reads back.
TEST(FormatArray, ValuesPrintAsTheLiteralsThatMakeThem) {
    const char* const readBack[] = {
        "5", "-2.5", "0.1", "1e+20", "Inf", "-Inf", "NaN", "3 + 4i", "1 - 0.5i", "0 - 2i", "true",
        "[true false]", "[1 2; 3 4]", "[1+2i 3-4i]", "int8(5)", "uint8([1 2])", "single(0.1)",
        "single(3 + 4i)", "int64(-9223372036854775808)", "uint64(18446744073709551615)", "'it''s'",
        "\"say \"\"hi\"\"\"", "'\xe2\x82\xac\xf0\x9f\x98\x80'",
    };
    for (const char* text : readBack) {
        EXPECT_EQ(formatLiteral(text), text);
    }
    EXPECT_EQ(formatLiteral("uint64(1e30)"), "uint64(18446744073709551615)");
    EXPECT_EQ(formatLiteral("[]"), "[] (0x0 double)");
    EXPECT_EQ(formatLiteral("''"), "[] (0x0 char)");
    EXPECT_EQ(formatLiteral("\"\""), "\"\"");
}

TEST(FormatArray, ArraysNoLiteralMakes) {
    const std::size_t charDims[] = {2, 3};
    EXPECT_EQ(orvex::formatArray(ArrayPtr(matrix::createCharArray(charDims, u"adbecf")).get()), "['abc'; 'def']");
    EXPECT_EQ(orvex::formatArray(ArrayPtr(matrix::createCharRow(u"a\xd800z")).get()), "'a\xef\xbf\xbdz'");
    EXPECT_EQ(orvex::formatArray(doubles({0, 3}).get()), "[] (0x3 double)");
    EXPECT_EQ(orvex::formatArray(doubles({2, 0, 3}).get()), "[] (2x0x3 double)");
    EXPECT_EQ(orvex::formatArray(doubles({2, 3, 4}).get()), "<2x3x4 double>");
    EXPECT_EQ(orvex::formatArray(doubles({1, 300}).get()), "<1x300 double>");
    EXPECT_EQ(orvex::formatArray(doubles({2, 1}, true).get()), "[1+2i; 3+4i]");

    const std::size_t twoByTwo[] = {2, 2};
    const std::size_t scalar[] = {1, 1};
    const std::size_t pair[] = {1, 2};
    EXPECT_EQ(orvex::formatArray(ArrayPtr(matrix::createCell(twoByTwo)).get()), "<2x2 cell>");
    EXPECT_EQ(orvex::formatArray(ArrayPtr(matrix::createStruct(scalar, {"a", "b"})).get()),
              "<1x1 struct with fields a, b>");
    EXPECT_EQ(orvex::formatArray(ArrayPtr(matrix::createStruct(twoByTwo, {})).get()), "<2x2 struct>");
    EXPECT_EQ(orvex::formatArray(ArrayPtr(matrix::createFunctionHandle("sin")).get()), "@sin");
    EXPECT_EQ(orvex::formatArray(ArrayPtr(matrix::createSparseDouble(3, 3, true)).get()),
              "<3x3 sparse complex double>");
    EXPECT_EQ(orvex::formatArray(ArrayPtr(matrix::createOpaque(scalar)).get()), "<1x1 opaque>");
    EXPECT_EQ(orvex::formatArray(ArrayPtr(matrix::createObject(static_cast<oxClassID>(4242), scalar,
                                                               std::make_shared<int>(0))).get()),
              "<1x1 class 4242>");
    EXPECT_EQ(orvex::formatArray(ArrayPtr(Velloc::String::createStringArray(pair, {u"a", u"b\""})).get()),
              "[\"a\" \"b\"\"\"]");
    EXPECT_EQ(orvex::formatArray(nullptr), "<no value>");
}

TEST(FormatType, SizeComplexityAndClass) {
    EXPECT_EQ(orvex::formatType(orvex::parseLiteral("2.5").get()), "1x1 double");
    EXPECT_EQ(orvex::formatType(orvex::parseLiteral("int8([1 2 3; 4 5 6])").get()), "2x3 int8");
    EXPECT_EQ(orvex::formatType(orvex::parseLiteral("single(1i)").get()), "1x1 complex single");
    EXPECT_EQ(orvex::formatType(orvex::parseLiteral("'hello'").get()), "1x5 char");
    EXPECT_EQ(orvex::formatType(orvex::parseLiteral("\"hello\"").get()), "1x1 string");
    EXPECT_EQ(orvex::formatType(orvex::parseLiteral("[true; false]").get()), "2x1 logical");
    EXPECT_EQ(orvex::formatType(ArrayPtr(matrix::createFunctionHandle("sin")).get()), "1x1 function_handle");
    EXPECT_EQ(orvex::formatType(nullptr), "<no value>");
}

} // namespace
