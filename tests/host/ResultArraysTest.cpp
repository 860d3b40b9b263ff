// The public creation functions an author makes results with (matrix/ResultArrays.hpp).
#include <matrix/ResultArrays.hpp>

#include <fl/i18n.hpp>

#include <gtest/gtest.h>

#include <complex>
#include <cstdint>
#include <limits>
#include <vector>

namespace {

using matrix::ArrayPtr;

std::vector<std::size_t> dimsOf(const oxArray* array) {
    const matrix::Dims dims = matrix::getDimensions(array);
    return {dims.begin(), dims.end()};
}

TEST(ResultArrays, NumericArraysOfEveryClassStartAtZero) {
    for (const oxClassID classId : {oxDOUBLE_CLASS, oxSINGLE_CLASS, oxINT8_CLASS, oxUINT8_CLASS, oxINT16_CLASS,
                                    oxUINT16_CLASS, oxINT32_CLASS, oxUINT32_CLASS, oxINT64_CLASS, oxUINT64_CLASS}) {
        const ArrayPtr array(matrix::createNumericArray({2, 3, 4}, classId));
        EXPECT_EQ(matrix::getClassID(array.get()), classId);
        EXPECT_EQ(dimsOf(array.get()), (std::vector<std::size_t>{2, 3, 4}));
        EXPECT_FALSE(matrix::isComplex(array.get()));
        const auto* bytes = static_cast<const unsigned char*>(matrix::getData(array.get()));
        const std::size_t count = 24 * matrix::getElementSize(classId);
        EXPECT_EQ(std::count(bytes, bytes + count, 0), static_cast<std::ptrdiff_t>(count)) << classId;
    }
}

TEST(ResultArrays, ComplexArraysInterleaveTheirParts) {
    const ArrayPtr array(matrix::createNumericArray({1, 2}, oxSINGLE_CLASS, oxCOMPLEX));
    EXPECT_TRUE(matrix::isComplex(array.get()));
    auto* data = matrix::getTypedData<std::complex<float>>(array.get());
    EXPECT_EQ(data[0], std::complex<float>(0, 0));
    data[1] = {1, -2};
    EXPECT_EQ(matrix::getTypedData<float>(array.get())[2], 1.0f);
    EXPECT_EQ(matrix::getTypedData<float>(array.get())[3], -2.0f);
}

TEST(ResultArrays, UninitialisedArraysHaveTheirShapeForTheBuiltinToFill) {
    const std::vector<std::size_t> dims{3, 1};
    const ArrayPtr array(matrix::createUninitializedNumericArray(dims, oxINT32_CLASS));
    EXPECT_EQ(matrix::getClassID(array.get()), oxINT32_CLASS);
    EXPECT_EQ(dimsOf(array.get()), dims);
    std::int32_t* data = matrix::getTypedData<std::int32_t>(array.get());
    for (int i = 0; i < 3; ++i) {
        data[i] = i;
    }
    EXPECT_EQ(data[2], 2);
    const ArrayPtr empty(matrix::createUninitializedNumericArray({0, 5}, oxDOUBLE_CLASS));
    EXPECT_TRUE(matrix::isEmpty(empty.get()));
}

TEST(ResultArrays, OnlyClassesThatHoldNumbersMakeNumericArrays) {
    for (const oxClassID classId : {oxCELL_CLASS, oxSTRUCT_CLASS, oxUNKNOWN_CLASS, oxFIRST_OBJECT_CLASS}) {
        EXPECT_THROW(ArrayPtr(matrix::createNumericArray({1, 1}, classId)), matrix::ClassIdError) << classId;
        EXPECT_THROW(ArrayPtr(matrix::createUninitializedNumericArray({1, 1}, classId)), matrix::ClassIdError);
    }
    // Logical and char hold numbers, but never complex ones.
    const ArrayPtr flags(matrix::createNumericArray({1, 2}, oxLOGICAL_CLASS));
    EXPECT_EQ(matrix::getClassID(flags.get()), oxLOGICAL_CLASS);
    EXPECT_THROW(ArrayPtr(matrix::createNumericArray({1, 1}, oxCHAR_CLASS, oxCOMPLEX)), matrix::ClassIdError);
    const std::size_t huge = std::numeric_limits<std::size_t>::max() / 2;
    EXPECT_THROW(ArrayPtr(matrix::createNumericArray({huge, 4}, oxDOUBLE_CLASS)), matrix::ShapeError);
}

TEST(ResultArrays, LogicalArraysStartFalse) {
    const ArrayPtr array(matrix::createLogicalArray({2, 2}));
    EXPECT_EQ(matrix::getClassID(array.get()), oxLOGICAL_CLASS);
    const bool* data = matrix::getTypedData<bool>(array.get());
    EXPECT_EQ(std::count(data, data + 4, false), 4);
}

TEST(ResultArrays, CharRowsFromUtf8) {
    const ArrayPtr row(matrix::createCharRowFromUtf8("h\xC3\xA9!"));
    EXPECT_EQ(matrix::getClassID(row.get()), oxCHAR_CLASS);
    EXPECT_EQ(dimsOf(row.get()), (std::vector<std::size_t>{1, 3}));
    EXPECT_EQ(std::u16string(matrix::getTypedData<char16_t>(row.get()), 3), u"h\u00e9!");
    EXPECT_THROW(ArrayPtr(matrix::createCharRowFromUtf8("\xC3")), fl::i18n::conversion_error);
}

} // namespace
