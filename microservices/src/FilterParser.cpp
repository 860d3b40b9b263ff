// Reads filter text with the grammar of RFC 1960: a parenthesised tree of '&', '|' and '!'
// over comparisons "attribute op value" with op one of '=', '~=', '<=', '>='; '*' in an
// '=' value is a wildcard, "attr=*" tests presence, a backslash escapes the next character.
#include "FilterExpression.h"
#include "PropertyKeys.h"
#include "TextScan.h"

#include "cppmicroservices/AnyMap.h"

#include <functional>
#include <stdexcept>
#include <string>
#include <unordered_map>

namespace cppmicroservices::detail {

namespace {

std::optional<bool> booleanIn(std::string_view text)
{
    const any_map_ciequal equal;
    if (equal(text, "true")) {
        return true;
    }
    if (equal(text, "false")) {
        return false;
    }
    return std::nullopt;
}

FilterOperand operandOf(std::string text)
{
    FilterOperand operand;
    const std::string_view bare = trimmed(text);
    operand.asSigned = wholeNumber<long long>(bare);
    operand.asUnsigned = bare.starts_with('-') ? std::nullopt : wholeNumber<unsigned long long>(bare);
    operand.asFloating = wholeNumber<double>(bare);
    operand.asBool = booleanIn(bare);
    operand.textHash = std::hash<std::string_view>()(text);
    operand.text = std::move(text);
    return operand;
}

class FilterParser {
public:
    explicit FilterParser(std::string_view text) : text_(text) {}

    FilterNode parse()
    {
        skipSpace();
        FilterNode root = parseFilter();
        skipSpace();
        if (!atEnd()) {
            fail("unexpected text after the filter");
        }
        return root;
    }

private:
    [[noreturn]] void fail(std::string_view problem) const { fail(problem, position_); }

    [[noreturn]] void fail(std::string_view problem, std::size_t position) const
    {
        throw std::invalid_argument("Invalid LDAP filter \"" + std::string(text_) + "\": " + std::string(problem) +
                                    " at position " + std::to_string(position));
    }

    bool atEnd() const { return position_ >= text_.size(); }
    char peek() const { return text_[position_]; }

    void skipSpace()
    {
        while (!atEnd() && isSpace(peek())) {
            ++position_;
        }
    }

    void expectClosing()
    {
        skipSpace();
        if (atEnd()) {
            fail("missing ')'");
        }
        if (peek() != ')') {
            fail("expected ')'");
        }
        ++position_;
    }

    // Nesting is bounded so that a filter too deep fails here, with its position, instead
    // of exhausting the stack while it is parsed, matched or destroyed.
    FilterNode parseFilter()
    {
        if (depth_ == MAX_NESTING) {
            fail("filters nest at most " + std::to_string(MAX_NESTING) + " levels deep");
        }
        ++depth_;
        FilterNode node = parseParenthesised();
        --depth_;
        return node;
    }

    FilterNode parseParenthesised()
    {
        if (atEnd() || peek() != '(') {
            fail("expected '('");
        }
        ++position_;
        skipSpace();
        if (atEnd()) {
            fail("missing ')'");
        }
        FilterNode node;
        switch (peek()) {
        case '&':
            node = parseList(FilterOperator::AND);
            break;
        case '|':
            node = parseList(FilterOperator::OR);
            break;
        case '!':
            ++position_;
            skipSpace();
            node.op = FilterOperator::NOT;
            node.children.push_back(parseFilter());
            break;
        default:
            node = parseComparison();
            return node;
        }
        expectClosing();
        return node;
    }

    FilterNode parseList(FilterOperator op)
    {
        const char symbol = peek();
        ++position_;
        skipSpace();
        FilterNode node;
        node.op = op;
        while (!atEnd() && peek() == '(') {
            node.children.push_back(parseFilter());
            skipSpace();
        }
        if (node.children.empty()) {
            fail(std::string("expected '(' after '") + symbol + "'");
        }
        return node;
    }

    FilterNode parseComparison()
    {
        const std::size_t nameStart = position_;
        while (!atEnd() && std::string_view("=<>~()").find(peek()) == std::string_view::npos) {
            ++position_;
        }
        FilterNode node;
        node.attribute.name = std::string(trimmed(text_.substr(nameStart, position_ - nameStart)));
        node.attribute.keyId = internPropertyKey(node.attribute.name);
        if (node.attribute.name.empty()) {
            fail("missing attribute name", nameStart);
        }
        node.op = readOperator();
        readOperand(node);
        ++position_; // the closing ')' that ended the operand
        return node;
    }

    FilterOperator readOperator()
    {
        const char first = atEnd() ? ')' : peek();
        if (first == '=') {
            ++position_;
            return FilterOperator::EQUAL;
        }
        if (first == '~' || first == '<' || first == '>') {
            ++position_;
            if (atEnd() || peek() != '=') {
                fail(std::string("expected '=' after '") + first + "'");
            }
            ++position_;
            return first == '~' ? FilterOperator::APPROX
                                : first == '<' ? FilterOperator::LESS_EQUAL : FilterOperator::GREATER_EQUAL;
        }
        fail("expected one of '=', '~=', '<=', '>='");
    }

    // Reads up to the unescaped ')' that ends the comparison, leaving the position on it.
    void readOperand(FilterNode& node)
    {
        const bool wildcards = node.op == FilterOperator::EQUAL;
        std::vector<std::string> pieces;
        std::string current;
        while (true) {
            if (atEnd()) {
                fail("missing ')'");
            }
            const char c = peek();
            if (c == ')') {
                break;
            }
            if (c == '(') {
                fail("unescaped '(' in a value");
            }
            ++position_;
            if (c == '\\') {
                if (atEnd()) {
                    fail("missing character after '\\'");
                }
                current += peek();
                ++position_;
            } else if (c == '*' && wildcards) {
                pieces.push_back(std::move(current));
                current.clear();
            } else {
                current += c;
            }
        }
        if (pieces.empty()) {
            node.operand = operandOf(std::move(current));
            return;
        }
        pieces.push_back(std::move(current));
        const bool presence = pieces.size() == 2 && pieces[0].empty() && pieces[1].empty();
        node.op = presence ? FilterOperator::PRESENT : FilterOperator::SUBSTRING;
        if (!presence) {
            node.operand.pieces = std::move(pieces);
        }
    }

    static constexpr std::size_t MAX_NESTING = 256;

    std::string_view text_;
    std::size_t position_ = 0;
    std::size_t depth_ = 0;
};

} // namespace

FilterNode parseFilter(std::string_view text)
{
    return FilterParser(text).parse();
}

std::shared_ptr<const FilterNode> cachedFilter(const std::string& text)
{
    constexpr std::size_t CACHE_CAPACITY = 64;
    thread_local std::unordered_map<std::string, std::shared_ptr<const FilterNode>> cache;
    if (const auto position = cache.find(text); position != cache.end()) {
        return position->second;
    }
    auto parsed = std::make_shared<const FilterNode>(parseFilter(text));
    if (cache.size() >= CACHE_CAPACITY) {
        cache.clear();
    }
    cache.emplace(text, parsed);
    return parsed;
}

} // namespace cppmicroservices::detail
