// How one comparison leaf judges a held value: text compares as text (ordering numerically
// when both sides read as numbers), numbers compare as numbers, booleans only for
// equality; '~=' ignores case and white space.
#include "FilterExpression.h"
#include "TextScan.h"

#include "cppmicroservices/AnyMap.h"

#include <compare>

namespace cppmicroservices::detail {

namespace {

// Equal after dropping white space and ASCII case, without building new strings.
bool approximatelyEqual(std::string_view left, std::string_view right)
{
    std::size_t i = 0;
    std::size_t j = 0;
    while (true) {
        while (i < left.size() && isSpace(left[i])) {
            ++i;
        }
        while (j < right.size() && isSpace(right[j])) {
            ++j;
        }
        if (i == left.size() || j == right.size()) {
            return i == left.size() && j == right.size();
        }
        if (asciiLower(left[i++]) != asciiLower(right[j++])) {
            return false;
        }
    }
}

bool substringsMatch(std::string_view text, const std::vector<std::string>& pieces)
{
    const std::string& first = pieces.front();
    const std::string& last = pieces.back();
    if (text.size() < first.size() + last.size() || !text.starts_with(first) || !text.ends_with(last)) {
        return false;
    }
    std::string_view middle = text.substr(first.size(), text.size() - first.size() - last.size());
    for (std::size_t i = 1; i + 1 < pieces.size(); ++i) {
        const std::size_t found = middle.find(pieces[i]);
        if (found == std::string_view::npos) {
            return false;
        }
        middle.remove_prefix(found + pieces[i].size());
    }
    return true;
}

bool satisfies(FilterOperator op, std::partial_ordering order)
{
    switch (op) {
    case FilterOperator::EQUAL:
    case FilterOperator::APPROX:
        return order == 0;
    case FilterOperator::LESS_EQUAL:
        return order <= 0;
    case FilterOperator::GREATER_EQUAL:
        return order >= 0;
    default:
        return false;
    }
}

class LeafMatcher final : public ValueMatcher {
public:
    explicit LeafMatcher(const FilterNode& leaf) : leaf_(leaf), operand_(leaf.operand) {}

    bool matchText(std::string_view text) const override
    {
        switch (leaf_.op) {
        case FilterOperator::EQUAL:
            return text == operand_.text;
        case FilterOperator::APPROX:
            return approximatelyEqual(text, operand_.text);
        case FilterOperator::SUBSTRING:
            return substringsMatch(text, operand_.pieces);
        default:
            if (operand_.asFloating) {
                if (const auto number = wholeNumber<double>(trimmed(text))) {
                    return satisfies(leaf_.op, *number <=> *operand_.asFloating);
                }
            }
            return satisfies(leaf_.op, text.compare(operand_.text) <=> 0);
        }
    }

    bool matchBool(bool value) const override
    {
        return leaf_.op != FilterOperator::SUBSTRING && operand_.asBool && *operand_.asBool == value;
    }

    bool matchSigned(long long value) const override
    {
        if (operand_.asSigned) {
            return satisfies(leaf_.op, value <=> *operand_.asSigned);
        }
        if (operand_.asUnsigned) { // beyond the signed range, so above any signed value
            return satisfies(leaf_.op, std::partial_ordering::less);
        }
        return matchFloating(static_cast<double>(value));
    }

    bool matchUnsigned(unsigned long long value) const override
    {
        if (operand_.asUnsigned) {
            return satisfies(leaf_.op, value <=> *operand_.asUnsigned);
        }
        if (operand_.asSigned) { // negative, so below any unsigned value
            return satisfies(leaf_.op, std::partial_ordering::greater);
        }
        return matchFloating(static_cast<double>(value));
    }

    bool matchFloating(double value) const override
    {
        return operand_.asFloating && satisfies(leaf_.op, value <=> *operand_.asFloating);
    }

private:
    const FilterNode& leaf_;
    const FilterOperand& operand_;
};

const char* operatorText(FilterOperator op)
{
    switch (op) {
    case FilterOperator::APPROX:
        return "~=";
    case FilterOperator::LESS_EQUAL:
        return "<=";
    case FilterOperator::GREATER_EQUAL:
        return ">=";
    default:
        return "=";
    }
}

} // namespace

bool leafMatches(const FilterNode& leaf, const Any& value)
{
    return matchAnyValue(LeafMatcher(leaf), value);
}

std::string escapeFilterValue(std::string_view value)
{
    std::string escaped;
    escaped.reserve(value.size());
    for (const char c : value) {
        if (c == '\\' || c == '(' || c == ')' || c == '*') {
            escaped += '\\';
        }
        escaped += c;
    }
    return escaped;
}

std::string filterText(const FilterNode& node)
{
    switch (node.op) {
    case FilterOperator::AND:
    case FilterOperator::OR:
    case FilterOperator::NOT: {
        std::string text = node.op == FilterOperator::AND ? "(&" : node.op == FilterOperator::OR ? "(|" : "(!";
        for (const FilterNode& child : node.children) {
            text += filterText(child);
        }
        return text + ")";
    }
    case FilterOperator::PRESENT:
        return "(" + node.attribute.name + "=*)";
    case FilterOperator::SUBSTRING: {
        std::string text = "(" + node.attribute.name + "=";
        for (std::size_t i = 0; i < node.operand.pieces.size(); ++i) {
            text.append(i > 0 ? "*" : "").append(escapeFilterValue(node.operand.pieces[i]));
        }
        return text + ")";
    }
    default:
        return "(" + node.attribute.name + operatorText(node.op) + escapeFilterValue(node.operand.text) + ")";
    }
}

} // namespace cppmicroservices::detail
