#include "VariantSamples.hpp"

#include <builtin/builtinreg/Boxing.hpp>
#include <builtin/builtinreg/MultiOVMReporting.hpp>

#include <foundation/core/diag/terminate.hpp>
#include <foundation/log/Channel.hpp>

#include <gtest/gtest.h>

#include <exception>
#include <memory>
#include <stdexcept>

namespace {

using namespace samples;
namespace detail = Velloc::builtin::builtinreg::detail;
namespace types = Velloc::builtin::types;

TEST(Boxing, EachInputListMakesACopyWithItsOwnTypesAndLevel) {
    BuiltinVariant original = variant({scalar(oxDOUBLE_CLASS), scalar(oxDOUBLE_CLASS)}, {scalar(oxDOUBLE_CLASS)},
                                      {.sideEffects = true}, "original");
    original.originalVariant = std::make_shared<const BuiltinVariant>(original);
    std::vector<std::vector<ArgType>> lists{{anyArray(), scalar(oxDOUBLE_CLASS)},
                                            {scalar(oxDOUBLE_CLASS), doubleArrayAnyShape()},
                                            {scalar(oxDOUBLE_CLASS, true), scalar(oxDOUBLE_CLASS)}};
    std::vector<BuiltinVariant> out;
    detail::fillBoxedVariants(original, out, lists);

    ASSERT_EQ(out.size(), 3U);
    for (const auto& list : lists) {
        EXPECT_TRUE(list.empty());
    }
    for (const BuiltinVariant& boxed : out) {
        EXPECT_EQ(boxed.cppFunctionName, "original");
        EXPECT_EQ(boxed.outputTypes, original.outputTypes);
        EXPECT_TRUE(boxed.mayHaveSideEffects);
        EXPECT_EQ(boxed.originalVariant, original.originalVariant);
        EXPECT_EQ(boxed.inputTypes.size(), 2U);
    }
    EXPECT_EQ(out[0].inputTypes[0], types::toString(anyArray(), types::ArgTypeDirection::INPUT, 0));
    EXPECT_EQ(out[0].lxeSupportLevel, LxeSupportLevel::EQUIVALENT_SUPPORT);
    EXPECT_EQ(out[2].lxeSupportLevel, LxeSupportLevel::NO_SUPPORT) << "a complex scalar input is the interpreter's";
}

TEST(BoxingDeathTest, InconsistentBoxingEndsTheProcessOnlyWhenArmed) {
    const BuiltinVariant original = variant({anyArray(), anyArray()}, {anyArray()});
    BuiltinVariant shorter = original;
    shorter.inputTypes = {shorter.inputTypes.begin(), shorter.inputTypes.end() - 1};
    foundation::core::diag::setTerminationsArmed(false);
    detail::assertBoxingVariantConsistent(shorter, original);
    foundation::core::diag::setTerminationsArmed(true);
    EXPECT_DEATH(detail::assertBoxingVariantConsistent(shorter, original),
                 "boxingVariant.inputTypes.size\\(\\) == originalVariant.inputTypes.size\\(\\)");
    BuiltinVariant otherOutputs = original;
    otherOutputs.outputArgTypes = {scalar(oxDOUBLE_CLASS)};
    EXPECT_DEATH(detail::assertBoxingVariantConsistent(otherOutputs, original), "outputArgTypes");
    detail::assertBoxingVariantConsistent(original, original);
    foundation::core::diag::setTerminationsArmed(false);
}

TEST(Boxing, ConversionsAreLoggedWithTheirTypes) {
    foundation::log::ScopedCapture capture("builtin2::Boxing");
    BuiltinVariant v = variant({anyArray(), anyArray()}, {});
    v.inputTypes = {"A", "B"};
    detail::logBoxingInputConversions({typeid(double), typeid(int)}, {typeid(oxArray*)}, v);
    ASSERT_EQ(capture.records().size(), 1U);
    EXPECT_EQ(capture.records()[0].text,
              "Developer inputs: \"double\", \"int\"\nBoxed inputs: \"oxArray*\"\nArgTypes: \"A\"\nB");
    EXPECT_EQ(capture.records()[0].severity, 4);
}

class RecordingEnvironment final : public Velloc::lxe::ILxeBuiltinEnvironment,
                                   public Velloc::lxe::ILxeBuiltinAccessors {
public:
    std::exception_ptr pending;
    void AddWarningMessage(const std::u16string&) override {}
    Velloc::lxe::ILxeBuiltinAccessors* GetLxeBuiltinAccessors() override { return this; }
    void SetInternalPendingException() override { pending = std::current_exception(); }
};

TEST(Boxing, ExceptionsWhileBoxingBecomeThePendingError) {
    bool raised = false;
    detail::handleBoxingException(raised, nullptr);
    EXPECT_TRUE(raised);

    RecordingEnvironment environment;
    raised = false;
    try {
        throw std::range_error("cannot box");
    } catch (...) {
        detail::handleBoxingException(raised, &environment);
    }
    EXPECT_TRUE(raised);
    EXPECT_THROW(std::rethrow_exception(environment.pending), std::range_error);
}

TEST(MultiOVMReporting, EveryCallWritesOneRecord) {
    foundation::log::ScopedCapture capture("builtinservice::MultiOVMReporting");
    BuiltinVariant plus = variant({}, {});
    plus.orvexFunctionName = "plus";
    plus.dominantClass = "double";
    detail::logMultiOvmViolation(&plus);
    detail::logMultiOvmViolation(&plus);
    detail::logMultiOvmViolation(nullptr);
    detail::logMultiOvmReportingViolation("size", "");
    const auto records = capture.records();
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(records[0].text, "Non-Multi-OVM builtin plus on class double called.");
    EXPECT_EQ(records[1].text, records[0].text);
    EXPECT_EQ(records[2].text, "Non-Multi-OVM builtin size on class  called.");
    EXPECT_EQ(records[2].severity, 1);
}

} // namespace
