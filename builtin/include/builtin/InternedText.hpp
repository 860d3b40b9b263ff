// A text held once per process: the names of variants and the text forms of their types,
// repeated in every variant made from one declaration and in every list that holds it.
// A handle is one pointer; copying it touches no count, and equal texts share one entry.
// Reads like a const std::string: it converts to one (and to a view), compares and orders
// with strings, and has the string's read-only basics.
#pragma once

#include <compare>
#include <iosfwd>
#include <string>
#include <string_view>

namespace Velloc::builtin {

class InternedText {
public:
    InternedText() noexcept : text_(&emptyText()) {}
    // Looks the text up in the process-wide table, adding it when it is new.
    InternedText(std::string_view text);
    InternedText(const std::string& text) : InternedText(std::string_view(text)) {}
    InternedText(const char* text) : InternedText(std::string_view(text)) {}

    const std::string& str() const noexcept { return *text_; }
    operator const std::string&() const noexcept { return *text_; }
    operator std::string_view() const noexcept { return *text_; }

    bool empty() const noexcept { return text_->empty(); }
    std::size_t size() const noexcept { return text_->size(); }
    std::size_t length() const noexcept { return text_->length(); }
    const char* c_str() const noexcept { return text_->c_str(); }
    const char* data() const noexcept { return text_->data(); }
    std::string::const_iterator begin() const noexcept { return text_->begin(); }
    std::string::const_iterator end() const noexcept { return text_->end(); }

    // Also compare two handles, through the view of the right one.
    friend bool operator==(InternedText a, std::string_view b) noexcept { return *a.text_ == b; }
    friend std::strong_ordering operator<=>(InternedText a, std::string_view b) noexcept {
        return std::string_view(*a.text_) <=> b;
    }

    friend std::string operator+(InternedText left, std::string_view right) {
        return std::string(*left.text_).append(right);
    }
    friend std::string operator+(std::string left, InternedText right) { return left.append(*right.text_); }
    friend std::string operator+(const char* left, InternedText right) {
        return std::string(left).append(*right.text_);
    }

private:
    static const std::string& emptyText() noexcept;

    // An entry of the table, which is never freed.
    const std::string* text_;
};

std::ostream& operator<<(std::ostream& out, InternedText text);

} // namespace Velloc::builtin
