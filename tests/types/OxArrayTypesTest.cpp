#include "TypeSamples.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <stdexcept>

using namespace typesamples;

namespace {

std::string printed(const OxArrayTypes& type) {
    std::ostringstream os;
    os << type;
    return os.str();
}

} // namespace

TEST(OxArrayTypes, StrictWantsEqualFieldsRelaxedTakesWildcards) {
    const OxArrayTypes empty = realDouble(Shape::EMPTY, 0);
    EXPECT_TRUE(empty.isAcceptable(realDouble(Shape::EMPTY_ROW, 0)));
    EXPECT_TRUE(empty.isAcceptable(realDouble(Shape::EMPTY_COL, 0)));
    EXPECT_FALSE(empty.isAcceptable(realDouble(Shape::SCALAR, 0)));
    EXPECT_FALSE(realDouble(Shape::EMPTY_ROW, 0).isAcceptable(empty));

    const OxArrayTypes row = realDouble(Shape::ROW, 1);
    EXPECT_FALSE(row.isAcceptable(realDouble(Shape::SCALAR, 0)));
    EXPECT_FALSE(row.isAcceptable(realDouble(Shape::ROW, 2)));
    EXPECT_FALSE(row.isAcceptable(array(oxDOUBLE_CLASS, Shape::ROW, Density::SPARSE, Complexity::NOT_COMPLEX, 1)));
    EXPECT_TRUE(realDouble(Shape::ROW, 1, RELAXED).isAcceptable(realDouble(Shape::SCALAR, 0)));
    EXPECT_TRUE(relaxedOpenArray().isAcceptable(array(classId(42), Shape::ND, Density::SPARSE, Complexity::COMPLEX, 7)));
    EXPECT_FALSE(realDouble(Shape::ROW, 1, RELAXED).isAcceptable(OxArrayTypes::fullyOpen()));
    EXPECT_TRUE(array(oxDOUBLE_CLASS, Shape::ROW, Density::UNKNOWN, Complexity::UNKNOWN, 1, RELAXED)
                    .isAcceptable(array(oxDOUBLE_CLASS, Shape::ROW, Density::SPARSE, Complexity::COMPLEX, 1)));
}

TEST(OxArrayTypes, RelaxedShapesFollowTheAcceptanceTable) {
    // Row: declared shape; column: actual shape 0..9.
    const std::pair<int, const char*> table[] = {
        {0, "1111111111"}, {1, "0100000000"}, {2, "0010000000"}, {3, "0111000000"},
        {4, "0000100000"}, {5, "0100110000"}, {6, "0010101000"}, {7, "0110111000"},
        {8, "0111111110"}, {10, "0000000000"},
    };
    for (const auto& [declared, expected] : table) {
        std::string accepted;
        for (int actual = 0; actual <= 9; ++actual) {
            accepted += realDouble(static_cast<Shape>(declared), 0, RELAXED)
                                .isAcceptable(realDouble(static_cast<Shape>(actual), 0))
                            ? '1'
                            : '0';
        }
        EXPECT_EQ(accepted, expected) << "declared shape " << declared;
    }
    const OxArrayTypes upTo3d = realDouble(Shape::ND, 3, RELAXED);
    EXPECT_TRUE(upTo3d.isAcceptable(realDouble(Shape::TWO_D, 2)));
    EXPECT_TRUE(upTo3d.isAcceptable(realDouble(Shape::ND, 3)));
    EXPECT_FALSE(upTo3d.isAcceptable(realDouble(Shape::ND, 4)));
}

TEST(OxArrayTypes, OrderingPutsStrictFirstAndOpenValuesLast) {
    std::vector<OxArrayTypes> list = {
        array(oxUNKNOWN_CLASS, Shape::SCALAR, Density::FULL, Complexity::NOT_COMPLEX, 0),
        realDouble(Shape::SCALAR, 0, RELAXED),
        array(oxDOUBLE_CLASS, Shape::SCALAR, Density::UNKNOWN, Complexity::NOT_COMPLEX, 0),
        array(oxDOUBLE_CLASS, Shape::SCALAR, Density::SPARSE, Complexity::NOT_COMPLEX, 0),
        array(oxDOUBLE_CLASS, Shape::UNKNOWN, Density::FULL, Complexity::NOT_COMPLEX, 0),
        realDouble(Shape::ROW, 1),
        realDouble(Shape::SCALAR, 0),
        array(oxSINGLE_CLASS, Shape::SCALAR, Density::FULL, Complexity::NOT_COMPLEX, 0),
    };
    std::sort(list.begin(), list.end());
    std::vector<std::string> order;
    for (const auto& type : list) {
        order.push_back(printed(type));
    }
    EXPECT_EQ(order, (std::vector<std::string>{
                         "OxArrayTypes: oxDOUBLE_CLASS SCALAR FULL NOT_COMPLEX STRICT",
                         "OxArrayTypes: oxDOUBLE_CLASS Unknown Shape FULL NOT_COMPLEX STRICT",
                         "OxArrayTypes: oxDOUBLE_CLASS ROW FULL NOT_COMPLEX STRICT",
                         "OxArrayTypes: oxDOUBLE_CLASS SCALAR SPARSE NOT_COMPLEX STRICT",
                         "OxArrayTypes: oxDOUBLE_CLASS SCALAR Unknown Density NOT_COMPLEX STRICT",
                         "OxArrayTypes: oxSINGLE_CLASS SCALAR FULL NOT_COMPLEX STRICT",
                         "OxArrayTypes: oxUNKNOWN_CLASS SCALAR FULL NOT_COMPLEX STRICT",
                         "OxArrayTypes: oxDOUBLE_CLASS SCALAR FULL NOT_COMPLEX RELAXED",
                     }));
    EXPECT_FALSE(realDouble(Shape::SCALAR, 0) < realDouble(Shape::SCALAR, 0));
}

TEST(OxArrayTypes, HashCombinesFieldsInOrderFromSeedZero) {
    const OxArrayTypes type = array(oxSINGLE_CLASS, Shape::ROW, Density::SPARSE, Complexity::COMPLEX, 1, RELAXED);
    std::uint64_t expected = 0;
    for (std::uint64_t field : {7, 5, 2, 2, 1, 1}) {
        expected = hashCombine(expected, field);
    }
    EXPECT_EQ(type.hash(), expected);

    const OxArrayTypes negative = array(classId(-1), Shape::UNKNOWN, Density::UNKNOWN, Complexity::UNKNOWN, ANY_DIMS);
    expected = 0;
    for (std::uint64_t field : {~0ULL, 0ULL, 0ULL, 0ULL, ~0ULL, 0ULL}) {
        expected = hashCombine(expected, field);
    }
    EXPECT_EQ(negative.hash(), expected);
}

TEST(OxArrayTypes, SetShapeDerivesNumDimsOrThrowsLeavingTheValue) {
    OxArrayTypes type = realDouble(Shape::ND, 5);
    type.setShape(Shape::VECTOR);
    EXPECT_EQ(type.getShape(), std::make_pair(Shape::VECTOR, std::uint64_t{1}));
    type.setShape(Shape::TWO_D);
    EXPECT_EQ(type.getShape(), std::make_pair(Shape::TWO_D, std::uint64_t{2}));
    for (Shape bad : {Shape::ND, Shape::UNKNOWN, static_cast<Shape>(12)}) {
        try {
            type.setShape(bad);
            ADD_FAILURE() << "no exception";
        } catch (const std::invalid_argument& e) {
            EXPECT_STREQ(e.what(), "cannot convert Shape to numeric dimension");
        }
        EXPECT_EQ(type.getShape(), std::make_pair(Shape::TWO_D, std::uint64_t{2}));
    }
}

TEST(OxArrayTypes, AsScalarNeedsFullKnownComplexityAndNumericClass) {
    EXPECT_EQ(realDouble(Shape::ROW, 1).asScalar(), scalar(oxDOUBLE_CLASS));
    EXPECT_EQ(array(oxINT8_CLASS, Shape::UNKNOWN, Density::FULL, Complexity::COMPLEX, 0).asScalar(), scalar(oxINT8_CLASS, true));
    EXPECT_EQ(array(oxDOUBLE_CLASS, Shape::SCALAR, Density::SPARSE, Complexity::NOT_COMPLEX, 0).asScalar(), std::nullopt);
    EXPECT_EQ(array(oxVOID_CLASS, Shape::SCALAR, Density::FULL, Complexity::NOT_COMPLEX, 0).asScalar(), std::nullopt);
}

TEST(OxArrayTypes, SupportLevelRejectsBoxedScalarInputsAndObjectsWithoutService) {
    EXPECT_EQ(realDouble(Shape::SCALAR, 0).getLxeSupportLevel(INPUT), LxeSupportLevel::NO_SUPPORT);
    EXPECT_EQ(array(oxCELL_CLASS, Shape::SCALAR, Density::FULL, Complexity::NOT_COMPLEX, 0).getLxeSupportLevel(INPUT),
              LxeSupportLevel::EQUIVALENT_SUPPORT);
    const OxArrayTypes object = array(classId(30), Shape::SCALAR, Density::FULL, Complexity::NOT_COMPLEX, 0);
    EXPECT_EQ(object.getLxeSupportLevel(INPUT), LxeSupportLevel::NO_SUPPORT);
    EXPECT_EQ(object.getLxeSupportLevel(OUTPUT), LxeSupportLevel::NO_SUPPORT);
}

TEST(OxArrayTypes, GreaterPrecedenceListsNameTheMoreSpecificDeclarations) {
    EXPECT_TRUE(realDouble(Shape::EMPTY, 0).getGreaterPrecedenceTypes().empty());
    EXPECT_TRUE(realDouble(Shape::SCALAR, 0, RELAXED).getGreaterPrecedenceTypes().empty());
    EXPECT_TRUE(realDouble(static_cast<Shape>(11), 0, RELAXED).getGreaterPrecedenceTypes().empty());

    EXPECT_EQ(realDouble(Shape::EMPTY, 0, RELAXED).getGreaterPrecedenceTypes(),
              (ArgTypeList{realDouble(Shape::EMPTY_ROW, 0, RELAXED), realDouble(Shape::EMPTY_COL, 0, RELAXED)}));
    EXPECT_EQ(realDouble(Shape::ROW, 1, RELAXED).getGreaterPrecedenceTypes(),
              (ArgTypeList{realDouble(Shape::EMPTY_ROW, 0, RELAXED), scalar(oxDOUBLE_CLASS)}));
    const auto cellColumn = array(oxCELL_CLASS, Shape::COLUMN, Density::FULL, Complexity::NOT_COMPLEX, 1, RELAXED);
    EXPECT_EQ(cellColumn.getGreaterPrecedenceTypes().back(),
              ArgType(array(oxCELL_CLASS, Shape::SCALAR, Density::FULL, Complexity::NOT_COMPLEX, 0, RELAXED)));
    const auto complexVector = array(oxSINGLE_CLASS, Shape::VECTOR, Density::UNKNOWN, Complexity::COMPLEX, 1, RELAXED);
    EXPECT_EQ(complexVector.getGreaterPrecedenceTypes(),
              (ArgTypeList{scalar(oxSINGLE_CLASS, true),
                           array(oxSINGLE_CLASS, Shape::ROW, Density::UNKNOWN, Complexity::COMPLEX, 1, RELAXED),
                           array(oxSINGLE_CLASS, Shape::COLUMN, Density::UNKNOWN, Complexity::COMPLEX, 1, RELAXED)}));

    EXPECT_EQ(realDouble(Shape::TWO_D, 2, RELAXED).getGreaterPrecedenceTypes().size(), 7u);
    const ArgTypeList fourD = realDouble(Shape::ND, 4, RELAXED).getGreaterPrecedenceTypes();
    ASSERT_EQ(fourD.size(), 9u);
    EXPECT_EQ(fourD[7], ArgType(realDouble(Shape::TWO_D, 2, RELAXED)));
    EXPECT_EQ(fourD[8], ArgType(realDouble(Shape::ND, 3, RELAXED)));
    EXPECT_EQ(realDouble(Shape::ND, ANY_DIMS, RELAXED).getGreaterPrecedenceTypes().back(),
              ArgType(realDouble(Shape::ND, 5, RELAXED)));
}

TEST(OxArrayTypes, DebugPrintNamesEveryField) {
    EXPECT_EQ(printed(realDouble(Shape::SCALAR, 0)), "OxArrayTypes: oxDOUBLE_CLASS SCALAR FULL NOT_COMPLEX STRICT");
    EXPECT_EQ(printed(array(classId(19), Shape::ND, Density::SPARSE, Complexity::COMPLEX, 3, RELAXED)),
              "OxArrayTypes: oxOBJECT_CLASS(19) 3D SPARSE COMPLEX RELAXED");
    OxArrayTypes odd = array(classId(-2), static_cast<Shape>(40), static_cast<Density>(9), static_cast<Complexity>(9), 0);
    odd.setSignatureTolerance(static_cast<SignatureTolerance>(5));
    EXPECT_EQ(printed(odd), "OxArrayTypes: ?-2? Unknown Shape Unknown Density Unknown Complexity ");
}

TEST(OxArrayTypes, TypeExpressionSpellsClosedAndOpenParts) {
    EXPECT_EQ(realDouble(Shape::ROW, 1).toString(INPUT, 0), "oxArray_of<double,vector<row>,ox_full,false>");
    EXPECT_EQ(realDouble(Shape::VECTOR, 1, RELAXED).toString(INPUT, 3), "oxArray_of<double,$Shape3:B2IsShapeAnyVector,ox_full,false>");
    for (int open : {0, 17, 19, -1}) {
        EXPECT_EQ(array(classId(open), Shape::SCALAR, Density::FULL, Complexity::NOT_COMPLEX, 0).toString(INPUT, 2),
                  "oxArray_of<$a2,$b2,$c2,$d2>");
    }
    EXPECT_EQ(array(classId(18), Shape::EMPTY_COL, Density::FULL, Complexity::NOT_COMPLEX, 0).toString(INPUT, 0),
              "oxArray_of<oxArray,ox_empty<vector<column>, false>,ox_full,false>");
    EXPECT_EQ(array(oxCELL_CLASS, Shape::EMPTY, Density::UNKNOWN, Complexity::UNKNOWN, 0).toString(INPUT, 1),
              "oxArray_of<oxArray,ox_empty<$Shape1, $IsZeroByZero1>,ox_cell,$Complexity1>");
    EXPECT_EQ(array(oxLOGICAL_CLASS, Shape::UNKNOWN, Density::UNKNOWN, Complexity::NOT_COMPLEX, ANY_DIMS).toString(INPUT, 4),
              "oxArray_of<boolean,,$Attribute4,false>");
    EXPECT_EQ(array(oxDOUBLE_CLASS, Shape::TWO_D, Density::SPARSE, Complexity::COMPLEX, 2, RELAXED).toString(INPUT, 1),
              "oxArray_of<double,$Shape1,ox_sparse,true>");
    const std::pair<std::uint64_t, const char*> relaxedNd[] = {
        {4, "$Shape0:B2IsShape4d"}, {ANY_DIMS, "$Shape0"}, {6, "ox_nd_array<6>"}};
    for (const auto& [numDims, shape] : relaxedNd) {
        EXPECT_EQ(realDouble(Shape::ND, numDims, RELAXED).toString(INPUT, 0),
                  std::string("oxArray_of<double,") + shape + ",ox_full,false>");
    }
}

TEST(OxArrayTypes, ScalarNumericOutputClosesAnOpenAttribute) {
    const auto openScalar = array(oxINT32_CLASS, Shape::SCALAR, Density::UNKNOWN, Complexity::UNKNOWN, 0);
    EXPECT_EQ(openScalar.toString(INPUT, 1), "oxArray_of<int32,ox_scalar,$Attribute1,$Complexity1>");
    EXPECT_EQ(openScalar.toString(OUTPUT, 1), "oxArray_of<int32,ox_scalar,ox_full,$Complexity1>");
    const auto openRow = array(oxINT32_CLASS, Shape::ROW, Density::UNKNOWN, Complexity::UNKNOWN, 1);
    EXPECT_EQ(openRow.toString(OUTPUT, 0), "oxArray_of<int32,vector<row>,$Attribute0,$Complexity0>");
}

TEST(NumericScalarTypes, NamesAndOrdering) {
    EXPECT_EQ(scalar(oxLOGICAL_CLASS).toString(), "boolean");
    EXPECT_EQ(scalar(oxINT16_CLASS, true).toString(), "int16");
    EXPECT_TRUE(scalar(oxDOUBLE_CLASS, true) < scalar(oxSINGLE_CLASS));
    EXPECT_FALSE(scalar(oxDOUBLE_CLASS) < scalar(oxDOUBLE_CLASS));
}
