#include <matrix/oxArray.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

namespace {

using matrix::ArrayPtr;

std::vector<std::size_t> dimsOf(const oxArray* array) {
    const matrix::Dims dims = matrix::getDimensions(array);
    return {dims.begin(), dims.end()};
}

ArrayPtr numeric(std::vector<std::size_t> dims, oxClassID classId, oxComplexity complexity = oxREAL) {
    return ArrayPtr(matrix::detail::do_create_uninitnumeric(dims, classId, complexity));
}

TEST(ArrayCreation, ScalarsHoldTheirValueInTheMatchingClass) {
    const ArrayPtr real(matrix::createScalar(2.5));
    EXPECT_EQ(matrix::getClassID(real.get()), oxDOUBLE_CLASS);
    EXPECT_EQ(dimsOf(real.get()), (std::vector<std::size_t>{1, 1}));
    EXPECT_TRUE(matrix::isScalar(real.get()) && matrix::isTwoDimensional(real.get()));
    EXPECT_FALSE(matrix::isComplex(real.get()) || matrix::isSparse(real.get()) || matrix::isTemporary(real.get()));
    EXPECT_TRUE(matrix::isOrdinaryStorage(real.get()));
    EXPECT_EQ(*matrix::getTypedData<double>(real.get()), 2.5);

    const ArrayPtr complex(matrix::createScalar(std::complex<float>(1, -2)));
    EXPECT_EQ(matrix::getClassID(complex.get()), oxSINGLE_CLASS);
    EXPECT_TRUE(matrix::isComplex(complex.get()));
    EXPECT_EQ(matrix::getTypedData<float>(complex.get())[1], -2.0f);

    const ArrayPtr logical(matrix::createScalar(true));
    EXPECT_EQ(matrix::getClassID(logical.get()), oxLOGICAL_CLASS);
    EXPECT_EQ(*matrix::getTypedData<std::uint8_t>(logical.get()), 1);
    const ArrayPtr character(matrix::createScalar(u'A'));
    EXPECT_EQ(matrix::getClassID(character.get()), oxCHAR_CLASS);
    EXPECT_EQ(*matrix::getTypedData<char16_t>(character.get()), 0x41);
    EXPECT_EQ(matrix::getClassID(ArrayPtr(matrix::createScalar(1LL)).get()), oxINT64_CLASS);
    EXPECT_EQ(matrix::getClassID(ArrayPtr(matrix::createScalar(1UL)).get()), oxUINT64_CLASS);
    EXPECT_EQ(matrix::getClassID(ArrayPtr(matrix::createScalar<signed char>(1)).get()), oxINT8_CLASS);
    EXPECT_EQ(matrix::getClassID(ArrayPtr(matrix::createScalar<unsigned short>(1)).get()), oxUINT16_CLASS);
}

TEST(ArrayCreation, DimensionsDropTrailingSingletonsAndLargeDataIsAligned) {
    EXPECT_EQ(dimsOf(numeric({3, 4, 1, 1}, oxINT32_CLASS).get()), (std::vector<std::size_t>{3, 4}));
    EXPECT_EQ(dimsOf(numeric({}, oxINT32_CLASS).get()), (std::vector<std::size_t>{1, 1}));
    EXPECT_EQ(dimsOf(numeric({5}, oxINT32_CLASS).get()), (std::vector<std::size_t>{5, 1}));
    const ArrayPtr threeD = numeric({2, 1, 3, 1}, oxUINT8_CLASS);
    EXPECT_EQ(dimsOf(threeD.get()), (std::vector<std::size_t>{2, 1, 3}));
    EXPECT_FALSE(matrix::isTwoDimensional(threeD.get()));
    const ArrayPtr manyDims = numeric({2, 2, 2, 2, 2, 2}, oxINT8_CLASS);
    EXPECT_EQ(matrix::getNumberOfDimensions(manyDims.get()), 6u);
    EXPECT_EQ(matrix::getNumberOfElements(manyDims.get()), 64u);
    EXPECT_TRUE(matrix::isEmpty(numeric({0, 3}, oxDOUBLE_CLASS).get()));

    const ArrayPtr large = numeric({100, 30}, oxDOUBLE_CLASS, oxCOMPLEX);
    auto* data = matrix::getTypedData<double>(large.get());
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(data) % 64, 0u);
    for (std::size_t i = 0; i < 6000; ++i) data[i] = static_cast<double>(i);
    EXPECT_EQ(data[5999], 5999.0);
    EXPECT_EQ(matrix::getElementSize(oxDOUBLE_CLASS), 8u);
    EXPECT_EQ(matrix::getElementSize(oxCELL_CLASS), 0u);
}

TEST(ArrayCreation, RefusesWhatTheHostCannotRepresent) {
    EXPECT_THROW(numeric({1, 1}, oxCELL_CLASS), matrix::ClassIdError);
    EXPECT_THROW(numeric({1, 1}, oxLOGICAL_CLASS, oxCOMPLEX), matrix::ClassIdError);
    EXPECT_THROW(numeric({1, 1}, oxCHAR_CLASS, oxCOMPLEX), matrix::ClassIdError);
    const std::size_t huge = std::numeric_limits<std::size_t>::max() / 2;
    try {
        numeric({huge, 3}, oxDOUBLE_CLASS);
        ADD_FAILURE() << "overflowing dimensions accepted";
    } catch (const matrix::ShapeError& error) {
        EXPECT_NE(std::string(error.what()).find(std::to_string(huge) + "x3"), std::string::npos) << error.what();
    }
    EXPECT_THROW(numeric({1u << 31, 1u << 31}, oxDOUBLE_CLASS), matrix::ShapeError) << "element count fits, bytes do not";
    const std::size_t cellDims[] = {huge, 3};
    EXPECT_THROW(matrix::createCell(cellDims), matrix::ShapeError);

    // Arrays without stored elements accept any dimensions; the rejection reports them.
    const ArrayPtr hugeSparse(matrix::createSparseDouble(std::size_t{1} << 40, std::size_t{1} << 40, false));
    EXPECT_THROW(matrix::rejectUnsupportedShape(hugeSparse.get()), matrix::ShapeError);
    const std::vector<std::size_t> tooManyDims(33, 2);
    EXPECT_THROW(matrix::rejectUnsupportedShape(ArrayPtr(matrix::createOpaque(tooManyDims)).get()), matrix::ShapeError);
    EXPECT_NO_THROW(matrix::rejectUnsupportedShape(ArrayPtr(matrix::createScalar(1.0)).get()));

    EXPECT_THROW(matrix::rejectUnsupportedClassId(static_cast<oxClassID>(-1)), matrix::ClassIdError);
    EXPECT_THROW(matrix::rejectUnsupportedClassId(static_cast<oxClassID>(matrix::MAX_CLASS_ID + 1)), matrix::ClassIdError);
    EXPECT_NO_THROW(matrix::rejectUnsupportedClassId(static_cast<oxClassID>(matrix::MAX_CLASS_ID)));
    EXPECT_THROW(matrix::createObject(oxDOUBLE_CLASS, {}, nullptr), matrix::ClassIdError);
    const std::size_t twoByThree[] = {2, 3};
    EXPECT_THROW(matrix::createCharArray(twoByThree, u"abc"), std::invalid_argument);
}

TEST(ArrayCreation, NonNumericClassesKeepTheirContent) {
    const std::size_t twoByThree[] = {2, 3};
    const ArrayPtr chars(matrix::createCharArray(twoByThree, u"adbecf"));
    EXPECT_EQ(fl::ustring(matrix::getTypedData<char16_t>(chars.get()), 6), u"adbecf");
    EXPECT_EQ(dimsOf(ArrayPtr(matrix::createCharRow(u"hello")).get()), (std::vector<std::size_t>{1, 5}));

    const ArrayPtr sparse(matrix::createSparseDouble(3, 4, true));
    EXPECT_TRUE(matrix::isSparse(sparse.get()) && matrix::isComplex(sparse.get()));
    EXPECT_EQ(matrix::getData(sparse.get()), nullptr);

    const std::size_t oneByTwo[] = {1, 2};
    const ArrayPtr cell(matrix::createCell(oneByTwo));
    matrix::setCell(cell.get(), 1, matrix::createScalar(3.0));
    EXPECT_EQ(matrix::getCell(cell.get(), 0), nullptr);
    EXPECT_THROW(matrix::setCell(cell.get(), 2, matrix::createScalar(4.0)), std::out_of_range);
    const ArrayPtr copy(matrix::duplicateArray(cell.get()));
    ASSERT_NE(matrix::getCell(copy.get(), 1), matrix::getCell(cell.get(), 1));
    EXPECT_EQ(*matrix::getTypedData<double>(matrix::getCell(copy.get(), 1)), 3.0);

    const ArrayPtr structArray(matrix::createStruct(oneByTwo, {"a", "b"}));
    EXPECT_EQ(matrix::getFieldNames(structArray.get()), (std::vector<std::string>{"a", "b"}));
    EXPECT_THROW(matrix::getFieldNames(cell.get()), std::invalid_argument);
    EXPECT_EQ(matrix::getFunctionName(ArrayPtr(matrix::createFunctionHandle("sin")).get()), "sin");

    const auto payload = std::make_shared<int>(5);
    const ArrayPtr object(matrix::createObject(static_cast<oxClassID>(40), oneByTwo, payload));
    EXPECT_EQ(matrix::getClassID(object.get()), 40);
    EXPECT_EQ(matrix::getObjectPayload(object.get()), payload);
    EXPECT_EQ(payload.use_count(), 2);
}

} // namespace
