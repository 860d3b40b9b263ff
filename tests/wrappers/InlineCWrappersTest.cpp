#include <builtin/builtinreg/InlineCWrappers.hpp>
#include <builtin/builtinreg/MakeVariant.hpp>

#include <foundation/core/diag/terminate.hpp>

#include <gtest/gtest.h>

#include <complex>
#include <initializer_list>
#include <set>
#include <string>
#include <vector>

namespace {

using namespace Velloc::builtin;
using namespace Velloc::builtin::builtinreg::detail;
using Velloc::lxe::ILxeBuiltinEnvironment;
using Velloc::lxe::JIT_CALLING_CONVENTION;
using Velloc::lxe::LxeFunctionDescriptor;
using Velloc::lxe::LxeObject;

constexpr const InlineCTypeList* LIST = nullptr;

// What the developer functions saw.
int calls = 0;
const LxeFunctionDescriptor* seenCallee = nullptr;
bool slotWasZero = false;
bool slotWasNull = false;

double plus(double a, double b) { return a + b; }
long combine(signed char a, unsigned short b) { return a * 100000L + b; }
signed char sign(bool negative) { return negative ? -1 : 1; }
std::complex<double> conjugate(std::complex<double> z) { return std::conj(z); }
LxeObject* second(oxArray*, LxeObject* object) { return object; }
int answer() { return 42; }
double negate(double a) { return -a; }
void count(int by) { calls += by; }

double twice(double a, const LxeFunctionDescriptor* callee) {
    seenCallee = callee;
    return a * 2;
}

bool halve(double a, double* slot, ILxeBuiltinEnvironment* environment, const LxeFunctionDescriptor* callee) {
    slotWasZero = *slot == 0;
    seenCallee = callee;
    *slot = a / 2;
    if (a < 0) {
        environment->AddWarningMessage(u"negative");
    }
    return a < 0;
}

bool countAndFail(int by, void* slot, ILxeBuiltinEnvironment*, const LxeFunctionDescriptor*) {
    slotWasNull = slot == nullptr;
    calls += by;
    return true;
}

template <class F>
LxeFunctionDescriptor calleeOf(F* function, JIT_CALLING_CONVENTION convention) {
    return LxeFunctionDescriptor(nullptr, nullptr, convention, reinterpret_cast<void*>(function));
}

class InlineCWrappers : public testing::Test, public ILxeBuiltinEnvironment {
protected:
    void AddWarningMessage(const std::u16string& message) override { warnings.push_back(message); }
    Velloc::lxe::ILxeBuiltinAccessors* GetLxeBuiltinAccessors() override { return nullptr; }

    // Calls the thunk for result and argument indices with a stale error flag.
    InlineCResult call(const LxeFunctionDescriptor& callee, std::initializer_list<unsigned long> indices,
                       std::vector<Parameter> arguments = {}) {
        error = true;
        const unsigned long* i = indices.begin();
        switch (indices.size()) {
        case 1: return getExportedInlineCWrapperFcn(LIST, i[0])(&callee, this, &error);
        case 2: return getExportedInlineCWrapperFcn(LIST, i[0], i[1])(&callee, this, &error, arguments.data());
        default:
            return getExportedInlineCWrapperFcn(LIST, i[0], i[1], i[2])(&callee, this, &error, arguments.data());
        }
    }

    std::vector<std::u16string> warnings;
    bool error = true;
};

using InlineCWrappersDeathTest = InlineCWrappers;

TEST_F(InlineCWrappers, PlainThunksPassTheArgumentsAndPackTheResultByType) {
    const InlineCResult sum = call(calleeOf(&plus, Velloc::lxe::Plain), {1, 1, 1}, {1.5, 2.0});
    EXPECT_FALSE(error);
    EXPECT_EQ(sum.tag, 1);
    EXPECT_EQ(readInlineCResult<double>(sum), 3.5);

    // Result first, then the arguments in order.
    const InlineCResult combined = call(calleeOf(&combine, Velloc::lxe::Plain), {7, 4, 9},
                                        {static_cast<signed char>(-3), static_cast<unsigned short>(7)});
    EXPECT_EQ(combined.tag, 7);
    EXPECT_EQ(readInlineCResult<long>(combined), -299993L);

    // Narrow values occupy the low-order bytes; the rest of the slot stays zero.
    const InlineCResult minusOne = call(calleeOf(&sign, Velloc::lxe::Plain), {4, 3}, {true});
    EXPECT_EQ(minusOne.tag, 4);
    EXPECT_EQ(minusOne.value, 0xFFU);

    EXPECT_EQ(readInlineCResult<int>(call(calleeOf(&answer, Velloc::lxe::Plain), {6})), 42);

    const InlineCResult conj =
        call(calleeOf(&conjugate, Velloc::lxe::Plain), {11, 11}, {std::complex<double>(1, 2)});
    EXPECT_EQ(conj.tag, 11);
    EXPECT_EQ(readInlineCResult<std::complex<double>>(conj), std::complex<double>(1, -2));

    auto* object = reinterpret_cast<LxeObject*>(0x1230);
    const InlineCResult picked =
        call(calleeOf(&second, Velloc::lxe::Plain), {15, 13, 15}, {static_cast<oxArray*>(nullptr), object});
    EXPECT_EQ(picked.tag, 15);
    EXPECT_EQ(readInlineCResult<LxeObject*>(picked), object);
}

TEST_F(InlineCWrappers, WithCalleeAndCanThrowReceiveTheirExtraArguments) {
    const auto twiceCallee = calleeOf(&twice, Velloc::lxe::WithCallee);
    EXPECT_EQ(readInlineCResult<double>(call(twiceCallee, {1, 1}, {3.0})), 6.0);
    EXPECT_FALSE(error);
    EXPECT_EQ(seenCallee, &twiceCallee);

    const auto halveCallee = calleeOf(&halve, Velloc::lxe::CanThrow);
    const InlineCResult half = call(halveCallee, {1, 1}, {3.0});
    EXPECT_FALSE(error);
    EXPECT_TRUE(slotWasZero);
    EXPECT_EQ(seenCallee, &halveCallee);
    EXPECT_EQ(half.tag, 1);
    EXPECT_EQ(readInlineCResult<double>(half), 1.5);

    // The error signal comes back through the flag; the slot is still the result.
    EXPECT_EQ(readInlineCResult<double>(call(halveCallee, {1, 1}, {-4.0})), -2.0);
    EXPECT_TRUE(error);
    EXPECT_EQ(warnings, std::vector<std::u16string>{u"negative"});
}

TEST_F(InlineCWrappers, FunctionsWithoutResultGiveTheNoValueRecord) {
    calls = 0;
    const InlineCResult none = call(calleeOf(&count, Velloc::lxe::Plain), {16, 6}, {2});
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(none.tag, 16);
    EXPECT_EQ(none.value, 0U);

    EXPECT_EQ(call(calleeOf(&countAndFail, Velloc::lxe::CanThrow), {16, 6}, {2}).tag, 16);
    EXPECT_EQ(calls, 4);
    EXPECT_TRUE(slotWasNull);
    EXPECT_TRUE(error);
}

TEST_F(InlineCWrappers, NoValueArgumentsAreNeitherReadNorPassed) {
    // Position 0 holds no double: reading it would end the process.
    foundation::core::diag::setTerminationsArmed(true);
    const InlineCResult result = call(calleeOf(&negate, Velloc::lxe::Plain), {1, 16, 1}, {7, 2.5});
    foundation::core::diag::setTerminationsArmed(false);
    EXPECT_EQ(readInlineCResult<double>(result), -2.5);
}

TEST_F(InlineCWrappers, UnknownConventionsAndMissingFunctionsCallNothing) {
    calls = 0;
    for (const LxeFunctionDescriptor& callee :
         {calleeOf(&count, static_cast<JIT_CALLING_CONVENTION>(7)),
          calleeOf(&count, static_cast<JIT_CALLING_CONVENTION>(-1)),
          LxeFunctionDescriptor(nullptr, nullptr, Velloc::lxe::CanThrowLxeInternal, nullptr)}) {
        const InlineCResult result = call(callee, {16, 6}, {1});
        EXPECT_FALSE(error);
        EXPECT_EQ(result.tag, 0);
        EXPECT_EQ(result.value, 0U);
    }
    EXPECT_EQ(getExportedInlineCWrapperFcn(LIST, 16, 6)(nullptr, this, &error, nullptr).tag, 0);
    EXPECT_EQ(calls, 0);
}

TEST_F(InlineCWrappers, EveryCombinationHasItsOwnThunkAndOutOfRangeIndicesHaveNone) {
    std::set<const void*> thunks;
    for (unsigned long r = 0; r < WRAPPER_TYPE_COUNT; ++r) {
        thunks.insert(reinterpret_cast<const void*>(getExportedInlineCWrapperFcn(LIST, r)));
        for (unsigned long a = 0; a < WRAPPER_TYPE_COUNT; ++a) {
            thunks.insert(reinterpret_cast<const void*>(getExportedInlineCWrapperFcn(LIST, r, a)));
            // A trailing no-value argument is the signature without it.
            EXPECT_EQ(getExportedInlineCWrapperFcn(LIST, r, a, NO_VALUE_INDEX),
                      getExportedInlineCWrapperFcn(LIST, r, a));
            for (unsigned long b = 0; b < WRAPPER_TYPE_COUNT; ++b) {
                thunks.insert(reinterpret_cast<const void*>(getExportedInlineCWrapperFcn(LIST, r, a, b)));
            }
        }
    }
    EXPECT_EQ(thunks.count(nullptr), 0U);
    EXPECT_EQ(thunks.size(), 17U + 17U * 17U * 17U);
    EXPECT_EQ(getExportedInlineCWrapperFcn(LIST, 17), nullptr);
    EXPECT_EQ(getExportedInlineCWrapperFcn(LIST, 0, 17), nullptr);
    EXPECT_EQ(getExportedInlineCWrapperFcn(LIST, 17, 0, 0), nullptr);
    EXPECT_EQ(getExportedInlineCWrapperFcn(LIST, 0, 0, ~0UL), nullptr);
}

TEST_F(InlineCWrappersDeathTest, ArgumentsOfTheWrongTypeAreReportedWhenArmed) {
    const auto plusCallee = calleeOf(&plus, Velloc::lxe::Plain);
    EXPECT_EQ(readInlineCResult<double>(call(plusCallee, {1, 1, 1}, {1.0, 2.0F})), 1.0);
    foundation::core::diag::setTerminationsArmed(true);
    EXPECT_DEATH(call(plusCallee, {1, 1, 1}, {1.0, 2.0F}),
                 "Parameter created with incorrect type.\nExpected: double\nActual: float");
    foundation::core::diag::setTerminationsArmed(false);
}

TEST_F(InlineCWrappersDeathTest, UnservableConventionsEndTheProcess) {
    EXPECT_DEATH(call(calleeOf(&answer, Velloc::lxe::CanThrowLxeInternal), {6}),
                 "Fatal assertion: CanThrowLxeInternal should not be encountered by builtin2 code\n"
                 "  file: InlineCWrappers\n  line: [0-9]+\n  function: .*terminateUnexpectedCallingConvention");
    EXPECT_DEATH(terminateUnexpectedCallingConvention(static_cast<JIT_CALLING_CONVENTION>(42)),
                 "Fatal assertion: unexpected JIT_CALLING_CONVENTION encountered by builtin2 code: 42\n"
                 "  file: InlineCWrappers\n  line: [0-9]+\n  function: .*terminateUnexpectedCallingConvention");

    BuiltinVariant variant = builtinreg::makeVariants<&plus>("plus").front();
    variant.functionDescriptor = calleeOf(&plus, static_cast<JIT_CALLING_CONVENTION>(9));
    EXPECT_DEATH(assertInvalidCallingConvention("plus", variant),
                 "Fatal assertion: plus variant was created without an valid jit calling convention: 9\n"
                 "  file: InlineCWrappers\n  line: [0-9]+\n  function: .*assertInvalidCallingConvention");
}

} // namespace
