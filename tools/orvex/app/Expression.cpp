#include "Expression.hpp"

#include "StatementError.hpp"

#include <algorithm>
#include <utility>

namespace orvex {

namespace {

using Kind = Expression::Kind;

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool isWordChar(char c) { return isLetter(c) || isDigit(c); }
bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f'; }

struct Token {
    enum class Type { REAL_NUMBER, IMAGINARY, LITERAL, WORD, SYMBOL, END };
    Type type;
    std::string_view text;
    std::size_t position;
};
using Type = Token::Type;

// Splits an expression into numbers, words (dotted names included), literals read whole
// by the literal language, and operator symbols.
class Lexer {
public:
    Lexer(std::string_view text, std::size_t column) : text_(text), column_(column) {}

    std::vector<Token> tokens() {
        std::vector<Token> tokens;
        while (true) {
            while (pos_ < text_.size() && isSpace(text_[pos_])) ++pos_;
            if (pos_ == text_.size()) {
                tokens.push_back({Type::END, text_.substr(pos_), pos_});
                return tokens;
            }
            tokens.push_back(next(tokens.empty() ? nullptr : &tokens.back()));
        }
    }

private:
    char at(std::size_t i) const { return i < text_.size() ? text_[i] : '\0'; }

    // previous is the token before, if any: a quote after a value transposes it.
    Token next(const Token* previous) {
        const std::size_t start = pos_;
        const char c = text_[pos_];
        if (isDigit(c) || (c == '.' && isDigit(at(pos_ + 1)))) return number(start);
        if (isLetter(c)) return word(start);
        if (c == '\'' && previous != nullptr && endsAValue(*previous)) return symbol(start, 1);
        if (c == '\'' || c == '"') return quoted(start, c);
        if (c == '[') return matrix(start);
        if (c == '.' && (at(pos_ + 1) == '*' || at(pos_ + 1) == '/' || at(pos_ + 1) == '^' || at(pos_ + 1) == '\'')) {
            return symbol(start, 2);
        }
        if (isTwoCharacterSymbol(text_.substr(start, 2))) return symbol(start, 2);
        static constexpr std::string_view SYMBOLS = "+-*/^:(),<>&|~";
        if (SYMBOLS.find(c) == std::string_view::npos) {
            throw StatementError(column_ + start, "unexpected character '" + std::string(1, c) + "'");
        }
        return symbol(start, 1);
    }

    Token symbol(std::size_t start, std::size_t length) {
        pos_ += length;
        return {Type::SYMBOL, text_.substr(start, length), start};
    }

    static bool isTwoCharacterSymbol(std::string_view text) {
        return text == "==" || text == "~=" || text == "<=" || text == ">=" || text == "&&" || text == "||";
    }

    // A number, a name, a literal, a closing parenthesis or a transpose: what a quote
    // after it transposes.
    static bool endsAValue(const Token& token) {
        switch (token.type) {
        case Type::REAL_NUMBER:
        case Type::IMAGINARY:
        case Type::LITERAL:
        case Type::WORD: return true;
        case Type::SYMBOL: return token.text == ")" || token.text == "'" || token.text == ".'";
        case Type::END: break;
        }
        return false;
    }

    void skipDigits() {
        while (isDigit(at(pos_))) ++pos_;
    }

    Token number(std::size_t start) {
        skipDigits();
        if (at(pos_) == '.') {
            ++pos_;
            skipDigits();
        }
        const std::size_t sign = at(pos_ + 1) == '+' || at(pos_ + 1) == '-' ? 1 : 0;
        if ((at(pos_) == 'e' || at(pos_) == 'E') && isDigit(at(pos_ + 1 + sign))) {
            pos_ += 1 + sign;
            skipDigits();
        }
        return withSuffix(start, Type::REAL_NUMBER);
    }

    // An i or j that ends a number makes it imaginary.
    Token withSuffix(std::size_t start, Type type) {
        if ((at(pos_) == 'i' || at(pos_) == 'j') && !isWordChar(at(pos_ + 1))) {
            ++pos_;
            type = Type::IMAGINARY;
        }
        return {type, text_.substr(start, pos_ - start), start};
    }

    Token word(std::size_t start) {
        while (isWordChar(at(pos_)) || (at(pos_) == '.' && isLetter(at(pos_ + 1)))) ++pos_;
        const std::string_view text = text_.substr(start, pos_ - start);
        if (text == "Inf" || text == "NaN") return withSuffix(start, Type::REAL_NUMBER);
        const bool imaginaryWord = text == "Infi" || text == "Infj" || text == "NaNi" || text == "NaNj";
        return {imaginaryWord ? Type::IMAGINARY : Type::WORD, text, start};
    }

    // Up to the closing quote, a doubled quote standing for one; an unterminated text
    // runs to the end, for the literal language to report.
    Token quoted(std::size_t start, char quote) {
        ++pos_;
        while (pos_ < text_.size()) {
            if (text_[pos_++] == quote) {
                if (at(pos_) != quote) break;
                ++pos_;
            }
        }
        return {Type::LITERAL, text_.substr(start, pos_ - start), start};
    }

    // Up to the matching ']'. A ')' that closes nothing opened inside ends it early, so
    // that f([1 2) reports the bracket left open.
    Token matrix(std::size_t start) {
        int brackets = 0;
        int parentheses = 0;
        while (pos_ < text_.size()) {
            const char c = text_[pos_];
            if (c == '\'' || c == '"') {
                quoted(pos_, c);
                continue;
            }
            if (c == ')' && parentheses == 0) break;
            ++pos_;
            parentheses += c == '(' ? 1 : c == ')' ? -1 : 0;
            brackets += c == '[' ? 1 : c == ']' ? -1 : 0;
            if (brackets == 0) break;
        }
        return {Type::LITERAL, text_.substr(start, pos_ - start), start};
    }

    std::string_view text_;
    std::size_t column_;
    std::size_t pos_ = 0;
};

// Binding strength of the operators, loosest first. The logical operators and the
// comparisons take ranges as operands (Parser::logical); ranges take sums (Parser::range);
// the arithmetic operators, signs and not bind tighter (Parser::binary), and transposes
// bind as powers do.
constexpr int OR_OR = 1;
constexpr int AND_AND = 2;
constexpr int ELEMENT_OR = 3;
constexpr int ELEMENT_AND = 4;
constexpr int COMPARISON = 5;
constexpr int ADDITIVE = 6;
constexpr int MULTIPLICATIVE = 7;
constexpr int SIGN_PRECEDENCE = 8;
constexpr int POWER = 9;

bool isSymbolToken(const Token& token, std::string_view symbol) {
    return token.type == Type::SYMBOL && token.text == symbol;
}

bool isTranspose(const Token& token) { return isSymbolToken(token, "'") || isSymbolToken(token, ".'"); }

// The arithmetic operators and the transposes; 0 for any other token.
int precedenceOf(const Token& token) {
    if (token.type != Type::SYMBOL) return 0;
    const std::string_view op = token.text;
    if (op == "+" || op == "-") return ADDITIVE;
    if (op == "*" || op == "/" || op == ".*" || op == "./") return MULTIPLICATIVE;
    if (op == "^" || op == ".^" || isTranspose(token)) return POWER;
    return 0;
}

// The logical operators and the comparisons; 0 for any other token.
int logicalPrecedenceOf(const Token& token) {
    if (token.type != Type::SYMBOL) return 0;
    const std::string_view op = token.text;
    if (op == "||") return OR_OR;
    if (op == "&&") return AND_AND;
    if (op == "|") return ELEMENT_OR;
    if (op == "&") return ELEMENT_AND;
    if (op == "==" || op == "~=" || op == "<" || op == "<=" || op == ">" || op == ">=") return COMPARISON;
    return 0;
}

// Deep enough for any expression a person writes, shallow enough for the stack.
constexpr int MAX_NESTING = 200;

class Parser {
public:
    Parser(std::string_view text, std::size_t column)
        : text_(text), column_(column), tokens_(Lexer(text, column).tokens()) {}

    Expression parse() {
        Expression parsed = expression();
        if (peek().type != Type::END) unexpected();
        return parsed;
    }

private:
    const Token& peek(std::size_t ahead = 0) const {
        return tokens_[std::min(next_ + ahead, tokens_.size() - 1)];
    }
    bool isSymbol(std::string_view symbol, std::size_t ahead = 0) const {
        return peek(ahead).type == Type::SYMBOL && peek(ahead).text == symbol;
    }
    const Token& take() { return tokens_[next_ < tokens_.size() - 1 ? next_++ : next_]; }

    [[noreturn]] void unexpected() const {
        const Token& token = peek();
        if (token.type == Type::END) throw StatementError(column_ + token.position, "expected an expression");
        throw StatementError(column_ + token.position, "unexpected '" + std::string(token.text) + "'");
    }

    // The statement text from start up to the token last taken.
    std::string_view sourceFrom(std::size_t start) const {
        const Token& last = tokens_[next_ - 1];
        return text_.substr(start, last.position + last.text.size() - start);
    }

    // One level deeper in the tree; evaluating it recurses as deep.
    void deepen() {
        if (++depth_ > MAX_NESTING) {
            throw StatementError(column_ + peek().position, "expression nested too deeply");
        }
    }

    // Counts one level of nesting for as long as it lives.
    class Nesting {
    public:
        explicit Nesting(Parser& parser) : parser_(parser) { parser_.deepen(); }
        ~Nesting() { --parser_.depth_; }
        Nesting(const Nesting&) = delete;
        Nesting& operator=(const Nesting&) = delete;

    private:
        Parser& parser_;
    };

    // A whole expression: the loosest level.
    Expression expression() { return logical(OR_OR); }

    // Logical operators and comparisons at least as strong as minimum, left to right, over
    // ranges; each makes the tree one level deeper.
    Expression logical(int minimum) {
        const std::size_t start = peek().position;
        Expression left = range();
        int chained = 0;
        for (int precedence = logicalPrecedenceOf(peek()); precedence >= minimum;
             precedence = logicalPrecedenceOf(peek())) {
            deepen();
            ++chained;
            const Token op = take();
            Expression right = logical(precedence + 1);
            left = combine(op, std::move(left), std::move(right), sourceFrom(start));
        }
        depth_ -= chained;
        return left;
    }

    Expression range() {
        const std::size_t start = peek().position;
        Expression first = binary(ADDITIVE);
        if (!isSymbol(":")) return first;
        const std::size_t colon = take().position;
        std::vector<Expression> operands{std::move(first), binary(ADDITIVE)};
        if (isSymbol(":")) {
            take();
            operands.push_back(binary(ADDITIVE));
        }
        return {Kind::RANGE, ":", column_ + colon, sourceFrom(start), std::move(operands)};
    }

    // Operators at least as strong as minimum, left to right; each makes the tree one
    // level deeper.
    Expression binary(int minimum) {
        const std::size_t start = peek().position;
        Expression left = unary();
        int chained = 0;
        for (int precedence = precedenceOf(peek()); precedence >= minimum; precedence = precedenceOf(peek())) {
            deepen();
            ++chained;
            const Token op = take();
            if (isTranspose(op)) {
                left = transposed(op, std::move(left), sourceFrom(start));
                continue;
            }
            Expression right = precedence == POWER ? exponent() : binary(precedence + 1);
            left = combine(op, std::move(left), std::move(right), sourceFrom(start));
        }
        depth_ -= chained;
        return left;
    }

    // A transpose applies to everything before it at its level: a^b' is (a^b)', -a' is -(a').
    Expression transposed(const Token& op, Expression operand, std::string_view source) const {
        std::vector<Expression> operands;
        operands.push_back(std::move(operand));
        return {Kind::POSTFIX, std::string(op.text), column_ + op.position, source, std::move(operands)};
    }

    Expression unary() {
        if (!isSymbol("-") && !isSymbol("+") && !isSymbol("~")) return primary();
        const Nesting nesting(*this);
        const Token sign = take();
        return withSign(sign, binary(POWER));
    }

    // The right operand of a power: a sign and a primary, not a whole unary expression,
    // so that 2^-1^2 groups as (2^-1)^2.
    Expression exponent() {
        if (!isSymbol("-") && !isSymbol("+") && !isSymbol("~")) return primary();
        const Nesting nesting(*this);
        const Token sign = take();
        return withSign(sign, exponent());
    }

    Expression withSign(const Token& sign, Expression operand) {
        const std::string_view source = sourceFrom(sign.position);
        // A sign on a number stays one literal; not never does.
        const bool unsignedNumber = sign.text != "~" &&
                                    (operand.kind == Kind::REAL_NUMBER || operand.kind == Kind::IMAGINARY) &&
                                    operand.text.front() != '-' && operand.text.front() != '+';
        if (unsignedNumber) {
            const Kind kind = operand.kind == Kind::REAL_NUMBER ? Kind::REAL_NUMBER : Kind::LITERAL;
            return {kind, std::string(sign.text) + operand.text, column_ + sign.position, source};
        }
        std::vector<Expression> operands;
        operands.push_back(std::move(operand));
        return {Kind::UNARY, std::string(sign.text), column_ + sign.position, source, std::move(operands)};
    }

    Expression combine(const Token& op, Expression left, Expression right, std::string_view source) const {
        if ((op.text == "+" || op.text == "-") && left.kind == Kind::REAL_NUMBER && right.kind == Kind::IMAGINARY) {
            return {Kind::LITERAL, left.text + std::string(op.text) + right.text, left.column, source};
        }
        std::vector<Expression> operands;
        operands.push_back(std::move(left));
        operands.push_back(std::move(right));
        return {Kind::BINARY, std::string(op.text), column_ + op.position, source, std::move(operands)};
    }

    Expression primary() {
        const Nesting nesting(*this);
        const Token token = peek();
        const std::size_t column = column_ + token.position;
        switch (token.type) {
        case Type::REAL_NUMBER: take(); return {Kind::REAL_NUMBER, std::string(token.text), column, token.text};
        case Type::IMAGINARY: take(); return {Kind::IMAGINARY, std::string(token.text), column, token.text};
        case Type::LITERAL: take(); return {Kind::LITERAL, std::string(token.text), column, token.text};
        case Type::WORD: take(); return word(token);
        case Type::SYMBOL:
            if (token.text == "(") {
                take();
                Expression inner = expression();
                closeParenthesis();
                return inner;
            }
            break;
        case Type::END: break;
        }
        unexpected();
    }

    Expression word(const Token& token) {
        const std::size_t column = column_ + token.position;
        if (token.text == "end") return {Kind::END, "end", column, token.text};
        if (!isSymbol("(")) return {Kind::NAME, std::string(token.text), column, token.text};
        take();
        std::vector<Expression> arguments;
        if (!isSymbol(")")) {
            arguments.push_back(argument());
            while (isSymbol(",")) {
                take();
                arguments.push_back(argument());
            }
        }
        closeParenthesis();
        return {Kind::CALL, std::string(token.text), column, sourceFrom(token.position), std::move(arguments)};
    }

    Expression argument() {
        if (isSymbol(":") && (isSymbol(",", 1) || isSymbol(")", 1))) {
            const Token& colon = take();
            return {Kind::ALL, ":", column_ + colon.position, colon.text};
        }
        return expression();
    }

    void closeParenthesis() {
        if (!isSymbol(")")) {
            if (peek().type == Type::END) {
                throw StatementError(column_ + peek().position, "missing closing parenthesis ')'");
            }
            unexpected();
        }
        take();
    }

    std::string_view text_;
    std::size_t column_;
    std::vector<Token> tokens_;
    std::size_t next_ = 0;
    int depth_ = 0;
};

} // namespace

Expression parseExpression(std::string_view text, std::size_t column) { return Parser(text, column).parse(); }

} // namespace orvex
