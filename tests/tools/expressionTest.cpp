#include "Expression.hpp"
#include "StatementError.hpp"
#include "Statements.hpp"

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
    case Kind::POSTFIX:
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

// From the loosest to the tightest: || && | & comparisons : + - * / unary ^ and transposes.
TEST(ParseExpression, LogicalOperatorsAndComparisonsBindAsArrayLanguagesBindThem) {
    EXPECT_EQ(shapeOf("a || b && c"), "(|| a (&& b c))");
    EXPECT_EQ(shapeOf("a && b || c"), "(|| (&& a b) c)");
    EXPECT_EQ(shapeOf("a && b | c"), "(&& a (| b c))");
    EXPECT_EQ(shapeOf("a | b & c"), "(| a (& b c))");
    EXPECT_EQ(shapeOf("a & b | c & d"), "(| (& a b) (& c d))");
    EXPECT_EQ(shapeOf("a & b == c"), "(& a (== b c))");
    EXPECT_EQ(shapeOf("x > 1 & x < 5"), "(& (> x 1) (< x 5))");
    EXPECT_EQ(shapeOf("a < b < c"), "(< (< a b) c)");
    EXPECT_EQ(shapeOf("a == b ~= c"), "(~= (== a b) c)");
    EXPECT_EQ(shapeOf("1:3 == 1:3"), "(== (: 1 3) (: 1 3))");
    EXPECT_EQ(shapeOf("a + 1 >= b * 2"), "(>= (+ a 1) (* b 2))");
    EXPECT_EQ(shapeOf("a <= -b"), "(<= a (- b))");
    EXPECT_EQ(shapeOf("1:n > 2"), "(> (: 1 n) 2)");
    EXPECT_EQ(shapeOf("x(x > 2)"), "x((> x 2))");
    EXPECT_EQ(shapeOf("(a | b) & c"), "(& (| a b) c)");
    EXPECT_EQ(shapeOf("a||b||c"), "(|| (|| a b) c)");
}

TEST(ParseExpression, NotBindsAsASignDoes) {
    EXPECT_EQ(shapeOf("~a"), "(~ a)");
    EXPECT_EQ(shapeOf("~a == b"), "(== (~ a) b)");
    EXPECT_EQ(shapeOf("~a & b"), "(& (~ a) b)");
    EXPECT_EQ(shapeOf("~a^2"), "(~ (^ a 2))");
    EXPECT_EQ(shapeOf("~~a"), "(~ (~ a))");
    EXPECT_EQ(shapeOf("~1"), "(~ 1)");
    EXPECT_EQ(shapeOf("-~a"), "(- (~ a))");
    EXPECT_EQ(shapeOf("2^~a"), "(^ 2 (~ a))");
    EXPECT_EQ(shapeOf("a ~= ~b"), "(~= a (~ b))");
}

// A quote after a value transposes it; anywhere else it starts a char literal.
TEST(ParseExpression, AQuoteAfterAValueTransposes) {
    EXPECT_EQ(shapeOf("m'"), "(' m)");
    EXPECT_EQ(shapeOf("m.'"), "(.' m)");
    EXPECT_EQ(shapeOf("m''"), "(' (' m))");
    EXPECT_EQ(shapeOf("m'.'"), "(.' (' m))");
    EXPECT_EQ(shapeOf("[1 2 3]'"), "(' <[1 2 3]>)");
    EXPECT_EQ(shapeOf("f(x)'"), "(' f(x))");
    EXPECT_EQ(shapeOf("(a + b)'"), "(' (+ a b))");
    EXPECT_EQ(shapeOf("2'"), "(' 2)");
    EXPECT_EQ(shapeOf("2.'"), "(' 2.)"); // the number 2. takes its dot
    EXPECT_EQ(shapeOf("3i'"), "(' 3i)");
    EXPECT_EQ(shapeOf("'abc''"), "<'abc''>");
    EXPECT_EQ(shapeOf("'abc'.'"), "(.' <'abc'>)");
    EXPECT_EQ(shapeOf("'abc' '"), "(' <'abc'>)");
    EXPECT_EQ(shapeOf("m '"), "(' m)");
    EXPECT_EQ(shapeOf("r(end)'"), "(' r(end))");
    EXPECT_EQ(shapeOf("x(end')"), "x((' end))");
    // Not after a value: a char literal.
    EXPECT_EQ(shapeOf("'m'"), "<'m'>");
    EXPECT_EQ(shapeOf("f('a', 'b')"), "f(<'a'>, <'b'>)");
    EXPECT_EQ(shapeOf("'it''s' == 'abcd'"), "(== <'it''s'> <'abcd'>)");
    EXPECT_EQ(shapeOf("~'a'"), "(~ <'a'>)");
    EXPECT_EQ(shapeOf("x + 'a'"), "(+ x <'a'>)");
    EXPECT_EQ(shapeOf("('a')'"), "(' <'a'>)");
}

TEST(ParseExpression, TransposesBindAsPowersDo) {
    EXPECT_EQ(shapeOf("-a'"), "(- (' a))");
    EXPECT_EQ(shapeOf("a'*b'"), "(* (' a) (' b))");
    EXPECT_EQ(shapeOf("a^b'"), "(' (^ a b))");
    EXPECT_EQ(shapeOf("a'^2"), "(^ (' a) 2)");
    EXPECT_EQ(shapeOf("2^-a'"), "(' (^ 2 (- a)))");
    EXPECT_EQ(shapeOf("a + b'"), "(+ a (' b))");
    EXPECT_EQ(shapeOf("1:n'"), "(: 1 (' n))");
    EXPECT_EQ(shapeOf("~a'"), "(~ (' a))");
    EXPECT_EQ(shapeOf("a' == b'"), "(== (' a) (' b))");
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
    EXPECT_EQ(failure("a = b"), "6: unexpected character '='");
    EXPECT_EQ(failure("a == "), "9: expected an expression");
    EXPECT_EQ(failure("a &&& b"), "8: unexpected '&'");
    EXPECT_EQ(failure("a ! b"), "6: unexpected character '!'");
    EXPECT_EQ(failure("(a'"), "7: missing closing parenthesis ')'");
    std::string sum = "1";
    for (int i = 0; i < 1000; ++i) {
        sum += "+1";
    }
    std::string comparisons = "1";
    std::string transposes = "1";
    for (int i = 0; i < 1000; ++i) {
        comparisons += "<1";
        transposes += "'";
    }
    for (const std::string& deep : {std::string(1000, '(') + "1" + std::string(1000, ')'), std::string(1000, '-') + "1",
                                    "2^" + std::string(1000, '-') + "1", sum, comparisons, transposes,
                                    std::string(1000, '~') + "1"}) {
        EXPECT_NE(failure(deep).find(": expression nested too deeply"), std::string::npos);
    }
}

// Several statements a line: ',' shows a result, ';' keeps it quiet; separators inside
// brackets, parentheses and texts, and after a comment, are not separators.
std::string statementsOf(const std::string& line) {
    std::string text;
    for (const orvex::Statement& statement : orvex::splitStatements(line)) {
        text += "[" + std::string(statement.text) + (statement.quiet ? "];" : "]");
    }
    return text;
}

TEST(SplitStatements, CommasShowSemicolonsKeepQuiet) {
    EXPECT_EQ(statementsOf("x = 3; y = 4"), "[x = 3];[y = 4]");
    EXPECT_EQ(statementsOf("a = 1, b = 2;"), "[a = 1][b = 2];");
    EXPECT_EQ(statementsOf("x"), "[x]");
    EXPECT_EQ(statementsOf("x;"), "[x];");
    EXPECT_EQ(statementsOf("  "), "");
    EXPECT_EQ(statementsOf(",, ;x,;"), "[x]");
    EXPECT_EQ(statementsOf("m = [1, 2; 3, 4], f(1, 2)"), "[m = [1, 2; 3, 4]][f(1, 2)]");
    EXPECT_EQ(statementsOf("s = 'a;b', t = \"c,d\";"), "[s = 'a;b'][t = \"c,d\"];");
    EXPECT_EQ(statementsOf("s = 'it''s; fine'; t"), "[s = 'it''s; fine'];[t]");
    EXPECT_EQ(statementsOf("y = x'; z = x.', w = [x' 1]"), "[y = x'];[z = x.'][w = [x' 1]]");
    EXPECT_EQ(statementsOf("y = x' ; 'a;b'"), "[y = x'];['a;b']");
    EXPECT_EQ(statementsOf("x = 1 % a comment; y = 2"), "[x = 1]");
    EXPECT_EQ(statementsOf("s = '50%'; % note"), "[s = '50%'];");
    EXPECT_EQ(statementsOf("x = f(1, ;"), "[x = f(1, ;]");
    EXPECT_EQ(statementsOf("s = 'open; x"), "[s = 'open; x]");
    EXPECT_EQ(statementsOf("c = {1, 2}; d"), "[c = {1, 2}];[d]");
}

} // namespace
