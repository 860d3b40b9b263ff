// The sample's comparisons (eq ne lt le gt ge), logical operators (and or not) and
// transposes over every class that holds numbers and every pair of shapes from a table of
// empties, scalars, rows, columns, matrices and N-d arrays. The expectations are computed
// here, from the elements read back by the test's own reader and broadcast by its own
// indexing: a logical array of the broadcast size, each element the comparison of the two
// values as std::complex<long double> compares them, or the one size error.
#include "SampleBuiltins.hpp"
#include "TestArrays.hpp"

#include <foundation/core/except/Exception.hpp>
#include <matrix/oxArray.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace testarrays;
using Velloc::builtin::BuiltinFcn;

matrix::ArrayPtr call(const BuiltinFcn& builtin, std::vector<const oxArray*> arguments) {
    std::vector<oxArray*> handles;
    for (const oxArray* a : arguments) handles.push_back(const_cast<oxArray*>(a));
    oxArray* result = nullptr;
    builtin.invoke(1, &result, static_cast<int>(handles.size()), handles.data(), BuiltinFcn::NoLxe);
    return matrix::ArrayPtr(result);
}

// The identifier of the error a call raises, or "no error".
std::string errorOf(const std::function<void()>& f) {
    try {
        f();
    } catch (const foundation::core::except::IdentifiedException& error) {
        return error.getId().component + ":" + error.getId().key;
    }
    return "no error";
}

bool truth(Value x) { return x != Value(0); }

struct BinaryCase {
    const char* name;
    const BuiltinFcn& (*builtin)();
    std::function<bool(Value, Value)> expected;
    // The logical operators reject NaN: their operands have none.
    bool takesNaN;
};

const std::vector<BinaryCase> BINARY{
    {"eq", &samplelib::eqBuiltin, [](Value a, Value b) { return a == b; }, true},
    {"ne", &samplelib::neBuiltin, [](Value a, Value b) { return a != b; }, true},
    {"lt", &samplelib::ltBuiltin, [](Value a, Value b) { return a.real() < b.real(); }, true},
    {"le", &samplelib::leBuiltin, [](Value a, Value b) { return a.real() <= b.real(); }, true},
    {"gt", &samplelib::gtBuiltin, [](Value a, Value b) { return a.real() > b.real(); }, true},
    {"ge", &samplelib::geBuiltin, [](Value a, Value b) { return a.real() >= b.real(); }, true},
    {"and", &samplelib::andBuiltin, [](Value a, Value b) { return truth(a) && truth(b); }, false},
    {"or", &samplelib::orBuiltin, [](Value a, Value b) { return truth(a) || truth(b); }, false},
};

const std::vector<Shape> SHAPES{{0, 0}, {1, 0}, {0, 3},    {1, 1},    {1, 3},
                                {4, 1}, {4, 3}, {4, 3, 2}, {1, 3, 2}, {4, 1, 2}};

std::optional<Shape> broadcast(const Shape& a, const Shape& b) {
    Shape out(std::max(a.size(), b.size()));
    for (std::size_t d = 0; d < out.size(); ++d) {
        const std::size_t m = d < a.size() ? a[d] : 1;
        const std::size_t n = d < b.size() ? b[d] : 1;
        if (m != n && m != 1 && n != 1) return std::nullopt;
        out[d] = m == 1 ? n : m;
    }
    return out;
}

// Values with repeats, so that equal pairs occur: small and of both signs where the class
// has them, letters for char, and every seventh element NaN in floating-point classes
// when nan is asked for.
std::function<Value(std::size_t)> valuesFor(const ClassCase& type, std::size_t seed, bool nan) {
    return [=](std::size_t k) -> Value {
        const std::size_t n = (k * 7 + seed) % 5;
        if (nan && type.isFloating() && (k + seed) % 7 == 3) {
            return {std::numeric_limits<long double>::quiet_NaN(), 0};
        }
        if (type.id == oxCHAR_CLASS) return {static_cast<long double>(u'a' + n % 3), 0};
        const long double real = static_cast<long double>(n) - (type.isSigned() ? 2 : 0);
        return {real, type.complex ? static_cast<long double>((k + seed) % 2) : 0};
    };
}

void expectComparison(const BinaryCase& op, const ClassCase& typeA, const Shape& shapeA, const ClassCase& typeB,
                      const Shape& shapeB) {
    SCOPED_TRACE(std::string(op.name) + " of " + typeA.name + " " + shapeText(shapeA) + " and " + typeB.name + " " +
                 shapeText(shapeB));
    const matrix::ArrayPtr a = makeArray(typeA, shapeA, valuesFor(typeA, 0, op.takesNaN));
    const matrix::ArrayPtr b = makeArray(typeB, shapeB, valuesFor(typeB, 2, op.takesNaN));
    const std::optional<Shape> expected = broadcast(shapeA, shapeB);
    if (!expected) {
        EXPECT_EQ(errorOf([&] { call(op.builtin(), {a.get(), b.get()}); }), "samplelib:sizeMismatch");
        return;
    }
    const matrix::ArrayPtr result = call(op.builtin(), {a.get(), b.get()});
    ASSERT_NE(result, nullptr);
    ASSERT_EQ(matrix::getClassID(result.get()), oxLOGICAL_CLASS);
    ASSERT_EQ(dimsOf(result.get()), normalised(*expected));
    const bool* data = matrix::getTypedData<bool>(result.get());
    for (std::size_t i = 0; i < countOf(*expected); ++i) {
        const Value x = elementOf(a.get(), sourceOf(i, *expected, shapeA));
        const Value y = elementOf(b.get(), sourceOf(i, *expected, shapeB));
        ASSERT_EQ(data[i], op.expected(x, y)) << "element " << i;
    }
}

TEST(Comparisons, OperandsOfOneClassAnyShapes) {
    for (const BinaryCase& op : BINARY) {
        for (const ClassCase& type : CLASSES) {
            for (const Shape& a : SHAPES) {
                for (const Shape& b : SHAPES) {
                    expectComparison(op, type, a, type, b);
                }
            }
        }
    }
}

TEST(Comparisons, OperandsOfDifferentClasses) {
    const std::vector<std::pair<Shape, Shape>> pairs{
        {{4, 3}, {1, 3}}, {{1, 1}, {4, 3, 2}}, {{0, 3}, {1, 1}}, {{4, 1}, {1, 3}}};
    for (const BinaryCase& op : BINARY) {
        for (const ClassCase& typeA : CLASSES) {
            for (const ClassCase& typeB : CLASSES) {
                for (const auto& [a, b] : pairs) {
                    expectComparison(op, typeA, a, typeB, b);
                }
            }
        }
    }
}

TEST(Comparisons, ValuesOfDifferentClassesCompareExactly) {
    // 2^53 + 1 is no double: int64 and double must not be compared as doubles.
    const ClassCase& dbl = classNamed("double");
    const matrix::ArrayPtr big(matrix::createScalar<std::int64_t>((std::int64_t{1} << 53) + 1));
    const matrix::ArrayPtr rounded(matrix::createScalar(9007199254740992.0));
    EXPECT_FALSE(*matrix::getTypedData<bool>(call(samplelib::eqBuiltin(), {big.get(), rounded.get()}).get()));
    EXPECT_TRUE(*matrix::getTypedData<bool>(call(samplelib::gtBuiltin(), {big.get(), rounded.get()}).get()));
    // int8(5) < 5.5 and 'a' == 97.
    const matrix::ArrayPtr five = makeArray(classNamed("int8"), {1, 1}, [](std::size_t) { return Value(5); });
    const matrix::ArrayPtr half = makeArray(dbl, {1, 1}, [](std::size_t) { return Value(5.5); });
    EXPECT_TRUE(*matrix::getTypedData<bool>(call(samplelib::ltBuiltin(), {five.get(), half.get()}).get()));
    const matrix::ArrayPtr letter(matrix::createCharRow(u"a"));
    const matrix::ArrayPtr code(matrix::createScalar(97.0));
    EXPECT_TRUE(*matrix::getTypedData<bool>(call(samplelib::eqBuiltin(), {letter.get(), code.get()}).get()));
}

TEST(Comparisons, TextComparesCharacterByCharacter) {
    const matrix::ArrayPtr abc(matrix::createCharRow(u"abc"));
    const matrix::ArrayPtr abd(matrix::createCharRow(u"abd"));
    const matrix::ArrayPtr equal = call(samplelib::eqBuiltin(), {abc.get(), abd.get()});
    const bool* data = matrix::getTypedData<bool>(equal.get());
    EXPECT_EQ(dimsOf(equal.get()), (Shape{1, 3}));
    EXPECT_TRUE(data[0] && data[1] && !data[2]);
}

TEST(Comparisons, ClassesWithoutNumbersAreRefused) {
    const std::size_t one[] = {1, 1};
    const matrix::ArrayPtr cell(matrix::createCell(one));
    const matrix::ArrayPtr x(matrix::createScalar(1.0));
    for (const BinaryCase& op : BINARY) {
        EXPECT_EQ(errorOf([&] { call(op.builtin(), {cell.get(), x.get()}); }), "samplelib:unsupportedClass") << op.name;
    }
    EXPECT_EQ(errorOf([&] { call(samplelib::notBuiltin(), {cell.get()}); }), "samplelib:unsupportedClass");
}

TEST(Logical, NotOfEveryClassAndShape) {
    for (const ClassCase& type : CLASSES) {
        for (const Shape& shape : SHAPES) {
            SCOPED_TRACE(std::string(type.name) + " " + shapeText(shape));
            const matrix::ArrayPtr a = makeArray(type, shape, valuesFor(type, 1, false));
            const matrix::ArrayPtr result = call(samplelib::notBuiltin(), {a.get()});
            ASSERT_EQ(matrix::getClassID(result.get()), oxLOGICAL_CLASS);
            ASSERT_EQ(dimsOf(result.get()), normalised(shape));
            for (std::size_t i = 0; i < countOf(shape); ++i) {
                ASSERT_EQ(matrix::getTypedData<bool>(result.get())[i], !truth(elementOf(a.get(), i))) << i;
            }
        }
    }
}

TEST(Logical, NaNHasNoTruthValue) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const matrix::ArrayPtr scalarNaN(matrix::createScalar(nan));
    const matrix::ArrayPtr zero(matrix::createScalar(0.0));
    const matrix::ArrayPtr int8One(matrix::createScalar<std::int8_t>(1));
    const matrix::ArrayPtr complexNaN(matrix::createScalar(std::complex<float>(0, std::nanf(""))));
    // Scalars of one class, a NaN among many elements (run on the workers), mixed classes.
    const matrix::ArrayPtr many =
        makeArray(classNamed("double"), {1, 40000}, [&](std::size_t k) { return Value(k == 39999 ? nan : 1.0L); });
    const std::string expected = "samplelib:nanToLogical";
    EXPECT_EQ(errorOf([&] { call(samplelib::andBuiltin(), {zero.get(), scalarNaN.get()}); }), expected);
    EXPECT_EQ(errorOf([&] { call(samplelib::orBuiltin(), {many.get(), zero.get()}); }), expected);
    EXPECT_EQ(errorOf([&] { call(samplelib::andBuiltin(), {int8One.get(), scalarNaN.get()}); }), expected);
    EXPECT_EQ(errorOf([&] { call(samplelib::notBuiltin(), {scalarNaN.get()}); }), expected);
    EXPECT_EQ(errorOf([&] { call(samplelib::notBuiltin(), {complexNaN.get()}); }), expected);
    EXPECT_EQ(errorOf([&] { call(samplelib::notBuiltin(), {many.get()}); }), expected);
}

// Element (i, j) of the transpose is element (j, i), conjugated by ctranspose.
TEST(Transpose, EveryClassAndTwoDimensionalShape) {
    const std::vector<Shape> shapes{{0, 0}, {1, 0}, {0, 3}, {1, 1}, {1, 3}, {4, 1}, {4, 3}};
    for (const bool conjugate : {false, true}) {
        const BuiltinFcn& builtin = conjugate ? samplelib::ctransposeBuiltin() : samplelib::transposeBuiltin();
        for (const ClassCase& type : CLASSES) {
            for (const Shape& shape : shapes) {
                SCOPED_TRACE(std::string(builtin.name) + " of " + type.name + " " + shapeText(shape));
                const matrix::ArrayPtr a = makeArray(type, shape, valuesFor(type, 3, true));
                const matrix::ArrayPtr result = call(builtin, {a.get()});
                ASSERT_EQ(matrix::getClassID(result.get()), type.id);
                ASSERT_EQ(matrix::isComplex(result.get()), type.complex);
                ASSERT_EQ(dimsOf(result.get()), (Shape{shape[1], shape[0]}));
                for (std::size_t i = 0; i < shape[0]; ++i) {
                    for (std::size_t j = 0; j < shape[1]; ++j) {
                        const Value x = elementOf(a.get(), i + j * shape[0]);
                        const Value y = elementOf(result.get(), j + i * shape[1]);
                        const Value want = conjugate ? std::conj(x) : x;
                        // NaN is not equal to itself: compare the bits that matter.
                        ASSERT_TRUE((y.real() == want.real() || (std::isnan(y.real()) && std::isnan(want.real()))) &&
                                    y.imag() == want.imag())
                            << i << ", " << j;
                    }
                }
            }
        }
    }
}

TEST(Transpose, CellsScalarsOfOtherClassesAndNdArrays) {
    const std::size_t rowDims[] = {1, 2};
    const matrix::ArrayPtr row(matrix::createCell(rowDims));
    oxArray* first = matrix::createScalar(1.0);
    matrix::setCell(row.get(), 0, first);
    const matrix::ArrayPtr column = call(samplelib::transposeBuiltin(), {row.get()});
    EXPECT_EQ(dimsOf(column.get()), (Shape{2, 1}));
    EXPECT_EQ(matrix::getCell(column.get(), 0), first);
    EXPECT_EQ(matrix::getCell(column.get(), 1), nullptr);

    const std::size_t one[] = {1, 1};
    const matrix::ArrayPtr record(matrix::createStruct(one, {"a"}));
    EXPECT_EQ(call(samplelib::ctransposeBuiltin(), {record.get()}).get(), record.get());

    const matrix::ArrayPtr cube = makeArray(classNamed("double"), {2, 2, 2}, [](std::size_t k) { return Value(k); });
    EXPECT_EQ(errorOf([&] { call(samplelib::transposeBuiltin(), {cube.get()}); }), "samplelib:transposeNd");
    const std::size_t pair[] = {1, 2};
    const matrix::ArrayPtr records(matrix::createStruct(pair, {"a"}));
    EXPECT_EQ(errorOf([&] { call(samplelib::transposeBuiltin(), {records.get()}); }), "samplelib:unsupportedClass");
}

} // namespace
