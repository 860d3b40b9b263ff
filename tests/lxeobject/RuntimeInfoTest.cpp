// Saving and finding the runtime information of engine-object classes: the exact texts
// of every bad record, and what each leaves in the table.
#include "TestRecords.hpp"

#include <builtin/lxeobject/LxeObjectManifest.hpp>
#include <builtin/lxeobject/LxeObjectRuntimeInfo.hpp>

#include <foundation/cppmicroservices/framework.hpp>

#include <cppmicroservices/Any.h>
#include <cppmicroservices/AnyMap.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <string>
#include <typeinfo>
#include <unordered_set>

namespace {

using cppmicroservices::Any;
using cppmicroservices::AnyMap;
using namespace Velloc::builtin::types;
using test_records::fields;
using test_records::record;

std::string saveErrorOf(const AnyMap& lxeObjects) {
    try {
        addLxeObjectRuntimeInfo(lxeObjects);
    } catch (const SaveLxeObjectRuntimeInfoError& error) {
        return error.what();
    }
    return "(saved)";
}

bool isSaved(const std::string& key) {
    try {
        getLxeObjectRuntimeInfo(key);
        return true;
    } catch (const GetLxeObjectRuntimeInfoError&) {
        return false;
    }
}

TEST(LxeObjectRuntimeInfo, SavingARecordAgainChangesNothingAndReturnsTheSameNames) {
    const AnyMap lxeObjects = record({{"N6rtinfo5FirstE", fields(std::string("rtinfo.First"), 2)},
                                      {"N6rtinfo6SecondE", fields("rtinfo.Second", 0ULL)}});
    const std::unordered_set<std::string> expected{"N6rtinfo5FirstE", "N6rtinfo6SecondE"};
    EXPECT_EQ(addLxeObjectRuntimeInfo(lxeObjects), expected);
    EXPECT_EQ(addLxeObjectRuntimeInfo(lxeObjects), expected);
    EXPECT_EQ(getLxeObjectRuntimeInfo("N6rtinfo5FirstE"), (LxeObjectRuntimeInfo{"rtinfo.First", 2}));
    EXPECT_EQ(getLxeObjectRuntimeInfo("N6rtinfo6SecondE"), (LxeObjectRuntimeInfo{"rtinfo.Second", 0}));
    EXPECT_TRUE(addLxeObjectRuntimeInfo(record({})).empty());
}

TEST(LxeObjectRuntimeInfo, EveryIntegerWidthIsAVariantId) {
    const AnyMap lxeObjects =
        record({{"N6rtinfo2I1E", fields("a", std::int8_t{1})},   {"N6rtinfo2U1E", fields("a", std::uint8_t{2})},
                {"N6rtinfo2I2E", fields("a", std::int16_t{3})},  {"N6rtinfo2U2E", fields("a", std::uint16_t{4})},
                {"N6rtinfo2I4E", fields("a", std::int32_t{5})},  {"N6rtinfo2U4E", fields("a", std::uint32_t{6})},
                {"N6rtinfo2I8E", fields("a", std::int64_t{7})},  {"N6rtinfo2U8E", fields("a", std::uint64_t{8})},
                {"N6rtinfo2ILE", fields("a", 9LL)},
                {"N6rtinfo3MaxE", fields("a", std::numeric_limits<unsigned long long>::max())}});
    EXPECT_EQ(addLxeObjectRuntimeInfo(lxeObjects).size(), 10U);
    EXPECT_EQ(getLxeObjectRuntimeInfo("N6rtinfo2I1E").variantId, 1U);
    EXPECT_EQ(getLxeObjectRuntimeInfo("N6rtinfo2U8E").variantId, 8U);
    EXPECT_EQ(getLxeObjectRuntimeInfo("N6rtinfo3MaxE").variantId, std::numeric_limits<std::size_t>::max());
}

TEST(LxeObjectRuntimeInfo, BadEntriesRaiseTheirExactTextsAndAreNotSaved) {
    const std::string castToMap = cppmicroservices::BadAnyCastException(typeid(int), typeid(AnyMap)).what();
    const std::string idNotIntegral =
        cppmicroservices::BadAnyCastException(typeid(std::string), typeid(std::size_t)).what();
    const std::string nameNotText = cppmicroservices::BadAnyCastException(typeid(double), typeid(std::string)).what();
    const struct {
        std::string key;
        Any value;
        std::string message;
    } cases[] = {
        {"not a type", fields("x", 0),
         "Error while trying to save not a type runtime info. Details: found cppClassName 'not a type', but this is "
         "not a demangelable typename.\nEach key within lxe_objects MUST be a mangled c++ class name."},
        {"N6rtinfo5NoMapE", 5,
         "Error while trying to save N6rtinfo5NoMapE runtime info. Details: " + castToMap +
             "\nEach value in the lxe_objects object must be an object containing 'oxClassName' and 'variantId' "
             "keys'. 'oxClassName' must be a type castable to std::string and 'variantId' must be a type castable to "
             "size_t for each and every lxe_object"},
        {"N6rtinfo6NoNameE", record({{"variantId", 0}}),
         "Error while trying to save N6rtinfo6NoNameE runtime info. Details: missing 'oxClassName' and/or "
         "'variantId' as keys\n'oxClassName' and 'variantId' MUST be present for each lxe_object"},
        {"N6rtinfo4NoIdE", record({{"oxClassName", std::string("x")}}),
         "Error while trying to save N6rtinfo4NoIdE runtime info. Details: missing 'oxClassName' and/or "
         "'variantId' as keys\n'oxClassName' and 'variantId' MUST be present for each lxe_object"},
        {"N6rtinfo8NegativeE", fields("x", -1),
         "Unable to cast variant id for N6rtinfo8NegativeE to size_t.\nVariant id must be a value greater than or "
         "equal to 0."},
        {"N6rtinfo7NegWideE", fields("x", std::numeric_limits<long long>::min()),
         "Unable to cast variant id for N6rtinfo7NegWideE to size_t.\nVariant id must be a value greater than or "
         "equal to 0."},
        {"N6rtinfo6TextIdE", fields("x", std::string("0")),
         "Unexpected error while trying to save N6rtinfo6TextIdE runtime info. Details: " + idNotIntegral},
        {"N6rtinfo7NumNameE", fields(1.5, 0),
         "Unexpected error while trying to save N6rtinfo7NumNameE runtime info. Details: " + nameNotText},
    };
    for (const auto& bad : cases) {
        SCOPED_TRACE(bad.key);
        EXPECT_EQ(saveErrorOf(record({{bad.key, bad.value}})), bad.message);
        EXPECT_FALSE(isSaved(bad.key));
    }
}

TEST(LxeObjectRuntimeInfo, AConflictingDuplicateKeepsTheFirstValues) {
    addLxeObjectRuntimeInfo(record({{"N6rtinfo4KeptE", fields("rtinfo.Kept", 1)}}));
    const std::string conflict = "Error while trying to save N6rtinfo4KeptE runtime info. Details: Attempted to insert "
                                 "N6rtinfo4KeptE, but the class already exists with different lxe runtime information.";
    EXPECT_EQ(saveErrorOf(record({{"N6rtinfo4KeptE", fields("rtinfo.Kept", 2)}})), conflict);
    EXPECT_EQ(saveErrorOf(record({{"N6rtinfo4KeptE", fields("rtinfo.Other", 1)}})), conflict);
    EXPECT_EQ(getLxeObjectRuntimeInfo("N6rtinfo4KeptE"), (LxeObjectRuntimeInfo{"rtinfo.Kept", 1}));
}

TEST(LxeObjectRuntimeInfo, EntriesBeforeABadOneStaySavedAndThoseAfterAreNotReached) {
    // Ordered keys: Aa, Bb (bad), Cc.
    EXPECT_NE(saveErrorOf(record({{"N6rtinfo2AaE", fields("a", 0)},
                                  {"N6rtinfo2BbE", fields("b", -3)},
                                  {"N6rtinfo2CcE", fields("c", 0)}})),
              "(saved)");
    EXPECT_TRUE(isSaved("N6rtinfo2AaE"));
    EXPECT_FALSE(isSaved("N6rtinfo2BbE"));
    EXPECT_FALSE(isSaved("N6rtinfo2CcE"));
}

TEST(LxeObjectRuntimeInfo, AnUnknownClassListsEverySavedClassOnItsOwnLine) {
    addLxeObjectRuntimeInfo(record({{"N6rtinfo6ListedE", fields("rtinfo.Listed", 0)}}));
    std::string message;
    try {
        getLxeObjectRuntimeInfo("N6rtinfo7MissingE");
    } catch (const GetLxeObjectRuntimeInfoError& error) {
        message = error.what();
    }
    const std::string head = "Error while trying to get N6rtinfo7MissingE runtime info. Details: N6rtinfo7MissingE is "
                             "not found as a saved lxe object.\nLxeObjects:\n";
    ASSERT_EQ(message.substr(0, head.size()), head);
    std::unordered_set<std::string> listed;
    for (std::size_t start = head.size(); start < message.size();) {
        const std::size_t end = message.find('\n', start);
        ASSERT_NE(end, std::string::npos) << "every line ends with a newline";
        const std::string line = message.substr(start, end - start);
        ASSERT_TRUE(line.size() >= 2 && line.front() == '\'' && line.back() == '\'') << line;
        listed.insert(line.substr(1, line.size() - 2));
        start = end + 1;
    }
    EXPECT_TRUE(listed.contains("N6rtinfo6ListedE"));
    EXPECT_FALSE(listed.contains("N6rtinfo7MissingE"));
}

TEST(LxeObjectRuntimeInfo, TheLookupFailureHandlerAnswersWithoutSaving) {
    auto calls = std::make_shared<int>(0);
    testhelp::handleLxeObjectLookupFailure([calls](const std::string& name) -> std::optional<LxeObjectRuntimeInfo> {
        ++*calls;
        if (name == "N6rtinfo8AnsweredE") {
            return LxeObjectRuntimeInfo{"rtinfo.Answered", 4};
        }
        return std::nullopt;
    });
    EXPECT_EQ(getLxeObjectRuntimeInfo("N6rtinfo8AnsweredE"), (LxeObjectRuntimeInfo{"rtinfo.Answered", 4}));
    EXPECT_THROW(getLxeObjectRuntimeInfo("N6rtinfo6NobodyE"), GetLxeObjectRuntimeInfoError);
    EXPECT_EQ(*calls, 2);

    // Replacing the handler destroys the previous one; the answer was never saved.
    testhelp::handleLxeObjectLookupFailure({});
    EXPECT_EQ(calls.use_count(), 1);
    EXPECT_FALSE(isSaved("N6rtinfo8AnsweredE"));
}

// A bundle that is installed but never started, over the example module's library, so
// that its manifest is read from JSON as a module's would be.
cppmicroservices::Bundle installManifest(const std::string& name, const std::string& lxeObjectsJson) {
    const auto directory = std::filesystem::path(testing::TempDir()) / (name + "-" + std::to_string(getpid()));
    std::filesystem::create_directories(directory);
    std::ofstream(directory / "manifest.json")
        << R"({"bundle": {"symbolic_name": ")" << name << R"(", "library": ")" << LXEBUFFER_BUNDLE_LIBRARY
        << R"(", "activator": false}, "lxe_objects": )" << lxeObjectsJson << "}";
    auto bundles = foundation::cppmicroservices::getFramework()->GetBundleContext().InstallBundles(directory.string());
    std::filesystem::remove_all(directory);
    return bundles.at(0);
}

std::string bundleSaveErrorOf(const cppmicroservices::Bundle& bundle) {
    try {
        Velloc::builtin::lxeobject::saveLxeObjectRuntimeInfo(bundle);
    } catch (const SaveLxeObjectRuntimeInfoError& error) {
        return error.what();
    }
    return "(saved)";
}

TEST(LxeObjectManifest, RecordsAreReadFromTheManifestJson) {
    const auto good = installManifest("rtinfo_good", R"({"N6rtinfo4JsonE": {"oxClassName": "rtinfo.Json",
                                                         "variantId": 4000000000}})");
    EXPECT_EQ(Velloc::builtin::lxeobject::saveLxeObjectRuntimeInfo(good),
              std::unordered_set<std::string>{"N6rtinfo4JsonE"});
    EXPECT_EQ(getLxeObjectRuntimeInfo("N6rtinfo4JsonE"), (LxeObjectRuntimeInfo{"rtinfo.Json", 4000000000U}));

    const auto negative = installManifest("rtinfo_negative", R"({"N6rtinfo7JsonNegE": {"oxClassName": "x",
                                                                 "variantId": -2}})");
    EXPECT_EQ(bundleSaveErrorOf(negative), "Unable to cast variant id for N6rtinfo7JsonNegE to size_t.\n"
                                           "Variant id must be a value greater than or equal to 0.");
    EXPECT_EQ(bundleSaveErrorOf(installManifest("rtinfo_list", "[1, 2]")),
              "Error while trying to save the lxe_objects of bundle rtinfo_list. Details: lxe_objects must be an "
              "object keyed by mangled c++ class names.");
}

} // namespace
