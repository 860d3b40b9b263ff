#include "RecordingEnvironment.hpp"

#include <builtin/builtinreg/ElementTypes.hpp>
#include <builtin/builtinreg/ElementWiseInlineC.hpp>
#include <builtin/builtinreg/ParameterAccess.hpp>

#include <gtest/gtest.h>

#include <complex>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace Velloc::builtin::builtinreg::detail;
using Velloc::builtin::Parameter;
using Velloc::lxe::ILxeBuiltinEnvironment;
using Velloc::lxe::LxeFunctionDescriptor;
using elementwise_test::RecordingEnvironment;

constexpr std::size_t ARRAY_INDEX = WRAPPER_TYPE_INDEX<oxArray*>;

template <class T>
T add(T a, T b) {
    return static_cast<T>(a + b);
}

// Warns for every negative element, in the element's own words.
bool negate(double x, double* result, ILxeBuiltinEnvironment* environment, const LxeFunctionDescriptor*) {
    *result = -x;
    if (x < 0) {
        environment->AddWarningMessage(u"negative " + std::u16string(1, char16_t(u'0' + int(-x) % 10)));
        return true;
    }
    return false;
}

bool failAt(double x, double* result, ILxeBuiltinEnvironment* environment, const LxeFunctionDescriptor*) {
    *result = x;
    if (x >= 3000) {
        try {
            throw std::runtime_error("failed at " + std::to_string(int(x)));
        } catch (...) {
            environment->GetLxeBuiltinAccessors()->SetInternalPendingException();
        }
        return true;
    }
    return false;
}

double throwing(double) { throw std::runtime_error("element failed"); }

template <class F>
LxeFunctionDescriptor descriptorOf(F* function, Velloc::lxe::JIT_CALLING_CONVENTION convention = Velloc::lxe::Plain) {
    return LxeFunctionDescriptor(nullptr, nullptr, convention, reinterpret_cast<void*>(function));
}

template <class T>
matrix::ArrayPtr arrayOf(std::vector<std::size_t> dims, const std::vector<T>& values) {
    matrix::ArrayPtr array(matrix::detail::do_create_uninitnumeric(dims, classOfValue<T>(),
                                                                   isComplexValue<T>() ? oxCOMPLEX : oxREAL));
    std::copy(values.begin(), values.end(), matrix::getTypedData<T>(array.get()));
    return array;
}

std::vector<double> iota(std::size_t n) {
    std::vector<double> values(n);
    for (std::size_t i = 0; i < n; ++i) {
        values[i] = double(i);
    }
    return values;
}

// The output array of a handled call, owned by the test.
matrix::ArrayPtr outputOf(const InlineCResult& result) {
    EXPECT_EQ(result.tag, std::int32_t(ARRAY_INDEX));
    return matrix::ArrayPtr(reinterpret_cast<oxArray*>(static_cast<std::uintptr_t>(result.value)));
}

template <class T>
std::vector<T> valuesOf(const oxArray* array) {
    const T* data = matrix::getTypedData<T>(array);
    return std::vector<T>(data, data + matrix::getNumberOfElements(array));
}

template <class T>
class HomogeneousKey : public ::testing::Test {};

using SomeElementTypes = ::testing::Types<unsigned long, double, float, bool, signed char, int, unsigned short,
                                          std::complex<double>, std::complex<float>>;
TYPED_TEST_SUITE(HomogeneousKey, SomeElementTypes);

// Each homogeneous triple reaches its element type's worker, which broadcasts a 2x1
// array against a scalar value.
TYPED_TEST(HomogeneousKey, runsItsWorkerAndMixedKeysAroundItDoNot) {
    using T = TypeParam;
    constexpr std::size_t k = WRAPPER_TYPE_INDEX<T>;
    const LxeFunctionDescriptor descriptor = descriptorOf(&add<T>);
    RecordingEnvironment environment;
    bool raised = true;
    const matrix::ArrayPtr a = arrayOf<T>({2, 1}, {T(1), T(0)});
    const ElementWiseArguments arguments{Parameter(a.get()), Parameter(T(1))};

    const matrix::ArrayPtr out =
        outputOf(elementWiseInlineC(&descriptor, &environment, raised, arguments, nullptr, k, k, k));
    EXPECT_EQ(valuesOf<T>(out.get()), (std::vector<T>{add(T(1), T(1)), add(T(0), T(1))}));
    EXPECT_FALSE(raised);

    for (std::size_t other = 0; other < 16; ++other) {
        if (other == k) {
            continue;
        }
        for (const auto& [k0, k1, k2] : {std::tuple{other, k, k}, std::tuple{k, other, k}, std::tuple{k, k, other}}) {
            const InlineCResult result = elementWiseInlineC(&descriptor, &environment, raised, arguments, nullptr, k0,
                                                            k1, k2);
            EXPECT_EQ(result.tag, 0) << k0 << " " << k1 << " " << k2;
            EXPECT_EQ(result.value, 0U);
        }
        EXPECT_EQ(elementWiseInlineC(&descriptor, &environment, raised, arguments, nullptr, other, k).value, 0U);
    }
}

TEST(ElementWiseInlineC, twoScalarValuesGiveTheElementFunctionsRecord) {
    const LxeFunctionDescriptor descriptor = descriptorOf(&add<int>);
    RecordingEnvironment environment;
    bool raised = false;
    const std::size_t k = WRAPPER_TYPE_INDEX<int>;
    const InlineCResult result = elementWiseInlineC(&descriptor, &environment, raised,
                                                    ElementWiseArguments{Parameter(2), Parameter(40)}, nullptr, k, k, k);
    EXPECT_EQ(result.tag, std::int32_t(k));
    EXPECT_EQ(readInlineCResult<int>(result), 42);
}

TEST(ElementWiseInlineC, indicesOfArraysStringsAndObjectsAreRefused) {
    const LxeFunctionDescriptor descriptor = descriptorOf(&add<double>);
    RecordingEnvironment environment;
    bool raised = false;
    const matrix::ArrayPtr a = arrayOf<double>({2, 1}, {1, 2});
    const ElementWiseArguments arguments{Parameter(a.get()), Parameter(a.get())};
    for (std::size_t k : {13, 14, 15, 16, 300}) {
        EXPECT_EQ(elementWiseInlineC(&descriptor, &environment, raised, arguments, nullptr, k, k, k).tag, 0);
    }
}

struct Reuse : ::testing::Test {
    LxeFunctionDescriptor descriptor = descriptorOf(&add<double>);
    RecordingEnvironment environment;
    bool raised = false;
    std::size_t k = WRAPPER_TYPE_INDEX<double>;

    // The output of a + b: new, or one of the inputs, which then stays the caller's.
    oxArray* run(oxArray* a, oxArray* b) {
        const InlineCResult result = elementWiseInlineC(&descriptor, &environment, raised,
                                                        ElementWiseArguments{Parameter(a), Parameter(b)}, nullptr, k,
                                                        k, k);
        return reinterpret_cast<oxArray*>(static_cast<std::uintptr_t>(result.value));
    }
};

TEST_F(Reuse, aTemporaryInputOfTheOutputsShapeTakesTheOutputFirstInputFirst) {
    const matrix::ArrayPtr a = arrayOf<double>({3, 1}, {1, 2, 3});
    const matrix::ArrayPtr b = arrayOf<double>({3, 1}, {10, 20, 30});
    matrix::setTemporary(a.get(), true);
    matrix::setTemporary(b.get(), true);
    EXPECT_EQ(run(a.get(), b.get()), a.get());
    EXPECT_EQ(valuesOf<double>(a.get()), (std::vector<double>{11, 22, 33}));
    matrix::setTemporary(a.get(), false);
    EXPECT_EQ(run(a.get(), b.get()), b.get());
    EXPECT_EQ(valuesOf<double>(b.get()), (std::vector<double>{21, 42, 63}));
}

TEST_F(Reuse, sharedDataOtherShapesAndNonTemporariesGetANewArray) {
    const matrix::ArrayPtr column = arrayOf<double>({3, 1}, {1, 2, 3});
    const matrix::ArrayPtr row = arrayOf<double>({1, 2}, {10, 20});
    matrix::setTemporary(column.get(), true);
    // Broadcast: the 3x2 output has neither input's shape.
    matrix::ArrayPtr out(run(column.get(), row.get()));
    EXPECT_NE(out.get(), column.get());
    EXPECT_EQ(valuesOf<double>(out.get()), (std::vector<double>{11, 12, 13, 21, 22, 23}));

    const matrix::ArrayPtr shared(matrix::createSharedDataCopy(column.get()));
    matrix::setTemporary(shared.get(), true);
    out.reset(run(shared.get(), shared.get()));
    EXPECT_NE(out.get(), shared.get());
    EXPECT_NE(out.get(), column.get());
    EXPECT_EQ(valuesOf<double>(column.get()), (std::vector<double>{1, 2, 3}));

    const matrix::ArrayPtr plain = arrayOf<double>({3, 1}, {1, 2, 3});
    out.reset(run(plain.get(), plain.get()));
    EXPECT_NE(out.get(), plain.get());
    EXPECT_EQ(valuesOf<double>(out.get()), (std::vector<double>{2, 4, 6}));
}

struct Transform : ::testing::Test {
    RecordingEnvironment environment;
    bool raised = false;
    std::size_t k = WRAPPER_TYPE_INDEX<double>;

    matrix::ArrayPtr run(const LxeFunctionDescriptor& descriptor, const std::vector<double>& values,
                         bool parallel = true) {
        const matrix::ArrayPtr in = arrayOf<double>({values.size(), 1}, values);
        const InlineCResult result = elementWiseInlineC(&descriptor, &environment, raised,
                                                        ElementWiseArguments{Parameter(in.get())}, nullptr, k, k,
                                                        parallel);
        if (result.tag == 0) {
            return nullptr;
        }
        return outputOf(result);
    }
};

TEST_F(Transform, serialRunsReportWarningsInElementOrder) {
    const LxeFunctionDescriptor descriptor = descriptorOf(&negate, Velloc::lxe::CanThrow);
    const matrix::ArrayPtr out = run(descriptor, {1, -1, 2, -2, -3});
    EXPECT_EQ(valuesOf<double>(out.get()), (std::vector<double>{-1, 1, -2, 2, 3}));
    EXPECT_TRUE(raised);
    EXPECT_EQ(environment.events, (std::vector<std::u16string>{u"negative 1", u"negative 2", u"negative 3"}));
}

TEST_F(Transform, parallelRunsReplayEveryWarningOnTheCallingThread) {
    const LxeFunctionDescriptor descriptor = descriptorOf(&negate, Velloc::lxe::CanThrow);
    std::vector<double> values = iota(200000);
    values[5] = -1;
    values[150000] = -2;
    const matrix::ArrayPtr out = run(descriptor, values);
    EXPECT_EQ(valuesOf<double>(out.get())[199999], -199999);
    EXPECT_TRUE(raised);
    std::vector<std::u16string> events = environment.events;
    std::sort(events.begin(), events.end());
    EXPECT_EQ(events, (std::vector<std::u16string>{u"negative 1", u"negative 2"}));
}

TEST_F(Transform, anErrorGivesTheAllZeroRecordAndOnlyTheFirstErrorIsPending) {
    const LxeFunctionDescriptor descriptor = descriptorOf(&failAt, Velloc::lxe::CanThrow);
    EXPECT_EQ(run(descriptor, iota(3005), false), nullptr);
    EXPECT_TRUE(raised);
    EXPECT_EQ(environment.events, (std::vector<std::u16string>{u"error: failed at 3000"}));
    environment.events.clear();
    EXPECT_EQ(run(descriptor, iota(100000)), nullptr);
    ASSERT_EQ(environment.events.size(), 1U);
}

TEST(ElementWiseInlineCDeathTest, disagreeingDimensionsEndTheProcess) {
    const LxeFunctionDescriptor descriptor = descriptorOf(&add<double>);
    RecordingEnvironment environment;
    bool raised = false;
    const matrix::ArrayPtr a = arrayOf<double>({3, 1}, {1, 2, 3});
    const matrix::ArrayPtr b = arrayOf<double>({4, 1}, {1, 2, 3, 4});
    const std::size_t k = WRAPPER_TYPE_INDEX<double>;
    EXPECT_DEATH(elementWiseInlineC(&descriptor, &environment, raised,
                                    ElementWiseArguments{Parameter(a.get()), Parameter(b.get())}, nullptr, k, k, k),
                 "the ith dim of each input array should be equal or 1");
}

TEST(ElementWiseInlineCDeathTest, anExceptionEscapingAnElementFunctionEndsTheProcess) {
    const LxeFunctionDescriptor descriptor = descriptorOf(&throwing);
    RecordingEnvironment environment;
    bool raised = false;
    const matrix::ArrayPtr a = arrayOf<double>({5000, 1}, iota(5000));
    const std::size_t k = WRAPPER_TYPE_INDEX<double>;
    EXPECT_DEATH(elementWiseInlineC(&descriptor, &environment, raised, ElementWiseArguments{Parameter(a.get())},
                                    nullptr, k, k, false),
                 "what\\(\\): +element failed");
    // Workers that throw at once all enter std::terminate; the runtime's handler then prints
    // "terminate called recursively" from the second before the first has named the exception.
    EXPECT_DEATH(elementWiseInlineC(&descriptor, &environment, raised, ElementWiseArguments{Parameter(a.get())},
                                    nullptr, k, k, true),
                 "terminate called");
}

} // namespace
