#include "VariantSamples.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

namespace {

using namespace samples;
using Velloc::builtin::VariantSignature;
namespace detail = Velloc::builtin::builtinreg::detail;

TEST(BuiltinVariant, SupportLevelFollowsTypesAndBehaviour) {
    EXPECT_EQ(variant({scalar(oxDOUBLE_CLASS)}, {scalar(oxDOUBLE_CLASS)}).lxeSupportLevel,
              LxeSupportLevel::EQUIVALENT_SUPPORT);
    EXPECT_EQ(variant({scalar(oxDOUBLE_CLASS, true)}, {scalar(oxDOUBLE_CLASS)}).lxeSupportLevel,
              LxeSupportLevel::NO_SUPPORT);
    EXPECT_EQ(variant({scalar(oxDOUBLE_CLASS)}, {}, {.callsIntoOrvex = true}).lxeSupportLevel,
              LxeSupportLevel::NO_SUPPORT);
    // Behaviour alone does not restrict an ordinary variant, but does an element-wise one.
    EXPECT_EQ(variant({scalar(oxDOUBLE_CLASS)}, {scalar(oxDOUBLE_CLASS)}, {.warns = true}).lxeSupportLevel,
              LxeSupportLevel::EQUIVALENT_SUPPORT);
    EXPECT_EQ(variant({scalar(oxDOUBLE_CLASS)}, {scalar(oxDOUBLE_CLASS)}, {.warns = true, .elementWise = true})
                  .lxeSupportLevel,
              LxeSupportLevel::NO_SUPPORT);
}

TEST(BuiltinVariant, CombiningLevelsKeepsTheMoreRestrictive) {
    using L = LxeSupportLevel;
    EXPECT_EQ(detail::combineLxeSupportLevels(L::EQUIVALENT_SUPPORT, L::LXE_ONLY), L::LXE_ONLY);
    EXPECT_EQ(detail::combineLxeSupportLevels(L::LXE_ONLY, L::EQUIVALENT_SUPPORT), L::LXE_ONLY);
    EXPECT_EQ(detail::combineLxeSupportLevels(L::LXE_ONLY, L::NO_SUPPORT_SCALAR_COMPLEX), L::NO_SUPPORT_SCALAR_COMPLEX);
    EXPECT_EQ(detail::combineLxeSupportLevels(L::NO_SUPPORT_SCALAR_COMPLEX, L::LXE_ONLY), L::NO_SUPPORT_SCALAR_COMPLEX);
    EXPECT_EQ(detail::combineLxeSupportLevels(L::NO_SUPPORT, L::EQUIVALENT_SUPPORT), L::NO_SUPPORT);
    try {
        detail::combineLxeSupportLevels(static_cast<L>(7), L::NO_SUPPORT);
        FAIL() << "an invalid level was combined";
    } catch (const std::invalid_argument& error) {
        EXPECT_STREQ(error.what(), "level1 is not a valid LxeSupportLevel");
    }
}

TEST(BuiltinVariantDeathTest, ThrowingWithoutTheThrowingConventionEndsTheProcess) {
    using B = BuiltinVariant;
    const auto entry = variant({}, {}).functionDescriptor.getGenericEntry();
    EXPECT_DEATH(B(nullptr, Velloc::lxe::LxeFunctionDescriptor(entry, nullptr, Velloc::lxe::Plain), {}, {},
                   B::CallsIntoOrvex::NO, B::HasWarnings::NO, B::HasExceptions::YES, B::HasSideEffects::NO, "f", "f",
                   "", B::IsElementWise::NO),
                 "isDefaultImpl \\|\\| canThrowIsConsistent");
    // A default implementation has no generic entry and may declare anything.
    B defaultImpl(nullptr, Velloc::lxe::LxeFunctionDescriptor(), {}, {}, B::CallsIntoOrvex::NO, B::HasWarnings::NO,
                  B::HasExceptions::YES, B::HasSideEffects::NO, "f", "f", "", B::IsElementWise::NO);
    EXPECT_TRUE(defaultImpl.mayThrowErrors);
}

TEST(BuiltinVariant, AcceptanceCountsInputsAndOutputs) {
    const BuiltinVariant none = variant({}, {});
    const BuiltinVariant oneOutput = variant({}, {anyArray()});
    EXPECT_TRUE(none == VariantSignature(0, 0, nullptr));
    EXPECT_FALSE(none == VariantSignature(1, 0, nullptr));
    EXPECT_TRUE(oneOutput == VariantSignature(0, 0, nullptr));
    EXPECT_TRUE(oneOutput == VariantSignature(1, 0, nullptr));
    EXPECT_FALSE(oneOutput == VariantSignature(2, 0, nullptr));
    // Searches rank by exact counts: the one-output variant sorts above a call without
    // outputs that it nevertheless accepts.
    EXPECT_FALSE(oneOutput < VariantSignature(0, 0, nullptr));
    EXPECT_TRUE(none < VariantSignature(0, 1, nullptr));
}

TEST(BuiltinVariant, ElementWiseVariantsTakeBroadcastingArrays) {
    const BuiltinVariant plus =
        variant({scalar(oxDOUBLE_CLASS), scalar(oxDOUBLE_CLASS)}, {scalar(oxDOUBLE_CLASS)}, {.elementWise = true});
    const BuiltinVariant scalarOnly = variant({scalar(oxDOUBLE_CLASS), scalar(oxDOUBLE_CLASS)}, {scalar(oxDOUBLE_CLASS)});

    Call broadcasting;
    broadcasting.add(doubles(1, 3));
    broadcasting.add(doubles(2, 1));
    EXPECT_TRUE(plus == VariantSignature(1, 2, broadcasting.handles.data()));
    EXPECT_FALSE(scalarOnly == VariantSignature(1, 2, broadcasting.handles.data()));

    Call mismatched;
    mismatched.add(doubles(2, 3));
    mismatched.add(doubles(3, 2));
    EXPECT_FALSE(plus == VariantSignature(1, 2, mismatched.handles.data()));

    Call empty;
    empty.add(doubles(0, 3));
    empty.add(doubles(0, 3));
    EXPECT_FALSE(plus == VariantSignature(1, 2, empty.handles.data()));

    Call wrongClass;
    wrongClass.add(matrix::createScalar<float>(1.0F));
    wrongClass.add(doubles(1, 1));
    EXPECT_FALSE(plus == VariantSignature(1, 2, wrongClass.handles.data()));

    Call withNull;
    withNull.handles = {nullptr, nullptr};
    EXPECT_FALSE(plus == VariantSignature(1, 2, withNull.handles.data()));
}

TEST(BuiltinVariant, OrderIsArityThenInputsAndBoxingFollowsItsOriginal) {
    const BuiltinVariant a = variant({scalar(oxDOUBLE_CLASS)}, {scalar(oxDOUBLE_CLASS)});
    const BuiltinVariant sameInputs = variant({scalar(oxDOUBLE_CLASS)}, {anyArray()});
    EXPECT_TRUE(a == sameInputs);
    EXPECT_FALSE(a < sameInputs);
    EXPECT_FALSE(sameInputs < a);

    const BuiltinVariant twoInputs = variant({scalar(oxDOUBLE_CLASS), scalar(oxDOUBLE_CLASS)}, {scalar(oxDOUBLE_CLASS)});
    EXPECT_TRUE(a < twoInputs);

    // Whatever its own inputs, a boxing variant sorts right behind its original.
    const BuiltinVariant original = variant({anyArray()}, {scalar(oxDOUBLE_CLASS)});
    const BuiltinVariant boxed = boxingOf(original, {scalar(oxDOUBLE_CLASS)});
    EXPECT_TRUE(original < boxed);
    EXPECT_FALSE(boxed < original);
    EXPECT_TRUE(a < boxed) << "a boxing variant sorts by its original's inputs";
}

TEST(BuiltinVariant, DumpWritesEveryField) {
    BuiltinVariant v = variant({}, {scalar(oxDOUBLE_CLASS)}, {.sideEffects = true}, "cppName");
    v.developerFcn = nullptr;
    std::ostringstream expectedPointer;
    expectedPointer << static_cast<void*>(nullptr);
    std::ostringstream out;
    out << v;
    EXPECT_EQ(out.str(), "==================================\nBuiltinVariant:\n c++ function name: cppName"
                         "\n\t orvex function name: f\n\t dominant class: \n\t developer function pointer: " +
                             expectedPointer.str() +
                             "\n\t Flags:\n\t\t mayCallIntoOrvex: 0\n\t\t mayRaiseWarnings: 0"
                             "\n\t\t mayThrowErrors: 0\n\t\t mayHaveSideEffects: 1"
                             "\n\t LxeSupportLevel: LxeSupportLevel::EQUIVALENT_SUPPORT\n"
                             "\n\t Input types: NULL\n\t Output types: [" +
                             v.outputTypes[0] + "]\n==================================\n");

    std::ostringstream boxedOut;
    boxedOut << boxingOf(variant({anyArray()}, {}), {anyArray()});
    EXPECT_NE(boxedOut.str().find("\t Original Output types: NULL\n\t Original developer function pointer: "),
              std::string::npos);
}

} // namespace
