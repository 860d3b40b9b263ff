// ServiceTracker: what it tracks, in which order it offers it, what its customizer hears,
// waiting for a service that another thread registers, waits that end without one (the
// tracker closes or goes, the framework stops), and how long a borrowed service lives.
#include "Watchdog.h"

#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Constants.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkFactory.h>
#include <cppmicroservices/ServiceTracker.h>

#include <foundation/log/Channel.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <type_traits>
#include <string>
#include <thread>
#include <vector>

using namespace cppmicroservices;
using namespace std::chrono_literals;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using test_support::withinLimit;

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

// Another interface, for trackers that follow services by filter alone.
struct Sink {
    virtual ~Sink() = default;
};

struct PlainSink final : Sink {};

// Starts threads that each wait for a service and record how the wait ended: "null", "service",
// "logic_error" or "other". Each thread says when it is about to wait; the caller then
// gives them a moment to be inside.
class Waiters {
public:
    template <class Wait>
    void start(Wait wait)
    {
        threads_.emplace_back([this, wait] {
            ++started_;
            std::string outcome;
            try {
                outcome = wait() != nullptr ? "service" : "null";
            } catch (const std::logic_error&) {
                outcome = "logic_error";
            } catch (...) {
                outcome = "other";
            }
            const std::lock_guard lock(mutex_);
            outcomes_.push_back(outcome);
        });
    }

    // Until every thread started, and then a moment for them to block.
    void settle() const
    {
        while (started_ < threads_.size()) {
            std::this_thread::yield();
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }

    std::vector<std::string> join()
    {
        for (auto& thread : threads_) {
            thread.join();
        }
        threads_.clear();
        return outcomes_;
    }

private:
    std::vector<std::thread> threads_;
    std::atomic<std::size_t> started_{0};
    std::mutex mutex_;
    std::vector<std::string> outcomes_;
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

// Close wakes every waiter, with or without a limit, and each returns null; a tracker that is
// closed, or was never opened, has nothing to wait for.
TEST_F(TrackerTest, WaitForServiceEndsWithNullWhenTheTrackerCloses)
{
    ServiceTracker<Source> tracker(context_);
    tracker.Open();
    Waiters waiters;
    withinLimit("waits that Close ends", 30s, [&] {
        waiters.start([&] { return tracker.WaitForService(0ms); });
        waiters.start([&] { return tracker.WaitForService(1min); });
        waiters.settle();
        tracker.Close();
        EXPECT_THAT(waiters.join(), ElementsAre("null", "null"));
        EXPECT_EQ(tracker.WaitForService(0ms), nullptr);
        ServiceTracker<Source> never(context_);
        EXPECT_EQ(never.WaitForService(0ms), nullptr);
    });
}

// The destructor wakes the waiters and returns only once they have left the tracker, so
// that none of them touches it after.
TEST_F(TrackerTest, WaitForServiceEndsWithNullWhenTheTrackerIsDestroyed)
{
    auto tracker = std::make_unique<ServiceTracker<Source>>(context_);
    tracker->Open();
    ServiceTracker<Source>* const waitedOn = tracker.get();
    Waiters waiters;
    withinLimit("waits that the destructor ends", 30s, [&] {
        waiters.start([waitedOn] { return waitedOn->WaitForService(0ms); });
        waiters.start([waitedOn] { return waitedOn->WaitForService(1min); });
        waiters.start([waitedOn] { return waitedOn->WaitForService(0ms); });
        waiters.settle();
        tracker.reset();
        EXPECT_THAT(waiters.join(), ElementsAre("null", "null", "null"));
    });
}

// As CppMicroServices: a wait on a tracker whose context is ending or gone throws
// std::logic_error instead of waiting for a service that cannot come, whether it began
// before the framework's stop, during it, or after it.
TEST_F(TrackerTest, WaitForServiceThrowsLogicErrorWhileAndAfterTheFrameworkStops)
{
    ServiceTracker<Source> tracker(context_);
    tracker.Open();
    Waiters waiters;
    std::string duringStop = "not called";
    withinLimit("waits that the framework's stop ends", 30s, [&] {
        waiters.start([&] { return tracker.WaitForService(0ms); });
        waiters.start([&] { return tracker.WaitForService(1min); });
        waiters.settle();
        // A listener added before the tracker's own hears the stop first, and waits on the
        // thread that stops.
        ServiceTracker<Source> late(context_);
        context_.AddBundleListener([&](const BundleEvent& event) {
            if (event.GetType() == BundleEvent::BUNDLE_STOPPING && event.GetBundle().GetBundleId() == 0) {
                late.Open();
                try {
                    late.WaitForService(0ms);
                    duringStop = "returned";
                } catch (const std::logic_error&) {
                    duringStop = "logic_error";
                }
            }
        });
        framework_.Stop();
        EXPECT_THAT(waiters.join(), ElementsAre("logic_error", "logic_error"));
        EXPECT_THROW(tracker.WaitForService(0ms), std::logic_error);
        EXPECT_THROW(tracker.WaitForService(1min), std::logic_error);
        late.Close();
    });
    EXPECT_EQ(duringStop, "logic_error");
    // Closed, it has nothing to wait for.
    tracker.Close();
    EXPECT_EQ(tracker.WaitForService(0ms), nullptr);
}

// A tracker on a bundle's context ends with that bundle.
TEST_F(TrackerTest, WaitForServiceThrowsLogicErrorWhenTheTrackersBundleStops)
{
    Bundle bundle = context_.InstallBundles((std::filesystem::path(TEST_BUNDLE_DIR) / "greeter_a").string()).at(0);
    bundle.Start();
    ServiceTracker<Source> tracker(bundle.GetBundleContext());
    tracker.Open();
    Waiters waiters;
    withinLimit("a wait that the bundle's stop ends", 30s, [&] {
        waiters.start([&] { return tracker.WaitForService(0ms); });
        waiters.settle();
        bundle.Stop();
        EXPECT_THAT(waiters.join(), ElementsAre("logic_error"));
    });
    EXPECT_THROW(tracker.WaitForService(10ms), std::logic_error);
}

// What BorrowService promises: the pointer outlives an unregistration and borrows from other
// trackers, until the same thread borrows from the same tracker again or the tracker is
// destroyed. A destroyed tracker's number goes to the next tracker made, whose first borrow
// on this thread lets go of what the number lent here.
TEST_F(TrackerTest, ABorrowedServiceLivesUntilTheNextBorrowOrTheTrackersEnd)
{
    auto registration = add(5);
    auto first = std::make_unique<ServiceTracker<Source>>(context_);
    first->Open();
    const Source* borrowed = first->BorrowService();
    const std::weak_ptr<Source> watched = first->GetService();
    registration.Unregister();
    {
        ServiceTracker<Source> other(context_);
        other.Open();
        add(6);
        EXPECT_EQ(other.BorrowService()->value(), 6);
        EXPECT_EQ(borrowed->value(), 5);
    }
    ServiceTracker<Source> second(context_);
    second.Open();
    EXPECT_EQ(second.BorrowService()->value(), 6);
    EXPECT_EQ(borrowed->value(), 5);
    first->Close();
    EXPECT_EQ(borrowed->value(), 5) << "closing lets go of nothing lent";
    EXPECT_FALSE(watched.expired());

    first.reset();
    ServiceTracker<Source> next(context_); // takes the first tracker's number
    next.Open();
    EXPECT_EQ(next.BorrowService()->value(), 6);
    EXPECT_TRUE(watched.expired());
}

// A thread_local made before the thread's first borrow is destroyed after the thread's
// slots: its destructor's borrow must neither use them nor lose what it lends.
TEST_F(TrackerTest, ABorrowedServiceFromAThreadLocalDestructorIsSafe)
{
    add(4);
    ServiceTracker<Source> tracker(context_);
    tracker.Open();
    struct LateBorrower {
        ServiceTracker<Source>* tracker = nullptr;
        int seen = 0;
        ~LateBorrower()
        {
            if (tracker != nullptr) {
                seen = tracker->BorrowService()->value() + tracker->GetService()->value() +
                       tracker->BorrowService()->value();
                *result = seen;
            }
        }
        int* result = nullptr;
    };
    int result = 0;
    std::thread([&] {
        thread_local LateBorrower late;
        late.tracker = &tracker;
        late.result = &result;
        EXPECT_EQ(tracker.BorrowService()->value(), 4);
    }).join();
    EXPECT_EQ(result, 12);
}

// The main thread's slots go before static destructors and atexit handlers run; a borrow
// from one of them (as the host's service handles may see at exit) is safe.
namespace {

// Reachable from these statics until the process ends, so not leaks.
Framework* exitFramework = nullptr;
ServiceTracker<Source>* exitTracker = nullptr;

[[noreturn]] void exitAfterABorrowFromAnExitHandler()
{
    exitFramework = new Framework(FrameworkFactory().NewFramework());
    exitFramework->Start();
    exitFramework->GetBundleContext().RegisterService<Source>(std::make_shared<FixedSource>(9));
    exitTracker = new ServiceTracker<Source>(exitFramework->GetBundleContext());
    exitTracker->Open();
    if (exitTracker->BorrowService()->value() != 9) {
        std::_Exit(1);
    }
    std::atexit([] {
        const bool right = exitTracker->BorrowService()->value() == 9 && exitTracker->GetService()->value() == 9 &&
                           exitTracker->BorrowService()->value() == 9;
        std::_Exit(right ? 0 : 2);
    });
    std::exit(4); // the handler ends the process first
}

} // namespace

TEST(TrackerAtExit, ABorrowFromAnExitHandlerIsSafe)
{
    EXPECT_EXIT(exitAfterABorrowFromAnExitHandler(), testing::ExitedWithCode(0), "");
}

// As CppMicroServices, ServiceTracker<void> follows every service its filter matches,
// whatever its interfaces, and keeps each one's interface map.
TEST_F(TrackerTest, AVoidTrackerFollowsEveryServiceItsFilterMatches)
{
    ServiceTracker<void> tracker(context_, LDAPFilter("(value>=2)"));
    tracker.Open();
    add(1);
    auto two = add(2);
    context_.RegisterService<Sink>(std::make_shared<PlainSink>(), {{"value", 3}, {Constants::SERVICE_RANKING, 1}});
    EXPECT_EQ(tracker.Size(), 2u);
    const std::shared_ptr<const InterfaceMap> best = tracker.GetService();
    ASSERT_NE(best, nullptr);
    EXPECT_NE(ExtractInterface<Sink>(best), nullptr);
    EXPECT_EQ(ExtractInterface<Source>(best), nullptr);
    const InterfaceMap* borrowed = tracker.BorrowService();
    EXPECT_EQ(borrowed, best.get());
    const auto services = tracker.GetServices();
    ASSERT_EQ(services.size(), 2u);
    EXPECT_EQ(ExtractInterface<Source>(services[1])->value(), 2);
    two.Unregister();
    EXPECT_EQ(tracker.Size(), 1u);
    static_assert(std::is_same_v<ServiceTracker<void>::TrackedParamType, const InterfaceMap>);
}
