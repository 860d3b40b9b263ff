#include <orvex/parseLiteral.hpp>

#include <orvex/LiteralError.hpp>

#include "NumericClasses.hpp"
#include "NumericMatrix.hpp"
#include "readDecimal.hpp"

#include <fl/i18n.hpp>
#include <strings/StringArray.hpp>

#include <cstdio>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvex {
namespace {

using detail::NumericMatrix;

constexpr std::string_view COMPLEX_FORM = "a complex number is a real and an imaginary part, as in 3+4i";

bool isWhitespace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isWordChar(char c) { return isLetter(c) || isDigit(c) || c == '_'; }

// One number, or one element of a matrix.
struct Scalar {
    double real = 0;
    double imag = 0;
    bool complex = false;
    bool logical = false;
};

// Inside a matrix a sign after a space may start the next element.
enum class Context { TOP, MATRIX };

class LiteralParser {
public:
    explicit LiteralParser(std::string_view text) : text_(text) {}

    matrix::ArrayPtr parse() {
        try {
            fl::i18n::utf8_to_ustring(text_);
        } catch (const fl::i18n::conversion_error& error) {
            fail(error.position(), "invalid UTF-8");
        }
        skipWhitespace();
        if (atEnd()) fail(pos_, "empty input");
        matrix::ArrayPtr result = peek() == '"' ? stringScalar(parseQuoted('"')) : detail::toArray(parseOperand());
        skipWhitespace();
        if (!atEnd()) fail(pos_, "trailing characters after the literal");
        return result;
    }

private:
    [[noreturn]] void fail(std::size_t column, std::string_view message) const {
        throw LiteralError(text_, column, message);
    }

    [[noreturn]] void failUnexpected() const {
        const std::string_view word = peekWord();
        if (!word.empty()) fail(pos_, "unknown name '" + std::string(word) + "'");
        fail(pos_, "unexpected character " + describeCurrent());
    }

    // The character at the cursor as a message quotes it: a whole UTF-8 sequence, or
    // the code of a control character.
    std::string describeCurrent() const {
        const auto lead = static_cast<unsigned char>(peek());
        if (lead < 0x20 || lead == 0x7f) {
            char code[8];
            std::snprintf(code, sizeof code, "U+%04X", lead);
            return code;
        }
        const std::size_t length = lead < 0x80 ? 1 : lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : 4;
        std::string quoted = "'";
        quoted += text_.substr(pos_, length);
        return quoted + "'";
    }

    bool atEnd() const { return pos_ >= text_.size(); }
    char peek(std::size_t ahead = 0) const { return pos_ + ahead < text_.size() ? text_[pos_ + ahead] : '\0'; }

    // Inside a matrix a newline ends a row, as in the language.
    void skipWhitespace() {
        while (!atEnd() && isWhitespace(peek()) && !(insideMatrix_ && peek() == '\n')) ++pos_;
    }

    std::string_view peekWord() const {
        if (!isLetter(peek())) return {};
        std::size_t end = pos_;
        while (end < text_.size() && isWordChar(text_[end])) ++end;
        return text_.substr(pos_, end - pos_);
    }

    // A value that may stand on its own or as the argument of a cast.
    NumericMatrix parseOperand() {
        if (peek() == '[') return parseMatrix();
        if (peek() == '\'') return charRow(parseQuoted('\''));
        if (const auto target = detail::castClass(peekWord())) return parseCast(*target);
        if (const auto scalar = parseScalar(Context::TOP)) return matrixOf({{*scalar}});
        failUnexpected();
    }

    NumericMatrix parseCast(oxClassID target) {
        const std::size_t nameColumn = pos_;
        const std::string name(peekWord());
        pos_ += name.size();
        skipWhitespace();
        if (peek() != '(') fail(pos_, "expected '(' after " + name);
        ++pos_;
        skipWhitespace();
        if (atEnd()) fail(pos_, "missing closing parenthesis ')'");
        if (peek() == ')') fail(pos_, name + " needs an argument");
        if (peek() == '"') fail(pos_, name + " cannot convert a string");
        NumericMatrix value = parseOperand();
        skipWhitespace();
        if (atEnd()) fail(pos_, "missing closing parenthesis ')'");
        if (peek() == ',') fail(pos_, name + " takes one argument");
        if (peek() != ')') fail(pos_, "expected ')' to close " + name + "(");
        ++pos_;
        if (const auto refusal = detail::castRefusal(value, target)) fail(nameColumn, *refusal);
        detail::castTo(value, target);
        return value;
    }

    NumericMatrix parseMatrix() {
        ++pos_;
        insideMatrix_ = true;
        std::vector<std::vector<Scalar>> rows;
        std::vector<Scalar> row;
        std::vector<std::size_t> elementColumns;
        bool afterComma = false;
        for (;;) {
            skipWhitespace();
            if (atEnd()) fail(pos_, "missing closing bracket ']'");
            const char c = peek();
            if (c == ']' || c == ';' || c == '\n') {
                if (afterComma) fail(pos_, "expected a number after ','");
                endRow(rows, row, elementColumns);
                ++pos_;
                if (c == ']') {
                    insideMatrix_ = false;
                    return matrixOf(rows);
                }
            } else if (c == ',') {
                if (row.empty() || afterComma) failUnexpected();
                afterComma = true;
                ++pos_;
            } else {
                elementColumns.push_back(pos_);
                row.push_back(parseElement());
                afterComma = false;
            }
        }
    }

    // Appends a finished row; a row left empty, as in [1 2;], adds nothing.
    void endRow(std::vector<std::vector<Scalar>>& rows, std::vector<Scalar>& row,
                std::vector<std::size_t>& elementColumns) const {
        if (row.empty()) return;
        if (!rows.empty() && row.size() != rows.back().size()) {
            // Point at the first element too many, or at where the row ended too early.
            const std::size_t width = rows.back().size();
            fail(row.size() > width ? elementColumns[width] : pos_,
                 "rows " + std::to_string(rows.size()) + " and " + std::to_string(rows.size() + 1) +
                     " have different lengths");
        }
        rows.push_back(std::move(row));
        row.clear();
        elementColumns.clear();
    }

    Scalar parseElement() {
        const char c = peek();
        if (c == '[' || c == '\'' || c == '"' || detail::castClass(peekWord())) {
            fail(pos_, "only numbers, true and false can stand inside a matrix");
        }
        if (const auto scalar = parseScalar(Context::MATRIX)) return *scalar;
        failUnexpected();
    }

    // A signed number with an optional imaginary part, or true or false; nothing when
    // the cursor is at none of these.
    std::optional<Scalar> parseScalar(Context context) {
        const char sign = peek();
        const bool hasSign = sign == '+' || sign == '-';
        if (hasSign) ++pos_;
        std::optional<Scalar> first = parseTerm(!hasSign);
        if (!first) {
            if (hasSign) fail(pos_, std::string("expected a number after '") + sign + "'");
            return std::nullopt;
        }
        if (sign == '-') negate(*first);
        if (first->logical) return first;

        const std::size_t afterFirst = pos_;
        skipWhitespace();
        const char join = peek();
        const bool startsNextElement =
            context == Context::MATRIX && pos_ > afterFirst && !isWhitespace(peek(1));
        if ((join != '+' && join != '-') || startsNextElement) {
            pos_ = afterFirst;
            return first;
        }
        ++pos_;
        skipWhitespace();
        const std::size_t secondColumn = pos_;
        std::optional<Scalar> second = parseTerm(false);
        if (!second) fail(pos_, std::string("expected a number after '") + join + "'");
        if (first->complex || !second->complex) fail(secondColumn, COMPLEX_FORM);
        first->complex = true;
        first->imag = join == '-' ? -second->imag : second->imag;
        return first;
    }

    // Only the written part changes sign: -2i is 0-2i, not -0-2i.
    static void negate(Scalar& scalar) {
        if (scalar.complex) {
            scalar.imag = -scalar.imag;
        } else {
            scalar.real = -scalar.real;
        }
    }

    // An unsigned number, Inf or NaN, or, when allowed, true or false.
    std::optional<Scalar> parseTerm(bool allowLogical) {
        if (isDigit(peek()) || (peek() == '.' && isDigit(peek(1)))) return parseNumber();
        const std::string_view word = peekWord();
        // Inf and NaN take the imaginary suffix as numbers do, so that a printed 3 + Infi
        // reads back.
        const bool imaginary = word.size() == 4 && (word.back() == 'i' || word.back() == 'j');
        const std::string_view name = imaginary ? word.substr(0, 3) : word;
        std::optional<Scalar> term;
        if (name == "Inf" || name == "inf") term = Scalar{.real = std::numeric_limits<double>::infinity()};
        if (name == "NaN" || name == "nan") term = Scalar{.real = std::numeric_limits<double>::quiet_NaN()};
        if (term && imaginary) term = Scalar{.imag = term->real, .complex = true};
        if (allowLogical && (word == "true" || word == "false")) {
            term = Scalar{.real = word == "true" ? 1.0 : 0.0, .logical = true};
        }
        if (term) pos_ += word.size();
        return term;
    }

    Scalar parseNumber() {
        const std::size_t start = pos_;
        skipDigits();
        if (peek() == '.') {
            ++pos_;
            skipDigits();
        }
        if (peek() == 'e' || peek() == 'E') {
            ++pos_;
            if (peek() == '+' || peek() == '-') ++pos_;
            if (!isDigit(peek())) fail(pos_, "missing digits of the exponent");
            skipDigits();
        }
        Scalar scalar{.real = detail::readDecimal(text_.substr(start, pos_ - start))};
        if ((peek() == 'i' || peek() == 'j') && !isWordChar(peek(1))) {
            ++pos_;
            scalar = Scalar{.imag = scalar.real, .complex = true};
        }
        if (isWordChar(peek()) || peek() == '.') fail(pos_, "unexpected character " + describeCurrent());
        return scalar;
    }

    void skipDigits() {
        while (isDigit(peek())) ++pos_;
    }

    // The text between quotes, a doubled quote standing for one.
    std::u16string parseQuoted(char quote) {
        const std::size_t open = pos_++;
        std::string content;
        for (;;) {
            const std::size_t close = text_.find(quote, pos_);
            if (close == std::string_view::npos) {
                fail(open, quote == '"' ? "unterminated string: missing closing quote"
                                        : "unterminated char array: missing closing quote");
            }
            content.append(text_.substr(pos_, close - pos_));
            pos_ = close + 1;
            if (peek() != quote) break;
            content += quote;
            ++pos_;
        }
        // The whole literal is valid UTF-8 and quotes are ASCII, so this cannot fail.
        return fl::i18n::utf8_to_ustring(content);
    }

    static matrix::ArrayPtr stringScalar(std::u16string text) {
        return matrix::ArrayPtr(Velloc::String::createScalarString(Velloc::String::String(std::move(text))));
    }

    static NumericMatrix charRow(const std::u16string& text) {
        NumericMatrix value{.classId = oxCHAR_CLASS, .rows = text.empty() ? 0u : 1u, .cols = text.size()};
        value.real.assign(text.begin(), text.end());
        return value;
    }

    // Logical when every element is; complex when any element is; [] is 0x0 double.
    static NumericMatrix matrixOf(const std::vector<std::vector<Scalar>>& rows) {
        NumericMatrix value{.rows = rows.size(), .cols = rows.empty() ? 0 : rows.front().size()};
        bool allLogical = !rows.empty();
        for (const std::vector<Scalar>& row : rows) {
            for (const Scalar& element : row) {
                allLogical = allLogical && element.logical;
                value.complex = value.complex || element.complex;
            }
        }
        for (std::size_t col = 0; col < value.cols; ++col) {
            for (const std::vector<Scalar>& row : rows) {
                value.real.push_back(row[col].real);
                if (value.complex) value.imag.push_back(row[col].imag);
            }
        }
        if (allLogical) value.classId = oxLOGICAL_CLASS;
        return value;
    }

    std::string_view text_;
    std::size_t pos_ = 0;
    bool insideMatrix_ = false;
};

} // namespace

matrix::ArrayPtr parseLiteral(std::string_view text) { return LiteralParser(text).parse(); }

} // namespace orvex
