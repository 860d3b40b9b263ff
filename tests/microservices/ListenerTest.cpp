// Service and bundle listeners: which events each hears, in what order, and what a
// listener that throws or goes away does to the others.
#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/BundleEvent.h>
#include <cppmicroservices/Constants.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkEvent.h>
#include <cppmicroservices/FrameworkFactory.h>
#include <cppmicroservices/ServiceEvent.h>

#include <foundation/log/Channel.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

using namespace cppmicroservices;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;

namespace {

struct Rank {
    virtual ~Rank() = default;
};
struct FixedRank final : Rank {};

class ListenerTest : public testing::Test {
protected:
    void SetUp() override
    {
        framework_.Start();
        context_ = framework_.GetBundleContext();
    }

    // A listener that writes "NAME TYPE" for each event it hears.
    ServiceListener recorder(const std::string& name)
    {
        return [this, name](const ServiceEvent& event) {
            std::ostringstream text;
            text << name << " " << event.GetType();
            heard_.push_back(text.str());
        };
    }

    // Declared before the framework: its listeners still hear the services go when it stops.
    std::vector<std::string> heard_;
    bool flag_ = false;
    Framework framework_ = FrameworkFactory().NewFramework();
    BundleContext context_;
};

} // namespace

TEST_F(ListenerTest, ServiceEventsReachMatchingListenersInTheOrderTheyWereAdded)
{
    context_.AddServiceListener(recorder("all"));
    auto ranked = context_.AddServiceListener(recorder("ranked"), "(rank>=2)");
    // flag_: whether the service could still be used while it was unregistering.
    context_.AddServiceListener([this](const ServiceEvent& event) {
        if (event.GetType() == ServiceEvent::SERVICE_UNREGISTERING) {
            flag_ = context_.GetService(event.GetServiceReference<Rank>()) != nullptr;
        }
    });

    auto registration = context_.RegisterService<Rank>(std::make_shared<FixedRank>(), {{"rank", 1}});
    registration.SetProperties({{"rank", 3}});
    registration.SetProperties({{"rank", 0}});
    registration.Unregister();
    EXPECT_THAT(heard_, ElementsAre("all REGISTERED", "all MODIFIED", "ranked MODIFIED", "all MODIFIED",
                                    "ranked MODIFIED_ENDMATCH", "all UNREGISTERING"));
    EXPECT_TRUE(flag_);

    heard_.clear();
    context_.RemoveListener(std::move(ranked));
    context_.RegisterService<Rank>(std::make_shared<FixedRank>(), {{"rank", 5}});
    EXPECT_THAT(heard_, ElementsAre("all REGISTERED"));
    EXPECT_THROW(context_.AddServiceListener(recorder("bad"), "(rank>=2"), std::invalid_argument);
}

TEST_F(ListenerTest, AThrowingListenerIsReportedAndTheOthersStillHear)
{
    const foundation::log::ScopedCapture capture("cppmicroservices::listeners");
    context_.AddServiceListener([](const ServiceEvent&) { throw std::runtime_error("boom"); });
    context_.AddServiceListener(recorder("after"));
    auto registration = context_.RegisterService<Rank>(std::make_shared<FixedRank>());
    EXPECT_TRUE(context_.GetServiceReference<Rank>());
    registration.Unregister();
    EXPECT_FALSE(context_.GetServiceReference<Rank>());
    EXPECT_THAT(heard_, ElementsAre("after REGISTERED", "after UNREGISTERING"));
    const auto records = capture.records();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_THAT(records[0].text, MatchesRegex("service listener [0-9]+ threw: boom"));
}

TEST_F(ListenerTest, AListenerRemovedDuringDeliveryIsNotCalledAgain)
{
    ListenerToken token;
    int calls = 0;
    token = context_.AddServiceListener([this, &token, &calls](const ServiceEvent&) {
        ++calls;
        context_.RemoveListener(std::move(token));
    });
    context_.RegisterService<Rank>(std::make_shared<FixedRank>());
    context_.RegisterService<Rank>(std::make_shared<FixedRank>());
    EXPECT_EQ(calls, 1);
}

TEST_F(ListenerTest, BundleListenersHearTheLifeCycleAndEventsPrint)
{
    context_.AddBundleListener([this](const BundleEvent& event) {
        std::ostringstream text;
        text << event;
        heard_.push_back(text.str());
    });
    auto bundle = context_.InstallBundles((std::filesystem::path(TEST_BUNDLE_DIR) / "greeter_b").string()).at(0);
    bundle.Start();
    const auto reference = context_.GetServiceReferences("test_bundles::Greeter").at(0);
    std::ostringstream referenceText;
    referenceText << ServiceEvent(ServiceEvent::SERVICE_MODIFIED, reference);
    bundle.Stop();
    // As CppMicroServices streams them.
    const std::string name =
        "#" + std::to_string(bundle.GetBundleId()) + " (greeter_b at " + bundle.GetLocation() + ")";
    EXPECT_THAT(heard_, ElementsAre("INSTALLED " + name, "STARTING " + name, "STARTED " + name, "STOPPING " + name,
                                   "STOPPED " + name));
    EXPECT_THAT(referenceText.str(), MatchesRegex("MODIFIED [0-9]+ objectClass=\\[test_bundles::Greeter\\]\\)"));
    std::ostringstream invalid;
    invalid << Bundle() << "; " << ServiceEvent() << "; " << BundleEvent() << "; " << FrameworkEvent();
    EXPECT_EQ(invalid.str(), "invalid bundle; NONE; NONE; NONE");
    std::ostringstream unknown;
    unknown << static_cast<BundleEvent::Type>(0x40) << "; " << static_cast<ServiceEvent::Type>(0x10) << "; "
            << FrameworkEvent::FRAMEWORK_WAIT_TIMEDOUT << "; " << static_cast<FrameworkEvent::Type>(0x4);
    EXPECT_EQ(unknown.str(), "Unknown bundle event type (64); unknown service event type (16); WAIT_TIMEDOUT; "
                             "Unknown bundle event type (4)");
    // An event of an invalid bundle cannot be made, as in CppMicroServices.
    EXPECT_THROW(BundleEvent(BundleEvent::BUNDLE_INSTALLED, Bundle()), std::invalid_argument);
    EXPECT_TRUE(ServiceEvent(ServiceEvent::SERVICE_REGISTERED, ServiceReferenceU()));
}

// As CppMicroServices: the framework announces its own STOPPING before any bundle stops,
// and an activator whose Start throws is seen starting, stopping and stopped.
TEST_F(ListenerTest, TheFrameworksStoppingComesFirstAndAFailedStartIsSeenStopping)
{
    context_.AddBundleListener([this](const BundleEvent& event) {
        std::ostringstream text;
        text << event.GetType() << " " << event.GetBundle().GetSymbolicName();
        heard_.push_back(text.str());
    });
    const std::filesystem::path bundles(TEST_BUNDLE_DIR);
    Bundle failing = context_.InstallBundles((bundles / "failing_start").string()).at(0);
    EXPECT_THROW(failing.Start(), std::runtime_error);
    EXPECT_EQ(failing.GetState(), Bundle::STATE_RESOLVED);
    EXPECT_THAT(heard_, ElementsAre("INSTALLED failing_start", "STARTING failing_start", "STOPPING failing_start",
                                   "STOPPED failing_start"));

    heard_.clear();
    context_.InstallBundles((bundles / "greeter_b").string()).at(0).Start();
    heard_.clear();
    framework_.Stop();
    EXPECT_THAT(heard_, ElementsAre(std::string("STOPPING ") + Constants::SYSTEM_BUNDLE_SYMBOLICNAME,
                                   "STOPPING greeter_b", "STOPPED greeter_b"));
}
