// The sample's reductions (sum prod mean any all max min) over every class that holds
// numbers, a table of shapes (empties, scalars, vectors, matrices, N-d arrays) and every
// way to say where they run: the first non-singleton dimension, dimensions 1 to 3 and one
// beyond, and 'all'; sum and mean also with 'omitnan'. The expectations are computed here
// by scattering: each operand element, read by the test's own reader, goes to the result
// element whose subscripts it has with the reduced dimension set to 1, and each result is
// then worked out from the values it collected in long double, exactly, and saturated or
// rounded to the class the language gives.
#include "SampleBuiltins.hpp"
#include "TestArrays.hpp"

#include <builtin/builtinreg/GenericEntry.hpp>
#include <builtin/types/FlagInputType.hpp>
#include <foundation/core/except/Exception.hpp>
#include <lxe/ILxeBuiltinEnvironment.hpp>
#include <matrix/oxArray.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <variant>
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

std::string errorOf(const std::function<void()>& f) {
    try {
        f();
    } catch (const foundation::core::except::IdentifiedException& error) {
        return error.getId().component + ":" + error.getId().key + ": " + error.message();
    }
    return "no error";
}

const long double NaN = std::numeric_limits<long double>::quiet_NaN();

bool isNaN(Value x) { return std::isnan(x.real()) || std::isnan(x.imag()); }

// The limits of an integer class, and the class a result has.
struct Limits {
    long double lowest, highest;
};
Limits limitsOf(oxClassID id) {
    switch (id) {
    case oxINT8_CLASS: return {-128.0L, 127.0L};
    case oxUINT8_CLASS: return {0, 255.0L};
    case oxINT16_CLASS: return {-32768.0L, 32767.0L};
    case oxUINT16_CLASS: return {0, 65535.0L};
    case oxINT32_CLASS: return {-2147483648.0L, 2147483647.0L};
    case oxUINT32_CLASS: return {0, 4294967295.0L};
    case oxINT64_CLASS: return {-9223372036854775808.0L, 9223372036854775807.0L};
    default: return {0, 18446744073709551615.0L};
    }
}

// What a reduction gives for the values it collected: a value and the result's class.
struct Reducer {
    const char* name;
    const BuiltinFcn& (*builtin)();
    // An empty dimension stays empty (max, min) instead of reducing to one element.
    bool keepsEmpty;
    // The class of the result for an operand of this class.
    std::function<ClassCase(const ClassCase&)> resultClass;
    std::function<Value(const std::vector<Value>&, bool omitNaN, const ClassCase& operand)> reduce;
};

const ClassCase& doubleClass() { return classNamed("double"); }
const ClassCase& logicalClass() { return classNamed("logical"); }

ClassCase sumClass(const ClassCase& c) { return c.id == oxLOGICAL_CLASS || c.id == oxCHAR_CLASS ? doubleClass() : c; }
ClassCase meanClass(const ClassCase& c) {
    if (c.id == oxSINGLE_CLASS) return c;
    return c.complex ? classNamed("complexDouble") : doubleClass();
}

std::vector<Value> withoutNaN(const std::vector<Value>& values) {
    std::vector<Value> kept;
    std::copy_if(values.begin(), values.end(), std::back_inserter(kept), [](Value x) { return !isNaN(x); });
    return kept;
}

Value sumOf(const std::vector<Value>& values, bool omitNaN, const ClassCase& = CLASSES.front()) {
    Value sum = 0;
    for (const Value x : omitNaN ? withoutNaN(values) : values) sum += x;
    return sum;
}

// Largest (or smallest) by the real value, or by magnitude and then angle in a complex
// class; NaN left out, NaN when nothing else is there.
Value extremumOf(const std::vector<Value>& values, bool largest, bool complex) {
    const std::vector<Value> kept = withoutNaN(values);
    if (kept.empty()) return NaN;
    const auto key = [&](Value x) {
        return complex ? std::make_pair(std::abs(x), std::arg(x)) : std::make_pair(x.real(), 0.0L);
    };
    Value best = kept.front();
    for (const Value x : kept) {
        if (largest ? key(x) > key(best) : key(x) < key(best)) best = x;
    }
    return best;
}

const std::vector<Reducer> REDUCERS{
    {"sum", &samplelib::sumBuiltin, false, sumClass, sumOf},
    {"prod", &samplelib::prodBuiltin, false, sumClass,
     [](const std::vector<Value>& values, bool, const ClassCase&) {
         Value product = 1;
         for (const Value x : values) product *= x;
         return product;
     }},
    {"mean", &samplelib::meanBuiltin, false, meanClass,
     [](const std::vector<Value>& values, bool omitNaN, const ClassCase&) {
         const std::size_t count = omitNaN ? withoutNaN(values).size() : values.size();
         // Of nothing, 0/0: NaN, in both parts when complex.
         return sumOf(values, omitNaN) / static_cast<long double>(count);
     }},
    {"any", &samplelib::anyBuiltin, false, [](const ClassCase&) { return logicalClass(); },
     [](const std::vector<Value>& values, bool, const ClassCase&) {
         return Value(std::any_of(values.begin(), values.end(), [](Value x) { return !isNaN(x) && x != Value(0); }));
     }},
    {"all", &samplelib::allBuiltin, false, [](const ClassCase&) { return logicalClass(); },
     [](const std::vector<Value>& values, bool, const ClassCase&) {
         return Value(std::all_of(values.begin(), values.end(), [](Value x) { return x != Value(0); }));
     }},
    {"max", &samplelib::maxBuiltin, true, sumClass,
     [](const std::vector<Value>& values, bool, const ClassCase& c) { return extremumOf(values, true, c.complex); }},
    {"min", &samplelib::minBuiltin, true, sumClass,
     [](const std::vector<Value>& values, bool, const ClassCase& c) { return extremumOf(values, false, c.complex); }},
};

// Where a reduction runs: the default, a dimension (0-based), or everything.
struct Where {
    std::optional<std::size_t> dim;
    bool all;
    std::string text() const { return all ? "'all'" : dim ? "dim " + std::to_string(*dim + 1) : "default"; }
};

const std::vector<Shape> SHAPES{{0, 0}, {1, 0}, {0, 3},    {1, 1},    {1, 3},
                                {4, 1}, {4, 3}, {4, 3, 2}, {1, 3, 2}, {1, 1, 3}};
const std::vector<Where> WHERE{{std::nullopt, false}, {0, false}, {1, false}, {2, false}, {4, false},
                               {std::nullopt, true}};

// Small values of both signs where the class has them, complex parts of both signs, every
// sixth element NaN in floating-point classes when asked for; char from 'a'.
std::function<Value(std::size_t)> valuesFor(const ClassCase& type, bool nan) {
    return [=](std::size_t k) -> Value {
        if (nan && type.isFloating() && k % 6 == 4) return {NaN, 0};
        if (type.id == oxCHAR_CLASS) return {static_cast<long double>(u'a' + k % 4), 0};
        const long double n = static_cast<long double>((k * 5 + 1) % 7);
        return {type.isSigned() ? n - 3 : n, type.complex ? static_cast<long double>(k % 3) - 1 : 0};
    };
}

// The result of the reduction: its shape and each element's collected values.
struct Expected {
    Shape shape;
    std::vector<std::vector<Value>> collected;
};

Expected scatter(const oxArray* a, const Shape& shape, const Where& where, bool keepsEmpty) {
    Expected expected;
    const std::size_t count = countOf(shape);
    std::size_t dim = 0;
    if (where.all) {
        expected.shape = keepsEmpty && count == 0 ? Shape{0, 0} : Shape{1, 1};
    } else if (!where.dim && shape == Shape{0, 0}) {
        expected.shape = keepsEmpty ? Shape{0, 0} : Shape{1, 1};
    } else {
        if (where.dim) {
            dim = *where.dim;
        } else {
            const auto nonSingleton = std::find_if(shape.begin(), shape.end(), [](std::size_t e) { return e != 1; });
            dim = nonSingleton == shape.end() ? 0 : static_cast<std::size_t>(nonSingleton - shape.begin());
        }
        expected.shape = shape;
        if (dim < shape.size()) expected.shape[dim] = keepsEmpty && shape[dim] == 0 ? 0 : 1;
    }
    expected.collected.resize(countOf(expected.shape));
    for (std::size_t i = 0; i < count; ++i) {
        std::size_t target = 0;
        if (!where.all) {
            // The subscripts of i, the reduced one set to the first, in the result.
            std::size_t rest = i;
            std::size_t stride = 1;
            for (std::size_t d = 0; d < shape.size(); ++d) {
                const std::size_t subscript = rest % shape[d];
                rest /= shape[d];
                target += (d == dim ? 0 : subscript) * stride;
                stride *= expected.shape[d];
            }
        }
        expected.collected[target].push_back(elementOf(a, i));
    }
    return expected;
}

// The value as the result class holds it: integers rounded and saturated, logical 0 or
// 1, single rounded to float.
Value asClass(Value x, const ClassCase& type) {
    if (type.isInteger()) {
        const Limits limits = limitsOf(type.id);
        return std::clamp(std::round(x.real()), limits.lowest, limits.highest);
    }
    if (type.id == oxSINGLE_CLASS) {
        return {static_cast<float>(x.real()), type.complex ? static_cast<float>(x.imag()) : 0.0f};
    }
    if (type.id == oxDOUBLE_CLASS) {
        return {static_cast<double>(x.real()), type.complex ? static_cast<double>(x.imag()) : 0.0};
    }
    return x;
}

bool close(Value actual, Value expected, const ClassCase& type) {
    const auto part = [&](long double a, long double e) {
        if (std::isnan(e)) return std::isnan(a);
        if (!type.isFloating()) return a == e;
        const long double tolerance = (type.id == oxSINGLE_CLASS ? 1e-6L : 1e-14L) * std::max(1.0L, std::abs(e));
        return std::abs(a - e) <= tolerance;
    };
    return part(actual.real(), expected.real()) && part(actual.imag(), expected.imag());
}

// The arguments that say where: a dimension as a double, 'all' as a char row; max and min
// take [] before them.
std::vector<matrix::ArrayPtr> whereArguments(const Reducer& reducer, const Where& where, bool omitNaN) {
    std::vector<matrix::ArrayPtr> arguments;
    const bool extremum = reducer.keepsEmpty;
    if (extremum && (where.dim || where.all)) {
        const std::size_t empty[] = {0, 0};
        arguments.emplace_back(matrix::detail::do_create_uninitnumeric(empty, oxDOUBLE_CLASS, oxREAL));
    }
    if (where.dim) arguments.emplace_back(matrix::createScalar(static_cast<double>(*where.dim + 1)));
    if (where.all) arguments.emplace_back(matrix::createCharRow(u"all"));
    if (omitNaN) arguments.emplace_back(matrix::createCharRow(u"omitnan"));
    return arguments;
}

void expectReduction(const Reducer& reducer, const ClassCase& type, const Shape& shape, const Where& where,
                     bool omitNaN) {
    SCOPED_TRACE(std::string(reducer.name) + " of " + type.name + " " + shapeText(shape) + ", " + where.text() +
                 (omitNaN ? ", 'omitnan'" : ""));
    const matrix::ArrayPtr a = makeArray(type, shape, valuesFor(type, true));
    std::vector<matrix::ArrayPtr> extra = whereArguments(reducer, where, omitNaN);
    std::vector<const oxArray*> arguments{a.get()};
    for (const matrix::ArrayPtr& argument : extra) arguments.push_back(argument.get());
    const matrix::ArrayPtr result = call(reducer.builtin(), arguments);
    const Expected expected = scatter(a.get(), shape, where, reducer.keepsEmpty);
    const ClassCase resultClass = reducer.resultClass(type);
    ASSERT_EQ(matrix::getClassID(result.get()), resultClass.id);
    ASSERT_EQ(matrix::isComplex(result.get()), resultClass.complex);
    ASSERT_EQ(dimsOf(result.get()), normalised(expected.shape));
    for (std::size_t k = 0; k < expected.collected.size(); ++k) {
        const Value want = asClass(reducer.reduce(expected.collected[k], omitNaN, type), resultClass);
        const Value got = elementOf(result.get(), k);
        ASSERT_TRUE(close(got, want, resultClass)) << "element " << k << ": " << got.real() << "+" << got.imag()
                                                   << "i, expected " << want.real() << "+" << want.imag() << "i";
    }
}

TEST(Reductions, EveryClassShapeAndDimension) {
    for (const Reducer& reducer : REDUCERS) {
        for (const ClassCase& type : CLASSES) {
            for (const Shape& shape : SHAPES) {
                for (const Where& where : WHERE) {
                    expectReduction(reducer, type, shape, where, false);
                }
            }
        }
    }
}

TEST(Reductions, SumAndMeanLeaveNaNOut) {
    for (const Reducer& reducer : REDUCERS) {
        if (std::string(reducer.name) != "sum" && std::string(reducer.name) != "mean") continue;
        for (const ClassCase& type : CLASSES) {
            for (const Shape& shape : SHAPES) {
                for (const Where& where : WHERE) {
                    expectReduction(reducer, type, shape, where, true);
                }
            }
        }
    }
}

double scalarOf(const matrix::ArrayPtr& array) { return static_cast<double>(elementOf(array.get(), 0).real()); }

TEST(Reductions, IntegersSaturateOnceInTheirClassLogicalAndCharAddAsDouble) {
    const auto row = [](const char* type, std::vector<long double> values) {
        return makeArray(classNamed(type), {1, values.size()}, [=](std::size_t k) { return Value(values[k]); });
    };
    const matrix::ArrayPtr int8s = row("int8", {100, 100, -100});
    const matrix::ArrayPtr sum = call(samplelib::sumBuiltin(), {int8s.get()});
    EXPECT_EQ(matrix::getClassID(sum.get()), oxINT8_CLASS);
    EXPECT_EQ(scalarOf(sum), 100);
    EXPECT_EQ(scalarOf(call(samplelib::sumBuiltin(), {row("uint8", {200, 200}).get()})), 255);
    EXPECT_EQ(scalarOf(call(samplelib::prodBuiltin(), {row("int16", {300, 300, -1}).get()})), -32768);
    EXPECT_EQ(scalarOf(call(samplelib::meanBuiltin(), {row("int8", {127, 127}).get()})), 127);
    const matrix::ArrayPtr text(matrix::createCharRow(u"ab"));
    const matrix::ArrayPtr codes = call(samplelib::sumBuiltin(), {text.get()});
    EXPECT_EQ(matrix::getClassID(codes.get()), oxDOUBLE_CLASS);
    EXPECT_EQ(scalarOf(codes), 195);
    const matrix::ArrayPtr flags = call(samplelib::sumBuiltin(), {row("logical", {1, 1, 0}).get()});
    EXPECT_EQ(matrix::getClassID(flags.get()), oxDOUBLE_CLASS);
    EXPECT_EQ(scalarOf(flags), 2);
}

TEST(Reductions, EmptyOperandsGiveWhatArrayLanguagesGive) {
    const std::size_t none[] = {0, 0};
    const matrix::ArrayPtr empty(matrix::detail::do_create_uninitnumeric(none, oxDOUBLE_CLASS, oxREAL));
    EXPECT_EQ(scalarOf(call(samplelib::sumBuiltin(), {empty.get()})), 0);
    EXPECT_EQ(scalarOf(call(samplelib::prodBuiltin(), {empty.get()})), 1);
    EXPECT_TRUE(std::isnan(scalarOf(call(samplelib::meanBuiltin(), {empty.get()}))));
    EXPECT_EQ(scalarOf(call(samplelib::anyBuiltin(), {empty.get()})), 0);
    EXPECT_EQ(scalarOf(call(samplelib::allBuiltin(), {empty.get()})), 1);
    EXPECT_EQ(dimsOf(call(samplelib::maxBuiltin(), {empty.get()}).get()), (Shape{0, 0}));
    EXPECT_EQ(dimsOf(call(samplelib::minBuiltin(), {empty.get()}).get()), (Shape{0, 0}));
    const matrix::ArrayPtr dim(matrix::createScalar(1.0));
    EXPECT_EQ(dimsOf(call(samplelib::sumBuiltin(), {empty.get(), dim.get()}).get()), (Shape{1, 0}));
}

TEST(Reductions, OptionTextsInAnyCaseAndTheirErrors) {
    const matrix::ArrayPtr m = makeArray(
        classNamed("double"), {2, 2}, [](std::size_t k) { return Value(k == 1 ? NaN : static_cast<long double>(k)); });
    const auto text = [](const char16_t* t) { return matrix::ArrayPtr(matrix::createCharRow(t)); };
    EXPECT_EQ(scalarOf(call(samplelib::sumBuiltin(), {m.get(), text(u"ALL").get(), text(u"OmitNaN").get()})), 5);
    EXPECT_EQ(scalarOf(call(samplelib::meanBuiltin(), {m.get(), text(u"omitnan").get(), text(u"all").get()})), 5.0 / 3);
    EXPECT_TRUE(
        std::isnan(scalarOf(call(samplelib::sumBuiltin(), {m.get(), text(u"all").get(), text(u"includenan").get()}))));
    const matrix::ArrayPtr two(matrix::createScalar(2.0));
    const matrix::ArrayPtr rowSums = call(samplelib::sumBuiltin(), {m.get(), two.get(), text(u"omitnan").get()});
    EXPECT_EQ(dimsOf(rowSums.get()), (Shape{2, 1}));
    EXPECT_EQ(elementOf(rowSums.get(), 1).real(), 3);

    EXPECT_EQ(errorOf([&] {
                  call(samplelib::sumBuiltin(), {m.get(), text(u"everything").get()});
              }),
              "samplelib:unknownOption: sum does not take the option 'everything'; it takes 'all', 'omitnan' or "
              "'includenan'.");
    EXPECT_EQ(errorOf([&] {
                  call(samplelib::prodBuiltin(), {m.get(), text(u"omitnan").get()});
              }),
              "samplelib:unknownOption: prod does not take the option 'omitnan'; it takes 'all'.");
    EXPECT_EQ(errorOf([&] {
                  call(samplelib::sumBuiltin(), {m.get(), two.get(), text(u"all").get()});
              }),
              "samplelib:unknownOption: sum does not take the option 'all'; it takes 'omitnan' or 'includenan'.");
    const matrix::ArrayPtr half(matrix::createScalar(2.5));
    const matrix::ArrayPtr zero(matrix::createScalar(0.0));
    EXPECT_EQ(errorOf([&] {
                  call(samplelib::sumBuiltin(), {m.get(), half.get()});
              }),
              "samplelib:badDimension: The dimension must be a positive integer, not 2.5.");
    EXPECT_EQ(errorOf([&] {
                  call(samplelib::anyBuiltin(), {m.get(), zero.get()});
              }),
              "samplelib:badDimension: The dimension must be a positive integer, not 0.");
    EXPECT_EQ(errorOf([&] {
                  call(samplelib::maxBuiltin(), {m.get(), two.get(), two.get()});
              }),
              "samplelib:dimensionWithTwoArrays: max with two arrays to compare and a dimension is not supported: "
              "the second argument must be [].");
    const std::size_t one[] = {1, 1};
    const matrix::ArrayPtr cell(matrix::createCell(one));
    EXPECT_EQ(errorOf([&] { call(samplelib::meanBuiltin(), {cell.get()}); }),
              "samplelib:unsupportedClass: mean does not take arguments of class cell.");
}

// Compiled callers pass the option texts as flags: each builtin's engine list has a
// variant whose last inputs are the flags, and its generic entry, which the engine calls
// with the other arguments only, gives what the text gives the interpreter.
class QuietEnvironment final : public Velloc::lxe::ILxeBuiltinEnvironment {
public:
    void AddWarningMessage(const std::u16string&) override {}
    Velloc::lxe::ILxeBuiltinAccessors* GetLxeBuiltinAccessors() override { return nullptr; }
};

std::vector<std::u16string> flagsOf(const Velloc::builtin::BuiltinVariant& variant) {
    std::vector<std::u16string> flags;
    for (const auto& type : variant.inputArgTypes) {
        if (const auto* flag = std::get_if<Velloc::builtin::types::FlagInputType>(&type)) {
            flags.emplace_back(flag->getValue());
        }
    }
    return flags;
}

TEST(Reductions, CompiledCallersPassOptionsAsFlags) {
    const matrix::ArrayPtr m = makeArray(classNamed("double"), {2, 3}, [](std::size_t k) {
        return Value(k == 4 ? NaN : static_cast<long double>(k + 1));
    });
    const std::size_t none[] = {0, 0};
    const matrix::ArrayPtr empty(matrix::detail::do_create_uninitnumeric(none, oxDOUBLE_CLASS, oxREAL));
    struct FlagCase {
        const BuiltinFcn& (*builtin)();
        std::vector<std::u16string> flags;
        std::vector<const char16_t*> texts;
    };
    const std::vector<FlagCase> cases{
        {&samplelib::sumBuiltin, {u"all"}, {u"all"}},
        {&samplelib::sumBuiltin, {u"omitnan"}, {u"omitnan"}},
        {&samplelib::sumBuiltin, {u"all", u"omitnan"}, {u"all", u"omitnan"}},
        {&samplelib::meanBuiltin, {u"all", u"omitnan"}, {u"all", u"omitnan"}},
        {&samplelib::prodBuiltin, {u"all"}, {u"all"}},
        {&samplelib::anyBuiltin, {u"all"}, {u"all"}},
        {&samplelib::allBuiltin, {u"all"}, {u"all"}},
        {&samplelib::maxBuiltin, {u"all"}, {u"all"}},
        {&samplelib::minBuiltin, {u"all"}, {u"all"}},
    };
    for (const FlagCase& c : cases) {
        const BuiltinFcn& builtin = c.builtin();
        SCOPED_TRACE(builtin.name);
        const bool extremum = builtin.name == "max" || builtin.name == "min";
        const Velloc::builtin::BuiltinVariant* flagged = nullptr;
        for (const auto& variant : std::span(builtin.variants, builtin.numVariants)) {
            if (flagsOf(variant) == c.flags && variant.inputArgTypes.size() == c.flags.size() + (extremum ? 2 : 1)) {
                flagged = &variant;
            }
        }
        ASSERT_NE(flagged, nullptr);
        std::vector<Velloc::builtin::Parameter> parameters{Velloc::builtin::Parameter(m.get())};
        if (extremum) parameters.emplace_back(empty.get());
        QuietEnvironment environment;
        bool pending = false;
        const auto& descriptor = flagged->functionDescriptor;
        const matrix::ArrayPtr compiled(
            boost::get<oxArray*>(descriptor.getGenericEntry()(descriptor, environment, pending, parameters.data())));
        ASSERT_FALSE(pending);

        std::vector<matrix::ArrayPtr> texts;
        std::vector<const oxArray*> arguments{m.get()};
        if (extremum) arguments.push_back(empty.get());
        for (const char16_t* text : c.texts) {
            texts.emplace_back(matrix::createCharRow(text));
            arguments.push_back(texts.back().get());
        }
        const matrix::ArrayPtr interpreted = call(builtin, arguments);
        ASSERT_EQ(dimsOf(compiled.get()), dimsOf(interpreted.get()));
        const Value x = elementOf(compiled.get(), 0);
        const Value y = elementOf(interpreted.get(), 0);
        EXPECT_TRUE(x == y || (isNaN(x) && isNaN(y)));
    }
}

// max(a, b) and min(a, b): element by element, NaN giving way, with the class arithmetic
// gives mixed operands.
TEST(Extrema, TwoOperandsOfOneClassBroadcast) {
    const std::vector<Shape> shapes{{0, 3}, {1, 1}, {1, 3}, {4, 1}, {4, 3}, {4, 3, 2}};
    for (const bool largest : {true, false}) {
        const BuiltinFcn& builtin = largest ? samplelib::maxBuiltin() : samplelib::minBuiltin();
        for (const ClassCase& type : CLASSES) {
            if (type.id == oxLOGICAL_CLASS || type.id == oxCHAR_CLASS) continue;
            for (const Shape& shapeA : shapes) {
                for (const Shape& shapeB : shapes) {
                    SCOPED_TRACE(builtin.name + " of " + type.name + " " + shapeText(shapeA) + " and " +
                                 shapeText(shapeB));
                    const matrix::ArrayPtr a = makeArray(type, shapeA, valuesFor(type, true));
                    const matrix::ArrayPtr b =
                        makeArray(type, shapeB, [&](std::size_t k) { return valuesFor(type, true)(k + 3); });
                    Shape out(std::max(shapeA.size(), shapeB.size()));
                    bool fits = true;
                    for (std::size_t d = 0; d < out.size(); ++d) {
                        const std::size_t m = d < shapeA.size() ? shapeA[d] : 1;
                        const std::size_t n = d < shapeB.size() ? shapeB[d] : 1;
                        fits = fits && (m == n || m == 1 || n == 1);
                        out[d] = m == 1 ? n : m;
                    }
                    if (!fits) {
                        EXPECT_NE(errorOf([&] {
                                      call(builtin, {a.get(), b.get()});
                                  }).find("samplelib:sizeMismatch"),
                                  std::string::npos);
                        continue;
                    }
                    const matrix::ArrayPtr result = call(builtin, {a.get(), b.get()});
                    ASSERT_EQ(matrix::getClassID(result.get()), type.id);
                    ASSERT_EQ(dimsOf(result.get()), normalised(out));
                    for (std::size_t i = 0; i < countOf(out); ++i) {
                        const Value x = elementOf(a.get(), sourceOf(i, out, shapeA));
                        const Value y = elementOf(b.get(), sourceOf(i, out, shapeB));
                        const Value want = extremumOf({x, y}, largest, type.complex);
                        ASSERT_TRUE(close(elementOf(result.get(), i), want, type)) << "element " << i;
                    }
                }
            }
        }
    }
}

TEST(Extrema, MixedClassesTakeTheClassArithmeticGives) {
    const auto scalar = [](const char* type, long double value) {
        return makeArray(classNamed(type), {1, 1}, [=](std::size_t) { return Value(value); });
    };
    const matrix::ArrayPtr saturated =
        call(samplelib::maxBuiltin(), {scalar("int8", 5).get(), scalar("double", 300).get()});
    EXPECT_EQ(matrix::getClassID(saturated.get()), oxINT8_CLASS);
    EXPECT_EQ(scalarOf(saturated), 127);
    const matrix::ArrayPtr single =
        call(samplelib::minBuiltin(), {scalar("double", 0.5).get(), scalar("single", 2).get()});
    EXPECT_EQ(matrix::getClassID(single.get()), oxSINGLE_CLASS);
    EXPECT_EQ(scalarOf(single), 0.5);
    const matrix::ArrayPtr letters =
        call(samplelib::maxBuiltin(), {scalar("char", 97).get(), scalar("logical", 1).get()});
    EXPECT_EQ(matrix::getClassID(letters.get()), oxDOUBLE_CLASS);
    EXPECT_EQ(scalarOf(letters), 97);
    EXPECT_EQ(errorOf([&] {
                  call(samplelib::maxBuiltin(), {scalar("int8", 1).get(), scalar("int16", 2).get()});
              }),
              "samplelib:mixedIntegers: Integers can only be combined with integers of the same class or with double, "
              "single, logical or char: not int8 and int16.");
}

} // namespace
