// Checked UTF-8 <-> UTF-16 conversion. Both directions size the output for the worst
// case once, copy runs of ASCII eight bytes (four code units) at a time, and decode
// everything else by hand so that every ill-formed input is reported, never replaced.
#include <fl/i18n.hpp>

#include <cstdint>
#include <cstring>

namespace fl::i18n {
namespace {

// Whether the eight bytes (or four code units) at `at` are all ASCII.
bool isAsciiWord(const unsigned char* at) {
    std::uint64_t word;
    std::memcpy(&word, at, sizeof word);
    return (word & 0x8080808080808080ULL) == 0;
}
bool isAsciiWord(const char16_t* at) {
    std::uint64_t word;
    std::memcpy(&word, at, sizeof word);
    return (word & 0xFF80FF80FF80FF80ULL) == 0;
}

[[noreturn]] void failUtf8(std::size_t byte, const char* reason) {
    throw conversion_error("invalid UTF-8 at byte " + std::to_string(byte) + ": " + reason, byte);
}

[[noreturn]] void failUtf16(std::size_t unit, const char* reason) {
    throw conversion_error("invalid UTF-16 at code unit " + std::to_string(unit) + ": " + reason,
                           unit);
}

struct SequenceRule {
    std::size_t length;
    char32_t leadBits;
    // Allowed range of the second byte: narrower than 80..BF where the lead byte alone
    // would admit overlong forms, surrogates or code points above U+10FFFF.
    unsigned char secondMin;
    unsigned char secondMax;
    const char* belowMin;
    const char* aboveMax;
};

SequenceRule ruleForLead(unsigned char lead, std::size_t at) {
    constexpr const char* overlong = "overlong encoding";
    constexpr const char* tooLarge = "code point above U+10FFFF";
    if (lead < 0xC0) failUtf8(at, "unexpected continuation byte");
    if (lead < 0xC2) failUtf8(at, overlong);
    if (lead < 0xE0) return {2, lead & 0x1Fu, 0x80, 0xBF, nullptr, nullptr};
    if (lead == 0xE0) return {3, 0, 0xA0, 0xBF, overlong, nullptr};
    if (lead == 0xED) return {3, 0xD, 0x80, 0x9F, nullptr, "encoded surrogate"};
    if (lead < 0xF0) return {3, lead & 0x0Fu, 0x80, 0xBF, nullptr, nullptr};
    if (lead == 0xF0) return {4, 0, 0x90, 0xBF, overlong, nullptr};
    if (lead < 0xF4) return {4, lead & 0x07u, 0x80, 0xBF, nullptr, nullptr};
    if (lead == 0xF4) return {4, 4, 0x80, 0x8F, nullptr, tooLarge};
    if (lead < 0xF8) failUtf8(at, tooLarge);
    failUtf8(at, "invalid lead byte");
}

// Decodes the multi-byte sequence at `at` and returns its code point; advances `at`.
char32_t decodeSequence(const unsigned char* bytes, std::size_t size, std::size_t& at) {
    const SequenceRule rule = ruleForLead(bytes[at], at);
    char32_t codePoint = rule.leadBits;
    for (std::size_t k = 1; k < rule.length; ++k) {
        if (at + k >= size) failUtf8(at, "truncated sequence");
        const unsigned char next = bytes[at + k];
        if ((next & 0xC0) != 0x80) failUtf8(at + k, "missing continuation byte");
        if (k == 1 && next < rule.secondMin) failUtf8(at, rule.belowMin);
        if (k == 1 && next > rule.secondMax) failUtf8(at, rule.aboveMax);
        codePoint = (codePoint << 6) | (next & 0x3Fu);
    }
    at += rule.length;
    return codePoint;
}

char* encodeUnit(char* out, char32_t codePoint) {
    if (codePoint < 0x80) {
        *out++ = static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        *out++ = static_cast<char>(0xC0 | (codePoint >> 6));
        *out++ = static_cast<char>(0x80 | (codePoint & 0x3F));
    } else if (codePoint < 0x10000) {
        *out++ = static_cast<char>(0xE0 | (codePoint >> 12));
        *out++ = static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        *out++ = static_cast<char>(0x80 | (codePoint & 0x3F));
    } else {
        *out++ = static_cast<char>(0xF0 | (codePoint >> 18));
        *out++ = static_cast<char>(0x80 | ((codePoint >> 12) & 0x3F));
        *out++ = static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        *out++ = static_cast<char>(0x80 | (codePoint & 0x3F));
    }
    return out;
}

bool isHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

} // namespace

ustring utf8_to_ustring(std::string_view utf8) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(utf8.data());
    const std::size_t size = utf8.size();
    ustring result(size, u'\0'); // never more code units than bytes
    char16_t* out = result.data();
    std::size_t at = 0;
    while (at < size) {
        while (at + 8 <= size && isAsciiWord(bytes + at)) {
            for (std::size_t k = 0; k < 8; ++k) out[k] = bytes[at + k];
            out += 8;
            at += 8;
        }
        if (at == size) break;
        if (bytes[at] < 0x80) {
            *out++ = bytes[at++];
            continue;
        }
        const char32_t codePoint = decodeSequence(bytes, size, at);
        if (codePoint < 0x10000) {
            *out++ = static_cast<char16_t>(codePoint);
        } else {
            *out++ = static_cast<char16_t>(0xD800 + ((codePoint - 0x10000) >> 10));
            *out++ = static_cast<char16_t>(0xDC00 + ((codePoint - 0x10000) & 0x3FF));
        }
    }
    result.resize(static_cast<std::size_t>(out - result.data()));
    return result;
}

std::string ustring_to_utf8(ustring_view utf16) {
    const char16_t* units = utf16.data();
    const std::size_t size = utf16.size();
    std::string result(size * 3, '\0'); // at most three bytes per code unit
    char* out = result.data();
    std::size_t at = 0;
    while (at < size) {
        while (at + 4 <= size && isAsciiWord(units + at)) {
            for (std::size_t k = 0; k < 4; ++k) out[k] = static_cast<char>(units[at + k]);
            out += 4;
            at += 4;
        }
        if (at == size) break;
        const char16_t unit = units[at];
        if (isLowSurrogate(unit)) failUtf16(at, "unpaired low surrogate");
        if (!isHighSurrogate(unit)) {
            out = encodeUnit(out, unit);
            ++at;
            continue;
        }
        if (at + 1 == size || !isLowSurrogate(units[at + 1])) failUtf16(at, "unpaired high surrogate");
        const char32_t codePoint = 0x10000 + ((char32_t(unit) - 0xD800) << 10) + (units[at + 1] - 0xDC00);
        out = encodeUnit(out, codePoint);
        at += 2;
    }
    result.resize(static_cast<std::size_t>(out - result.data()));
    return result;
}

std::string to_string(ustring_view utf16) { return ustring_to_utf8(utf16); }

} // namespace fl::i18n
