#include <fl/i18n.hpp>

#include <gtest/gtest.h>

#include <vector>

namespace {

using fl::i18n::conversion_error;

TEST(TextConversion, RoundTripsAsciiRunsAndEveryEncodedLength) {
    // Long ASCII runs take the word-at-a-time path; the multi-byte characters land on
    // both sides of its eight-byte boundary.
    const std::string utf8 = "plain ascii text, then 7bytes\xC3\xA9 \xE2\x82\xAC \xF0\x9D\x84\x9E end";
    const fl::ustring utf16 = u"plain ascii text, then 7bytes\u00E9 \u20AC \U0001D11E end";
    EXPECT_EQ(fl::i18n::utf8_to_ustring(utf8), utf16);
    EXPECT_EQ(fl::i18n::ustring_to_utf8(utf16), utf8);
    EXPECT_EQ(fl::i18n::to_string(utf16), utf8);
    EXPECT_EQ(fl::i18n::utf8_to_ustring(""), u"");
    const std::string limits = "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF";
    EXPECT_EQ(fl::i18n::ustring_to_utf8(fl::i18n::utf8_to_ustring(limits)), limits);
}

struct IllFormed {
    std::string input;
    std::size_t position;
    std::string reason;
};

TEST(TextConversion, RejectsIllFormedUtf8NamingTheByte) {
    const std::vector<IllFormed> cases = {
        {"ab\x80", 2, "unexpected continuation byte"},
        {"\xC1\xBF", 0, "overlong encoding"},
        {"x\xE0\x9F\xBF", 1, "overlong encoding"},
        {"\xF0\x8F\xBF\xBF", 0, "overlong encoding"},
        {"abc\xED\xA0\x80", 3, "encoded surrogate"},
        {"\xF4\x90\x80\x80", 0, "code point above U+10FFFF"},
        {"\xF5\x80\x80\x80", 0, "code point above U+10FFFF"},
        {"\xFF", 0, "invalid lead byte"},
        {"abcdefgh\xE2\x82", 8, "truncated sequence"},
        {"\xE2(\xA1", 1, "missing continuation byte"},
    };
    for (const IllFormed& bad : cases) {
        try {
            fl::i18n::utf8_to_ustring(bad.input);
            ADD_FAILURE() << "accepted " << testing::PrintToString(bad.input);
        } catch (const conversion_error& error) {
            EXPECT_EQ(error.position(), bad.position);
            EXPECT_EQ(std::string(error.what()),
                      "invalid UTF-8 at byte " + std::to_string(bad.position) + ": " + bad.reason);
        }
    }
}

TEST(TextConversion, RejectsUnpairedSurrogatesNamingTheCodeUnit) {
    const char16_t high = 0xD800;
    const char16_t low = 0xDC00;
    const std::vector<std::pair<fl::ustring, std::string>> cases = {
        {{u'a', u'b', u'c', u'd', u'e', high}, "at code unit 5: unpaired high surrogate"},
        {{high, u'x'}, "at code unit 0: unpaired high surrogate"},
        {{high, high, low}, "at code unit 0: unpaired high surrogate"},
        {{u'x', low}, "at code unit 1: unpaired low surrogate"},
    };
    for (const auto& [input, message] : cases) {
        EXPECT_THROW(
            try { fl::i18n::ustring_to_utf8(input); } catch (const conversion_error& error) {
                EXPECT_EQ(std::string(error.what()), "invalid UTF-16 " + message);
                throw;
            },
            conversion_error);
    }
}

} // namespace
