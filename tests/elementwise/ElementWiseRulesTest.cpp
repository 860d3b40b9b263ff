#include <builtin/builtinreg/ElementWiseRules.hpp>

#include <foundation/core/diag/terminate.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

namespace {

using namespace Velloc::builtin::builtinreg::detail;

void assertRun(const std::vector<std::size_t>& run) {
    assertElementwiseDimensions(run.data(), run.data() + run.size());
}

TEST(ElementWiseRules, dimensionsThatAgreeUpToSingletonsPass) {
    for (const std::vector<std::size_t>& run :
         {std::vector<std::size_t>{1, 1, 1}, {}, {5}, {1, 5, 1, 5}, {0, 1, 0}}) {
        assertRun(run);
    }
}

TEST(ElementWiseRulesDeathTest, disagreeingDimensionsEndTheProcess) {
    EXPECT_DEATH(assertRun({5, 1, 4}), "the ith dim of each input array should be equal or 1");
    EXPECT_DEATH(assertRun({1, 4, 1, 0}), "elementWise");
}

TEST(ElementWiseRules, scalarDimsAreOneSharedOneByOne) {
    const std::vector<std::size_t>* dims = getScalarDims();
    ASSERT_NE(dims, nullptr);
    EXPECT_EQ(*dims, (std::vector<std::size_t>{1, 1}));
    EXPECT_EQ(dims, getScalarDims());
}

class WrongArgument : public ::testing::Test {
protected:
    void TearDown() override { foundation::core::diag::setTerminationsArmed(armed_); }
    bool armed_ = foundation::core::diag::terminationsArmed();
};

TEST_F(WrongArgument, throwsUnlessAskedToTerminateWithDiagnosticsArmed) {
    foundation::core::diag::setTerminationsArmed(false);
    for (bool terminate : {false, true}) {
        try {
            assertOrThrowWrongElementWiseArg(typeid(double), typeid(int), terminate);
            FAIL() << "no exception";
        } catch (const std::logic_error& e) {
            EXPECT_STREQ(e.what(), "Parameter should contain double but actually contained int");
        }
    }
    foundation::core::diag::setTerminationsArmed(true);
    EXPECT_THROW(assertOrThrowWrongElementWiseArg(typeid(float), typeid(bool), false), std::logic_error);
}

TEST_F(WrongArgument, terminatesWhenAskedWithDiagnosticsArmed) {
    foundation::core::diag::setTerminationsArmed(true);
    EXPECT_DEATH(assertOrThrowWrongElementWiseArg(typeid(float), typeid(bool), true),
                 "Parameter should contain float but actually contained bool");
}

} // namespace
