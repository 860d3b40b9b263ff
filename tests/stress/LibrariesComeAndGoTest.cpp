// Threads call a builtin of the sample library while another thread stops and starts the
// library's bundle over and over. Each call either finds the builtin among the libraries
// tracked when it looked and runs it to the right answer (the snapshot keeps the library
// alive until the call returns), or finds no such builtin; nothing else may happen. The
// host's own service handles, meanwhile, keep serving the services they found first while
// the builtin-services bundle cycles.
#include "Libraries.hpp"

#include <builtin/services/ServiceHandles.hpp>
#include <strings/StringArray.hpp>

#include <foundation/cppmicroservices/framework.hpp>
#include <matrix/oxArray.hpp>
#include <orvex/formatArray.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <string_view>
#include <thread>
#include <vector>

namespace {

constexpr int CALLERS = 3;
constexpr int CYCLES = 1000;
constexpr int SERVICE_CYCLES = 300;

cppmicroservices::Bundle bundleNamed(const std::string& name) {
    for (const auto& bundle : foundation::cppmicroservices::getFramework()->GetBundleContext().GetBundles()) {
        if (bundle.GetSymbolicName() == name) {
            return bundle;
        }
    }
    return {};
}

TEST(LibrariesComeAndGo, CallsFinishOrFindNothingWhileTheBundleStopsAndStarts) {
    const orvex::TrackedLibraries libraries(SAMPLELIB_BUNDLE);
    cppmicroservices::Bundle bundle = bundleNamed("samplelib");
    ASSERT_TRUE(bundle);

    std::atomic<bool> cycling{true};
    std::atomic<int> ran{0};
    std::atomic<int> missed{0};
    std::vector<std::jthread> callers;
    for (int t = 0; t < CALLERS; ++t) {
        callers.emplace_back([&] {
            const matrix::ArrayPtr one(matrix::createScalar(1.0));
            const matrix::ArrayPtr two(matrix::createScalar(2.0));
            oxArray* arguments[2] = {one.get(), two.get()};
            while (cycling.load()) {
                const auto snapshot = libraries.snapshot();
                const auto* plus = orvex::findBuiltin(snapshot->builtins, "plus");
                if (plus == nullptr) {
                    missed.fetch_add(1);
                    continue;
                }
                oxArray* result = nullptr;
                orvex::invokeBuiltin(*plus, 1, &result, 2, arguments);
                const matrix::ArrayPtr owned(result);
                EXPECT_EQ(orvex::formatArray(owned.get()), "3");
                ran.fetch_add(1);
            }
        });
    }
    for (int cycle = 0; cycle < CYCLES; ++cycle) {
        bundle.Stop();
        bundle.Start();
    }
    cycling.store(false);
    callers.clear();

    EXPECT_GT(ran.load(), 0);
    const auto snapshot = libraries.snapshot();
    EXPECT_NE(orvex::findBuiltin(snapshot->builtins, "plus"), nullptr);
}

// The host's service handles hold the services found at their first use for the whole
// process: while the builtin-services bundle stops and starts over and over (withdrawing
// its services and publishing new ones), every fetch gives the first service, and calls
// through it run to the right answer. The handle keeps the withdrawn object alive and the
// bundle's library stays loaded, so its code is still there to run.
TEST(LibrariesComeAndGo, HostServiceHandlesKeepTheirFirstServiceWhileTheirBundleStopsAndStarts) {
    using namespace Velloc::builtin::builtinreg;
    const auto* firstStrings = getStringSupport().get();
    const auto* firstClassObjects = getOCOSRegWrapper().get();
    ASSERT_NE(firstStrings, nullptr);
    ASSERT_NE(firstClassObjects, nullptr);
    cppmicroservices::Bundle bundle = bundleNamed("builtinservices");
    ASSERT_TRUE(bundle);

    std::atomic<bool> cycling{true};
    std::atomic<int> served{0};
    std::vector<std::jthread> callers;
    for (int t = 0; t < CALLERS; ++t) {
        callers.emplace_back([&] {
            const Velloc::String::String text(u"t\u00e9xt");
            while (cycling.load()) {
                const auto& strings = getStringSupport();
                const auto& classObjects = getOCOSRegWrapper();
                ASSERT_EQ(strings.get(), firstStrings);
                ASSERT_EQ(classObjects.get(), firstClassObjects);
                const matrix::ArrayPtr array(strings->stringToOxArray(&text, nullptr));
                EXPECT_EQ(Velloc::String::getStringElement(array.get(), 0), text);
                EXPECT_EQ(strings->getStringValue(array.get(), nullptr), std::u16string_view(u"t\u00e9xt"));
                EXPECT_EQ(classObjects->getClassID(array.get()), strings->getStringClassId());
                EXPECT_EQ(classObjects->getClassIdByName("string"), strings->getStringClassId());
                served.fetch_add(1);
            }
        });
    }
    for (int cycle = 0; cycle < SERVICE_CYCLES; ++cycle) {
        bundle.Stop();
        bundle.Start();
    }
    cycling.store(false);
    callers.clear();

    EXPECT_GT(served.load(), 0);
    EXPECT_EQ(getStringSupport().get(), firstStrings);
    EXPECT_EQ(getOCOSRegWrapper().get(), firstClassObjects);
}

} // namespace
