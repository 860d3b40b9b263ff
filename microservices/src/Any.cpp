#include "cppmicroservices/Any.h"

namespace cppmicroservices {

BadAnyCastException::BadAnyCastException(const std::type_info& heldType, const std::type_info& requestedType)
    : message_("Bad any cast: the Any holds a value of type '" + detail::demangledName(heldType) +
               "', but type '" + detail::demangledName(requestedType) + "' was requested")
{
}

const char* BadAnyCastException::what() const noexcept
{
    return message_.c_str();
}

std::string Any::ToString() const
{
    return holder_ ? holder_->toString() : std::string();
}

std::string Any::ToStringNoExcept() const noexcept
{
    try {
        return ToString();
    } catch (...) {
        return {};
    }
}

bool Any::operator==(const Any& other) const
{
    if (!holder_ || !other.holder_) {
        return !holder_ && !other.holder_;
    }
    return holder_->equals(*other.holder_);
}

namespace detail {

bool matchAnyValue(const ValueMatcher& matcher, const Any& value)
{
    return value.holder_ && value.holder_->matches(matcher);
}

std::string textOfAny(const Any& value)
{
    return value.ToString();
}

} // namespace detail

} // namespace cppmicroservices
