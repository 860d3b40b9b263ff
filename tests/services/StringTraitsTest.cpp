// Text conversion with the host string service present.
#include "TextArrays.hpp"

#include <builtin/builtinreg/ArgTypesOf.hpp>
#include <builtin/types/OrvexStringType.hpp>

#include <fl/i18n.hpp>
#include <strings/StringArray.hpp>

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <string>

namespace {

using namespace text_arrays;
using namespace Velloc::builtin::types;
using Placeholder = const detail::ScalarOrvexStringPlaceholder*;
using Owned = matrix::ArrayPtr;
using Shape = OxArrayTypes::Shape;
using Density = OxArrayTypes::Density;
using Complexity = OxArrayTypes::Complexity;

constexpr auto STRING_CLASS = static_cast<oxClassID>(19);

oxArray* scalarString(std::u16string text) {
    const std::array<std::size_t, 2> dims{1, 1};
    return Velloc::String::createStringArray(dims, {std::move(text)});
}

TEST(StringTraits, ReadCharRowVectorsAndScalarStrings) {
    EXPECT_EQ(readOwned<std::u16string>(matrix::createCharRow(u"hello")), u"hello");
    EXPECT_EQ(readOwned<std::string>(matrix::createCharRow(u"d\u00e9j\u00e0")), "d\xc3\xa9j\xc3\xa0");
    EXPECT_EQ(readOwned<std::u16string>(chars(0, 0, u"")), u"");
    EXPECT_EQ(readOwned<std::u16string>(scalarString(u"scalar")), u"scalar");
    EXPECT_EQ(readOwned<std::string>(scalarString(u"\u4e2d")), "\xe4\xb8\xad");

    const std::array<std::size_t, 2> dims{1, 3};
    oxArray* opaque = matrix::createWithOpaqueDimensions(dims, oxCHAR_CLASS, oxREAL);
    std::u16string_view(u"abc").copy(matrix::getTypedData<char16_t>(opaque), 3);
    EXPECT_EQ(readOwned<std::u16string>(opaque), u"abc");
}

TEST(StringTraits, ViewsStayValidWhileTheTemporariesLive) {
    Temporaries temporaries;
    const std::u16string_view fromChars = TypeTraitsImpl<std::u16string_view>{}(matrix::createCharRow(u"row"), temporaries);
    const std::u16string_view fromString = TypeTraitsImpl<std::u16string_view>{}(scalarString(u"object"), temporaries);
    const Owned unrelated(matrix::createCharRow(u"other text that reuses freed memory"));
    EXPECT_EQ(fromChars, u"row");
    EXPECT_EQ(fromString, u"object");
}

TEST(StringTraits, RejectEverythingButScalarStringsAndCharRows) {
    EXPECT_EQ(rejection(chars(2, 3, u"abcdef")), WRONG_SHAPE);
    const std::array<std::size_t, 3> cube{1, 2, 2};
    EXPECT_EQ(rejection(matrix::createCharArray(cube, u"abcd")), WRONG_SHAPE);
    oxArray* foreign = matrix::createCharRow(u"abc");
    matrix::setForeignStorage(foreign, true);
    EXPECT_EQ(rejection(foreign), WRONG_SHAPE);

    // Other arrays go to the string service, which names what it found.
    const std::array<std::size_t, 2> pair{1, 2};
    EXPECT_NE(rejection(Velloc::String::createStringArray(pair, {u"a", u"b"})), "");
    EXPECT_NE(rejection(matrix::createScalar(2.0)), "");

    // The array is taken over even when reading fails.
    Temporaries temporaries;
    EXPECT_THROW(TypeTraitsImpl<std::u16string>{}(chars(2, 1, u"ab"), temporaries), std::invalid_argument);
    EXPECT_EQ(temporaries.size(), 1u);
}

TEST(StringTraits, InvalidTextOnEitherSideRaisesConversionErrors) {
    EXPECT_THROW(TypeTraitsImpl<std::string>{}(std::string("bad \xff byte")), fl::i18n::conversion_error);
    EXPECT_THROW(readOwned<std::string>(matrix::createCharRow(u"lone \xD800 surrogate")), fl::i18n::conversion_error);
    // A UTF-16 reader takes the code units as they are.
    EXPECT_EQ(readOwned<std::u16string>(matrix::createCharRow(u"\xD800")), u"\xD800");
}

TEST(StringTraits, WriteScalarStringsWhenTheServiceIsThere) {
    const std::u16string abc = u"abc";
    for (oxArray* written : {TypeTraitsImpl<std::u16string>{}(abc), TypeTraitsImpl<std::u16string>{}(std::u16string(u"abc")),
                             TypeTraitsImpl<std::string>{}(std::string("abc"))}) {
        const Owned owned(written);
        EXPECT_EQ(matrix::getClassID(written), STRING_CLASS);
        EXPECT_TRUE(matrix::isScalar(written));
        EXPECT_EQ(Velloc::String::getStringElement(written, 0).view(), u"abc");
    }
    const std::string narrow = "gr\xc3\xbc\xc3\x9f";
    EXPECT_EQ(readOwned<std::string>(TypeTraitsImpl<std::string>{}(narrow)), narrow);
}

TEST(StringTraits, ArgumentTypesOfTextParameters) {
    using View = TypeTraitsImpl<std::u16string_view>;
    EXPECT_EQ(View::numArgTypes, 3u);
    EXPECT_EQ(View::getArgType(0), ArgType(OxArrayTypes(STRING_CLASS, Shape::SCALAR, Density::FULL, Complexity::NOT_COMPLEX, 0)));
    EXPECT_EQ(View::getArgType(1), ArgType(OxArrayTypes(oxCHAR_CLASS, Shape::ROW, Density::FULL, Complexity::NOT_COMPLEX, 1)));
    EXPECT_EQ(View::getArgType(2), ArgType(OxArrayTypes(oxCHAR_CLASS, Shape::EMPTY, Density::FULL, Complexity::NOT_COMPLEX, 0)));
    EXPECT_TRUE(std::holds_alternative<UnsupportedArgType>(View::getArgType(3)));
    EXPECT_EQ(TypeTraitsImpl<std::string>::getArgType(0), View::getArgType(0));

    const ArgType& placeholder = TypeTraitsImpl<Placeholder>::getArgType();
    EXPECT_EQ(&placeholder, &TypeTraitsImpl<Placeholder>::getArgType());
    EXPECT_EQ(placeholder, ArgType(OrvexStringType(OrvexStringType::Shape::SCALAR)));
    EXPECT_EQ(OrvexStringType::getOcosClassId(), STRING_CLASS);
    const OxArrayTypes engineObject(static_cast<oxClassID>(18), Shape::SCALAR, Density::FULL, Complexity::NOT_COMPLEX, 0);
    EXPECT_EQ(engineObject.getLxeSupportLevel(ArgTypeDirection::OUTPUT), LxeSupportLevel::EQUIVALENT_SUPPORT);

    const auto argTypes =
        Velloc::builtin::builtinreg::getArgTypesOf<std::u16string(std::u16string_view, Placeholder)>(SignatureTolerance::STRICT);
    ASSERT_EQ(argTypes.inputs.size(), 3u);
    EXPECT_EQ(argTypes.inputs[1], (ArgTypeList{View::getArgType(1), placeholder}));
    EXPECT_EQ(argTypes.outputs, ArgTypeList{View::getArgType(0)});
}

TEST(StringTraitsDeathTest, ThePlaceholderIsNeverAValue) {
    EXPECT_DEATH(TypeTraitsImpl<Placeholder>{}(nullptr),
                 "Fatal assertion: ScalarOrvexStringPlaceholder is not a real type and should not actually be used.\n"
                 "  file: StringTraits\n");
}

} // namespace
