#include "TemporaryDirectory.h"
#include "bundles/Greeter.h"

#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkFactory.h>
#include <cppmicroservices/LDAPFilter.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

using namespace cppmicroservices;
using test_bundles::Greeter;
using testing::HasSubstr;

namespace {

const std::filesystem::path BUNDLES = TEST_BUNDLE_DIR;

class BundleTest : public testing::Test {
protected:
    void SetUp() override
    {
        framework_.Start();
        context_ = framework_.GetBundleContext();
    }

    Bundle installOne(const std::string& name)
    {
        const auto installed = context_.InstallBundles((BUNDLES / name).string());
        EXPECT_EQ(installed.size(), 1u);
        return installed.at(0);
    }

    std::vector<std::string> greetings() const
    {
        std::vector<std::string> found;
        for (const auto& reference : context_.GetServiceReferences<Greeter>()) {
            found.push_back(context_.GetService(reference)->greet());
        }
        return found;
    }

    // The message of the std::runtime_error that call throws.
    template <typename Call>
    static std::string failure(const Call& call)
    {
        try {
            call();
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "no exception";
    }

    Framework framework_ = FrameworkFactory().NewFramework();
    BundleContext context_;
};

} // namespace

TEST_F(BundleTest, StartRunsTheActivatorAndStopUndoesIt)
{
    Bundle bundle = installOne("greeter_a");
    EXPECT_EQ(bundle.GetSymbolicName(), "greeter_a");
    EXPECT_EQ(bundle.GetBundleId(), 1);
    EXPECT_EQ(bundle.GetLocation(), std::filesystem::canonical(BUNDLES / "greeter_a").string());
    EXPECT_EQ(bundle.GetState(), Bundle::STATE_INSTALLED);
    EXPECT_FALSE(bundle.GetBundleContext());
    EXPECT_TRUE(greetings().empty());

    bundle.Start();
    EXPECT_EQ(bundle.GetState(), Bundle::STATE_ACTIVE);
    EXPECT_THAT(greetings(), testing::ElementsAre("hello from a"));
    const auto reference = context_.GetServiceReference<Greeter>();
    EXPECT_EQ(reference.GetBundle(), bundle);
    EXPECT_EQ(any_cast<std::string>(reference.GetProperty("greeting")), "hello from a");
    BundleContext bundleContext = bundle.GetBundleContext();
    EXPECT_EQ(bundleContext.GetBundle(), bundle);
    bundle.Start();

    bundle.Stop();
    EXPECT_EQ(bundle.GetState(), Bundle::STATE_RESOLVED);
    EXPECT_TRUE(greetings().empty());
    EXPECT_EQ(failure([&] { bundleContext.GetBundles(); }), "The bundle context is no longer valid");

    bundle.Start();
    EXPECT_THAT(greetings(), testing::ElementsAre("hello from a"));
    framework_.Stop();
    EXPECT_EQ(bundle.GetState(), Bundle::STATE_RESOLVED);
    EXPECT_THROW(Bundle().GetSymbolicName(), std::invalid_argument);
}

TEST_F(BundleTest, HeadersHoldTheBundleKeysAndTheOtherTopLevelKeys)
{
    const AnyMap headers = installOne("greeter_a").GetHeaders();
    EXPECT_EQ(headers.GetType(), AnyMap::UNORDERED_MAP_CASEINSENSITIVE_KEYS);
    EXPECT_EQ(any_cast<std::string>(headers.at("symbolic_name")), "greeter_a");
    EXPECT_EQ(any_cast<std::string>(headers.at("Started-In")), "builtin2/builtin");
    EXPECT_EQ(any_cast<bool>(headers.at("activator")), true);
    EXPECT_EQ(any_cast<int>(headers.at("version")), 3);
    EXPECT_EQ(headers.count("bundle"), 0u);
    const auto& objects = any_cast<const AnyMap&>(headers.at("lxe_objects"));
    EXPECT_EQ(objects.GetType(), AnyMap::ORDERED_MAP);
    EXPECT_EQ(any_cast<std::string>(headers.AtCompoundKey("lxe_objects.N4demo5PointE.oxClassName")), "demo.Point");
    EXPECT_EQ(any_cast<int>(headers.AtCompoundKey("lxe_objects.N4demo5PointE.variantId")), 2);
    EXPECT_TRUE(LDAPFilter("(&(symbolic_name=greeter_a)(version>=3))").Match(installOne("greeter_a")));
    EXPECT_FALSE(LDAPFilter("(symbolic_name=greeter_b)").Match(installOne("greeter_a")));
    EXPECT_FALSE(LDAPFilter("(symbolic_name=*)").Match(Bundle()));
}

TEST_F(BundleTest, ADirectoryOfBundlesInstallsEachOnceInNameOrder)
{
    const auto installed = context_.InstallBundles(BUNDLES.string());
    std::vector<std::string> names;
    for (const Bundle& bundle : installed) {
        names.push_back(bundle.GetSymbolicName() + "#" + std::to_string(bundle.GetBundleId()));
    }
    EXPECT_THAT(names, testing::ElementsAre("failing_start#1", "greeter_a#2", "greeter_b#3"));

    EXPECT_EQ(context_.InstallBundles(BUNDLES.string()), installed);
    EXPECT_EQ(installOne("greeter_b"), installed[2]);
    EXPECT_EQ(context_.GetBundles().size(), 4u);
    EXPECT_THAT(context_.GetBundles((BUNDLES / "greeter_a").string()), testing::ElementsAre(installed[1]));
    EXPECT_EQ(context_.GetBundle(3), installed[2]);
    EXPECT_FALSE(context_.GetBundle(4));

    // As CppMicroServices: by id, and an invalid bundle after every valid one.
    std::vector<Bundle> sorted{Bundle(), installed[2], framework_, Bundle(), installed[0]};
    std::sort(sorted.begin(), sorted.end());
    EXPECT_THAT(sorted, testing::ElementsAre(framework_, installed[0], installed[2], Bundle(), Bundle()));
    EXPECT_TRUE(installed[0] < Bundle());
    EXPECT_FALSE(Bundle() < installed[0]);
    EXPECT_FALSE(Bundle() < Bundle());
}

TEST_F(BundleTest, AFailedStartLeavesTheBundleResolvedWithoutServices)
{
    Bundle bundle = installOne("failing_start");
    const std::string message = failure([&] { bundle.Start(); });
    EXPECT_THAT(message, HasSubstr("'failing_start' failed to start"));
    EXPECT_THAT(message, HasSubstr("no greeting today"));
    EXPECT_EQ(bundle.GetState(), Bundle::STATE_RESOLVED);
    EXPECT_FALSE(bundle.GetBundleContext());
    EXPECT_TRUE(greetings().empty());
}

// A listener hearing the bundle's first service stops the framework from inside the start:
// the framework's stop passes the starting bundle by, so the start itself must undo it
// rather than leave it active in a stopped framework without its services.
TEST_F(BundleTest, AFrameworkStoppedDuringAStartLeavesTheBundleResolved)
{
    Bundle bundle = installOne("greeter_a");
    context_.AddServiceListener([this](const ServiceEvent& event) {
        if (event.GetType() == ServiceEvent::SERVICE_REGISTERED) {
            framework_.Stop();
        }
    });
    EXPECT_THAT(failure([&] { bundle.Start(); }), HasSubstr("'greeter_a' did not start: the framework stopped"));
    EXPECT_EQ(bundle.GetState(), Bundle::STATE_RESOLVED);
    EXPECT_EQ(framework_.GetState(), Bundle::STATE_RESOLVED);

    framework_.Start();
    context_ = framework_.GetBundleContext();
    EXPECT_TRUE(greetings().empty());
    bundle.Start();
    EXPECT_EQ(greetings(), std::vector<std::string>{"hello from a"});
}

// Another thread starts the bundle while the framework stops: whichever comes first, the
// bundle is not left active once both are done, and no service of it remains.
TEST(FrameworkLifecycle, AStopRacingABundleStartLeavesNoActiveBundle)
{
    constexpr int ROUNDS = 200;
    Framework framework = FrameworkFactory().NewFramework();
    framework.Start();
    Bundle bundle = framework.GetBundleContext().InstallBundles((BUNDLES / "greeter_a").string()).at(0);
    for (int round = 0; round < ROUNDS; ++round) {
        framework.Start();
        std::thread starter([&bundle] {
            try {
                bundle.Start();
            } catch (const std::runtime_error&) {
                // Too late: the framework had stopped, or stopped meanwhile.
            }
        });
        framework.Stop();
        starter.join();
        ASSERT_NE(bundle.GetState(), Bundle::STATE_ACTIVE) << "round " << round;
        framework.Start();
        ASSERT_TRUE(framework.GetBundleContext().GetServiceReferences<Greeter>().empty()) << "round " << round;
        framework.Stop();
    }
}

TEST_F(BundleTest, BadLocationsAreNamed)
{
    const TemporaryDirectory directory;
    const auto missing = (directory.path() / "missing").string();
    EXPECT_THAT(failure([&] { context_.InstallBundles(missing); }),
                HasSubstr("'" + missing + "': no such file or directory"));
    const auto file = directory.write("plain.txt", "text").string();
    EXPECT_THAT(failure([&] { context_.InstallBundles(file); }), HasSubstr("'" + file + "': not a directory"));
    EXPECT_THAT(failure([&] { context_.InstallBundles(directory.path().string()); }),
                HasSubstr("neither it nor any of its subdirectories holds a manifest.json"));
    EXPECT_EQ(context_.GetBundles().size(), 1u);
}

TEST_F(BundleTest, MalformedManifestsNameTheFileAndTheProblem)
{
    struct Case {
        std::string manifest;
        std::string problem;
    };
    const std::vector<Case> cases = {
        {"{\n  \"bundle\": ,\n}", "not valid JSON (syntax error at line 2, column 13)"},
        {"{\"bundle\": {}", "not valid JSON (incomplete JSON at line 1, column 14)"},
        {"[1]", "the manifest must be a JSON object"},
        {"{}", "the object \"bundle\" is missing"},
        {R"({"bundle": 3})", "\"bundle\" must be a JSON object"},
        {R"({"bundle": {"library": "lib.so"}})", "\"symbolic_name\" is missing from \"bundle\""},
        {R"({"bundle": {"symbolic_name": 5, "library": "lib.so"}})", "\"symbolic_name\" must be a non-empty string"},
        {R"({"bundle": {"symbolic_name": "a-b", "library": "lib.so"}})", "\"symbolic_name\" 'a-b' must start with"},
        {R"({"bundle": {"symbolic_name": "ok"}})", "\"library\" is missing from \"bundle\""},
        {R"({"bundle": {"symbolic_name": "ok", "library": "other.so"}})", "other.so' does not exist"},
        {R"({"bundle": {"symbolic_name": "ok", "library": "lib.so", "activator": "yes"}})",
         "\"activator\" must be true or false"},
        {R"({"bundle": {"symbolic_name": "ok", "library": "lib.so", "x": 1}, "x": 2})",
         "the key \"x\" appears both in \"bundle\" and at the top level"},
    };
    for (const Case& c : cases) {
        const TemporaryDirectory directory;
        directory.write("lib.so", "");
        const auto manifest = directory.write("manifest.json", c.manifest);
        const std::string message = failure([&] { context_.InstallBundles(directory.path().string()); });
        EXPECT_THAT(message, HasSubstr("invalid bundle manifest '" + manifest.string() + "': "));
        EXPECT_THAT(message, HasSubstr(c.problem));
    }
    EXPECT_EQ(context_.GetBundles().size(), 1u);
}

TEST_F(BundleTest, OneBadBundleInADirectoryInstallsNothing)
{
    const TemporaryDirectory directory;
    std::filesystem::copy(BUNDLES / "greeter_a", directory.path() / "good");
    directory.write("worse/manifest.json", "{");
    EXPECT_THAT(failure([&] { context_.InstallBundles(directory.path().string()); }), HasSubstr("worse"));
    EXPECT_EQ(context_.GetBundles().size(), 1u);

    installOne("greeter_a");
    EXPECT_THAT(failure([&] { context_.InstallBundles((directory.path() / "good").string()); }),
                HasSubstr("a bundle of that name is installed from"));
}

TEST_F(BundleTest, LibraryFailuresSurfaceWhenTheBundleStarts)
{
    const TemporaryDirectory directory;
    const auto broken = directory.write("broken/libbroken.so", "not a shared library");
    directory.write("broken/manifest.json",
                    R"({"bundle": {"symbolic_name": "broken", "library": "libbroken.so", "activator": true}})");
    Bundle bundle = installOne((directory.path() / "broken").string());
    EXPECT_THAT(failure([&] { bundle.Start(); }),
                HasSubstr("cannot load the library '" + broken.string() + "' of bundle 'broken'"));
    EXPECT_EQ(bundle.GetState(), Bundle::STATE_INSTALLED);

    const auto library = (std::filesystem::canonical(BUNDLES / "greeter_a") / "libgreeter_a.so").string();
    directory.write("unexported/manifest.json", R"({"bundle": {"symbolic_name": "unexported", "library": ")" +
                                                    library + R"(", "activator": true}})");
    Bundle unexported = installOne((directory.path() / "unexported").string());
    EXPECT_THAT(failure([&] { unexported.Start(); }), HasSubstr("does not export builtin2_create_activator_unexported"));
    EXPECT_TRUE(greetings().empty());
}
