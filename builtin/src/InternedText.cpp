#include <builtin/InternedText.hpp>

#include <functional>
#include <mutex>
#include <ostream>
#include <unordered_set>

namespace Velloc::builtin {

namespace {

// Looks texts up by view, so that a text already held costs no copy.
struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const noexcept { return std::hash<std::string_view>{}(text); }
};

struct TextTable {
    std::mutex mutex;
    // Nodes stay where they are as the set grows, so handles may point into it.
    std::unordered_set<std::string, TextHash, std::equal_to<>> texts;
};

// Kept until the process ends: variants in static storage may be read while other
// statics are destroyed.
TextTable& textTable() {
    static TextTable& table = *new TextTable;
    return table;
}

} // namespace

InternedText::InternedText(std::string_view text) : text_(&emptyText()) {
    if (text.empty()) {
        return;
    }
    TextTable& table = textTable();
    const std::lock_guard lock(table.mutex);
    auto found = table.texts.find(text);
    if (found == table.texts.end()) {
        found = table.texts.emplace(text).first;
    }
    text_ = &*found;
}

const std::string& InternedText::emptyText() noexcept {
    static const std::string text;
    return text;
}

std::ostream& operator<<(std::ostream& out, InternedText text) {
    return out << text.str();
}

} // namespace Velloc::builtin
