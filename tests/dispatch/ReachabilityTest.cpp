// The reachability report: which variants no interpreted call reaches, why, and the fix,
// for declarations an author writes; and the declarations it must leave alone.
#include <builtin/builtinreg/MakeVariant.hpp>
#include <builtin/builtinreg/Reachability.hpp>

#include <gtest/gtest.h>

#include <complex>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

using namespace Velloc::builtin;
using namespace Velloc::builtin::builtinreg;
using Kind = UnreachableVariant::Kind;

double scaleBy(std::u16string_view, double x) { return x; }
double scaleArray(std::u16string_view, const oxArray*) { return 0; }
std::complex<double> conjugate(std::complex<double> z) { return std::conj(z); }
double halve(double x) { return x / 2; }
double halveAgain(double x) { return x * 0.5; }
double engineOnly(double x) { return x; }
double withOption(double x) { return x; }
double optionAsText(double x, std::u16string_view) { return x; }
oxArray* optionOverArrays(const oxArray*, std::u16string_view) { return nullptr; }

struct Builtin {
    explicit Builtin(std::initializer_list<std::vector<BuiltinVariant>> variants)
        : lists(variants), builtin("f", "tests", "", lists, noDefaultImplementation("f")) {}
    BuiltinVariantLists lists;
    RegisteredBuiltin builtin;
};

bool mentions(const UnreachableVariant& finding, std::string_view text) {
    return toString(finding).find(text) != std::string::npos;
}

TEST(Reachability, ANumberBesideTextIsReportedWithTheFixUntilAVariantTakesItAsAnArray) {
    const Builtin unreached{makeVariants<&scaleBy>("f")};
    const auto findings = findUnreachableVariants(unreached.builtin);
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].kind, Kind::BOXING_REMOVED);
    EXPECT_TRUE(mentions(findings[0], "scaleBy")) << toString(findings[0]);
    EXPECT_TRUE(mentions(findings[0], "input 1 is a scalar string")) << toString(findings[0]);
    EXPECT_TRUE(mentions(findings[0], "Fix: take input 2 (double) as const oxArray*")) << toString(findings[0]);

    const Builtin fixed{makeVariants<&scaleBy>("f"), makeVariants<&scaleArray>("f")};
    EXPECT_TRUE(findUnreachableVariants(fixed.builtin).empty());
}

TEST(Reachability, BoxedCopiesTheEngineCannotCallSayWhy) {
    const Builtin complex{makeVariants<&conjugate>("f")};
    const auto conjugated = findUnreachableVariants(complex.builtin);
    ASSERT_EQ(conjugated.size(), 1U);
    EXPECT_EQ(conjugated[0].kind, Kind::BOXING_REMOVED);
    EXPECT_TRUE(mentions(conjugated[0], "its result is an unboxed complex double scalar")) << toString(conjugated[0]);
}

TEST(Reachability, AFlagIsReportedUntilAVariantTakesTheOptionAsText) {
    const Builtin flagOnly{makeVariants<&withOption>("f", {.flags = {{1, "omitnan"}}})};
    const auto findings = findUnreachableVariants(flagOnly.builtin);
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].kind, Kind::FLAG_ONLY);
    EXPECT_TRUE(mentions(findings[0], "input 2 is the flag 'omitnan'")) << toString(findings[0]);
    EXPECT_TRUE(mentions(findings[0], "as text (std::u16string_view)")) << toString(findings[0]);

    // The option as text beside the number: interpreted calls reach the text variant's boxed
    // copy with a char row, so the flag is covered.
    const Builtin textBesideNumber{makeVariants<&withOption>("f", {.flags = {{1, "omitnan"}}}),
                                   makeVariants<&optionAsText>("f")};
    for (const UnreachableVariant& finding : findUnreachableVariants(textBesideNumber.builtin)) {
        EXPECT_NE(finding.kind, Kind::FLAG_ONLY) << toString(finding);
    }
    const Builtin both{makeVariants<&withOption>("f", {.flags = {{1, "omitnan"}}}),
                       makeVariants<&optionOverArrays>("f")};
    EXPECT_TRUE(findUnreachableVariants(both.builtin).empty());
}

TEST(Reachability, AVariantAnEarlierOneShadowsIsNamedWithIt) {
    const Builtin twice{makeVariants<&halve>("f", {.isElementWise = true}),
                        makeVariants<&halveAgain>("f", {.isElementWise = true})};
    const auto findings = findUnreachableVariants(twice.builtin);
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].kind, Kind::SHADOWED);
    EXPECT_EQ(findings[0].by.substr(0, findings[0].by.find(' ')).ends_with("halve"), true) << findings[0].by;
    EXPECT_TRUE(mentions(findings[0], "halveAgain")) << toString(findings[0]);
}

TEST(Reachability, LeavesAloneWhatInterpretedCallsReachAndWhatIsTheEnginesByDeclaration) {
    const Builtin elementWise{makeVariants<&halve>("f", {.isElementWise = true})};
    EXPECT_TRUE(findUnreachableVariants(elementWise.builtin).empty());
    const Builtin boxed{makeVariants<&halve>("f")};
    EXPECT_TRUE(findUnreachableVariants(boxed.builtin).empty());
    const Builtin engine{makeVariants<&engineOnly>("f", {.lxeSupportLevel = types::LxeSupportLevel::LXE_ONLY})};
    EXPECT_TRUE(findUnreachableVariants(engine.builtin).empty());
}

} // namespace
