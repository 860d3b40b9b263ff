// ServiceTracker: what it tracks, in which order it offers it, what its customizer hears,
// and waiting for a service that another thread registers.
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Constants.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkFactory.h>
#include <cppmicroservices/ServiceTracker.h>

#include <foundation/log/Channel.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

using namespace cppmicroservices;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

struct Source {
    virtual ~Source() = default;
    virtual int value() const = 0;
};

struct FixedSource final : Source {
    explicit FixedSource(int v) : v_(v) {}
    int value() const override { return v_; }
    int v_;
};

// Records "adding N", "modified N", "removed N"; refuses services of value 0.
class Recorder : public ServiceTrackerCustomizer<Source> {
public:
    explicit Recorder(BundleContext context) : context_(std::move(context)) {}

    std::shared_ptr<Source> AddingService(const ServiceReference<Source>& reference) override
    {
        auto service = context_.GetService(reference);
        calls.push_back("adding " + std::to_string(service->value()));
        return service->value() == 0 ? nullptr : service;
    }
    void ModifiedService(const ServiceReference<Source>&, const std::shared_ptr<Source>& service) override
    {
        calls.push_back("modified " + std::to_string(service->value()));
    }
    void RemovedService(const ServiceReference<Source>&, const std::shared_ptr<Source>& service) override
    {
        calls.push_back("removed " + std::to_string(service->value()));
    }

    std::vector<std::string> calls;

private:
    BundleContext context_;
};

class TrackerTest : public testing::Test {
protected:
    void SetUp() override
    {
        framework_.Start();
        context_ = framework_.GetBundleContext();
    }

    ServiceRegistration<Source> add(int value, int ranking = 0)
    {
        return context_.RegisterService<Source>(std::make_shared<FixedSource>(value),
                                                {{Constants::SERVICE_RANKING, ranking}, {"value", value}});
    }

    static std::vector<int> values(const std::vector<std::shared_ptr<Source>>& services)
    {
        std::vector<int> found;
        for (const auto& service : services) {
            found.push_back(service->value());
        }
        return found;
    }

    Framework framework_ = FrameworkFactory().NewFramework();
    BundleContext context_;
};

} // namespace

TEST_F(TrackerTest, TracksServicesAsTheyComeChangeAndGoBestFirst)
{
    Recorder recorder(context_);
    ServiceTracker<Source> tracker(context_, &recorder);
    auto first = add(1);
    add(0); // refused by the customizer
    EXPECT_EQ(tracker.GetTrackingCount(), -1);
    tracker.Open();
    EXPECT_EQ(tracker.GetService()->value(), 1);
    auto second = add(2, 5);
    EXPECT_EQ(tracker.GetService()->value(), 2);
    EXPECT_EQ(tracker.GetServiceReference().GetProperty("value").ToStringNoExcept(), "2");
    first.SetProperties({{Constants::SERVICE_RANKING, 9}, {"value", 1}});
    EXPECT_EQ(tracker.GetService()->value(), 1);
    EXPECT_THAT(values(tracker.GetServices()), ElementsAre(1, 2));
    EXPECT_EQ(tracker.GetServiceReferences().size(), 2u);
    EXPECT_EQ(tracker.Size(), 2u);
    EXPECT_EQ(tracker.GetTrackingCount(), 3);

    first.Unregister();
    EXPECT_EQ(tracker.GetService()->value(), 2);
    tracker.Close();
    EXPECT_TRUE(tracker.IsEmpty());
    EXPECT_EQ(tracker.GetService(), nullptr);
    EXPECT_EQ(tracker.GetTrackingCount(), -1);
    second.Unregister();
    EXPECT_THAT(recorder.calls, ElementsAre("adding 1", "adding 0", "adding 2", "modified 1", "removed 1",
                                            "removed 2"));
}

// A borrowed service follows the best one; the borrowing thread's slot keeps it alive after
// it is unregistered, until that thread borrows from the tracker again. Threads and
// trackers lend through slots of their own.
TEST_F(TrackerTest, ABorrowedServiceFollowsTheBestAndLivesUntilTheNextBorrow)
{
    ServiceTracker<Source> tracker(context_);
    ServiceTracker<Source> other(context_, LDAPFilter("(value=1)"));
    EXPECT_EQ(tracker.BorrowService(), nullptr);
    tracker.Open();
    other.Open();
    auto low = add(1);
    EXPECT_EQ(tracker.BorrowService()->value(), 1);
    auto high = add(2, 10);
    const Source* borrowed = tracker.BorrowService();
    ASSERT_EQ(borrowed->value(), 2);
    const std::weak_ptr<Source> watched = tracker.GetService();

    high.Unregister();
    EXPECT_EQ(other.BorrowService()->value(), 1);
    EXPECT_EQ(borrowed->value(), 2);
    std::thread([&] { EXPECT_EQ(tracker.BorrowService()->value(), 1); }).join();
    EXPECT_FALSE(watched.expired());
    EXPECT_EQ(tracker.BorrowService()->value(), 1);
    EXPECT_TRUE(watched.expired());

    tracker.Close();
    EXPECT_EQ(tracker.BorrowService(), nullptr);
    EXPECT_EQ(other.BorrowService()->value(), 1);
}

TEST_F(TrackerTest, AFilterTrackerDropsServicesThatStopMatching)
{
    ServiceTracker<Source> tracker(context_, LDAPFilter("(value>=2)"));
    tracker.Open();
    auto registration = add(3);
    add(1);
    EXPECT_EQ(tracker.Size(), 1u);
    registration.SetProperties({{"value", 1}});
    EXPECT_TRUE(tracker.IsEmpty());
    registration.SetProperties({{"value", 4}});
    EXPECT_EQ(tracker.GetService()->value(), 3);
}

TEST_F(TrackerTest, WaitForServiceReturnsWhatAnotherThreadRegistersOrNullAfterTheTimeout)
{
    ServiceTracker<Source> tracker(context_);
    tracker.Open();
    EXPECT_EQ(tracker.WaitForService(10ms), nullptr);
    EXPECT_THROW(tracker.WaitForService(-1ms), std::invalid_argument);
    std::thread registrar([this] {
        std::this_thread::sleep_for(20ms);
        add(7);
    });
    const auto service = tracker.WaitForService(0ms);
    registrar.join();
    ASSERT_NE(service, nullptr);
    EXPECT_EQ(service->value(), 7);
}

// A customizer that throws, whether on opening, on an event or on closing: each throw is
// reported, the tracker goes on with the other services, another tracker sees everything,
// and the registry keeps every service.
TEST_F(TrackerTest, ACustomizerThatThrowsIsReportedAndTrackingGoesOn)
{
    class Throwing : public ServiceTrackerCustomizer<Source> {
    public:
        explicit Throwing(BundleContext context) : context_(std::move(context)) {}
        std::shared_ptr<Source> AddingService(const ServiceReference<Source>& reference) override
        {
            auto service = context_.GetService(reference);
            if (service->value() == 4) {
                throw std::runtime_error("no thanks");
            }
            return service;
        }
        void ModifiedService(const ServiceReference<Source>&, const std::shared_ptr<Source>&) override {}
        void RemovedService(const ServiceReference<Source>&, const std::shared_ptr<Source>&) override
        {
            throw std::runtime_error("gone already");
        }

    private:
        BundleContext context_;
    } throwing(context_);
    const foundation::log::ScopedCapture capture("cppmicroservices::listeners");
    ServiceTracker<Source> tracker(context_, &throwing);
    ServiceTracker<Source> plain(context_);
    auto four = add(4);
    add(5);
    tracker.Open();
    plain.Open();
    add(6);
    add(4);
    EXPECT_EQ(values(tracker.GetServices()), (std::vector<int>{5, 6}));
    EXPECT_EQ(values(plain.GetServices()), (std::vector<int>{4, 5, 6, 4}));
    four.Unregister();
    tracker.Close();
    EXPECT_TRUE(tracker.IsEmpty());
    EXPECT_EQ(tracker.GetTrackingCount(), -1);
    EXPECT_EQ(plain.Size(), 3u);
    EXPECT_EQ(context_.GetServiceReferences<Source>().size(), 3u);

    std::vector<std::string> texts;
    for (const auto& record : capture.records()) {
        texts.push_back(record.text);
    }
    EXPECT_THAT(texts, ElementsAre("service tracker customizer threw: no thanks",
                                   "service tracker customizer threw: no thanks",
                                   "service tracker customizer threw: gone already",
                                   "service tracker customizer threw: gone already"));
}
