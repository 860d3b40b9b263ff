#include <orvex/indexArray.hpp>
#include <orvex/parseLiteral.hpp>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using matrix::ArrayPtr;
using Dims = std::vector<std::size_t>;

struct Selection {
    Dims dims;
    std::vector<double> data;
};

// Indexes the literal array with literal subscripts; ":" stands for the whole dimension.
Selection select(const std::string& array, const std::vector<std::string>& subscripts) {
    const ArrayPtr source = orvex::parseLiteral(array);
    std::vector<ArrayPtr> owned;
    std::vector<const oxArray*> handles;
    for (const std::string& subscript : subscripts) {
        owned.push_back(subscript == ":" ? nullptr : orvex::parseLiteral(subscript));
        handles.push_back(owned.back().get());
    }
    const ArrayPtr result = orvex::indexArray(source.get(), handles);
    const matrix::Dims dims = matrix::getDimensions(result.get());
    const double* data = matrix::getTypedData<double>(result.get());
    return {{dims.begin(), dims.end()}, {data, data + matrix::getNumberOfElements(result.get())}};
}

void expectSelection(const std::string& array, const std::vector<std::string>& subscripts, Dims dims,
                     std::vector<double> data) {
    SCOPED_TRACE(array + " indexed by " + ::testing::PrintToString(subscripts));
    const Selection selection = select(array, subscripts);
    EXPECT_EQ(selection.dims, dims);
    EXPECT_EQ(selection.data, data);
}

constexpr const char* MATRIX = "[1 2 3; 4 5 6]";

TEST(IndexArray, SubscriptsGiveOneDimensionEach) {
    expectSelection(MATRIX, {"2", "1"}, {1, 1}, {4});
    expectSelection(MATRIX, {"2", ":"}, {1, 3}, {4, 5, 6});
    expectSelection(MATRIX, {":", "[3 1]"}, {2, 2}, {3, 6, 1, 4});
    expectSelection(MATRIX, {"int8(1)", "uint64([2 2])"}, {1, 2}, {2, 2});
    expectSelection(MATRIX, {"[true false]", ":"}, {1, 3}, {1, 2, 3});
    // The last subscript runs over every dimension that remains.
    expectSelection(MATRIX, {"1", "1", "1"}, {1, 1}, {1});
    expectSelection(MATRIX, {":", "[]"}, {2, 0}, {});
}

TEST(IndexArray, LinearIndicesKeepTheirShapeExceptVectorByVector) {
    expectSelection(MATRIX, {"4"}, {1, 1}, {5});
    expectSelection(MATRIX, {"[1 2; 3 4]"}, {2, 2}, {1, 2, 4, 5});
    expectSelection(MATRIX, {":"}, {6, 1}, {1, 4, 2, 5, 3, 6});
    expectSelection(MATRIX, {"[1; 6]"}, {2, 1}, {1, 6});
    expectSelection("[10 20 30]", {"[3; 1]"}, {1, 2}, {30, 10});
    expectSelection("[10; 20; 30]", {"[3 1]"}, {2, 1}, {30, 10});
    expectSelection("[10 20 30]", {"[true false true]"}, {1, 2}, {10, 30});
    expectSelection("7", {"[1 1 1]"}, {1, 3}, {7, 7, 7});
}

TEST(IndexArray, EndCountsTheDimensionsItStandsFor) {
    const ArrayPtr matrix = orvex::parseLiteral(MATRIX);
    EXPECT_EQ(orvex::endOf(matrix.get(), 0, 1), 6u);
    EXPECT_EQ(orvex::endOf(matrix.get(), 0, 2), 2u);
    EXPECT_EQ(orvex::endOf(matrix.get(), 1, 2), 3u);
    EXPECT_EQ(orvex::endOf(matrix.get(), 2, 3), 1u);
}

TEST(IndexArray, KeepsClassAndComplexParts) {
    const ArrayPtr source = orvex::parseLiteral("[1+2i 3-4i]");
    const ArrayPtr index = orvex::parseLiteral("2");
    const oxArray* subscripts[] = {index.get()};
    const ArrayPtr result = orvex::indexArray(source.get(), subscripts);
    ASSERT_TRUE(matrix::isComplex(result.get()));
    EXPECT_EQ(matrix::getTypedData<double>(result.get())[0], 3);
    EXPECT_EQ(matrix::getTypedData<double>(result.get())[1], -4);

    const ArrayPtr text = orvex::parseLiteral("'abc'");
    const ArrayPtr range = orvex::parseLiteral("[3 2]");
    const oxArray* backwards[] = {range.get()};
    const ArrayPtr reversed = orvex::indexArray(text.get(), backwards);
    EXPECT_EQ(matrix::getClassID(reversed.get()), oxCHAR_CLASS);
    EXPECT_EQ(std::u16string(matrix::getTypedData<char16_t>(reversed.get()), 2), u"cb");
}

TEST(IndexArray, RefusesWhatIsNoIndexOrOutside) {
    const auto message = [](const std::string& array, const std::vector<std::string>& subscripts) {
        try {
            select(array, subscripts);
        } catch (const orvex::IndexError& error) {
            return std::string(error.what());
        }
        return std::string("no error");
    };
    EXPECT_EQ(message(MATRIX, {"7"}), "Index 7 exceeds the 6 elements of the array.");
    EXPECT_EQ(message(MATRIX, {"1", "4"}), "Index 4 in position 2 exceeds the array's 3 along that dimension.");
    EXPECT_EQ(message(MATRIX, {"0"}), "Index is 0; indices are positive integers or logical masks.");
    EXPECT_EQ(message(MATRIX, {"1.5", "1"}), "Index in position 1 is 1.5; indices are positive integers or logical masks.");
    EXPECT_EQ(message(MATRIX, {"NaN"}), "Index is NaN; indices are positive integers or logical masks.");
    EXPECT_EQ(message(MATRIX, {"'a'"}), "Index is neither numbers nor a logical mask.");
    EXPECT_EQ(message(MATRIX, {"[true true true true true true true]"}), "Index 7 exceeds the 6 elements of the array.");
}

} // namespace
