#include "PropertyTable.h"

#include "PropertyKeys.h"

#include <functional>

namespace cppmicroservices::detail {

namespace {

std::optional<std::string_view> textIn(const Any& value)
{
    if (const auto* text = any_cast<std::string>(&value)) {
        return *text;
    }
    if (const auto* text = any_cast<const char*>(&value); text != nullptr && *text != nullptr) {
        return *text;
    }
    return std::nullopt;
}

} // namespace

void PropertyTable::set(const std::string& key, Any value)
{
    const std::uint32_t keyId = internPropertyKey(key);
    std::size_t index = indexOf(keyId);
    if (index == ABSENT) {
        index = keyIds_.size();
        keyIds_.push_back(keyId);
        keys_.push_back(key);
        values_.emplace_back();
        textHashes_.push_back(0);
        holdsText_.push_back(false);
    }
    const auto text = textIn(value);
    holdsText_[index] = text.has_value();
    textHashes_[index] = text ? std::hash<std::string_view>()(*text) : 0;
    values_[index] = std::move(value);
}

const Any* PropertyTable::find(std::string_view key) const
{
    const auto keyId = knownPropertyKey(key);
    const std::size_t index = keyId ? indexOf(*keyId) : ABSENT;
    return index != ABSENT ? &values_[index] : nullptr;
}

std::vector<std::string> PropertyTable::keys() const
{
    return keys_;
}

bool PropertyTable::contains(const FilterAttribute& attribute) const
{
    return indexOf(attribute.keyId) != ABSENT;
}

bool PropertyTable::satisfies(const FilterNode& leaf) const
{
    const std::size_t index = indexOf(leaf.attribute.keyId);
    if (index == ABSENT) {
        return false;
    }
    if (leaf.op == FilterOperator::EQUAL && holdsText_[index] && textHashes_[index] != leaf.operand.textHash) {
        return false;
    }
    return leafMatches(leaf, values_[index]);
}

std::size_t PropertyTable::indexOf(std::uint32_t keyId) const
{
    for (std::size_t i = 0; i < keyIds_.size(); ++i) {
        if (keyIds_[i] == keyId) {
            return i;
        }
    }
    return ABSENT;
}

} // namespace cppmicroservices::detail
