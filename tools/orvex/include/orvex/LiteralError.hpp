// The error a malformed command-line literal raises: where it went wrong and why.
#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace orvex {

// what() names the literal and points a caret at the offending character:
//   cannot read '[1 2; 3]': rows 1 and 2 have different lengths
//                      ^
// The caret is aligned for what() printed from the start of a line.
class LiteralError : public std::invalid_argument {
public:
    LiteralError(std::string_view text, std::size_t column, std::string_view message);

    const std::string& text() const noexcept { return details_->text; }
    // 0-based byte offset into text; text.size() when the literal ended too early.
    std::size_t column() const noexcept { return details_->column; }
    const std::string& message() const noexcept { return details_->message; }

private:
    struct Details {
        std::string text;
        std::size_t column;
        std::string message;
    };
    // Shared so that copying the exception never throws.
    std::shared_ptr<const Details> details_;
};

} // namespace orvex
