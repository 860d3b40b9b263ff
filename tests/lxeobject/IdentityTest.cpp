// Ids of engine-object classes: variant counters, assign-once identities, the manifest
// check and the known classes. Conflicts end the process, so they run as death tests.
#include <builtin/lxeobject/CppLxeObjectImpl.hpp>
#include <builtin/lxeobject/LxeObjectID.hpp>
#include <builtin/lxeobject/LxeObjectRegistry.hpp>

#include <foundation/core/diag/terminate.hpp>

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace lxeobject_test {
struct Widget {};
} // namespace lxeobject_test

namespace {

using namespace Velloc::builtin;
using builtinreg::LxeObjectId;

class LxeObjectIdentityDeathTest : public testing::Test {
protected:
    LxeObjectIdentityDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

// The fixed source and line each identity report gives, and the start of its function.
std::string reportedAt(const char* source, int line, const char* function) {
    return "\n  file: " + std::string(source) + "\n  line: " + std::to_string(line) + "\n  function: [^\n]*" +
           function + "\\(";
}

const char* pointName() { return "identity.Point"; }
const char* otherName() { return "identity.Other"; }

TEST(LxeObjectIdentity, VariantCountersStartAtZeroPerClass) {
    const auto first = static_cast<oxClassID>(30001);
    const auto second = static_cast<oxClassID>(30002);
    EXPECT_EQ(types::detail::getNextCppClassVariant(first), 0U);
    EXPECT_EQ(types::detail::getNextCppClassVariant(second), 0U);
    EXPECT_EQ(types::detail::getNextCppClassVariant(first), 1U);
    EXPECT_EQ(types::detail::getNextCppClassVariant(first), 2U);
}

TEST(LxeObjectIdentity, AnIdIsAssignedOnceAndMayBeAssignedTheSameAgain) {
    LxeObjectId id;
    EXPECT_EQ(id.getVariantId(), LxeObjectId::DEFAULT_VARIANT_ID);
    EXPECT_STREQ(id.getClassName(), "");
    id.setVariantId(3);
    id.setVariantId(3);
    id.setNameFunction(&pointName);
    id.setNameFunction(&pointName);
    EXPECT_EQ(id.getVariantId(), 3U);
    EXPECT_STREQ(id.getClassName(), "identity.Point");

    // Unarmed, a conflict is no defect report: the new value is stored.
    foundation::core::diag::setTerminationsArmed(false);
    id.setVariantId(4);
    EXPECT_EQ(id.getVariantId(), 4U);
}

TEST_F(LxeObjectIdentityDeathTest, ConflictingAssignmentsEndTheProcessWhenArmed) {
    LxeObjectId id(3, &pointName);
    EXPECT_DEATH(
        {
            foundation::core::diag::setTerminationsArmed(true);
            id.setVariantId(4);
        },
        "Cannot assign conflicting variant id values to Velloc::builtin::builtinreg::LxeObjectId" +
            reportedAt("LxeObjectID", 12, "builtinreg::assertIsDefaultVariantIdOrSame"));
    EXPECT_DEATH(
        {
            foundation::core::diag::setTerminationsArmed(true);
            id.setNameFunction(&otherName);
        },
        "Cannot assign conflicting name functions to Velloc::builtin::builtinreg::LxeObjectId" +
            reportedAt("LxeObjectID", 20, "builtinreg::assertIsDefaultNameFuncPtrOrSame"));
}

TEST_F(LxeObjectIdentityDeathTest, AClassIdOtherThanTheInstancesOneEndsTheProcessWhenArmed) {
    foundation::core::diag::setTerminationsArmed(true);
    types::detail::assertLxeObjectHasExpectedClassID(oxUNKNOWN_CLASS, "identity.Point");
    EXPECT_DEATH(types::detail::assertLxeObjectHasExpectedClassID(static_cast<oxClassID>(25), "identity.Point"),
                 "The oxClassID of LxeObjects should be consistent across all ovm instances\\." +
                     reportedAt("CppLxeObjectImpl", 42, "detail::assertLxeObjectHasExpectedClassID"));
    foundation::core::diag::setTerminationsArmed(false);
    types::detail::assertLxeObjectHasExpectedClassID(static_cast<oxClassID>(25), "identity.Point");
}

TEST_F(LxeObjectIdentityDeathTest, TheManifestIsReadOncePerClassAndVariantAndMustAgree) {
    int reads = 0;
    const std::function<std::size_t()> manifest = [&reads] {
        ++reads;
        return std::size_t{1};
    };
    builtinreg::detail::assertLxeVariantIdMatches(1, manifest, typeid(lxeobject_test::Widget));
    builtinreg::detail::assertLxeVariantIdMatches(1, manifest, typeid(lxeobject_test::Widget));
    EXPECT_EQ(reads, 1);

    // Ends the process whether or not diagnostics are armed.
    foundation::core::diag::setTerminationsArmed(false);
    EXPECT_DEATH(builtinreg::detail::assertLxeVariantIdMatches(2, manifest, typeid(lxeobject_test::Widget)),
                 "Error LxeObject lxeobject_test::Widget has different variant id between manifest\\.json\\(1\\) and "
                 "microservice_impl\\.cpp\\(2\\)\\." +
                     reportedAt("LxeObjectTypeTraitsImpl", 37, "detail::assertLxeVariantIdMatches"));
}

TEST(LxeObjectIdentity, KnownClassesAreAddedOnce) {
    const auto id = static_cast<oxClassID>(30003);
    EXPECT_FALSE(builtinreg::isAKnownLxeObject(id));
    EXPECT_TRUE(builtinreg::addAsKnownLxeObject(id));
    EXPECT_FALSE(builtinreg::addAsKnownLxeObject(id));
    EXPECT_TRUE(builtinreg::isAKnownLxeObject(id));
}

} // namespace
