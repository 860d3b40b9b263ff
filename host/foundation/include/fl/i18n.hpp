// Checked conversion between UTF-8 and UTF-16. Invalid input never gets silently
// replaced: it raises conversion_error naming the offending position.
#pragma once

#include <fl/ustring.hpp>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace fl::i18n {

class conversion_error : public std::invalid_argument {
public:
    conversion_error(const std::string& what, std::size_t position)
        : std::invalid_argument(what), position_(position) {}
    // Byte offset (UTF-8 input) or code-unit index (UTF-16 input) of the fault.
    std::size_t position() const noexcept { return position_; }

private:
    std::size_t position_;
};

ustring utf8_to_ustring(std::string_view utf8);
std::string ustring_to_utf8(ustring_view utf16);
// Same as ustring_to_utf8; the name used where a narrow message is built.
std::string to_string(ustring_view utf16);

} // namespace fl::i18n
