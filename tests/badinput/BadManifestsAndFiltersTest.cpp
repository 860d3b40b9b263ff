// What a careless module author writes into a manifest, and what a careless host passes
// as a service filter: each is refused with its error, and the process-wide tables (the
// engine-object runtime information, the service registry) are as they were.
#include <builtin/lxeobject/LxeObjectManifest.hpp>
#include <builtin/lxeobject/LxeObjectRuntimeInfo.hpp>

#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkFactory.h>
#include <cppmicroservices/LDAPFilter.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

using namespace Velloc::builtin::types;
using testing::HasSubstr;

// Saved classes, counted from the listing an unknown class's lookup gives.
std::size_t savedClassCount() {
    try {
        getLxeObjectRuntimeInfo("N8badinput7UnknownE");
    } catch (const GetLxeObjectRuntimeInfoError& error) {
        const std::string text = error.what();
        const std::string listing = text.substr(text.find("\nLxeObjects:\n"));
        return static_cast<std::size_t>(std::count(listing.begin(), listing.end(), '\n')) - 2;
    }
    ADD_FAILURE() << "the unknown class was found";
    return 0;
}

class BadManifests : public testing::Test {
protected:
    void SetUp() override { framework_.Start(); }
    void TearDown() override { std::filesystem::remove_all(root_); }

    // A bundle whose manifest carries the record; it is installed, never started.
    cppmicroservices::Bundle installWithRecord(const std::string& lxeObjectsJson) {
        const std::string name = "badinput" + std::to_string(bundles_++);
        const auto directory = root_ / name;
        std::filesystem::create_directories(directory);
        std::ofstream(directory / "libnone.so").flush();
        std::ofstream(directory / "manifest.json")
            << R"({"bundle": {"symbolic_name": ")" << name << R"(", "library": "libnone.so"}, "lxe_objects": )"
            << lxeObjectsJson << "}";
        return framework_.GetBundleContext().InstallBundles(directory.string()).at(0);
    }

    cppmicroservices::Framework framework_ = cppmicroservices::FrameworkFactory().NewFramework();

private:
    std::filesystem::path root_ =
        std::filesystem::path(testing::TempDir()) / ("badinput-manifests-" + std::to_string(getpid()));
    int bundles_ = 0;
};

TEST_F(BadManifests, RecordsOfTheWrongJsonKindsAreRefusedAndSaveNothing) {
    const std::size_t before = savedClassCount();
    const std::vector<std::pair<std::string, std::string>> cases = {
        {R"({"N8badinput1AE": {"oxClassName": "a", "variantId": 1.5}})",
         "Unexpected error while trying to save N8badinput1AE runtime info. Details: "},
        {R"({"N8badinput1BE": {"oxClassName": 7, "variantId": 1}})",
         "Unexpected error while trying to save N8badinput1BE runtime info. Details: "},
        {R"({"N8badinput1CE": {"oxClassName": null, "variantId": 1}})",
         "Unexpected error while trying to save N8badinput1CE runtime info. Details: "},
        {R"({"N8badinput1DE": {"oxClassName": "d", "variantId": "1"}})",
         "Unexpected error while trying to save N8badinput1DE runtime info. Details: "},
        {R"({"N8badinput1EE": {"oxClassName": "e", "variantId": -9223372036854775808}})",
         "Unable to cast variant id for N8badinput1EE to size_t."},
        {R"({"N8badinput1FE": [{"oxClassName": "f", "variantId": 1}]})",
         "Error while trying to save N8badinput1FE runtime info. Details: "},
        {R"({"": {"oxClassName": "g", "variantId": 1}})", "found cppClassName '', but this is not a demangelable"},
        {R"({"N8badinput1HE": {}})", "missing 'oxClassName' and/or 'variantId' as keys"},
        // The message names the key, and what() ends at its NUL.
        {R"({"N8badinput1IE\u0000tail": {"oxClassName": "i", "variantId": 1}})",
         "Error while trying to save N8badinput1IE"},
        {"\"N8badinput1JE\"", "lxe_objects must be an object keyed by mangled c++ class names."},
    };
    for (const auto& [record, message] : cases) {
        const cppmicroservices::Bundle bundle = installWithRecord(record);
        try {
            Velloc::builtin::lxeobject::saveLxeObjectRuntimeInfo(bundle);
            ADD_FAILURE() << "saved " << record;
        } catch (const SaveLxeObjectRuntimeInfoError& error) {
            EXPECT_THAT(error.what(), HasSubstr(message)) << record;
        }
    }
    EXPECT_EQ(savedClassCount(), before);
}

TEST_F(BadManifests, MalformedFiltersLeaveTheRegistryAsItWas) {
    const cppmicroservices::BundleContext context = framework_.GetBundleContext();
    const std::size_t services = context.GetServiceReferences("", "").size();
    for (const std::string filter : {"(", "(a=b", "((a=b))", "(a=b)garbage", "(&(a=b)(c~d))", "(a=\\"}) {
        EXPECT_THROW(context.GetServiceReferences("", filter), std::invalid_argument) << filter;
    }
    EXPECT_EQ(context.GetServiceReferences("", "").size(), services);
}

// Deep nesting exhausted the stack of the recursive parser.
TEST(BadFilters, NestingIsBoundedBeforeTheStackIs) {
    const auto nested = [](std::size_t depth) {
        std::string text;
        for (std::size_t i = 0; i < depth; ++i) text += "(!";
        text += "(a=b)";
        return text + std::string(depth, ')');
    };
    EXPECT_NO_THROW(cppmicroservices::LDAPFilter(nested(255)));
    try {
        cppmicroservices::LDAPFilter filter(nested(100000));
        ADD_FAILURE() << "a filter 100000 levels deep was accepted";
    } catch (const std::invalid_argument& error) {
        EXPECT_THAT(error.what(), HasSubstr("filters nest at most 256 levels deep at position 512"));
    }
}

} // namespace
