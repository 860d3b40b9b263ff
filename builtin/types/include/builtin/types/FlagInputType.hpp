// A literal flag (an option name, say) that the caller must pass verbatim. Dispatch
// matches it against the text of a string argument; it is never passed on to the
// developer function.
#pragma once

#include <builtin/types/ArgTypeDirection.hpp>
#include <builtin/types/ArgTypeFwd.hpp>
#include <builtin/types/LxeSupportLevel.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>

namespace Velloc::builtin::types {

class FlagInputType {
public:
    // Owns a copy of the text.
    explicit FlagInputType(std::u16string text) : text_(std::move(text)) {}
    // Refers to text that outlives the flag.
    explicit FlagInputType(std::u16string_view text) noexcept : text_(text) {}
    // A string literal outlives everything: refer to it.
    template <std::size_t N>
    explicit FlagInputType(const char16_t (&literal)[N]) noexcept
        : text_(std::u16string_view(literal, N - 1)) {}
    // UTF-8 text, converted and owned; a rejected conversion throws and stores nothing.
    explicit FlagInputType(const std::string& utf8);

    std::u16string_view getValue() const noexcept {
        if (const auto* owned = std::get_if<std::u16string>(&text_)) {
            return *owned;
        }
        return std::get<std::u16string_view>(text_);
    }
    bool ownsText() const noexcept { return std::holds_alternative<std::u16string>(text_); }

    // The standard library's byte hash of the UTF-16 code units.
    std::size_t hash() const noexcept;

    LxeSupportLevel getLxeSupportLevel(ArgTypeDirection) const noexcept {
        return LxeSupportLevel::EQUIVALENT_SUPPORT;
    }
    ArgTypeList getGreaterPrecedenceTypes() const;

    // orvex_string<literal_flag<"skipgaps">>
    std::string toString() const;

    // Code units compared as unsigned 16-bit numbers; a prefix is less.
    friend bool operator<(const FlagInputType& a, const FlagInputType& b) noexcept {
        return a.getValue() < b.getValue();
    }
    friend bool operator==(const FlagInputType& a, const FlagInputType& b) noexcept {
        return a.getValue() == b.getValue();
    }

private:
    std::variant<std::u16string, std::u16string_view> text_;
};

} // namespace Velloc::builtin::types
