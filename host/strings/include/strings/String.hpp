// The host's string object: one piece of UTF-16 text, the element of a string array.
#pragma once

#include <string>
#include <string_view>

namespace Velloc::String {

class String {
public:
    String() = default;
    explicit String(std::u16string text) noexcept;

    const std::u16string& text() const noexcept { return text_; }
    std::u16string_view view() const noexcept { return text_; }

    friend bool operator==(const String&, const String&) = default;

private:
    std::u16string text_;
};

} // namespace Velloc::String
