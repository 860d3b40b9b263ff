#include <orvex/LiteralError.hpp>

#include <algorithm>

namespace orvex {
namespace {

constexpr std::string_view PREFIX = "cannot read '";

bool isContinuationByte(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// The literal as quoted in the message: a control character would break the line or
// shift the caret, so each shows as one space.
std::string displayedText(std::string_view text) {
    std::string shown(text);
    std::replace_if(shown.begin(), shown.end(), [](char c) { return c >= 0 && c < 0x20; }, ' ');
    return shown;
}

// Characters, not bytes, come before the caret: one per UTF-8 sequence.
std::size_t displayedColumn(std::string_view text, std::size_t column) {
    const std::string_view before = text.substr(0, column);
    return static_cast<std::size_t>(std::count_if(before.begin(), before.end(),
                                                  [](char c) { return !isContinuationByte(c); }));
}

std::string caretForm(std::string_view text, std::size_t column, std::string_view message) {
    std::string form(PREFIX);
    form += displayedText(text);
    form += "': ";
    form += message;
    form += '\n';
    form.append(PREFIX.size() + displayedColumn(text, column), ' ');
    form += '^';
    return form;
}

} // namespace

LiteralError::LiteralError(std::string_view text, std::size_t column, std::string_view message)
    : std::invalid_argument(caretForm(text, std::min(column, text.size()), message)),
      details_(std::make_shared<const Details>(
          Details{std::string(text), std::min(column, text.size()), std::string(message)})) {}

} // namespace orvex
