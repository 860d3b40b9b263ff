#include "Expression.hpp"
#include "StatementError.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using orvex::Expression;
using Kind = Expression::Kind;

// The tree in prefix form: (op operands...) for operators, name(arguments) for calls,
// and literals as the literal language will read them.
std::string shapeOf(const Expression& e) {
    std::string text;
    const auto list = [&](const char* separator) {
        for (std::size_t i = 0; i < e.operands.size(); ++i) {
            text += (i == 0 ? "" : separator) + shapeOf(e.operands[i]);
        }
    };
    switch (e.kind) {
    case Kind::UNARY:
    case Kind::BINARY:
    case Kind::RANGE:
        text = "(" + e.text + " ";
        list(" ");
        return text + ")";
    case Kind::CALL:
        text = e.text + "(";
        list(", ");
        return text + ")";
    case Kind::LITERAL: return "<" + e.text + ">";
    default: return e.text;
    }
}

std::string shapeOf(const std::string& text) { return shapeOf(orvex::parseExpression(text, 0)); }

TEST(ParseExpression, BindsAsTheArrayLanguageDoes) {
    EXPECT_EQ(shapeOf("1 + 2*3"), "(+ 1 (* 2 3))");
    EXPECT_EQ(shapeOf("(1 + 2)*3"), "(* (+ 1 2) 3)");
    EXPECT_EQ(shapeOf("1 - 2 - 3"), "(- (- 1 2) 3)");
    EXPECT_EQ(shapeOf("-2^2"), "(- (^ 2 2))");
    EXPECT_EQ(shapeOf("-a*b"), "(* (- a) b)");
    EXPECT_EQ(shapeOf("2^3^2"), "(^ (^ 2 3) 2)");
    EXPECT_EQ(shapeOf("2^-1"), "(^ 2 -1)");
    EXPECT_EQ(shapeOf("a.^-b"), "(.^ a (- b))");
    EXPECT_EQ(shapeOf("a.*b./c"), "(./ (.* a b) c)");
    EXPECT_EQ(shapeOf("2*-x"), "(* 2 (- x))");
    EXPECT_EQ(shapeOf("+x - -y"), "(- (+ x) (- y))");
    EXPECT_EQ(shapeOf("1:n+1"), "(: 1 (+ n 1))");
    EXPECT_EQ(shapeOf("0:0.5:2"), "(: 0 0.5 2)");
}

TEST(ParseExpression, ReadsLiteralsAsTheCommandLineDoes) {
    EXPECT_EQ(shapeOf("3+4i"), "<3+4i>");
    EXPECT_EQ(shapeOf("-1 - 2.5j"), "<-1-2.5j>");
    EXPECT_EQ(shapeOf("-2.5e-3"), "-2.5e-3");
    EXPECT_EQ(shapeOf("-Inf"), "-Inf");
    EXPECT_EQ(shapeOf("[1 -2]"), "<[1 -2]>");
    EXPECT_EQ(shapeOf("[1 - 2]*2"), "(* <[1 - 2]> 2)");
    EXPECT_EQ(shapeOf("'a+b' "), "<'a+b'>");
    EXPECT_EQ(shapeOf("'it''s'"), "<'it''s'>");
    EXPECT_EQ(shapeOf("x + 4i"), "(+ x 4i)");
    EXPECT_EQ(shapeOf("3 + 4i*2"), "(+ 3 (* 4i 2))");
    EXPECT_EQ(shapeOf("int8(-5)"), "int8(-5)");
}

TEST(ParseExpression, ReadsCallsIndicesAndMethods) {
    EXPECT_EQ(shapeOf("m(end, :)"), "m(end, :)");
    EXPECT_EQ(shapeOf("m(end-1, 2:end)"), "m((- end 1), (: 2 end))");
    EXPECT_EQ(shapeOf("f()"), "f()");
    EXPECT_EQ(shapeOf("sqrt(-x)"), "sqrt((- x))");
    EXPECT_EQ(shapeOf("b.append([4 5])"), "b.append(<[4 5]>)");
    EXPECT_EQ(shapeOf("x.^2"), "(.^ x 2)");
}

TEST(ParseExpression, PointsAtWhatItCannotRead) {
    const auto failure = [](const std::string& text) {
        try {
            orvex::parseExpression(text, 4);
        } catch (const orvex::StatementError& error) {
            return std::to_string(error.column()) + ": " + error.what();
        }
        return std::string("no error");
    };
    EXPECT_EQ(failure("1 +"), "7: expected an expression");
    EXPECT_EQ(failure("plus(1, 2"), "13: missing closing parenthesis ')'");
    EXPECT_EQ(failure("(1 + 2"), "10: missing closing parenthesis ')'");
    EXPECT_EQ(failure("1 2"), "6: unexpected '2'");
    EXPECT_EQ(failure("a # b"), "6: unexpected character '#'");
    EXPECT_EQ(failure("f(1,)"), "8: unexpected ')'");
    std::string sum = "1";
    for (int i = 0; i < 1000; ++i) {
        sum += "+1";
    }
    for (const std::string& deep : {std::string(1000, '(') + "1" + std::string(1000, ')'), std::string(1000, '-') + "1",
                                    "2^" + std::string(1000, '-') + "1", sum}) {
        EXPECT_NE(failure(deep).find(": expression nested too deeply"), std::string::npos);
    }
}

} // namespace
