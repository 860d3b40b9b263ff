#include <foundation/core/except/Exception.hpp>
#include <foundation/core/except/messages/legacy_two_part.hpp>

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using namespace foundation::core::except;

struct outOfRange {
    static constexpr std::string_view component = "TEST:limits";
    static constexpr std::string_view key = "outOfRange";
    static constexpr std::string_view text = "Value {0} is out of range for \"{1}\" ({2}) {3}";
};

TEST(IdentifiedException, CarriesIdArgumentsAndFormattedText) {
    using Unassigned = Exception<ORVEX::legacy_two_part::unassignedOutputs>;
    const Unassigned error({std::u16string(u"pl\u00FCs")});
    EXPECT_EQ(error.getId(), (MessageId{"ORVEX:legacy_two_part", "unassignedOutputs"}));
    ASSERT_EQ(error.getArguments().size(), 1u);
    EXPECT_EQ(std::get<std::u16string>(error.getArguments()[0]), u"pl\u00FCs");
    EXPECT_STREQ(error.what(), "One or more output arguments not assigned during call to \"pl\xC3\xBCs\".");

    // Numbers, narrow text and a placeholder without an argument, over another base.
    const Exception<outOfRange, std::runtime_error> ranged({42L, std::string("limit"), -1L});
    const std::runtime_error& asBase = ranged;
    EXPECT_STREQ(asBase.what(), "Value 42 is out of range for \"limit\" (-1) {3}");
    EXPECT_EQ(ranged.message(), asBase.what());
}

TEST(IdentifiedException, ClonesAndRethrowsWithItsMostDerivedType) {
    std::unique_ptr<IdentifiedException> saved;
    try {
        throw Exception<outOfRange>({7L, std::string("x"), 0L});
    } catch (const IdentifiedException& caught) {
        saved = caught.clone();
    }
    ASSERT_NE(saved, nullptr);
    EXPECT_EQ(saved->getId().key, "outOfRange");
    EXPECT_THROW(
        try { saved->rethrow(); } catch (const Exception<outOfRange>& again) {
            EXPECT_EQ(again.message(), saved->message());
            throw;
        },
        std::exception);
}

} // namespace
