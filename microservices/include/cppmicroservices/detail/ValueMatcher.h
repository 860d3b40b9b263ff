// The hook through which a filter compares itself with the value an Any holds without
// knowing its C++ type: the Any hands the value over as text, bool, integer or
// floating point, element by element for sequences.
#pragma once

#include "cppmicroservices/detail/ValueKinds.h"

#include <string_view>
#include <type_traits>

namespace cppmicroservices {
class Any;
}

namespace cppmicroservices::detail {

class ValueMatcher {
public:
    virtual bool matchText(std::string_view text) const = 0;
    virtual bool matchBool(bool value) const = 0;
    virtual bool matchSigned(long long value) const = 0;
    virtual bool matchUnsigned(unsigned long long value) const = 0;
    virtual bool matchFloating(double value) const = 0;

protected:
    ~ValueMatcher() = default;
};

bool matchAnyValue(const ValueMatcher& matcher, const Any& value);

// Values of other types (maps, user types) never match.
template <typename T>
bool matchHeldValue(const ValueMatcher& matcher, const T& value)
{
    if constexpr (std::is_same_v<T, Any>) {
        return matchAnyValue(matcher, value);
    } else if constexpr (std::is_same_v<T, char*> || std::is_same_v<T, const char*>) {
        return value != nullptr && matcher.matchText(value);
    } else if constexpr (TextLike<T>) {
        return matcher.matchText(std::string_view(value));
    } else if constexpr (std::is_same_v<T, bool>) {
        return matcher.matchBool(value);
    } else if constexpr (std::is_same_v<T, char>) {
        return matcher.matchText(std::string_view(&value, 1));
    } else if constexpr (std::is_integral_v<T> && std::is_signed_v<T>) {
        return matcher.matchSigned(value);
    } else if constexpr (std::is_integral_v<T>) {
        return matcher.matchUnsigned(value);
    } else if constexpr (std::is_floating_point_v<T>) {
        return matcher.matchFloating(static_cast<double>(value));
    } else if constexpr (SequenceLike<T>) {
        for (const auto& element : value) {
            if (matchHeldValue(matcher, element)) {
                return true;
            }
        }
        return false;
    } else {
        return false;
    }
}

} // namespace cppmicroservices::detail
