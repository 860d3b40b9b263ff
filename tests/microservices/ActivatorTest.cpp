// Activators run under their own bundle's lock only: they use the registry and other
// bundles, other threads keep using the framework meanwhile, and two threads starting one
// bundle run its activator once.
#include "bundles/Greeter.h"

#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkFactory.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <algorithm>
#include <future>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

using namespace cppmicroservices;
using test_bundles::Greeter;
using testing::ElementsAre;
using testing::StartsWith;

namespace {

const std::filesystem::path BUNDLES = TEST_BUNDLE_DIR;
const std::filesystem::path BUSY = TEST_ACTIVATOR_BUNDLE_DIR;

class ActivatorTest : public testing::Test {
protected:
    void SetUp() override
    {
        framework_.Start();
        context_ = framework_.GetBundleContext();
        busy_ = context_.InstallBundles(BUSY.string()).at(0);
    }

    std::vector<std::string> greetings() const
    {
        std::vector<std::string> found;
        for (const auto& reference : context_.GetServiceReferences<Greeter>()) {
            found.push_back(context_.GetService(reference)->greet());
        }
        return found;
    }

    // Declared before the framework: its listeners still hear the services go when it stops.
    std::vector<std::string> heard_;
    std::promise<void> activatorRunning_;
    std::once_flag signalled_;
    Framework framework_ =
        FrameworkFactory().NewFramework({{"busy.peer", std::string((BUNDLES / "greeter_a").string())}});
    BundleContext context_;
    Bundle busy_;
};

} // namespace

TEST_F(ActivatorTest, ActivatorsLookUpRegisterUnregisterAndStartAndStopOtherBundles)
{
    context_.AddServiceListener([this](const ServiceEvent& event) {
        std::ostringstream text;
        text << event.GetType() << " " << event.GetServiceReference().GetProperty("greeting").ToStringNoExcept();
        heard_.push_back(text.str());
    });
    busy_.Start();
    ASSERT_EQ(busy_.GetState(), Bundle::STATE_ACTIVE);
    const auto started = greetings();
    ASSERT_EQ(started.size(), 2u);
    EXPECT_EQ(started[0], "hello from a");
    EXPECT_THAT(started[1], StartsWith("busy saw hello from a, start "));
    ASSERT_EQ(heard_.size(), 4u);
    EXPECT_THAT(std::vector(heard_.begin(), heard_.begin() + 3),
                ElementsAre("REGISTERED hello from a", "REGISTERED passing", "UNREGISTERING passing"));

    busy_.Stop();
    EXPECT_TRUE(greetings().empty());
    const auto peer = context_.GetBundles((BUNDLES / "greeter_a").string()).at(0);
    EXPECT_EQ(peer.GetState(), Bundle::STATE_RESOLVED);
}

TEST_F(ActivatorTest, OtherThreadsUseTheFrameworkWhileAnActivatorRuns)
{
    context_.AddServiceListener(
        [this](const ServiceEvent&) { std::call_once(signalled_, [this] { activatorRunning_.set_value(); }); },
        "(greeting=passing)");
    std::thread starter([this] { busy_.Start(); });
    activatorRunning_.get_future().wait();
    // The activator is still asleep in Start: looking up, registering and installing work.
    EXPECT_FALSE(context_.GetServiceReferences<Greeter>().empty());
    auto mine = context_.RegisterService<Greeter>(std::make_shared<test_bundles::FixedGreeter>("mine"));
    EXPECT_EQ(context_.InstallBundles((BUNDLES / "greeter_b").string()).size(), 1u);
    EXPECT_EQ(busy_.GetState(), Bundle::STATE_STARTING);
    mine.Unregister();
    starter.join();
    EXPECT_EQ(busy_.GetState(), Bundle::STATE_ACTIVE);
}

TEST_F(ActivatorTest, TwoThreadsStartingOneBundleRunItsActivatorOnce)
{
    std::thread first([this] { busy_.Start(); });
    std::thread second([this] { busy_.Start(); });
    first.join();
    second.join();
    EXPECT_EQ(busy_.GetState(), Bundle::STATE_ACTIVE);
    const auto found = greetings();
    EXPECT_EQ(std::count_if(found.begin(), found.end(),
                            [](const std::string& greeting) { return greeting.starts_with("busy saw"); }),
              1);
}
