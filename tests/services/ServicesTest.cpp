// The builtin-services bundle found through the install layout, with ORVEX_ROOT unset,
// and the helpers and services it makes available.
#include <builtin/services/ModuleHelpers.hpp>
#include <builtin/services/ServiceHandles.hpp>
#include <builtin/services/findService.hpp>

#include <foundation/log/Channel.hpp>
#include <ocos/ClassRegistry.hpp>
#include <ocos/LxeObjectVariants.hpp>
#include <ocos/PackageFunctions.hpp>
#include <strings/StringArray.hpp>

#include <cppmicroservices/LDAPProp.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace Velloc::builtin;
using builtinreg::ILxeObjectModuleMgr;
using Owned = matrix::ArrayPtr;

// The installation root the bundle must be found under: the build tree, unless a test
// run over an installed tree names its prefix.
std::filesystem::path expectedRoot() {
    const char* installed = std::getenv("BUILTIN2_EXPECTED_ROOT");
    return std::filesystem::canonical(installed != nullptr ? installed : BUILD_ROOT);
}

class LibraryLocationRoot : public testing::Environment {
public:
    void SetUp() override { unsetenv("ORVEX_ROOT"); }
};
[[maybe_unused]] testing::Environment* const libraryLocationRoot =
    testing::AddGlobalTestEnvironment(new LibraryLocationRoot);

void fcnA(int, oxArray**, int, oxArray**) {}
void fcnB(int, oxArray**, int, oxArray**) {}

cppmicroservices::BundleContext frameworkContext() {
    return foundation::cppmicroservices::getFramework()->GetBundleContext();
}

struct NamedModule : ILxeObjectModuleMgr {
    explicit NamedModule(std::string n) : name(std::move(n)) {}
    std::string name;
};

struct Probe {
    virtual ~Probe() = default;
};

TEST(BuiltinServices, StartOnceFromTheInstallLayout) {
    EXPECT_EQ(builtinreg::getBuiltinLibraryPath(u""), expectedRoot());
    ASSERT_NE(builtinreg::getStringSupport(), nullptr);
    ASSERT_NE(builtinreg::getOCOSRegWrapper(), nullptr);
    ASSERT_NE(builtinreg::getLxeObjectRegister(), nullptr);

    const auto bundles = frameworkContext().GetBundles();
    builtinreg::loadBuiltinServices();
    EXPECT_EQ(frameworkContext().GetBundles().size(), bundles.size());
    const auto started = std::count_if(bundles.begin(), bundles.end(), [](const cppmicroservices::Bundle& b) {
        return b.GetSymbolicName() == "builtinservices" && b.GetState() == cppmicroservices::Bundle::STATE_ACTIVE;
    });
    EXPECT_EQ(started, 1);
}

// The handles keep the services they found first: while the bundle is stopped (its
// services withdrawn) they still serve, and once it starts again (publishing new ones)
// they go on with the first.
TEST(BuiltinServices, HandlesKeepTheirFirstServicesAsTheBundleStopsAndStartsAgain) {
    const auto strings = builtinreg::getStringSupport();
    const auto classObjects = builtinreg::getOCOSRegWrapper();
    const auto lxeObjectRegister = builtinreg::getLxeObjectRegister();
    ASSERT_NE(strings, nullptr);
    ASSERT_NE(classObjects, nullptr);
    ASSERT_NE(lxeObjectRegister, nullptr);
    const auto bundles = frameworkContext().GetBundles();
    const auto bundle = std::find_if(bundles.begin(), bundles.end(), [](const cppmicroservices::Bundle& b) {
        return b.GetSymbolicName() == "builtinservices";
    });
    ASSERT_NE(bundle, bundles.end());

    auto builtinServices = *bundle;
    builtinServices.Stop();
    EXPECT_EQ(builtinreg::findService<IOCOSRegWrapper>(), nullptr);
    EXPECT_EQ(builtinreg::getStringSupport(), strings);
    EXPECT_EQ(builtinreg::getOCOSRegWrapper(), classObjects);
    EXPECT_EQ(builtinreg::getLxeObjectRegister(), lxeObjectRegister);
    {
        const foundation::log::ScopedCapture log("builtinservice::registerpkgfcn");
        EXPECT_TRUE(builtinreg::registerPackageFunctionHelper({"svc_test", "stopped"}, "fcn", &fcnA));
        EXPECT_TRUE(log.records().empty());
    }
    EXPECT_EQ(ocos::findPackageFunction("svc_test.stopped.fcn"), &fcnA);

    builtinServices.Start();
    ASSERT_NE(builtinreg::findService<IOCOSRegWrapper>(), nullptr);
    EXPECT_NE(builtinreg::findService<IOCOSRegWrapper>(), classObjects);
    EXPECT_EQ(builtinreg::getStringSupport(), strings);
    EXPECT_EQ(builtinreg::getOCOSRegWrapper(), classObjects);
    EXPECT_EQ(builtinreg::getLxeObjectRegister(), lxeObjectRegister);
    EXPECT_TRUE(builtinreg::registerPackageFunctionHelper({"svc_test", "back"}, "fcn", &fcnA));
    EXPECT_EQ(ocos::findPackageFunction("svc_test.back.fcn"), &fcnA);
}

TEST(ModuleHelpers, LibraryPathAppendsBelowTheRootAndRejectsNull) {
    const auto root = builtinreg::getBuiltinLibraryPath(u"");
    EXPECT_EQ(builtinreg::getBuiltinLibraryPath(u"bin/lnxv64"), root / "bin" / "lnxv64");
    EXPECT_EQ(builtinreg::getBuiltinLibraryPath(u"/etc"), root / "etc");
    try {
        builtinreg::getBuiltinLibraryPath(nullptr);
        ADD_FAILURE() << "a null path was accepted";
    } catch (const std::logic_error& error) {
        EXPECT_STREQ(error.what(), "basic_string: construction from null is not valid");
    }
    static const int anchor = 0;
    builtinreg::forcelink(&anchor);
}

TEST(ClassObjectServices, ResolveClassesAndTakeRegistrations) {
    const auto& wrapper = *builtinreg::getOCOSRegWrapper();
    EXPECT_EQ(wrapper.getClassIdByName("string"), 19);
    EXPECT_EQ(wrapper.getClassIdByName("LxeObject"), 18);
    EXPECT_EQ(wrapper.getClassIdByName("svc_test.Buffer"), oxUNKNOWN_CLASS);
    const oxClassID buffer = ocos::registerClass("svc_test.Buffer").getId();
    EXPECT_EQ(wrapper.getClassIdByName("svc_test.Buffer"), buffer);
    const Velloc::String::String text(u"t\u00e9xt");
    const Owned scalar(builtinreg::getStringSupport()->stringToOxArray(&text, nullptr));
    EXPECT_EQ(wrapper.getClassID(scalar.get()), 19);
    EXPECT_EQ(Velloc::String::getStringElement(scalar.get(), 0), text);

    const foundation::log::ScopedCapture log("builtinservice::registerpkgfcn");
    EXPECT_TRUE(builtinreg::registerPackageFunctionHelper({"svc_test", "pkg"}, "fcn", &fcnA));
    EXPECT_FALSE(builtinreg::registerPackageFunctionHelper({"svc_test", "pkg"}, "fcn", &fcnB));
    EXPECT_EQ(ocos::findPackageFunction("svc_test.pkg.fcn"), &fcnA);
    EXPECT_TRUE(log.records().empty());

    auto& registry = *builtinreg::getLxeObjectRegister();
    registry.registerLxeObject(buffer, 2);
    registry.registerLxeObject(buffer, 5, true);
    EXPECT_EQ(ocos::getLxeObjectVariants(buffer), (std::vector<ocos::LxeObjectVariant>{{2, false}, {5, true}}));
}

TEST(FindService, SelectsByInterfaceAndFilter) {
    auto context = frameworkContext();
    auto registration = context.RegisterService<Probe>(std::make_shared<Probe>(), {{"svc_test.kind", std::string("a")}});
    const cppmicroservices::LDAPFilter kindA(cppmicroservices::LDAPProp("svc_test.kind") == "a");
    const cppmicroservices::LDAPFilter kindB(cppmicroservices::LDAPProp("svc_test.kind") == "b");
    const auto found = builtinreg::findService<Probe>(kindA);
    EXPECT_NE(found, nullptr);
    EXPECT_EQ(builtinreg::findService<Probe>(), found);
    EXPECT_EQ(builtinreg::findService<Probe>(kindB), nullptr);
    registration.Unregister();
    EXPECT_EQ(builtinreg::findService<Probe>(kindA), nullptr);
}

TEST(CallUpstreamModules, VisitsPublishedModulesInTheOrderNamed) {
    auto context = frameworkContext();
    const auto publish = [&](const std::string& name) {
        return context.RegisterService<ILxeObjectModuleMgr>(std::make_shared<NamedModule>(name),
                                                            {{builtinreg::CPP_MANGLED_TYPE_NAME, name}});
    };
    auto a = publish("svc_test_A");
    auto b = publish("svc_test_B");

    std::vector<std::string> visited;
    builtinreg::callUpstreamModules(
        {"svc_test_B", "svc_test_missing", "N15builtinservices24BuiltinServicesModuleMgrE", "svc_test_A"},
        [&](ILxeObjectModuleMgr* module) {
            const auto* named = dynamic_cast<NamedModule*>(module);
            visited.push_back(named != nullptr ? named->name : "builtinservices");
        });
    EXPECT_EQ(visited, (std::vector<std::string>{"svc_test_B", "builtinservices", "svc_test_A"}));

    const std::function<void(ILxeObjectModuleMgr*)> empty;
    EXPECT_NO_THROW(builtinreg::callUpstreamModules({"svc_test_missing"}, empty));
    EXPECT_NO_THROW(builtinreg::callUpstreamModules({""}, empty));
    EXPECT_THROW(builtinreg::callUpstreamModules({"svc_test_A"}, empty), std::bad_function_call);
    a.Unregister();
    b.Unregister();
}

// No module publishes the empty name or an unknown one: both are skipped, and the known
// names beside them are visited in order. Names with filter syntax in them are only names.
TEST(CallUpstreamModules, SkipsTheEmptyNameAndUnknownNames) {
    auto context = frameworkContext();
    auto known = context.RegisterService<ILxeObjectModuleMgr>(std::make_shared<NamedModule>("svc_test_known"),
                                                              {{builtinreg::CPP_MANGLED_TYPE_NAME,
                                                                std::string("svc_test_known")}});
    std::vector<std::string> visited;
    const auto visit = [&](ILxeObjectModuleMgr* module) {
        const auto* named = dynamic_cast<NamedModule*>(module);
        visited.push_back(named != nullptr ? named->name : "another module");
    };
    EXPECT_NO_THROW(builtinreg::callUpstreamModules({""}, visit));
    EXPECT_NO_THROW(builtinreg::callUpstreamModules({"svc_test_unknown"}, visit));
    EXPECT_TRUE(visited.empty());
    EXPECT_NO_THROW(builtinreg::callUpstreamModules(
        {"", "svc_test_known", "svc_test_unknown", "(svc_test*)", "", "svc_test_known"}, visit));
    EXPECT_EQ(visited, (std::vector<std::string>{"svc_test_known", "svc_test_known"}));

    // The empty name is compared like any other: a module published under it is found.
    auto unnamed = context.RegisterService<ILxeObjectModuleMgr>(std::make_shared<NamedModule>("svc_test_unnamed"),
                                                                {{builtinreg::CPP_MANGLED_TYPE_NAME, std::string()}});
    visited.clear();
    builtinreg::callUpstreamModules({"svc_test_known", ""}, visit);
    EXPECT_EQ(visited, (std::vector<std::string>{"svc_test_known", "svc_test_unnamed"}));
    unnamed.Unregister();
    known.Unregister();
}

} // namespace
