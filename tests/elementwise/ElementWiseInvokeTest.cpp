// Element-wise builtins called the way the interpreter calls them, through invoke.
#include <builtin/builtinreg/MakeVariant.hpp>

#include <fl/i18n.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace Velloc::builtin::builtinreg;
using Velloc::builtin::BuiltinFcn;
using Velloc::builtin::builtinreg::detail::classOfValue;
using Velloc::builtin::builtinreg::detail::isComplexValue;

// Saturates for integer classes, as the language does.
template <class T>
T minusOf(T a, T b) {
    if constexpr (std::is_integral_v<T>) {
        const long double d = static_cast<long double>(a) - static_cast<long double>(b);
        return d < std::numeric_limits<T>::lowest() ? std::numeric_limits<T>::lowest()
               : d > std::numeric_limits<T>::max()  ? std::numeric_limits<T>::max()
                                                     : static_cast<T>(d);
    } else {
        return a - b;
    }
}

double sqrtWarns(CallContext& context, double x) {
    if (x < 0) {
        context.warning("negative " + std::to_string(static_cast<int>(x)));
    }
    return x;
}

double failsAtNegative(double x) {
    if (x < 0) {
        throw std::runtime_error("negative input");
    }
    return x;
}

const BuiltinFcn& minus() {
    static const BuiltinVariantLists lists{
        makeVariants<&minusOf<double>>("minus", {.isElementWise = true}),
        makeVariants<&minusOf<float>>("minus", {.isElementWise = true}),
        makeVariants<&minusOf<std::int8_t>>("minus", {.isElementWise = true}),
        makeVariants<&minusOf<std::uint16_t>>("minus", {.isElementWise = true}),
        makeVariants<&minusOf<std::complex<double>>>("minus", {.isElementWise = true}),
    };
    static const RegisteredBuiltin builtin("minus", "tests", "", lists, noDefaultImplementation("minus"));
    return builtin;
}

// Collects nothing: minus neither warns nor fails.
class QuietEnvironment final : public Velloc::lxe::ILxeBuiltinEnvironment {
public:
    void AddWarningMessage(const std::u16string&) override {}
    Velloc::lxe::ILxeBuiltinAccessors* GetLxeBuiltinAccessors() override { return nullptr; }
};

struct WarningLog {
    std::vector<std::string> messages;
    matrix::WarningHandler previous;
    WarningLog() {
        previous = matrix::setWarningHandler(
            [this](const fl::ustring& m) { messages.push_back(fl::i18n::ustring_to_utf8(m)); });
    }
    ~WarningLog() { matrix::setWarningHandler(previous); }
};

template <class T>
matrix::ArrayPtr arrayOf(std::vector<std::size_t> dims, const std::vector<T>& values) {
    matrix::ArrayPtr array(matrix::detail::do_create_uninitnumeric(dims, classOfValue<T>(),
                                                                   isComplexValue<T>() ? oxCOMPLEX : oxREAL));
    std::copy(values.begin(), values.end(), matrix::getTypedData<T>(array.get()));
    return array;
}

matrix::ArrayPtr call(const BuiltinFcn& fcn, std::vector<oxArray*> args) {
    oxArray* result = nullptr;
    fcn.invoke(1, &result, static_cast<int>(args.size()), args.data(), BuiltinFcn::NoLxe);
    return matrix::ArrayPtr(result);
}

template <class T>
class BroadcastThroughInvoke : public ::testing::Test {};

using InvokeTypes = ::testing::Types<double, float, std::int8_t, std::uint16_t, std::complex<double>>;
TYPED_TEST_SUITE(BroadcastThroughInvoke, InvokeTypes);

// [1;2;3] - [10 20], and each class's own extremes broadcast against a scalar.
TYPED_TEST(BroadcastThroughInvoke, columnMinusRowGivesEveryPair) {
    using T = TypeParam;
    const matrix::ArrayPtr column = arrayOf<T>({3, 1}, {T(1), T(2), T(3)});
    const matrix::ArrayPtr row = arrayOf<T>({1, 2}, {T(10), T(20)});
    const matrix::ArrayPtr out = call(minus(), {column.get(), row.get()});
    ASSERT_EQ(matrix::getClassID(out.get()), classOfValue<T>());
    const matrix::Dims dims = matrix::getDimensions(out.get());
    ASSERT_EQ(std::vector<std::size_t>(dims.begin(), dims.end()), (std::vector<std::size_t>{3, 2}));
    const T* data = matrix::getTypedData<T>(out.get());
    std::vector<T> expected;
    for (T b : {T(10), T(20)}) {
        for (T a : {T(1), T(2), T(3)}) {
            expected.push_back(minusOf(a, b));
        }
    }
    EXPECT_EQ(std::vector<T>(data, data + 6), expected);
}

TEST(ElementWiseInvoke, integerClassesSaturate) {
    const matrix::ArrayPtr a = arrayOf<std::int8_t>({1, 3}, {-100, 0, 100});
    const matrix::ArrayPtr b = arrayOf<std::int8_t>({1, 1}, {100});
    const matrix::ArrayPtr out = call(minus(), {a.get(), b.get()});
    const auto* data = matrix::getTypedData<std::int8_t>(out.get());
    EXPECT_EQ(std::vector<int>(data, data + 3), (std::vector<int>{-128, -100, 0}));
}

TEST(ElementWiseInvoke, largeCallsMatchTheElementFunctionEverywhere) {
    const std::size_t n = 300000;
    std::vector<double> values(n);
    for (std::size_t i = 0; i < n; ++i) {
        values[i] = double(i % 977);
    }
    const matrix::ArrayPtr a = arrayOf<double>({n, 1}, values);
    const matrix::ArrayPtr b = arrayOf<double>({1, 1}, {0.5});
    const matrix::ArrayPtr out = call(minus(), {a.get(), b.get()});
    const double* data = matrix::getTypedData<double>(out.get());
    EXPECT_TRUE(std::equal(data, data + n, values.begin(), [](double r, double v) { return r == v - 0.5; }));
    EXPECT_EQ(matrix::getReferenceCount(a.get()), 1U);
}

// The engine calls a variant's generic entry with its own arrays: a temporary one of the
// result's shape takes the result, and the result holds a reference of its own.
TEST(ElementWiseInvoke, theGenericEntryReusesOnlyATemporaryInputOfTheResultsShape) {
    const auto variants = makeVariants<&minusOf<double>>("minus", {.isElementWise = true});
    const Velloc::lxe::LxeFunctionDescriptor& descriptor = variants.front().functionDescriptor;
    const matrix::ArrayPtr a = arrayOf<double>({1, 3}, {10, 20, 30});
    const matrix::ArrayPtr b = arrayOf<double>({1, 1}, {1});
    const auto run = [&](oxArray* x, oxArray* y) {
        QuietEnvironment environment;
        bool pending = false;
        const Velloc::builtin::Parameter parameters[2] = {Velloc::builtin::Parameter(x),
                                                          Velloc::builtin::Parameter(y)};
        return matrix::ArrayPtr(
            boost::get<oxArray*>(descriptor.getGenericEntry()(descriptor, environment, pending, parameters)));
    };
    matrix::ArrayPtr out = run(a.get(), b.get());
    EXPECT_NE(out.get(), a.get()) << "not temporary";
    matrix::setTemporary(a.get(), true);
    matrix::setTemporary(b.get(), true);
    out = run(b.get(), a.get());
    EXPECT_EQ(out.get(), a.get()) << "the first input has another shape, the second takes the result";
    EXPECT_EQ(matrix::getReferenceCount(a.get()), 2U);
    const double* data = matrix::getTypedData<double>(a.get());
    EXPECT_EQ(std::vector<double>(data, data + 3), (std::vector<double>{-9, -19, -29}));
}

TEST(ElementWiseInvoke, warningsRaisedOnWorkerThreadsReachTheHost) {
    static const BuiltinVariantLists lists{makeVariants<&sqrtWarns>("w", {.isElementWise = true})};
    const RegisteredBuiltin w("w", "tests", "", lists, noDefaultImplementation("w"));
    WarningLog log;
    std::vector<double> values(200000, 1.0);
    values[7] = -7;
    values[190000] = -9;
    const matrix::ArrayPtr a = arrayOf<double>({values.size(), 1}, values);
    const matrix::ArrayPtr out = call(w, {a.get()});
    std::sort(log.messages.begin(), log.messages.end());
    EXPECT_EQ(log.messages, (std::vector<std::string>{"negative -7", "negative -9"}));

    // Serially, in element order.
    log.messages.clear();
    const matrix::ArrayPtr small = arrayOf<double>({1, 3}, {-3, 1, -1});
    call(w, {small.get()});
    EXPECT_EQ(log.messages, (std::vector<std::string>{"negative -3", "negative -1"}));
}

TEST(ElementWiseInvoke, anErrorOnAWorkerThreadBecomesTheCallsError) {
    static const BuiltinVariantLists lists{
        makeVariants<&failsAtNegative>("f", {.mayThrowErrors = true, .isElementWise = true})};
    const RegisteredBuiltin f("f", "tests", "", lists, noDefaultImplementation("f"));
    std::vector<double> values(100000, 1.0);
    values[99999] = -1;
    const matrix::ArrayPtr a = arrayOf<double>({values.size(), 1}, values);
    oxArray* args[] = {a.get()};
    oxArray* result = nullptr;
    EXPECT_THROW(f.invoke(1, &result, 1, args, BuiltinFcn::NoLxe), std::runtime_error);
    EXPECT_EQ(result, nullptr);
    EXPECT_EQ(matrix::getReferenceCount(a.get()), 1U);
}

} // namespace
