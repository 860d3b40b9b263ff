#include <orvex/LiteralError.hpp>
#include <orvex/parseLiteral.hpp>

#include <gtest/gtest.h>

#include <string>

namespace {

struct Malformed {
    std::string text;
    std::size_t column;
    std::string message;
};

// Each case also runs under the leak checker: several fail after part of the value,
// or the whole array, has been built.
TEST(LiteralError, PointsAtTheOffendingCharacter) {
    const Malformed cases[] = {
        {"", 0, "empty input"},
        {"   ", 3, "empty input"},
        {"[1 2; 3]", 7, "rows 1 and 2 have different lengths"},
        {"[1 2; 3 4; 5 6 7]", 15, "rows 2 and 3 have different lengths"},
        {"[1 2", 4, "missing closing bracket ']'"},
        {"[1,]", 3, "expected a number after ','"},
        {"[1,,2]", 3, "unexpected character ','"},
        {"[1 'a']", 3, "only numbers, true and false can stand inside a matrix"},
        {"[int8(1) 2]", 1, "only numbers, true and false can stand inside a matrix"},
        {"'abc", 0, "unterminated char array: missing closing quote"},
        {"\"abc", 0, "unterminated string: missing closing quote"},
        {"\"abc\" x", 6, "trailing characters after the literal"},
        {"[1 2] 3", 6, "trailing characters after the literal"},
        {"foo(1)", 0, "unknown name 'foo'"},
        {"3abc", 1, "unexpected character 'a'"},
        {"1.2.3", 3, "unexpected character '.'"},
        {"1e", 2, "missing digits of the exponent"},
        {"--3", 1, "expected a number after '-'"},
        {"-true", 1, "expected a number after '-'"},
        {"1+2", 2, "a complex number is a real and an imaginary part, as in 3+4i"},
        {"2i+3i", 3, "a complex number is a real and an imaginary part, as in 3+4i"},
        {"@", 0, "unexpected character '@'"},
        {"\x01", 0, "unexpected character U+0001"},
        {"\xe2\x82\xac", 0, "unexpected character '\xe2\x82\xac'"},
        {"'ab\xff'", 3, "invalid UTF-8"},
        {"int8 5", 5, "expected '(' after int8"},
        {"int8()", 5, "int8 needs an argument"},
        {"int8(5", 6, "missing closing parenthesis ')'"},
        {"int8(1, 2)", 6, "int8 takes one argument"},
        {"int8(1 2)", 7, "expected ')' to close int8("},
        {"int8(\"a\")", 5, "int8 cannot convert a string"},
        {"int8([1+2i 3])", 0, "cannot convert complex values to int8"},
        {"single(uint16(1i))", 7, "cannot convert complex values to uint16"},
        {"logical(NaN)", 0, "cannot convert NaN to logical"},
        {"logical('a')", 0, "cannot convert char to logical"},
    };
    for (const Malformed& c : cases) {
        SCOPED_TRACE(c.text);
        try {
            orvex::parseLiteral(c.text);
            ADD_FAILURE() << "no error";
        } catch (const orvex::LiteralError& error) {
            EXPECT_EQ(error.column(), c.column);
            EXPECT_EQ(error.message(), c.message);
            EXPECT_EQ(error.text(), c.text);
        }
    }
}

TEST(LiteralError, WhatQuotesTheLiteralWithACaretBelow) {
    try {
        orvex::parseLiteral("[1 2; 3]");
        FAIL() << "no error";
    } catch (const std::invalid_argument& error) {
        EXPECT_STREQ(error.what(), "cannot read '[1 2; 3]': rows 1 and 2 have different lengths\n"
                                   "                    ^");
    }
}

TEST(LiteralError, CaretCountsCharactersAndKeepsControlCharactersOnOneLine) {
    const orvex::LiteralError accented("'\xc3\xa9t\xc3\xa9' @", 8, "unexpected character '@'");
    EXPECT_STREQ(accented.what(), "cannot read ''\xc3\xa9t\xc3\xa9' @': unexpected character '@'\n"
                                  "                   ^");
    const orvex::LiteralError tab("1\t\n2", 3, "trailing characters after the literal");
    EXPECT_STREQ(tab.what(), "cannot read '1  2': trailing characters after the literal\n"
                             "                ^");
    const orvex::LiteralError pastTheEnd("[1", 99, "missing closing bracket ']'");
    EXPECT_EQ(pastTheEnd.column(), 2u);
}

} // namespace
