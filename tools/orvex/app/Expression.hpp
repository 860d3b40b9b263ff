// The session's expressions, read by precedence climbing into a tree that the session
// evaluates. From the loosest binding to the tightest, as array languages bind them:
//
//     a||b                short-circuit or, of scalars
//     a&&b                short-circuit and, of scalars
//     a|b                 element-wise or
//     a&b                 element-wise and
//     a==b  a~=b  a<b  a<=b  a>b  a>=b   comparisons, left to right
//     a:b  a:s:b          ranges
//     a+b  a-b
//     a*b  a/b  a.*b  a./b
//     -a  +a  ~a          signs and not bind looser than powers: -2^2 is -4, ~a^2 is ~(a^2)
//     a^b  a.^b  a'  a.'  powers and transposes, left to right; the exponent may carry a
//                         sign: 2^-1; a' is the complex conjugate transpose, a.' the transpose
//     f(x, y)  (a)  name  literal  end  and, as a whole argument, ':'
//
// A quote after a value (a number, a name, a literal, ')' or another transpose, blanks
// between allowed) transposes it; anywhere else it starts a char literal: x' and [1 2]'
// transpose, f('a') and x = 'it''s' hold text.
//
// Literals are read by the command line's literal language: numbers, [matrices],
// 'chars' and "strings". A sign on a number (-2) and a real number plus or minus an
// imaginary one (3+4i) stay one literal, as that language reads them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orvex {

struct Expression {
    enum class Kind {
        REAL_NUMBER, // a real number literal, maybe signed: 2, -2.5, Inf
        IMAGINARY,   // an unsigned imaginary number literal: 4i, 2.5j
        LITERAL,     // any other literal: 3+4i, [1 -2], 'text', "text"
        NAME,        // a variable, a builtin called without arguments, or a word such as true
        CALL,        // name(operands): a builtin, a method, an index or a cast such as int8(5)
        UNARY,       // text is the sign or ~
        BINARY,      // text is the operator, && and || included
        RANGE,       // operands: start, end or start, step, end
        END,         // end, inside an index
        ALL,         // ':' as a whole index
        POSTFIX,     // a transpose: text is ' or .'; one operand
    };
    Kind kind;
    // The literal as the literal language reads it, the name, the callee or the operator.
    std::string text;
    // Where the expression starts in the statement; for operators, where the operator is.
    std::size_t column;
    // The statement text the expression covers.
    std::string_view source;
    std::vector<Expression> operands{};
};

// Reads text, which starts at column of its statement; throws StatementError.
Expression parseExpression(std::string_view text, std::size_t column);

} // namespace orvex
