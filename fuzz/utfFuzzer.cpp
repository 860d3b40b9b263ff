// UTF-8 <-> UTF-16 conversion against Boost.Locale's strict converter: both must agree on
// which inputs are well formed and on what they decode to, and well-formed text must
// round-trip unchanged. The input is read once as UTF-8 bytes and once as UTF-16 units.
#include "Check.hpp"

#include <fl/i18n.hpp>

#include <boost/locale/encoding_utf.hpp>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>

namespace {

template <class To, class From>
std::optional<std::basic_string<To>> referenceConversion(const std::basic_string<From>& text) {
    try {
        return boost::locale::conv::utf_to_utf<To>(text, boost::locale::conv::stop);
    } catch (const boost::locale::conv::conversion_error&) {
        return std::nullopt;
    }
}

using fuzz::check;

void checkUtf8(const std::string& bytes) {
    const auto expected = referenceConversion<char16_t>(bytes);
    try {
        const fl::ustring units = fl::i18n::utf8_to_ustring(bytes);
        check(expected.has_value() && *expected == units);
        check(fl::i18n::ustring_to_utf8(units) == bytes);
    } catch (const fl::i18n::conversion_error& error) {
        check(!expected.has_value());
        check(error.position() < bytes.size());
    }
}

void checkUtf16(const fl::ustring& units) {
    const auto expected = referenceConversion<char>(units);
    try {
        const std::string bytes = fl::i18n::ustring_to_utf8(units);
        check(expected.has_value() && *expected == bytes);
        check(fl::i18n::utf8_to_ustring(bytes) == units);
    } catch (const fl::i18n::conversion_error& error) {
        check(!expected.has_value());
        check(error.position() < units.size());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    checkUtf8(std::string(reinterpret_cast<const char*>(data), size));
    fl::ustring units(size / 2, u'\0');
    std::memcpy(units.data(), data, units.size() * sizeof(char16_t));
    checkUtf16(units);
    return 0;
}
