#include <strings/StringArray.hpp>

#include <ocos/ClassRegistry.hpp>

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <stdexcept>

namespace {

using Velloc::String::String;
using Owned = matrix::ArrayPtr;

TEST(StringArray, HoldsOneStringPerElementThroughCopies) {
    const std::array<std::size_t, 2> dims{2, 3};
    const Owned array(Velloc::String::createStringArray(dims, {u"a", u"b", u"c", u"d", u"", u"\u00e9t\u00e9"}));
    EXPECT_EQ(matrix::getClassID(array.get()), ocos::STRING_CLASS_ID);
    EXPECT_EQ(Velloc::String::getStringElement(array.get(), 4).view(), u"");
    EXPECT_EQ(Velloc::String::getStringElement(array.get(), 5).text(), u"\u00e9t\u00e9");
    EXPECT_THROW(Velloc::String::getStringElement(array.get(), 6), std::out_of_range);
    const Owned copy(matrix::duplicateArray(array.get()));
    EXPECT_EQ(Velloc::String::getStringElement(copy.get(), 3).view(), u"d");

    const String hello(u"hello");
    const Owned scalar(Velloc::String::createScalarString(hello));
    EXPECT_TRUE(matrix::isScalar(scalar.get()));
    const std::array<std::size_t, 3> cube{1, 2, 2};
    const Owned filled(Velloc::String::createFilledStringArray(cube, hello));
    EXPECT_EQ(Velloc::String::getStringElement(filled.get(), 3), hello);
}

// What an author returns as a string result: a scalar string from UTF-16 or UTF-8 text.
TEST(StringArray, ScalarStringsFromTextOfEitherEncoding) {
    const Owned wide(Velloc::String::createScalarString(std::u16string_view(u"caf\u00e9")));
    const Owned narrow(Velloc::String::createScalarStringFromUtf8("caf\xC3\xA9"));
    for (const Owned* text : {&wide, &narrow}) {
        EXPECT_TRUE(Velloc::String::isStringArray(text->get()));
        EXPECT_TRUE(matrix::isScalar(text->get()));
        EXPECT_EQ(Velloc::String::getStringElement(text->get(), 0).view(), u"caf\u00e9");
    }
    EXPECT_THROW(Owned(Velloc::String::createScalarStringFromUtf8("\xFF")), std::invalid_argument);
}

TEST(StringArray, RejectsCountsThatDoNotFillAndArraysOfOtherClasses) {
    const std::array<std::size_t, 2> dims{2, 2};
    EXPECT_THROW(Velloc::String::createStringArray(dims, {u"a", u"b", u"c"}), std::invalid_argument);
    const std::array<std::size_t, 2> overflowing{std::numeric_limits<std::size_t>::max() / 2, 3};
    EXPECT_THROW(Velloc::String::createFilledStringArray(overflowing, String(u"x")), std::length_error);
    EXPECT_THROW(Velloc::String::createStringArray(overflowing, {u"x"}), std::invalid_argument);

    const Owned chars(matrix::createCharRow(u"abc"));
    EXPECT_THROW(Velloc::String::getStringElement(chars.get(), 0), std::invalid_argument);
    const Owned withoutPayload(matrix::createObject(ocos::STRING_CLASS_ID, dims, nullptr));
    EXPECT_THROW(Velloc::String::getStringElement(withoutPayload.get(), 0), std::invalid_argument);
}

} // namespace
