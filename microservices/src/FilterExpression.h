// The parsed form of an LDAP filter: a tree whose leaves compare one attribute with one
// operand, pre-parsed so that matching does no parsing and no allocation.
#pragma once

#include "cppmicroservices/Any.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cppmicroservices::detail {

enum class FilterOperator { AND, OR, NOT, EQUAL, APPROX, LESS_EQUAL, GREATER_EQUAL, PRESENT, SUBSTRING };

struct FilterAttribute {
    std::string name;
    std::uint32_t keyId = 0; // see internPropertyKey
};

// The text a leaf compares with, and its readings as the other value kinds.
struct FilterOperand {
    std::string text;
    std::size_t textHash = 0; // std::hash of text
    std::optional<long long> asSigned;
    std::optional<unsigned long long> asUnsigned;
    std::optional<double> asFloating;
    std::optional<bool> asBool;
    // For SUBSTRING: the texts between the wildcards; the first must start the value,
    // the last must end it, the others follow in order in between.
    std::vector<std::string> pieces;
};

struct FilterNode {
    FilterOperator op = FilterOperator::AND;
    std::vector<FilterNode> children;
    FilterAttribute attribute;
    FilterOperand operand;
};

// Throws std::invalid_argument naming the problem and its position in the text.
FilterNode parseFilter(std::string_view text);

// The filter's normalised text, with the special characters of operands escaped.
std::string filterText(const FilterNode& node);

// A backslash before each character that has a meaning in filter text.
std::string escapeFilterValue(std::string_view value);

// The parsed filter for text, from a small per-thread cache of recently used filters so
// that lookups repeating the same filter text parse it once.
std::shared_ptr<const FilterNode> cachedFilter(const std::string& text);

// Whether one held value satisfies a comparison leaf.
bool leafMatches(const FilterNode& leaf, const Any& value);

// Evaluates the tree over a source of properties: source.contains(attribute) tells whether
// the attribute is present, source.satisfies(leaf) whether its value passes a comparison.
template <typename Source>
bool evaluateFilter(const FilterNode& node, const Source& source)
{
    switch (node.op) {
    case FilterOperator::AND:
        for (const FilterNode& child : node.children) {
            if (!evaluateFilter(child, source)) {
                return false;
            }
        }
        return true;
    case FilterOperator::OR:
        for (const FilterNode& child : node.children) {
            if (evaluateFilter(child, source)) {
                return true;
            }
        }
        return false;
    case FilterOperator::NOT:
        return !evaluateFilter(node.children.front(), source);
    case FilterOperator::PRESENT:
        return source.contains(node.attribute);
    default:
        return source.satisfies(node);
    }
}

} // namespace cppmicroservices::detail
