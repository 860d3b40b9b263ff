// Text parameters and results: std::u16string, std::string and std::u16string_view read
// from char row vectors or scalar host strings, and written back as a scalar host string
// (a char row vector when the host string service is missing).
#pragma once

#include <builtin/types/TypeTraitsImpl.hpp>

#include <matrix/oxArray.hpp>

#include <boost/container/small_vector.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace Velloc::String {
class String;
}

namespace Velloc::builtin::types {

// Arrays a caller keeps alive for the duration of one call, because converted values may
// point into them. Destroyed when the caller clears the list.
using Temporaries =
    boost::container::small_vector<std::unique_ptr<const oxArray, matrix::detail::oxDestroy_deleter>, 4>;

namespace detail {

// Declared as a parameter type (const ScalarOrvexStringPlaceholder*) to announce a scalar
// string in a signature; no value of it ever exists.
struct ScalarOrvexStringPlaceholder {
    ScalarOrvexStringPlaceholder() = delete;
};

// The argument types a text parameter accepts, by kind: 0 a scalar host string (only
// when the string service is there), 1 a char row vector, 2 an empty char array.
struct TextArgTypes {
    static constexpr unsigned long numArgTypes = 3;
    static ArgType getArgType(std::size_t kind);
};

} // namespace detail

template <>
struct TypeTraitsImpl<const detail::ScalarOrvexStringPlaceholder*> {
    static const ArgType& getArgType();
    // Ends the process: the placeholder only stands in signatures.
    [[noreturn]] const detail::ScalarOrvexStringPlaceholder* operator()(Velloc::String::String* value) const;
};

// The readers take over array: it is appended to temporaries, whatever happens next.
// Anything but a char row vector, an empty char array or a scalar host string throws
// std::invalid_argument.
template <>
struct TypeTraitsImpl<std::u16string_view> : detail::TextArgTypes {
    std::u16string_view operator()(const oxArray* array, Temporaries& temporaries) const;
};

template <>
struct TypeTraitsImpl<std::u16string> : detail::TextArgTypes {
    std::u16string operator()(const oxArray* array, Temporaries& temporaries) const;
    oxArray* operator()(const std::u16string& text) const;
    oxArray* operator()(std::u16string&& text) const;
};

// UTF-8 on the C++ side; text that does not convert throws fl::i18n::conversion_error.
template <>
struct TypeTraitsImpl<std::string> : detail::TextArgTypes {
    std::string operator()(const oxArray* array, Temporaries& temporaries) const;
    oxArray* operator()(const std::string& text) const;
    oxArray* operator()(std::string&& text) const;
};

} // namespace Velloc::builtin::types
