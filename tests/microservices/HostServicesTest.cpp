#include "bundles/Greeter.h"

#include <foundation/cppmicroservices/framework.hpp>
#include <foundation/filesystem/paths.hpp>

#include <cppmicroservices/BundleContext.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <future>
#include <map>
#include <string>

namespace fs = foundation::filesystem;
using foundation::cppmicroservices::getFramework;
using foundation::cppmicroservices::installAndStart;

namespace {

const std::filesystem::path BUNDLES = TEST_BUNDLE_DIR;

std::map<std::string, cppmicroservices::Bundle::State> bundleStates()
{
    std::map<std::string, cppmicroservices::Bundle::State> states;
    for (const auto& bundle : getFramework()->GetBundleContext().GetBundles()) {
        states[bundle.GetSymbolicName()] = bundle.GetState();
    }
    return states;
}

} // namespace

TEST(InstallRoot, ComesFromTheEnvironmentOrFromTheLibraryLocation)
{
    setenv("ORVEX_ROOT", "/opt/orvex", 1);
    EXPECT_EQ(fs::getInstallRoot(), std::filesystem::path("/opt/orvex"));

    setenv("ORVEX_ROOT", "", 1);
    const auto root = fs::getInstallRoot();
    EXPECT_TRUE(std::filesystem::is_regular_file(root / "lib" / "libox_filesystem.so")) << root;

    unsetenv("ORVEX_ROOT");
    EXPECT_EQ(fs::getInstallRoot(), root);
}

TEST(NativePath, ConvertsUtf16AndAppendsRelativePaths)
{
    EXPECT_EQ(fs::toNativePath(u"bin/lnxv64/builtinservices"), std::filesystem::path("bin/lnxv64/builtinservices"));
    EXPECT_EQ(fs::toNativePath(u"d\u00e9j\u00e0/\u4e2d").string(), "d\xc3\xa9j\xc3\xa0/\xe4\xb8\xad");
    EXPECT_EQ(fs::toNativePath(u""), std::filesystem::path());
    EXPECT_THROW(fs::toNativePath(u"lone \xD800 surrogate"), std::filesystem::filesystem_error);

    const std::filesystem::path root("/opt/orvex");
    EXPECT_EQ(fs::concatenate(root, ""), root);
    EXPECT_EQ(fs::concatenate(root, "bin/x"), std::filesystem::path("/opt/orvex/bin/x"));
    EXPECT_EQ(fs::concatenate(root, "/bin/x"), std::filesystem::path("/opt/orvex/bin/x"));
}

TEST(MicroservicesWrapper, OneRunningFrameworkPerProcess)
{
    auto fromOtherThread = std::async(std::launch::async, [] { return getFramework(); });
    const auto framework = getFramework();
    ASSERT_NE(framework, nullptr);
    EXPECT_EQ(fromOtherThread.get(), framework);
    EXPECT_EQ(framework->GetState(), cppmicroservices::Bundle::STATE_ACTIVE);
}

TEST(MicroservicesWrapper, InstallAndStartStartsOnlyTheBundlesTheFilterSelects)
{
    using cppmicroservices::Bundle;
    installAndStart(BUNDLES, "(started-in=builtin2/builtin)");
    EXPECT_EQ(bundleStates(), (std::map<std::string, Bundle::State>{{"system_bundle", Bundle::STATE_ACTIVE},
                                                                    {"failing_start", Bundle::STATE_INSTALLED},
                                                                    {"greeter_a", Bundle::STATE_ACTIVE},
                                                                    {"greeter_b", Bundle::STATE_INSTALLED}}));
    auto context = getFramework()->GetBundleContext();
    const auto greeters = context.GetServiceReferences<test_bundles::Greeter>();
    ASSERT_EQ(greeters.size(), 1u);
    EXPECT_EQ(context.GetService(greeters.front())->greet(), "hello from a");

    installAndStart(BUNDLES / "greeter_b", "(Started-In=somewhere/else)");
    EXPECT_EQ(bundleStates().size(), 4u);
    EXPECT_EQ(bundleStates().at("greeter_b"), Bundle::STATE_ACTIVE);
    EXPECT_EQ(context.GetServiceReferences<test_bundles::Greeter>().size(), 2u);

    EXPECT_THROW(installAndStart(BUNDLES, "(started-in=builtin2"), std::invalid_argument);
    EXPECT_THROW(installAndStart(BUNDLES / "missing", ""), std::runtime_error);
    EXPECT_THROW(installAndStart(BUNDLES / "failing_start", ""), std::runtime_error);
    EXPECT_EQ(bundleStates().at("failing_start"), Bundle::STATE_RESOLVED);
}
