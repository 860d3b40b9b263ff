// A map from text keys to Any, in one of three kinds chosen at construction: ordered,
// unordered, or unordered with case-insensitive keys.
#pragma once

#include "cppmicroservices/Any.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <variant>

namespace cppmicroservices {

namespace detail {

constexpr char asciiLower(char c) noexcept
{
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

// Hash and equality that ignore ASCII case, for property and header keys.
struct any_map_cihash {
    std::size_t operator()(std::string_view key) const noexcept
    {
        std::uint64_t hash = 14695981039346656037ULL;
        for (const char c : key) {
            hash = (hash ^ static_cast<unsigned char>(asciiLower(c))) * 1099511628211ULL;
        }
        return static_cast<std::size_t>(hash);
    }
};

struct any_map_ciequal {
    bool operator()(std::string_view left, std::string_view right) const noexcept
    {
        if (left.size() != right.size()) {
            return false;
        }
        for (std::size_t i = 0; i < left.size(); ++i) {
            if (asciiLower(left[i]) != asciiLower(right[i])) {
                return false;
            }
        }
        return true;
    }
};

// Throws std::logic_error("empty iterator"): the use of a default-constructed iterator.
[[noreturn]] void throwEmptyAnyMapIterator();

// Calls fn(alternative, index) with the active alternative of a variant and its index as
// a compile-time constant, so that alternatives of the same type stay apart.
template <typename Variant, typename Fn>
decltype(auto) visitWithIndex(Variant&& variant, Fn&& fn)
{
    switch (variant.index()) {
    case 0:
        return fn(std::get<0>(variant), std::integral_constant<std::size_t, 0>());
    case 1:
        return fn(std::get<1>(variant), std::integral_constant<std::size_t, 1>());
    default:
        return fn(std::get<2>(variant), std::integral_constant<std::size_t, 2>());
    }
}

} // namespace detail

class AnyMap {
public:
    enum map_type { ORDERED_MAP, UNORDERED_MAP, UNORDERED_MAP_CASEINSENSITIVE_KEYS };

    using ordered_any_map = std::map<std::string, Any>;
    using unordered_any_map = std::unordered_map<std::string, Any>;
    using unordered_any_cimap = std::unordered_map<std::string, Any, detail::any_map_cihash, detail::any_map_ciequal>;

    using key_type = std::string;
    using mapped_type = Any;
    using value_type = std::pair<const key_type, mapped_type>;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using reference = value_type&;
    using const_reference = const value_type&;

    // One forward iterator over whichever map kind this is.
    template <bool IsConst>
    class BasicIterator {
        template <typename Map>
        using MapIterator = std::conditional_t<IsConst, typename Map::const_iterator, typename Map::iterator>;

    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = AnyMap::value_type;
        using difference_type = std::ptrdiff_t;
        using reference = std::conditional_t<IsConst, const value_type&, value_type&>;
        using pointer = std::conditional_t<IsConst, const value_type*, value_type*>;
        using Position = std::variant<MapIterator<ordered_any_map>, MapIterator<unordered_any_map>,
                                      MapIterator<unordered_any_cimap>>;

        // An iterator into no map: dereferencing, incrementing or comparing it throws
        // std::logic_error, as in CppMicroServices; it may be copied and assigned.
        BasicIterator() = default;
        explicit BasicIterator(Position position) : position_(std::move(position)), valid_(true) {}
        template <bool OtherConst, typename = std::enable_if_t<IsConst && !OtherConst>>
        BasicIterator(const BasicIterator<OtherConst>& other)
            : position_(detail::visitWithIndex(other.position_, [](const auto& it, auto index) {
                  return Position(std::in_place_index<decltype(index)::value>, it);
              })),
              valid_(other.valid_)
        {
        }

        reference operator*() const
        {
            requireValid();
            return std::visit([](const auto& it) -> reference { return *it; }, position_);
        }
        pointer operator->() const { return &**this; }
        BasicIterator& operator++()
        {
            requireValid();
            std::visit([](auto& it) { ++it; }, position_);
            return *this;
        }
        BasicIterator operator++(int)
        {
            BasicIterator before = *this;
            ++*this;
            return before;
        }
        bool operator==(const BasicIterator& other) const
        {
            requireValid();
            other.requireValid();
            return position_ == other.position_;
        }

    private:
        template <bool>
        friend class BasicIterator;

        void requireValid() const
        {
            if (!valid_) {
                detail::throwEmptyAnyMapIterator();
            }
        }

        Position position_;
        bool valid_ = false;
    };

    using iterator = BasicIterator<false>;
    using const_iterator = BasicIterator<true>;

    // An empty map, or one of these entries, with keys in order (ORDERED_MAP).
    AnyMap();
    AnyMap(std::initializer_list<value_type> entries);
    explicit AnyMap(map_type type);
    AnyMap(const ordered_any_map& map);
    AnyMap(ordered_any_map&& map);
    AnyMap(const unordered_any_map& map);
    AnyMap(unordered_any_map&& map);
    AnyMap(const unordered_any_cimap& map);
    AnyMap(unordered_any_cimap&& map);

    map_type GetType() const;

    iterator begin();
    const_iterator begin() const;
    const_iterator cbegin() const;
    iterator end();
    const_iterator end() const;
    const_iterator cend() const;

    bool empty() const;
    size_type size() const;
    size_type count(const key_type& key) const;
    void clear();

    // Throws std::out_of_range naming the key when it is absent.
    mapped_type& at(const key_type& key);
    const mapped_type& at(const key_type& key) const;

    mapped_type& operator[](const key_type& key);
    mapped_type& operator[](key_type&& key);

    std::pair<iterator, bool> insert(const value_type& value);
    template <typename... Args>
    std::pair<iterator, bool> emplace(Args&&... args)
    {
        return detail::visitWithIndex(map_, [&](auto& map, auto index) {
                auto [position, inserted] = map.emplace(std::forward<Args>(args)...);
                return std::pair(iterator(typename iterator::Position(std::in_place_index<decltype(index)::value>, position)),
                                 inserted);
        });
    }

    iterator find(const key_type& key);
    const_iterator find(const key_type& key) const;
    size_type erase(const key_type& key);

    // The value at a dotted path such as "bundle.lxe_objects.0.name": each part is a key of
    // a nested AnyMap or an index into a nested std::vector<Any>. Throws std::out_of_range
    // naming the missing part.
    const Any& AtCompoundKey(const key_type& key) const;
    // As above, but defaultValue when the path leads nowhere.
    Any AtCompoundKey(const key_type& key, Any defaultValue) const;

    bool operator==(const AnyMap& other) const;

private:
    std::variant<ordered_any_map, unordered_any_map, unordered_any_cimap> map_;
};

} // namespace cppmicroservices
