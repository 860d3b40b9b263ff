#include "TypeSamples.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <unordered_set>
#include <variant>

using namespace typesamples;

namespace {

// One sample of each alternative, in tag order.
std::vector<ArgType> samples() {
    return {UnsupportedArgType{},
            FlagInputType(u"x"),
            scalar(oxDOUBLE_CLASS),
            OrvexStringType(OrvexStringType::Shape::SCALAR),
            LxeObjectPlaceTypes(classId(42), 3),
            LxeObjectTypes(classId(19), 0, true),
            relaxedOpenArray()};
}

// The matrix of a relation over the samples: one row of '1'/'0' per first operand.
template <class Relation>
std::vector<std::string> matrixOf(Relation relation) {
    std::vector<std::string> rows;
    for (const ArgType& a : samples()) {
        std::string row;
        for (const ArgType& b : samples()) {
            row += relation(a, b) ? '1' : '0';
        }
        rows.push_back(row);
    }
    return rows;
}

ArgType valueless() {
    ArgType type = UnsupportedArgType{};
    try {
        type.emplace<FlagInputType>(std::string("\xff"));
    } catch (const std::exception&) {
    }
    return type;
}

} // namespace

TEST(ArgType, AcceptanceMatrixConvertsOnlyIntoStringsObjectsAndRelaxedArrays) {
    EXPECT_EQ(matrixOf([](const ArgType& d, const ArgType& a) { return isAcceptable(d, a); }),
              (std::vector<std::string>{"1000000", "0100000", "0010000", "0101000", "0000100", "0101010", "1111111"}));
    EXPECT_EQ(matrixOf([](const ArgType& d, const ArgType& a) { return isAcceptableToLxe(d, a); }),
              (std::vector<std::string>{"1000000", "0100000", "0010000", "0001000", "0000100", "0000010", "0000001"}));

    EXPECT_TRUE(isAcceptable(realDouble(Shape::SCALAR, 0, RELAXED), scalar(oxDOUBLE_CLASS)));
    EXPECT_FALSE(isAcceptable(realDouble(Shape::SCALAR, 0), scalar(oxDOUBLE_CLASS)));
    EXPECT_FALSE(isAcceptable(OxArrayTypes::fullyOpen(), UnsupportedArgType{}));
    EXPECT_FALSE(isAcceptable(FlagInputType(u"x"), FlagInputType(u"X")));
    EXPECT_FALSE(isAcceptable(LxeObjectTypes(classId(20), 0, true), FlagInputType(u"x")));
}

TEST(ArgType, CompatibilityMatrixKeepsItsAsymmetries) {
    EXPECT_EQ(matrixOf([](const ArgType& a, const ArgType& b) { return isCompatible(a, b); }),
              (std::vector<std::string>{"1000001", "0100000", "0010000", "0101000", "0000100", "0101010", "1000001"}));
    const ArgType objectArray = array(classId(42), Shape::UNKNOWN, Density::UNKNOWN, Complexity::UNKNOWN, ANY_DIMS);
    EXPECT_TRUE(isCompatible(LxeObjectTypes(classId(42), 7, false), objectArray));
    const ArgType stringArray = array(OrvexStringType::getOcosClassId(), Shape::SCALAR, Density::FULL, Complexity::NOT_COMPLEX, 0);
    EXPECT_TRUE(isCompatible(stringArray, OrvexStringType(OrvexStringType::Shape::SCALAR)));
    EXPECT_FALSE(isCompatible(stringArray, FlagInputType(u"x")));
}

TEST(ArgType, OrderingByTagThenWithinIsStrictAndMatchesEqualityAndHash) {
    std::vector<ArgType> list = samples();
    std::reverse(list.begin(), list.end());
    list.push_back(realDouble(Shape::SCALAR, 0, RELAXED));
    list.push_back(OrvexStringType(OrvexStringType::Shape::ANY));
    list.push_back(FlagInputType(u"a"));
    std::sort(list.begin(), list.end());
    std::vector<std::size_t> tags;
    for (const ArgType& type : list) {
        tags.push_back(type.index());
    }
    EXPECT_EQ(tags, (std::vector<std::size_t>{0, 1, 1, 2, 3, 3, 4, 5, 6, 6}));
    EXPECT_EQ(list[1], ArgType(FlagInputType(u"a")));
    EXPECT_EQ(list[4], ArgType(OrvexStringType(OrvexStringType::Shape::SCALAR)));
    EXPECT_EQ(list[8], ArgType(realDouble(Shape::SCALAR, 0, RELAXED)));
    EXPECT_NE(ArgType(LxeObjectTypes(oxUNKNOWN_CLASS, 3, true)), ArgType(LxeObjectTypes(classId(42), 3, true)));

    std::unordered_set<ArgType, ArgTypeHash> unique(list.begin(), list.end());
    for (const ArgType& type : samples()) {
        unique.insert(type);
    }
    unique.insert(FlagInputType(std::u16string(u"a")));
    unique.insert(LxeObjectTypes(classId(19), 0, false));
    EXPECT_EQ(unique.size(), list.size());
}

TEST(ArgType, TextAndForwardedOperations) {
    std::ostringstream os;
    os << ArgType(realDouble(Shape::ROW, 1, RELAXED)) << '|' << ArgType(UnsupportedArgType{}) << '|'
       << ArgType(scalar(oxSINGLE_CLASS, true)) << '|' << ArgType(FlagInputType(u"on"));
    EXPECT_EQ(os.str(), "oxArray_of<double,$Shape0:B2IsShapeRowVector,ox_full,false>||complex_single|"
                        "orvex_string<literal_flag<\"on\">>");
    EXPECT_EQ(getLxeSupportLevel(UnsupportedArgType{}, OUTPUT), LxeSupportLevel::NO_SUPPORT);
    EXPECT_EQ(getGreaterPrecedenceTypes(UnsupportedArgType{}), ArgTypeList{});

    std::string skipped;
    for (ArgType type : samples()) {
        skipped += skipDuringInvoke(type) ? '1' : '0';
        const ArgType before = type;
        setSignatureTolerance(type, STRICT);
        if (const auto* array = std::get_if<OxArrayTypes>(&type)) {
            EXPECT_EQ(array->getSignatureTolerance(), STRICT);
        } else {
            EXPECT_EQ(type, before);
        }
    }
    EXPECT_EQ(skipped, "0100000");
}

TEST(ArgType, ElementWiseFormWidensScalarsOnly) {
    EXPECT_EQ(asElementWiseArrayType(scalar(oxSINGLE_CLASS, true)),
              ArgType(array(oxSINGLE_CLASS, Shape::UNKNOWN, Density::FULL, Complexity::COMPLEX, ANY_DIMS, RELAXED)));
    EXPECT_EQ(asElementWiseArrayType(realDouble(Shape::ROW, 1)),
              ArgType(array(oxDOUBLE_CLASS, Shape::UNKNOWN, Density::FULL, Complexity::NOT_COMPLEX, ANY_DIMS, RELAXED)));
    for (const ArgType& unchanged : {ArgType(FlagInputType(u"x")), ArgType(UnsupportedArgType{}),
                                     ArgType(array(oxCELL_CLASS, Shape::SCALAR, Density::FULL, Complexity::NOT_COMPLEX, 0)),
                                     ArgType(array(oxDOUBLE_CLASS, Shape::ROW, Density::SPARSE, Complexity::NOT_COMPLEX, 1)),
                                     ArgType(OrvexStringType(OrvexStringType::Shape::SCALAR)),
                                     ArgType(LxeObjectTypes(classId(6), 0, true))}) {
        EXPECT_EQ(asElementWiseArrayType(unchanged), unchanged) << unchanged;
    }
    EXPECT_TRUE(isAcceptable(asElementWiseArrayType(scalar(oxDOUBLE_CLASS)), realDouble(Shape::ND, 4)));
}

TEST(ArgType, ValuelessOperandsThrowBadVariantAccess) {
    const ArgType broken = valueless();
    ASSERT_TRUE(broken.valueless_by_exception());
    const ArgType fine = scalar(oxDOUBLE_CLASS);
    try {
        isAcceptable(fine, broken);
        ADD_FAILURE() << "no exception";
    } catch (const std::bad_variant_access& e) {
        EXPECT_STREQ(e.what(), "std::visit: variant is valueless");
    }
    EXPECT_THROW(isAcceptableToLxe(broken, fine), std::bad_variant_access);
    EXPECT_THROW(skipDuringInvoke(broken), std::bad_variant_access);
    EXPECT_THROW((void)(fine < broken), std::bad_variant_access);
}
