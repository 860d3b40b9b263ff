#include "cppmicroservices/AnyMap.h"

#include <charconv>
#include <stdexcept>
#include <vector>

namespace cppmicroservices {

namespace {

using Map = std::variant<AnyMap::ordered_any_map, AnyMap::unordered_any_map, AnyMap::unordered_any_cimap>;

Map emptyMap(AnyMap::map_type type)
{
    switch (type) {
    case AnyMap::ORDERED_MAP:
        return Map(std::in_place_index<0>);
    case AnyMap::UNORDERED_MAP:
        return Map(std::in_place_index<1>);
    case AnyMap::UNORDERED_MAP_CASEINSENSITIVE_KEYS:
        return Map(std::in_place_index<2>);
    }
    throw std::invalid_argument("unknown AnyMap kind " + std::to_string(static_cast<int>(type)));
}

template <typename Iterator, typename Variant, typename Fn>
Iterator positionIn(Variant& map, Fn&& pick)
{
    return detail::visitWithIndex(map, [&](auto& alternative, auto index) {
        return Iterator(typename Iterator::Position(std::in_place_index<decltype(index)::value>, pick(alternative)));
    });
}

[[noreturn]] void throwMissingKey(const std::string& key)
{
    throw std::out_of_range("AnyMap has no key '" + key + "'");
}

} // namespace

void detail::throwEmptyAnyMapIterator()
{
    throw std::logic_error("empty iterator");
}

AnyMap::AnyMap() : map_(std::in_place_index<0>) {}
AnyMap::AnyMap(std::initializer_list<value_type> entries) : map_(std::in_place_index<0>, entries) {}
AnyMap::AnyMap(map_type type) : map_(emptyMap(type)) {}
AnyMap::AnyMap(const ordered_any_map& map) : map_(std::in_place_index<0>, map) {}
AnyMap::AnyMap(ordered_any_map&& map) : map_(std::in_place_index<0>, std::move(map)) {}
AnyMap::AnyMap(const unordered_any_map& map) : map_(std::in_place_index<1>, map) {}
AnyMap::AnyMap(unordered_any_map&& map) : map_(std::in_place_index<1>, std::move(map)) {}
AnyMap::AnyMap(const unordered_any_cimap& map) : map_(std::in_place_index<2>, map) {}
AnyMap::AnyMap(unordered_any_cimap&& map) : map_(std::in_place_index<2>, std::move(map)) {}

AnyMap::map_type AnyMap::GetType() const
{
    return static_cast<map_type>(map_.index());
}

AnyMap::iterator AnyMap::begin()
{
    return positionIn<iterator>(map_, [](auto& map) { return map.begin(); });
}

AnyMap::const_iterator AnyMap::begin() const
{
    return cbegin();
}

AnyMap::const_iterator AnyMap::cbegin() const
{
    return positionIn<const_iterator>(map_, [](const auto& map) { return map.cbegin(); });
}

AnyMap::iterator AnyMap::end()
{
    return positionIn<iterator>(map_, [](auto& map) { return map.end(); });
}

AnyMap::const_iterator AnyMap::end() const
{
    return cend();
}

AnyMap::const_iterator AnyMap::cend() const
{
    return positionIn<const_iterator>(map_, [](const auto& map) { return map.cend(); });
}

bool AnyMap::empty() const
{
    return size() == 0;
}

AnyMap::size_type AnyMap::size() const
{
    return std::visit([](const auto& map) { return map.size(); }, map_);
}

AnyMap::size_type AnyMap::count(const key_type& key) const
{
    return std::visit([&](const auto& map) { return map.count(key); }, map_);
}

void AnyMap::clear()
{
    std::visit([](auto& map) { map.clear(); }, map_);
}

AnyMap::mapped_type& AnyMap::at(const key_type& key)
{
    return const_cast<mapped_type&>(std::as_const(*this).at(key));
}

const AnyMap::mapped_type& AnyMap::at(const key_type& key) const
{
    return std::visit(
        [&](const auto& map) -> const mapped_type& {
            const auto position = map.find(key);
            if (position == map.end()) {
                throwMissingKey(key);
            }
            return position->second;
        },
        map_);
}

AnyMap::mapped_type& AnyMap::operator[](const key_type& key)
{
    return std::visit([&](auto& map) -> mapped_type& { return map[key]; }, map_);
}

AnyMap::mapped_type& AnyMap::operator[](key_type&& key)
{
    return std::visit([&](auto& map) -> mapped_type& { return map[std::move(key)]; }, map_);
}

std::pair<AnyMap::iterator, bool> AnyMap::insert(const value_type& value)
{
    return emplace(value);
}

AnyMap::iterator AnyMap::find(const key_type& key)
{
    return positionIn<iterator>(map_, [&](auto& map) { return map.find(key); });
}

AnyMap::const_iterator AnyMap::find(const key_type& key) const
{
    return positionIn<const_iterator>(map_, [&](const auto& map) { return map.find(key); });
}

AnyMap::size_type AnyMap::erase(const key_type& key)
{
    return std::visit([&](auto& map) { return map.erase(key); }, map_);
}

Any AnyMap::AtCompoundKey(const key_type& key, Any defaultValue) const
{
    try {
        return AtCompoundKey(key);
    } catch (const std::out_of_range&) {
        return defaultValue;
    }
}

const Any& AnyMap::AtCompoundKey(const key_type& key) const
{
    const Any* current = nullptr;
    const AnyMap* map = this;
    std::size_t start = 0;
    while (true) {
        const std::size_t dot = key.find('.', start);
        const std::string part = key.substr(start, dot == std::string::npos ? std::string::npos : dot - start);
        const std::string walked = key.substr(0, dot);
        if (map != nullptr) {
            const auto position = map->find(part);
            if (position == map->end()) {
                throw std::out_of_range("AnyMap has no key '" + walked + "'");
            }
            current = &position->second;
        } else if (const auto* list = any_cast<std::vector<Any>>(current)) {
            std::size_t index = 0;
            const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), index);
            if (error != std::errc() || end != part.data() + part.size() || index >= list->size()) {
                throw std::out_of_range("AnyMap has no element '" + walked + "'");
            }
            current = &(*list)[index];
        } else {
            throw std::out_of_range("AnyMap key '" + key.substr(0, start - 1) +
                                    "' holds neither a map nor a list, so it has no '" + part + "'");
        }
        if (dot == std::string::npos) {
            return *current;
        }
        map = any_cast<AnyMap>(current);
        start = dot + 1;
    }
}

bool AnyMap::operator==(const AnyMap& other) const
{
    if (size() != other.size()) {
        return false;
    }
    for (const auto& [key, value] : *this) {
        const auto position = other.find(key);
        if (position == other.end() || !(position->second == value)) {
            return false;
        }
    }
    return true;
}

} // namespace cppmicroservices
