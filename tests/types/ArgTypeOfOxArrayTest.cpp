#include "TypeSamples.hpp"

#include <builtin/types/ArgTypeOfOxArray.hpp>

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <vector>

using namespace typesamples;

namespace {

matrix::ArrayPtr owned(oxArray* array) { return matrix::ArrayPtr(array); }

matrix::ArrayPtr numeric(std::initializer_list<std::size_t> dims, oxClassID id = oxDOUBLE_CLASS,
                         oxComplexity complexity = oxREAL) {
    const std::vector<std::size_t> extents(dims);
    return owned(matrix::detail::do_create_uninitnumeric(extents, id, complexity));
}

ArgType classify(const matrix::ArrayPtr& array) { return getArgTypeOfOxArray(array.get()); }

bool isUnsupported(const ArgType& type) { return std::holds_alternative<UnsupportedArgType>(type); }

} // namespace

TEST(ArgTypeOfOxArray, ShapesFollowTheDimensions) {
    const std::pair<std::vector<std::size_t>, std::pair<Shape, std::uint64_t>> cases[] = {
        {{1, 1}, {Shape::SCALAR, 0}},  {{1, 0}, {Shape::EMPTY_ROW, 0}}, {{0, 1}, {Shape::EMPTY_COL, 0}},
        {{0, 0}, {Shape::EMPTY, 0}},   {{0, 3}, {Shape::EMPTY, 0}},     {{3, 0}, {Shape::EMPTY, 0}},
        {{1, 3}, {Shape::ROW, 1}},     {{3, 1}, {Shape::COLUMN, 1}},    {{2, 3}, {Shape::TWO_D, 2}},
        {{2, 3, 4}, {Shape::ND, 3}},   {{2, 1, 1, 5}, {Shape::ND, 4}},  {{2, 0, 3}, {Shape::EMPTY, 0}},
        {{2, 3, 1}, {Shape::TWO_D, 2}}, {{1, 1, 1}, {Shape::SCALAR, 0}},
    };
    for (const auto& [dims, shape] : cases) {
        const auto array = owned(matrix::detail::do_create_uninitnumeric(dims, oxDOUBLE_CLASS, oxREAL));
        const ArgType expected = realDouble(shape.first, shape.second);
        EXPECT_EQ(classify(array), expected) << ::testing::PrintToString(dims);
    }
    const std::size_t opaque[] = {1, 4};
    const auto pending = owned(matrix::createWithOpaqueDimensions(opaque, oxSINGLE_CLASS, oxCOMPLEX));
    EXPECT_EQ(classify(pending), ArgType(array(oxSINGLE_CLASS, Shape::ROW, Density::FULL, Complexity::COMPLEX, 1)));
}

TEST(ArgTypeOfOxArray, FullArraysOfDescribableClassesAreStrictDescriptors) {
    const std::size_t row[] = {1, 2};
    const auto check = [](const matrix::ArrayPtr& a, oxClassID id, Shape shape, Complexity complexity, std::uint64_t numDims) {
        EXPECT_EQ(classify(a), ArgType(array(id, shape, Density::FULL, complexity, numDims))) << toString(id);
    };
    for (int id = oxLOGICAL_CLASS; id <= oxUINT64_CLASS; ++id) {
        if (id != oxVOID_CLASS) {
            check(numeric({1, 2}, classId(id)), classId(id), Shape::ROW, Complexity::NOT_COMPLEX, 1);
        }
    }
    for (int id = oxDOUBLE_CLASS; id <= oxUINT64_CLASS; ++id) {
        check(numeric({2, 2}, classId(id), oxCOMPLEX), classId(id), Shape::TWO_D, Complexity::COMPLEX, 2);
    }
    check(owned(matrix::createScalar(true)), oxLOGICAL_CLASS, Shape::SCALAR, Complexity::NOT_COMPLEX, 0);
    check(owned(matrix::createCharRow(u"hello")), oxCHAR_CLASS, Shape::ROW, Complexity::NOT_COMPLEX, 1);
    check(owned(matrix::createCell(row)), oxCELL_CLASS, Shape::ROW, Complexity::NOT_COMPLEX, 1);
    check(owned(matrix::createStruct(row, {"a"})), oxSTRUCT_CLASS, Shape::ROW, Complexity::NOT_COMPLEX, 1);
    check(owned(matrix::createFunctionHandle("sin")), oxFUNCTION_CLASS, Shape::SCALAR, Complexity::NOT_COMPLEX, 0);
    check(owned(matrix::createObject(classId(18), row, nullptr)), classId(18), Shape::ROW, Complexity::NOT_COMPLEX, 1);
    check(owned(matrix::createObject(classId(700), row, nullptr)), classId(700), Shape::ROW, Complexity::NOT_COMPLEX, 1);
}

TEST(ArgTypeOfOxArray, SparseArraysAreDoubleOnly) {
    EXPECT_EQ(classify(owned(matrix::createSparseDouble(3, 1, false))),
              ArgType(array(oxDOUBLE_CLASS, Shape::COLUMN, Density::SPARSE, Complexity::NOT_COMPLEX, 1)));
    EXPECT_EQ(classify(owned(matrix::createSparseDouble(1, 1, true))),
              ArgType(array(oxDOUBLE_CLASS, Shape::SCALAR, Density::SPARSE, Complexity::COMPLEX, 0)));
}

TEST(ArgTypeOfOxArray, NullOpaqueAndRejectedArraysAreUnsupported) {
    EXPECT_TRUE(isUnsupported(getArgTypeOfOxArray(nullptr)));
    const std::size_t scalarDims[] = {1, 1};
    EXPECT_TRUE(isUnsupported(classify(owned(matrix::createOpaque(scalarDims)))));
    const std::size_t overflowing[] = {std::size_t{1} << 40, std::size_t{1} << 40};
    EXPECT_TRUE(isUnsupported(classify(owned(matrix::createObject(classId(20), overflowing, nullptr)))));
    EXPECT_TRUE(isUnsupported(classify(owned(matrix::createSparseDouble(std::size_t{1} << 40, std::size_t{1} << 40, false)))));
    const std::vector<std::size_t> tooManyDims(33, 2);
    EXPECT_TRUE(isUnsupported(classify(owned(matrix::createObject(classId(20), tooManyDims, nullptr)))));
}
