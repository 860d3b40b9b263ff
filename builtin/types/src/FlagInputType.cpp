#include <builtin/types/ArgType.hpp>
#include <builtin/types/FlagInputType.hpp>

#include <fl/i18n.hpp>

#include <functional>
#include <string>

namespace Velloc::builtin::types {

namespace {
// The seed std::hash of a string uses, so flag hashes agree with string hashes.
constexpr std::size_t standardHashSeed = 0xc70f6907UL;
} // namespace

FlagInputType::FlagInputType(const std::string& utf8) : text_(fl::i18n::utf8_to_ustring(utf8)) {}

std::size_t FlagInputType::hash() const noexcept {
    const std::u16string_view text = getValue();
    return std::_Hash_bytes(text.data(), text.size() * sizeof(char16_t), standardHashSeed);
}

ArgTypeList FlagInputType::getGreaterPrecedenceTypes() const { return {}; }

std::string FlagInputType::toString() const {
    return "orvex_string<literal_flag<\"" + fl::i18n::ustring_to_utf8(getValue()) + "\">>";
}

} // namespace Velloc::builtin::types
