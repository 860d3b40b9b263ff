// The array library's remaining entry points given null handles, arrays of the wrong
// class and positions outside the array: each raises its error and leaks nothing, even
// where it was handed a reference to take over.
#include <matrix/oxArray.hpp>

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using matrix::ArrayPtr;

TEST(HostArrayHandles, EveryQueryRefusesANullHandle) {
    const std::vector<std::pair<std::string, std::function<void()>>> queries = {
        {"getNumberOfDimensions", [] { matrix::getNumberOfDimensions(nullptr); }},
        {"isEmpty", [] { matrix::isEmpty(nullptr); }},
        {"isScalar", [] { matrix::isScalar(nullptr); }},
        {"isSparse", [] { matrix::isSparse(nullptr); }},
        {"isSharedData", [] { matrix::isSharedData(nullptr); }},
        {"isTwoDimensional", [] { matrix::isTwoDimensional(nullptr); }},
        {"isOrdinaryStorage", [] { matrix::isOrdinaryStorage(nullptr); }},
        {"setForeignStorage", [] { matrix::setForeignStorage(nullptr, true); }},
        {"hasOpaqueDimensions", [] { matrix::hasOpaqueDimensions(nullptr); }},
        {"getReferenceCount", [] { matrix::getReferenceCount(nullptr); }},
        {"clearTemporary", [] { matrix::clearTemporary(nullptr); }},
        {"getObjectPayload", [] { matrix::getObjectPayload(nullptr); }},
        {"getFieldNames", [] { matrix::getFieldNames(nullptr); }},
        {"getFunctionName", [] { matrix::getFunctionName(nullptr); }},
        {"createSharedDataCopy", [] { matrix::createSharedDataCopy(nullptr); }},
        {"getData", [] { matrix::getData(static_cast<const oxArray*>(nullptr)); }},
    };
    for (const auto& [name, query] : queries) {
        EXPECT_THROW(query(), std::logic_error) << name;
    }
}

TEST(HostArrayHandles, AccessorsRefuseArraysOfAnotherClass) {
    const ArrayPtr number(matrix::createScalar(2.0));
    EXPECT_THROW(matrix::getCell(number.get(), 0), std::invalid_argument);
    EXPECT_THROW(matrix::getFieldNames(number.get()), std::invalid_argument);
    EXPECT_THROW(matrix::getFunctionName(number.get()), std::invalid_argument);
    EXPECT_EQ(matrix::getObjectPayload(number.get()), nullptr);
    const ArrayPtr cell(matrix::createCell(std::array<std::size_t, 2>{1, 2}));
    EXPECT_THROW(matrix::createSharedDataCopy(cell.get()), std::invalid_argument);
    EXPECT_EQ(matrix::getData(cell.get()), nullptr);
}

TEST(HostArrayHandles, SetCellTakesItsElementOverEvenWhenRefused) {
    const ArrayPtr cell(matrix::createCell(std::array<std::size_t, 2>{1, 2}));
    EXPECT_THROW(matrix::setCell(cell.get(), 2, matrix::createScalar(1.0)), std::out_of_range);
    EXPECT_THROW(matrix::setCell(nullptr, 0, matrix::createScalar(1.0)), std::logic_error);
    const ArrayPtr number(matrix::createScalar(2.0));
    EXPECT_THROW(matrix::setCell(number.get(), 0, matrix::createScalar(1.0)), std::invalid_argument);
    EXPECT_THROW(matrix::getCell(cell.get(), 2), std::out_of_range);
    matrix::setCell(cell.get(), 1, nullptr);
    EXPECT_EQ(matrix::getCell(cell.get(), 1), nullptr);
}

TEST(HostArrayHandles, CreationRefusesImpossibleShapesAndClasses) {
    const std::size_t huge = std::size_t{1} << 40;
    EXPECT_THROW(matrix::createCharArray(std::array<std::size_t, 2>{huge, huge}, u""), matrix::ShapeError);
    EXPECT_THROW(matrix::createCharArray(std::array<std::size_t, 2>{2, 2}, u"abc"), std::invalid_argument);
    EXPECT_THROW(matrix::createWithOpaqueDimensions(std::array<std::size_t, 2>{huge, huge}, oxDOUBLE_CLASS, oxREAL),
                 matrix::ShapeError);
    EXPECT_THROW(matrix::detail::do_create_uninitnumeric(std::array<std::size_t, 2>{1, 1}, oxDOUBLE_CLASS,
                                                         static_cast<oxComplexity>(7)),
                 matrix::ClassIdError);
    EXPECT_THROW(matrix::detail::do_create_uninitnumeric(std::array<std::size_t, 2>{1, 1}, static_cast<oxClassID>(-3),
                                                         oxREAL),
                 matrix::ClassIdError);
    EXPECT_THROW(matrix::createObject(static_cast<oxClassID>(-1), std::array<std::size_t, 2>{1, 1}, nullptr),
                 matrix::ClassIdError);
}

} // namespace
