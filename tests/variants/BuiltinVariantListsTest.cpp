#include "VariantSamples.hpp"

#include <builtin/builtinreg/BuiltinVariantLists.hpp>
#include <builtin/builtinreg/VariantListHelpers.hpp>

#include <foundation/log/Channel.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

namespace {

using namespace samples;
using Velloc::builtin::builtinreg::BuiltinVariantLists;
using Velloc::builtin::builtinreg::CleanupFinding;
namespace detail = Velloc::builtin::builtinreg::detail;
namespace types = Velloc::builtin::types;

std::vector<std::string> namesOf(const std::vector<BuiltinVariant>& list) {
    std::vector<std::string> names;
    for (const BuiltinVariant& v : list) {
        names.push_back(v.cppFunctionName);
    }
    return names;
}

using Names = std::vector<std::string>;

TEST(BuiltinVariantLists, EmptyInputGivesEmptyLists) {
    const BuiltinVariantLists lists(std::vector<BuiltinVariant>{});
    EXPECT_TRUE(lists.all.empty());
    EXPECT_EQ(lists.all.capacity(), 0U);
    EXPECT_TRUE(lists.searchedByLxe.empty());
    EXPECT_TRUE(lists.searchedByInvokeAfterLxe.empty());
    EXPECT_TRUE(lists.searchedByInvokeAfterLxeComplexScalarRhs.empty());
    EXPECT_TRUE(lists.searchedByInvokeNoLxe.empty());
}

TEST(BuiltinVariantLists, RemovesUnsupportedAndRepeatedBoxingVariants) {
    const BuiltinVariant original = variant({anyArray()}, {anyArray()}, {}, "original");
    const BuiltinVariant copyOfOriginal = variant({anyArray()}, {anyArray()}, {}, "equalInputs");
    BuiltinVariant firstBoxed = boxingOf(original, {doubleArrayAnyShape()});
    firstBoxed.cppFunctionName = "boxed";
    BuiltinVariant secondBoxed = firstBoxed;
    secondBoxed.cppFunctionName = "boxedAgain";
    const BuiltinVariant unsupported = variant({anyArray()}, {types::UnsupportedArgType{}}, {}, "unsupported");

    const BuiltinVariantLists lists({{original, copyOfOriginal, unsupported}, {firstBoxed, secondBoxed}});
    const Names all = namesOf(lists.all);
    EXPECT_EQ(all.size(), 3U);
    EXPECT_EQ(std::count(all.begin(), all.end(), "original"), 1);
    EXPECT_EQ(std::count(all.begin(), all.end(), "equalInputs"), 1) << "ordinary variants with equal inputs both stay";
    EXPECT_EQ(std::count(all.begin(), all.end(), "boxed") + std::count(all.begin(), all.end(), "boxedAgain"), 1);

    const auto& findings = lists.getCleanupFindings();
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(findings[0].kind, CleanupFinding::Kind::UNSUPPORTED);
    EXPECT_EQ(findings[1].kind, CleanupFinding::Kind::UNREACHABLE);
    EXPECT_FALSE(findings[1].by.empty());
}

TEST(BuiltinVariantLists, NoSupportVariantShadowsLaterOnesTheEngineWouldConfuseWithIt) {
    const BuiltinVariant first = variant({doubleArrayAnyShape()}, {anyArray()}, {.callsIntoOrvex = true}, "first");
    const BuiltinVariant later = variant({anyArray()}, {anyArray()}, {}, "later");
    const BuiltinVariant otherArity = variant({anyArray(), anyArray()}, {anyArray()}, {}, "otherArity");
    const BuiltinVariantLists lists({{later, otherArity, first}});

    EXPECT_EQ(namesOf(lists.all), (Names{"first", "later", "otherArity"}));
    EXPECT_EQ(namesOf(lists.searchedByLxe), (Names{"otherArity"}));
    EXPECT_EQ(namesOf(lists.searchedByInvokeAfterLxe), (Names{"first", "later"}));
    EXPECT_EQ(namesOf(lists.searchedByInvokeNoLxe), (Names{"first", "later", "otherArity"}));

    ASSERT_EQ(lists.getCleanupFindings().size(), 1U);
    const CleanupFinding& shadowed = lists.getCleanupFindings()[0];
    EXPECT_EQ(shadowed.kind, CleanupFinding::Kind::SHADOWED);
    EXPECT_EQ(shadowed.variant.rfind("later [", 0), 0U);
    EXPECT_EQ(shadowed.by.rfind("first [", 0), 0U);
    EXPECT_EQ(toString(shadowed).rfind("shadowed: later [", 0), 0U);
}

TEST(BuiltinVariantLists, DemotedBoxingVariantsGoButOrdinaryOnesStay) {
    const BuiltinVariant shadowing = variant({anyArray()}, {anyArray()}, {.callsIntoOrvex = true}, "shadowing");
    const BuiltinVariant original = variant({anyArray(), anyArray()}, {anyArray()}, {}, "original");
    BuiltinVariant boxed = boxingOf(variant({anyArray()}, {anyArray()}, {}, "boxedOriginal"), {anyArray()});
    boxed.cppFunctionName = "boxed";
    const BuiltinVariantLists lists({{shadowing, original, boxed}});
    EXPECT_EQ(namesOf(lists.all), (Names{"shadowing", "original"}));
    EXPECT_EQ(lists.getCleanupFindings().back().kind, CleanupFinding::Kind::UNSUPPORTED_BOXING);
}

TEST(BuiltinVariantLists, PartitionPlacesEachLevel) {
    const BuiltinVariant complexCapable = variant({scalar(oxDOUBLE_CLASS, true)}, {anyArray()}, {}, "complexCapable");
    BuiltinVariant engineOnly = variant({scalar(oxINT8_CLASS)}, {anyArray()}, {}, "engineOnly");
    engineOnly.lxeSupportLevel = LxeSupportLevel::LXE_ONLY;
    // A complex scalar declaration is itself NO_SUPPORT; an open array accepts complex
    // scalars and keeps an engine-supported level.
    const BuiltinVariant open = variant({scalar(oxSINGLE_CLASS), anyArray()}, {anyArray()}, {}, "open");
    const BuiltinVariantLists lists({{complexCapable, engineOnly, open}});

    EXPECT_EQ(namesOf(lists.searchedByLxe), (Names{"engineOnly", "open"}));
    EXPECT_EQ(namesOf(lists.searchedByInvokeAfterLxe), (Names{"complexCapable"}));
    EXPECT_EQ(namesOf(lists.searchedByInvokeAfterLxeComplexScalarRhs), (Names{"complexCapable", "open"}));
    EXPECT_EQ(lists.searchedByInvokeAfterLxeComplexScalarRhs.back().lxeSupportLevel,
              LxeSupportLevel::NO_SUPPORT_SCALAR_COMPLEX);
    EXPECT_EQ(lists.searchedByLxe.back().lxeSupportLevel, LxeSupportLevel::EQUIVALENT_SUPPORT);
    EXPECT_EQ(namesOf(lists.searchedByInvokeNoLxe), (Names{"complexCapable", "open"}));
}

TEST(BuiltinVariantLists, LogsEachStageUnderItsHeadingAndTheFindingsApart) {
    foundation::log::ScopedCapture cleanup("builtin2::cleanupVariants");
    foundation::log::ScopedCapture findings("builtin2::cleanupFindings");
    foundation::log::ScopedCapture partition("builtin2::BuiltinVariantLists");
    const BuiltinVariantLists lists({{variant({doubleArrayAnyShape()}, {anyArray()}, {.callsIntoOrvex = true}, "first"),
                                      variant({anyArray()}, {anyArray()}, {}, "later")}});
    Names headings;
    for (const auto& record : cleanup.records()) {
        headings.push_back(record.text.substr(0, record.text.find('\n') + 1));
    }
    EXPECT_EQ(headings, (Names{"before cleanup:\n", "removed unsupported:\n", "removed unreachable:\n",
                               "removed shadowed:\n", "removed unsupported boxing variants:\n"}));
    ASSERT_EQ(findings.records().size(), 1U);
    EXPECT_EQ(findings.records()[0].text, "findings:\n" + toString(lists.getCleanupFindings().at(0)) + '\n');
    ASSERT_EQ(partition.records().size(), 5U);
    EXPECT_EQ(partition.records()[4].text.rfind("searchedByInvokeNoLxe:\n", 0), 0U);
}

// The literal rule: each NO_SUPPORT variant demotes every later variant of its arity
// whose inputs the engine would accept for its own.
void demoteLiterally(std::vector<BuiltinVariant>& list) {
    for (std::size_t v = 0; v < list.size(); ++v) {
        if (list[v].lxeSupportLevel != LxeSupportLevel::NO_SUPPORT) {
            continue;
        }
        for (std::size_t w = v + 1; w < list.size(); ++w) {
            const auto& vi = list[v].inputArgTypes;
            const auto& wi = list[w].inputArgTypes;
            if (wi.size() != vi.size() || list[w].lxeSupportLevel == LxeSupportLevel::NO_SUPPORT) {
                continue;
            }
            bool accepts = true;
            for (std::size_t i = 0; i < vi.size() && accepts; ++i) {
                accepts = types::isAcceptableToLxe(wi[i], vi[i]);
            }
            if (accepts) {
                list[w].lxeSupportLevel = LxeSupportLevel::NO_SUPPORT;
            }
        }
    }
}

TEST(BuiltinVariantLists, ShadowingAgreesWithTheLiteralRuleOnRandomLists) {
    const std::vector<types::ArgType> alphabet{
        scalar(oxDOUBLE_CLASS), scalar(oxSINGLE_CLASS), scalar(oxINT32_CLASS),
        anyArray(),             doubleArrayAnyShape(),  types::asElementWiseArrayType(scalar(oxSINGLE_CLASS))};
    std::mt19937 random(20261123);
    for (int round = 0; round < 20; ++round) {
        std::vector<BuiltinVariant> variants;
        std::set<std::vector<std::size_t>> seen; // distinct inputs keep the sort deterministic
        for (int i = 0; i < 60; ++i) {
            std::vector<std::size_t> picks(1 + random() % 3);
            for (auto& pick : picks) {
                pick = random() % alphabet.size();
            }
            if (!seen.insert(picks).second) {
                continue;
            }
            std::vector<types::ArgType> inputs;
            for (std::size_t pick : picks) {
                inputs.push_back(alphabet[pick]);
            }
            variants.push_back(variant(std::move(inputs), {anyArray()}, {.callsIntoOrvex = random() % 4 == 0},
                                       std::to_string(i)));
        }
        std::vector<BuiltinVariant> expected = variants;
        detail::sortVariants(expected);
        demoteLiterally(expected);

        const BuiltinVariantLists lists(std::move(variants));
        ASSERT_EQ(namesOf(lists.all), namesOf(expected));
        for (std::size_t i = 0; i < expected.size(); ++i) {
            EXPECT_EQ(lists.all[i].lxeSupportLevel, expected[i].lxeSupportLevel) << "round " << round << " at " << i;
        }
    }
}

TEST(VariantListHelpers, FlagsAreInsertedAtTheirPositions) {
    BuiltinVariant v = variant({anyArray(), anyArray()}, {anyArray()});
    detail::FlagSpecification flags{{2, "last"}, {0, "first"}};
    detail::sortFlags(flags);
    detail::addFlagInputTypes(v, flags);
    ASSERT_EQ(v.inputArgTypes.size(), 4U);
    EXPECT_TRUE(std::holds_alternative<types::FlagInputType>(v.inputArgTypes[0]));
    EXPECT_TRUE(std::holds_alternative<types::FlagInputType>(v.inputArgTypes[2]));
    EXPECT_EQ(v.inputTypes.size(), 4U);
    EXPECT_TRUE(types::skipDuringInvoke(v.inputArgTypes[2]));
}

} // namespace
