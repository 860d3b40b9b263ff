#include "TypeSamples.hpp"

#include <fl/i18n.hpp>
#include <ocos/ClassRegistry.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

using namespace typesamples;

TEST(FlagInputType, OwnsOrRefersAndConvertsUtf8) {
    std::u16string text = u"skipgaps";
    const FlagInputType owned(text);
    const FlagInputType viewed{std::u16string_view(text)};
    const FlagInputType literal(u"skipgaps");
    text[0] = u'S';
    EXPECT_EQ(owned.getValue(), u"skipgaps");
    EXPECT_EQ(viewed.getValue(), u"Skipgaps");
    EXPECT_FALSE(literal.ownsText());
    const FlagInputType copy = owned;
    EXPECT_NE(copy.getValue().data(), owned.getValue().data());

    const FlagInputType wide(std::string("gr\xc3\xb6\xc3\x9f" "e"));
    EXPECT_EQ(wide.getValue(), u"gr\u00f6\u00dfe");
    EXPECT_EQ(wide.toString(), "orvex_string<literal_flag<\"gr\xc3\xb6\xc3\x9f" "e\">>");
    EXPECT_THROW(FlagInputType(std::string("bad\xff")), fl::i18n::conversion_error);
}

TEST(FlagInputType, OrdersByUnsignedCodeUnitsAndHashesLikeStrings) {
    EXPECT_TRUE(FlagInputType(u"abc") < FlagInputType(u"abd"));
    EXPECT_TRUE(FlagInputType(u"ab") < FlagInputType(u"abc"));
    EXPECT_FALSE(FlagInputType(u"abc") < FlagInputType(std::u16string(u"abc")));
    EXPECT_TRUE(FlagInputType(u"z") < FlagInputType(u"\uE000"));

    for (const std::u16string& text : {std::u16string(), std::u16string(u"skipgaps"), std::u16string(u"\uE000x")}) {
        EXPECT_EQ(FlagInputType(text).hash(), std::hash<std::u16string>{}(text));
    }
}

TEST(OrvexStringType, AcceptanceOrderingSupportAndText) {
    const OrvexStringType scalarString(OrvexStringType::Shape::SCALAR);
    const OrvexStringType anyString(OrvexStringType::Shape::ANY);
    EXPECT_TRUE(anyString.isAcceptable(scalarString));
    EXPECT_FALSE(scalarString.isAcceptable(anyString));
    EXPECT_FALSE(anyString.isCompatible(scalarString));
    EXPECT_TRUE(scalarString < scalarString);
    EXPECT_FALSE(anyString < scalarString);
    EXPECT_EQ(anyString.hash(), hashCombine(0, 1));
    EXPECT_EQ(OrvexStringType::getOcosClassId(), ocos::STRING_CLASS_ID);
    EXPECT_EQ(scalarString.getLxeSupportLevel(INPUT), LxeSupportLevel::NO_SUPPORT);
    EXPECT_EQ(scalarString.getLxeSupportLevel(OUTPUT), LxeSupportLevel::EQUIVALENT_SUPPORT);
    EXPECT_EQ(anyString.getGreaterPrecedenceTypes(), ArgTypeList{anyString});
    EXPECT_EQ(scalarString.toString(INPUT, 2), "scalar_orvex_string");
    EXPECT_EQ(anyString.toString(INPUT, 2), "orvex_string<$flag_idx2>");
    EXPECT_EQ(scalarString.toString(OUTPUT, 0), "orvex_string<nil>");
}

TEST(LxeObjectTypes, WildcardMatchingAndOpenValuesSortLast) {
    const LxeObjectTypes anyClass(oxUNKNOWN_CLASS, 3, false);
    const LxeObjectTypes known(classId(42), 3, true);
    EXPECT_TRUE(anyClass == known);
    EXPECT_TRUE(known == LxeObjectTypes(classId(42), LxeObjectTypes::ANY_VARIANT_ID, false));
    EXPECT_FALSE(known == LxeObjectTypes(classId(42), 4, true));

    std::vector<LxeObjectTypes> list = {anyClass, LxeObjectTypes(classId(42), LxeObjectTypes::ANY_VARIANT_ID, true),
                                        known, LxeObjectTypes(classId(20), 9, true)};
    std::sort(list.begin(), list.end());
    std::vector<std::string> order;
    for (const auto& type : list) {
        order.push_back(type.toString());
    }
    EXPECT_EQ(order, (std::vector<std::string>{"lxe_object<20,9, true,$subType0>", "lxe_object<42,3, true,$subType0>",
                                               "lxe_object<42,$variantid0,$bool0,$subType0>",
                                               "lxe_object<$classid0,3,$bool0,$subType0>"}));
    EXPECT_FALSE(known < LxeObjectTypes(classId(42), 3, false));

    EXPECT_EQ(known.hash(), hashCombine(hashCombine(0, 42), 3));
    EXPECT_EQ(known.hash(), LxeObjectTypes(classId(42), 3, false).hash());
}

TEST(LxeObjectTypes, TextFormsOfObjectsAndPlaces) {
    EXPECT_EQ(LxeObjectTypes(classId(42), 3, true).toString(INPUT, 1), "lxe_object<42,3, true,$subType1>");
    EXPECT_EQ(LxeObjectTypes(classId(42), 3, false).toString(OUTPUT, 1), "lxe_object<42,3, false,nil>");
    EXPECT_EQ(LxeObjectTypes(oxUNKNOWN_CLASS, 3, true).toString(INPUT, 1), "lxe_object<$classid1,3,$bool1,$subType1>");
    EXPECT_EQ(LxeObjectTypes(classId(42), LxeObjectTypes::ANY_VARIANT_ID, true).toString(OUTPUT, 0), "lxe_object");
    EXPECT_EQ(LxeObjectTypes(FlagInputType(u"x")).toString(), "lxe_object<19,0, true,$subType0>");

    EXPECT_EQ(LxeObjectPlaceTypes(classId(42), 3).toString(OUTPUT, 1), "lxe_object_place<42,3>");
    EXPECT_EQ(LxeObjectPlaceTypes(oxUNKNOWN_CLASS, LxeObjectPlaceTypes::ANY_VARIANT_ID).toString(),
              "lxe_object_place<$classid0,$variantid0>");
    EXPECT_EQ(LxeObjectPlaceTypes(oxUNKNOWN_CLASS, 3).toString(OUTPUT, 0), "lxe_object_place");
    EXPECT_FALSE(LxeObjectPlaceTypes(classId(42), 3) == LxeObjectPlaceTypes(oxUNKNOWN_CLASS, 7));
}
