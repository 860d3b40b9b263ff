#include "VariantSamples.hpp"

#include <builtin/builtinreg/BehaviourChecks.hpp>
#include <builtin/builtinreg/OutputChecks.hpp>

#include <foundation/core/except/messages/legacy_two_part.hpp>
#include <foundation/log/Channel.hpp>
#include <foundation/usm/usm.hpp>

#include <gtest/gtest.h>

#include <stdexcept>
#include <type_traits>

namespace {

using namespace samples;
namespace detail = Velloc::builtin::builtinreg::detail;
using Velloc::builtin::builtinreg::CallsORVEXCheckAsserted;

BuiltinVariant plusImpl(bool callsIntoOrvex = false) {
    BuiltinVariant v = variant({scalar(oxDOUBLE_CLASS)}, {anyArray()}, {.callsIntoOrvex = callsIntoOrvex}, "plusImpl");
    v.orvexFunctionName = "plus";
    v.dominantClass = "double";
    return v;
}

TEST(OutputChecksDeathTest, BrokenOutputContractsEndTheProcess) {
    const BuiltinVariant v = plusImpl();
    EXPECT_DEATH(detail::assertLhsIsNotNull(2, 1, v),
                 "ORVEX Builtin: \"plus\" of dominant class \"double\" implemented by \"plusImpl\" did not populate "
                 "plhs\\[1\\] but nlhs is 2");
    EXPECT_DEATH(detail::assertLhsOverflow(2, 2, v), "\"plusImpl\" wrote to plhs\\[2\\] but nlhs is 2");

    BuiltinVariant declaresDouble = variant({}, {doubleArrayAnyShape()}, {}, "twice");
    matrix::ArrayPtr text(matrix::createCharRow(u"no"));
    EXPECT_DEATH(detail::assertLhsWrongType(declaresDouble, text.get()),
                 "incorrect type returned from builtin: \"twice\"\nExpected: ");
    matrix::ArrayPtr number(doubles(2, 2));
    detail::assertLhsWrongType(declaresDouble, number.get());
    EXPECT_THROW(detail::assertLhsWrongType(variant({}, {}), number.get()), std::out_of_range);
}

// The builtin library raises the host's own message id, which a file may include beside it.
static_assert(std::is_same_v<Velloc::builtin::UnassignedOutputsError,
                             foundation::core::except::Exception<ORVEX::legacy_two_part::unassignedOutputs,
                                                                 std::exception>>);

TEST(OutputChecks, UnassignedOutputsAreFreedAndReported) {
    oxArray* plhs[3] = {doubles(1, 1), nullptr, doubles(2, 2)};
    try {
        Velloc::builtin::throwIfUnassignedOutputs(u"plus", 3, plhs);
        FAIL();
    } catch (const Velloc::builtin::UnassignedOutputsError& error) {
        EXPECT_EQ(error.getId().component, "ORVEX:legacy_two_part");
        EXPECT_EQ(error.getId().key, "unassignedOutputs");
        EXPECT_NE(error.message().find("\"plus\""), std::string::npos);
    }
    EXPECT_EQ(plhs[0], nullptr);
    EXPECT_EQ(plhs[2], nullptr);

    matrix::ArrayPtr kept(doubles(1, 1));
    oxArray* full[1] = {kept.get()};
    Velloc::builtin::throwIfUnassignedOutputs(u"plus", 1, full);
    EXPECT_EQ(full[0], kept.get());
}

TEST(BehaviourChecksDeathTest, CallingIntoTheLanguageAgainstThePromiseEndsTheProcess) {
    foundation::usm::OvmInstance instance;
    foundation::usm::CurrentOvm current(instance);
    const BuiltinVariant promisesNot = plusImpl(false);
    const BuiltinVariant mayCall = plusImpl(true);
    {
        CallsORVEXCheckAsserted outer(&mayCall);
        {
            CallsORVEXCheckAsserted inner(&promisesNot);
            EXPECT_DEATH(Velloc::builtin::vlDoesNotCallORVEXAssertion(),
                         "The plusImpl implementation of the ORVEX builtin function plus is marked as not calling "
                         "into orvex, but does.Need to change builtin doxygen");
        }
        Velloc::builtin::vlDoesNotCallORVEXAssertion(); // judged against the outer variant
        CallsORVEXCheckAsserted unknown(nullptr);
        Velloc::builtin::vlDoesNotCallORVEXAssertion();
    }
    EXPECT_DEATH(detail::AssertIfWarnings{promisesNot}(u"careful"),
                 "builtin: \"plus\" function: \"plusImpl\" claims no warnings but generated this warning:\ncareful");
}

// Nested calls deeper than any before grow the instance's stack; the innermost variant is
// still the one judged, at every depth on the way down and back up.
void nestGuards(int depth, const BuiltinVariant& promisesNot, const BuiltinVariant& mayCall) {
    if (depth == 0) {
        return;
    }
    const CallsORVEXCheckAsserted guard(depth % 2 == 0 ? &mayCall : &promisesNot);
    if (depth % 2 == 0) {
        Velloc::builtin::vlDoesNotCallORVEXAssertion();
    } else if (depth % 10 == 1) {
        EXPECT_DEATH(Velloc::builtin::vlDoesNotCallORVEXAssertion(), "is marked as not calling into orvex");
    }
    nestGuards(depth - 1, promisesNot, mayCall);
    if (depth % 2 == 0) {
        Velloc::builtin::vlDoesNotCallORVEXAssertion();
    }
}

TEST(BehaviourChecksDeathTest, DeepNestingJudgesTheInnermostVariant) {
    foundation::usm::OvmInstance instance;
    foundation::usm::CurrentOvm current(instance);
    const BuiltinVariant promisesNot = plusImpl(false);
    const BuiltinVariant mayCall = plusImpl(true);
    for (int round = 0; round < 2; ++round) {
        nestGuards(70, promisesNot, mayCall);
        Velloc::builtin::vlDoesNotCallORVEXAssertion(); // nothing runs
    }
}

TEST(BehaviourChecks, OutsideALanguageInstanceNothingIsChecked) {
    const BuiltinVariant promisesNot = plusImpl(false);
    CallsORVEXCheckAsserted guard(&promisesNot);
    Velloc::builtin::vlDoesNotCallORVEXAssertion();
    // Nor in an instance made current while that variant runs: it is not one of the instance's.
    foundation::usm::OvmInstance instance;
    const foundation::usm::CurrentOvm current(instance);
    Velloc::builtin::vlDoesNotCallORVEXAssertion();
}

TEST(BehaviourChecks, ExecutionsAreTraced) {
    foundation::log::ScopedCapture capture("builtin2::invoke");
    const BuiltinVariant v = plusImpl();
    { detail::LogBuiltinVariantExecution_ trace(&v); }
    const auto records = capture.records();
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].text.rfind("Executing: ==================================\nBuiltinVariant:\n c++ function name: plusImpl", 0), 0U);
    EXPECT_EQ(records[1].text.rfind("Execution complete: ====", 0), 0U);
}

} // namespace
