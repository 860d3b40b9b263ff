#include <foundation/core/except/Exception.hpp>

#include <fl/i18n.hpp>

#include <charconv>

namespace foundation::core::except {
namespace {

std::string argumentText(const MessageArgument& argument) {
    struct Visitor {
        std::string operator()(long value) const { return std::to_string(value); }
        std::string operator()(const std::string& text) const { return text; }
        std::string operator()(const std::u16string& text) const { return fl::i18n::ustring_to_utf8(text); }
    };
    return std::visit(Visitor{}, argument);
}

} // namespace

std::string formatMessage(std::string_view messageTemplate, const std::vector<MessageArgument>& arguments) {
    std::string result;
    result.reserve(messageTemplate.size());
    std::size_t at = 0;
    while (at < messageTemplate.size()) {
        const std::size_t open = messageTemplate.find('{', at);
        const std::size_t close = open == std::string_view::npos ? open : messageTemplate.find('}', open);
        if (close == std::string_view::npos) break;
        std::size_t index = 0;
        const char* first = messageTemplate.data() + open + 1;
        const char* last = messageTemplate.data() + close;
        const auto [end, error] = std::from_chars(first, last, index);
        result.append(messageTemplate.substr(at, open - at));
        if (error == std::errc() && end == last && first != last && index < arguments.size()) {
            result += argumentText(arguments[index]);
        } else {
            result.append(messageTemplate.substr(open, close + 1 - open));
        }
        at = close + 1;
    }
    if (at < messageTemplate.size()) result.append(messageTemplate.substr(at));
    return result;
}

} // namespace foundation::core::except
