// An error that belongs to a place in a session statement; the session draws a caret
// under that column.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace orvex {

class StatementError : public std::invalid_argument {
public:
    StatementError(std::size_t column, const std::string& message) : std::invalid_argument(message), column_(column) {}
    // 0-based byte offset into the statement.
    std::size_t column() const noexcept { return column_; }

private:
    std::size_t column_;
};

} // namespace orvex
