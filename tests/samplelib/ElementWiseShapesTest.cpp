// The sample's binary element-wise builtins over every class they take and every pair of
// shapes from a table of empties, scalars, rows, columns, matrices and N-d arrays. A
// broadcaster written here says what each pair must give: an array of the broadcast size
// whose every element is what the builtin gives for the two elements broadcast onto it
// (empty when the size is), or, when the sizes do not broadcast, the one size error.
#include "SampleBuiltins.hpp"

#include <foundation/core/except/Exception.hpp>
#include <matrix/oxArray.hpp>

#include <gtest/gtest.h>

#include <complex>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace {

using Velloc::builtin::BuiltinFcn;
using Shape = std::vector<std::size_t>;

struct ClassCase {
    const char* name;
    oxClassID id;
    bool complex;
};

const ClassCase DOUBLE{"double", oxDOUBLE_CLASS, false};
const ClassCase SINGLE{"single", oxSINGLE_CLASS, false};
const std::vector<ClassCase> NUMERIC_CLASSES{
    DOUBLE,
    SINGLE,
    {"int8", oxINT8_CLASS, false},
    {"uint8", oxUINT8_CLASS, false},
    {"int16", oxINT16_CLASS, false},
    {"uint16", oxUINT16_CLASS, false},
    {"int32", oxINT32_CLASS, false},
    {"uint32", oxUINT32_CLASS, false},
    {"int64", oxINT64_CLASS, false},
    {"uint64", oxUINT64_CLASS, false},
    {"complexDouble", oxDOUBLE_CLASS, true},
    {"complexSingle", oxSINGLE_CLASS, true},
};

struct BuiltinCase {
    const char* name;
    const BuiltinFcn& (*builtin)();
    std::vector<ClassCase> classes;
};

const std::vector<BuiltinCase> BINARY_BUILTINS{
    {"plus", &samplelib::plusBuiltin, NUMERIC_CLASSES},
    {"minus", &samplelib::minusBuiltin, NUMERIC_CLASSES},
    {"times", &samplelib::timesBuiltin, NUMERIC_CLASSES},
    {"rdivide", &samplelib::rdivideBuiltin, NUMERIC_CLASSES},
    {"power", &samplelib::powerBuiltin, NUMERIC_CLASSES},
    {"hypot", &samplelib::hypotBuiltin, {DOUBLE, SINGLE}},
};

// Empties, a scalar, a row, a column, a matrix and N-d arrays: their pairs match,
// broadcast (singletons against extents, 0 included) or mismatch.
const std::vector<Shape> SHAPES{{0, 0}, {1, 0}, {0, 3}, {1, 1},    {1, 3},
                                {4, 1}, {4, 3}, {4, 3, 2}, {1, 3, 2}, {4, 1, 2}};

// The reference broadcaster: missing trailing extents are 1; extents agree or one is 1.
std::optional<Shape> broadcast(const Shape& a, const Shape& b) {
    Shape out(std::max(a.size(), b.size()));
    for (std::size_t d = 0; d < out.size(); ++d) {
        const std::size_t m = d < a.size() ? a[d] : 1;
        const std::size_t n = d < b.size() ? b[d] : 1;
        if (m != n && m != 1 && n != 1) {
            return std::nullopt;
        }
        out[d] = m == 1 ? n : m;
    }
    return out;
}

// The column-major index into `operand` of the element broadcast onto element i of `out`.
std::size_t sourceOf(std::size_t i, const Shape& out, const Shape& operand) {
    std::size_t index = 0;
    std::size_t stride = 1;
    for (std::size_t d = 0; d < out.size(); ++d) {
        const std::size_t subscript = i % out[d];
        i /= out[d];
        const std::size_t extent = d < operand.size() ? operand[d] : 1;
        index += (extent == 1 ? 0 : subscript) * stride;
        stride *= extent;
    }
    return index;
}

std::string sizeText(const Shape& shape) {
    std::string text;
    for (const std::size_t extent : shape) {
        text += (text.empty() ? "" : "x") + std::to_string(extent);
    }
    return text;
}

template <class T>
void fillAs(oxArray* array, bool complex, std::size_t first) {
    const std::size_t count = matrix::getNumberOfElements(array);
    // Small positive values: every class holds them, and no quotient divides by zero.
    const auto value = [&](std::size_t k) { return static_cast<T>((first + k) % 5 + 1); };
    if (complex) {
        auto* data = static_cast<std::complex<T>*>(matrix::getData(array));
        for (std::size_t k = 0; k < count; ++k) data[k] = {value(k), static_cast<T>(k % 3)};
    } else {
        T* data = matrix::getTypedData<T>(array);
        for (std::size_t k = 0; k < count; ++k) data[k] = value(k);
    }
}

// An array of the class and shape whose elements count up from `first`.
matrix::ArrayPtr makeArray(const ClassCase& type, const Shape& shape, std::size_t first) {
    matrix::ArrayPtr array(
        matrix::detail::do_create_uninitnumeric(shape, type.id, type.complex ? oxCOMPLEX : oxREAL));
    switch (type.id) {
    case oxDOUBLE_CLASS: fillAs<double>(array.get(), type.complex, first); break;
    case oxSINGLE_CLASS: fillAs<float>(array.get(), type.complex, first); break;
    case oxINT8_CLASS: fillAs<std::int8_t>(array.get(), false, first); break;
    case oxUINT8_CLASS: fillAs<std::uint8_t>(array.get(), false, first); break;
    case oxINT16_CLASS: fillAs<std::int16_t>(array.get(), false, first); break;
    case oxUINT16_CLASS: fillAs<std::uint16_t>(array.get(), false, first); break;
    case oxINT32_CLASS: fillAs<std::int32_t>(array.get(), false, first); break;
    case oxUINT32_CLASS: fillAs<std::uint32_t>(array.get(), false, first); break;
    case oxINT64_CLASS: fillAs<std::int64_t>(array.get(), false, first); break;
    default: fillAs<std::uint64_t>(array.get(), false, first); break;
    }
    return array;
}

matrix::ArrayPtr call(const BuiltinFcn& builtin, const oxArray* a, const oxArray* b) {
    oxArray* args[] = {const_cast<oxArray*>(a), const_cast<oxArray*>(b)};
    oxArray* result = nullptr;
    builtin.invoke(1, &result, 2, args, BuiltinFcn::NoLxe);
    return matrix::ArrayPtr(result);
}

// One element, read back as a 1x1 array of its class.
matrix::ArrayPtr elementOf(const oxArray* array, std::size_t index) {
    matrix::ArrayPtr element(matrix::detail::do_create_uninitnumeric(
        Shape{1, 1}, matrix::getClassID(array), matrix::isComplex(array) ? oxCOMPLEX : oxREAL));
    const std::size_t bytes = matrix::getElementSize(matrix::getClassID(array)) * (matrix::isComplex(array) ? 2 : 1);
    std::memcpy(matrix::getData(element.get()), static_cast<const char*>(matrix::getData(array)) + index * bytes,
                bytes);
    return element;
}

// Trailing singleton dimensions beyond the second say nothing about an array's size.
Shape normalised(matrix::Dims dims) {
    Shape shape(dims.begin(), dims.end());
    while (shape.size() > 2 && shape.back() == 1) shape.pop_back();
    return shape;
}

void expectBroadcastResult(const BuiltinFcn& builtin, const ClassCase& type, const Shape& shapeA, const Shape& shapeB,
                           const Shape& expected) {
    const matrix::ArrayPtr a = makeArray(type, shapeA, 0);
    const matrix::ArrayPtr b = makeArray(type, shapeB, 2);
    const matrix::ArrayPtr result = call(builtin, a.get(), b.get());
    ASSERT_NE(result, nullptr);
    ASSERT_EQ(normalised(matrix::getDimensions(result.get())), normalised(expected));
    ASSERT_EQ(matrix::getClassID(result.get()), type.id);
    ASSERT_EQ(matrix::isComplex(result.get()), type.complex);
    const std::size_t bytes = matrix::getElementSize(type.id) * (type.complex ? 2 : 1);
    for (std::size_t i = 0, n = matrix::getNumberOfElements(result.get()); i < n; ++i) {
        const matrix::ArrayPtr x = elementOf(a.get(), sourceOf(i, expected, shapeA));
        const matrix::ArrayPtr y = elementOf(b.get(), sourceOf(i, expected, shapeB));
        const matrix::ArrayPtr single = call(builtin, x.get(), y.get());
        ASSERT_EQ(std::memcmp(static_cast<const char*>(matrix::getData(result.get())) + i * bytes,
                              matrix::getData(single.get()), bytes),
                  0)
            << "element " << i;
    }
}

void expectSizeError(const BuiltinFcn& builtin, const ClassCase& type, const Shape& shapeA, const Shape& shapeB) {
    const matrix::ArrayPtr a = makeArray(type, shapeA, 0);
    const matrix::ArrayPtr b = makeArray(type, shapeB, 2);
    try {
        call(builtin, a.get(), b.get());
        FAIL() << "no error";
    } catch (const foundation::core::except::IdentifiedException& error) {
        EXPECT_EQ(error.getId().component + ":" + error.getId().key, "samplelib:sizeMismatch");
        EXPECT_EQ(error.message(), "Arrays have incompatible sizes for this operation: " + sizeText(shapeA) + " and " +
                                       sizeText(shapeB) + ".");
    }
}

struct Case {
    const BuiltinCase* builtin;
    ClassCase type;
};

std::vector<Case> everyBuiltinAndClass() {
    std::vector<Case> cases;
    for (const BuiltinCase& builtin : BINARY_BUILTINS) {
        for (const ClassCase& type : builtin.classes) cases.push_back({&builtin, type});
    }
    return cases;
}

class ElementWiseShapes : public testing::TestWithParam<Case> {};

TEST_P(ElementWiseShapes, EveryShapePairMatchesTheReferenceBroadcaster) {
    const auto& [builtinCase, type] = GetParam();
    const BuiltinFcn& builtin = builtinCase->builtin();
    std::size_t matching = 0, broadcasting = 0, mismatching = 0;
    for (const Shape& shapeA : SHAPES) {
        for (const Shape& shapeB : SHAPES) {
            SCOPED_TRACE(sizeText(shapeA) + " with " + sizeText(shapeB));
            if (const std::optional<Shape> expected = broadcast(shapeA, shapeB)) {
                ++(shapeA == shapeB ? matching : broadcasting);
                expectBroadcastResult(builtin, type, shapeA, shapeB, *expected);
            } else {
                ++mismatching;
                expectSizeError(builtin, type, shapeA, shapeB);
            }
        }
    }
    EXPECT_GT(matching, 0u);
    EXPECT_GT(broadcasting, 0u);
    EXPECT_GT(mismatching, 0u);
}

INSTANTIATE_TEST_SUITE_P(SampleLibrary, ElementWiseShapes, testing::ValuesIn(everyBuiltinAndClass()),
                         [](const testing::TestParamInfo<Case>& info) {
                             return std::string(info.param.builtin->name) + "_" + info.param.type.name;
                         });

// plus also adds double, logical and char arrays of different classes, as doubles.
TEST(SamplePlus, MixedClassesBroadcastAsDoubles) {
    const matrix::ArrayPtr row = makeArray(DOUBLE, {1, 3}, 0);
    matrix::ArrayPtr column(matrix::detail::do_create_uninitnumeric(Shape{2, 1}, oxLOGICAL_CLASS, oxREAL));
    matrix::getTypedData<bool>(column.get())[0] = true;
    matrix::getTypedData<bool>(column.get())[1] = false;
    const matrix::ArrayPtr sum = call(samplelib::plusBuiltin(), row.get(), column.get());
    ASSERT_EQ(normalised(matrix::getDimensions(sum.get())), (Shape{2, 3}));
    const double* data = matrix::getTypedData<double>(sum.get());
    EXPECT_EQ(std::vector<double>(data, data + 6), (std::vector<double>{2, 1, 3, 2, 4, 3}));

    const matrix::ArrayPtr empty = makeArray(DOUBLE, {0, 3}, 0);
    const matrix::ArrayPtr flag(matrix::createScalar(true));
    const matrix::ArrayPtr emptySum = call(samplelib::plusBuiltin(), empty.get(), flag.get());
    EXPECT_EQ(matrix::getClassID(emptySum.get()), oxDOUBLE_CLASS);
    EXPECT_EQ(normalised(matrix::getDimensions(emptySum.get())), (Shape{0, 3}));
}

} // namespace
