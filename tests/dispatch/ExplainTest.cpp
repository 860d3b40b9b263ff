#include <builtin/builtinreg/Explain.hpp>
#include <builtin/builtinreg/MakeVariant.hpp>

#include <gtest/gtest.h>

namespace {

using namespace Velloc::builtin;
using namespace Velloc::builtin::builtinreg;

double twice(double x) { return 2 * x; }
float twiceSingle(float x) { return 2 * x; }

const RegisteredBuiltin& twiceBuiltin() {
    static const BuiltinVariantLists lists{makeVariants<&twice>("twice", {.isElementWise = true}),
                                           makeVariants<&twiceSingle>("twice", {.isElementWise = true})};
    static const RegisteredBuiltin builtin("twice", "tests", "", lists, noDefaultImplementation("twice"));
    return builtin;
}

TEST(Explain, NamesTheListTheWinnerAndWhyEarlierVariantsRefused) {
    matrix::ArrayPtr single(matrix::createScalar<float>(1));
    oxArray* args[] = {single.get()};
    const Explanation explanation = explain(twiceBuiltin(), 1, 1, args);
    EXPECT_EQ(explanation.listName, "searchedByInvokeNoLxe");
    ASSERT_EQ(explanation.considered.size(), 2U);
    EXPECT_EQ(explanation.considered[0].variant->cppFunctionName, "twice");
    EXPECT_NE(explanation.considered[0].rejection.find("input 1 is"), std::string::npos);
    ASSERT_NE(explanation.chosen, nullptr);
    EXPECT_EQ(explanation.chosen->cppFunctionName, "twiceSingle");
    EXPECT_NE(toString(explanation).find("runs    twiceSingle"), std::string::npos);
}

TEST(Explain, NoMatchReportListsEveryVariantWithItsReason) {
    matrix::ArrayPtr text(matrix::createCharRow(u"x"));
    oxArray* args[] = {text.get(), text.get()};
    const std::string report = describeNoMatch(twiceBuiltin(), 1, 2, args);
    EXPECT_EQ(report.rfind("No variant of twice accepts the call twice(", 0), 0U) << report;
    EXPECT_NE(report.find("twice [double]: takes 1 input, the call passes 2"), std::string::npos) << report;
    EXPECT_NE(report.find("twiceSingle [single]: takes 1 input"), std::string::npos) << report;
    try {
        throwNoMatchingVariant(twiceBuiltin(), 1, 2, args);
        FAIL();
    } catch (const NoMatchingVariantError& error) {
        EXPECT_EQ(error.getId().component, "builtin2");
        EXPECT_EQ(error.message(), report);
    }
}

} // namespace
