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

std::string Any::ToJSON() const
{
    return holder_ ? holder_->toJSON() : "null";
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

std::string jsonOfAny(const Any& value)
{
    return value.ToJSON();
}

namespace {

const char* shortEscape(char c)
{
    switch (c) {
    case '\b':
        return "\\b";
    case '\f':
        return "\\f";
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        return nullptr;
    }
}

} // namespace

std::string jsonString(std::string_view text)
{
    static constexpr char HEX[] = "0123456789abcdef";
    std::string json = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            json.append(1, '\\').append(1, c);
        } else if (const char* escape = shortEscape(c)) {
            json.append(escape);
        } else if (static_cast<unsigned char>(c) < 0x20) {
            json.append("\\u00").append(1, HEX[(c >> 4) & 0xF]).append(1, HEX[c & 0xF]);
        } else {
            json += c;
        }
    }
    return json + "\"";
}

} // namespace detail

} // namespace cppmicroservices
