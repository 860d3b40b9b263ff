// A copyable holder of one value of any type, and the casts that get the value back.
#pragma once

#include "cppmicroservices/detail/AnyText.h"
#include "cppmicroservices/detail/ValueMatcher.h"

#include <concepts>
#include <memory>
#include <ostream>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

namespace cppmicroservices {

// Thrown by any_cast when the Any is empty or holds another type; the message names both
// types.
class BadAnyCastException : public std::bad_cast {
public:
    BadAnyCastException(const std::type_info& heldType, const std::type_info& requestedType);
    const char* what() const noexcept override;

private:
    std::string message_;
};

class Any {
public:
    Any() noexcept = default;

    template <typename ValueType, typename = std::enable_if_t<!std::is_same_v<std::decay_t<ValueType>, Any>>>
    Any(ValueType&& value)
        : holder_(std::make_unique<Holder<std::decay_t<ValueType>>>(std::forward<ValueType>(value)))
    {
    }

    Any(const Any& other) : holder_(other.holder_ ? other.holder_->clone() : nullptr) {}
    Any(Any&& other) noexcept = default;
    ~Any() = default;

    Any& operator=(const Any& other)
    {
        Any(other).Swap(*this);
        return *this;
    }
    Any& operator=(Any&& other) noexcept = default;

    template <typename ValueType, typename = std::enable_if_t<!std::is_same_v<std::decay_t<ValueType>, Any>>>
    Any& operator=(ValueType&& value)
    {
        Any(std::forward<ValueType>(value)).Swap(*this);
        return *this;
    }

    Any& Swap(Any& other) noexcept
    {
        holder_.swap(other.holder_);
        return *this;
    }

    bool Empty() const noexcept { return !holder_; }

    // The type of the held value; typeid(void) when empty.
    const std::type_info& Type() const noexcept { return holder_ ? holder_->type() : typeid(void); }

    // The text form of the held value, empty for an empty Any; throws std::logic_error for
    // a value that has no text form.
    std::string ToString() const;
    std::string ToStringNoExcept() const noexcept;
    // The JSON form of the held value; "null" for an empty Any.
    std::string ToJSON() const;

    // Equal when both are empty, or both hold equal values of the same type. Values of types
    // without operator== are equal only to themselves.
    bool operator==(const Any& other) const;

private:
    struct Placeholder {
        virtual ~Placeholder() = default;
        virtual const std::type_info& type() const noexcept = 0;
        virtual std::unique_ptr<Placeholder> clone() const = 0;
        virtual std::string toString() const = 0;
        virtual std::string toJSON() const = 0;
        virtual bool equals(const Placeholder& other) const = 0;
        virtual bool matches(const detail::ValueMatcher& matcher) const = 0;
    };

    template <typename T>
    struct Holder final : Placeholder {
        template <typename Arg>
        explicit Holder(Arg&& arg) : value(std::forward<Arg>(arg))
        {
        }
        const std::type_info& type() const noexcept override { return typeid(T); }
        std::unique_ptr<Placeholder> clone() const override { return std::make_unique<Holder>(value); }
        std::string toString() const override { return detail::textOf(value); }
        std::string toJSON() const override { return detail::jsonOf(value); }
        bool equals(const Placeholder& other) const override
        {
            if constexpr (std::equality_comparable<T>) {
                return other.type() == typeid(T) && static_cast<const Holder&>(other).value == value;
            } else {
                return &other == this;
            }
        }
        bool matches(const detail::ValueMatcher& matcher) const override
        {
            return detail::matchHeldValue(matcher, value);
        }
        T value;
    };

    std::unique_ptr<Placeholder> holder_;

    template <typename ValueType>
    friend ValueType* any_cast(Any* operand) noexcept;
    template <typename ValueType>
    friend ValueType* unsafe_any_cast(Any* operand) noexcept;
    friend bool detail::matchAnyValue(const detail::ValueMatcher& matcher, const Any& value);
};

// The held value's address, without checking the held type: the caller knows it is
// ValueType. Null only for a null or empty Any.
template <typename ValueType>
ValueType* unsafe_any_cast(Any* operand) noexcept
{
    using Stored = std::remove_cv_t<ValueType>;
    return operand != nullptr && operand->holder_ ? &static_cast<Any::Holder<Stored>*>(operand->holder_.get())->value
                                                  : nullptr;
}

template <typename ValueType>
const ValueType* unsafe_any_cast(const Any* operand) noexcept
{
    return unsafe_any_cast<ValueType>(const_cast<Any*>(operand));
}

// Writes the text form, or the JSON form, of a value as an Any holding it would.
template <typename T>
std::ostream& any_value_to_string(std::ostream& out, const T& value)
{
    return out << detail::textOf(value);
}

template <typename T>
std::ostream& any_value_to_json(std::ostream& out, const T& value)
{
    return out << detail::jsonOf(value);
}

// The held value's address, or null when the Any is null, empty or holds another type.
template <typename ValueType>
ValueType* any_cast(Any* operand) noexcept
{
    using Stored = std::remove_cv_t<ValueType>;
    if (operand == nullptr || operand->Type() != typeid(Stored)) {
        return nullptr;
    }
    return &static_cast<Any::Holder<Stored>*>(operand->holder_.get())->value;
}

template <typename ValueType>
const ValueType* any_cast(const Any* operand) noexcept
{
    return any_cast<ValueType>(const_cast<Any*>(operand));
}

// The held value (a copy, or a reference when ValueType is one); throws
// BadAnyCastException when the Any holds another type.
template <typename ValueType>
ValueType any_cast(const Any& operand)
{
    using Stored = std::remove_cvref_t<ValueType>;
    const Stored* result = any_cast<Stored>(&operand);
    if (result == nullptr) {
        throw BadAnyCastException(operand.Type(), typeid(Stored));
    }
    return static_cast<ValueType>(*result);
}

template <typename ValueType>
ValueType any_cast(Any& operand)
{
    using Stored = std::remove_cvref_t<ValueType>;
    Stored* result = any_cast<Stored>(&operand);
    if (result == nullptr) {
        throw BadAnyCastException(operand.Type(), typeid(Stored));
    }
    return static_cast<ValueType>(*result);
}

template <typename ValueType>
ValueType& ref_any_cast(Any& operand)
{
    return any_cast<ValueType&>(operand);
}

template <typename ValueType>
const ValueType& ref_any_cast(const Any& operand)
{
    return any_cast<const ValueType&>(operand);
}

} // namespace cppmicroservices
