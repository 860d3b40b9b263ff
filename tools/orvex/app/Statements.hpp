// A line of a session holds one statement or several: a ',' ends one whose result is
// shown, a ';' one whose result is kept quiet, as array languages write them:
//
//     x = 3; y = 4                 x quiet, y shown
//     a = 1, b = 2;                a shown, b quiet
//     m = [1, 2; 3, 4], f(1, 2)    separators inside brackets and parentheses, and inside
//                                  texts, belong to their literal or call
//     x = 1   % a comment          a '%' outside a text starts a comment to the end
//
// Quotes are told apart as the expression reader tells them (Expression.hpp): after a value
// a quote transposes, elsewhere it starts a char literal, in which '' stands for one quote.
// Inside brackets a quote always starts a text, as the literal language reads it.
#pragma once

#include <string_view>
#include <vector>

namespace orvex {

struct Statement {
    // The statement without its separator and the blanks around it; a view into the line.
    std::string_view text;
    // Ended by ';': its result is not shown.
    bool quiet;
};

// The statements of line, in order; empty ones (",,", a line of blanks) are left out.
// A text or bracket left open runs to the end of the line, for the reader to report.
std::vector<Statement> splitStatements(std::string_view line);

} // namespace orvex
