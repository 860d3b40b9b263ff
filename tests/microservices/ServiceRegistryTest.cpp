#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Constants.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkFactory.h>
#include <cppmicroservices/LDAPFilter.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

using namespace cppmicroservices;
using testing::ElementsAre;

class Declared {
public:
    virtual ~Declared() = default;
};
CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(Declared, "org.builtin2.Declared/1.0")

namespace {

class Counter {
public:
    virtual ~Counter() = default;
    virtual int value() const = 0;
};

class Named {
public:
    virtual ~Named() = default;
    virtual std::string name() const = 0;
};

class FixedCounter final : public Counter, public Named {
public:
    explicit FixedCounter(int value) : value_(value) {}
    int value() const override { return value_; }
    std::string name() const override { return "counter " + std::to_string(value_); }

private:
    int value_;
};

class ServiceRegistryTest : public testing::Test {
protected:
    void SetUp() override
    {
        framework_.Start();
        context_ = framework_.GetBundleContext();
    }

    ServiceRegistration<Counter> add(int value, const ServiceProperties& properties = {})
    {
        return context_.RegisterService<Counter>(std::make_shared<FixedCounter>(value), properties);
    }

    std::vector<int> values(const std::string& filter = {}) const
    {
        std::vector<int> found;
        for (const auto& reference : context_.GetServiceReferences<Counter>(filter)) {
            found.push_back(context_.GetService(reference)->value());
        }
        return found;
    }

    Framework framework_ = FrameworkFactory().NewFramework();
    BundleContext context_;
};

} // namespace

TEST_F(ServiceRegistryTest, LookupOrderIsRankingThenRegistrationOrder)
{
    add(1);
    add(2, {{Constants::SERVICE_RANKING, 5}});
    add(3, {{Constants::SERVICE_RANKING, 5}});
    add(4, {{Constants::SERVICE_RANKING, -1}});
    EXPECT_THAT(values(), ElementsAre(2, 3, 1, 4));
    EXPECT_EQ(context_.GetService(context_.GetServiceReference<Counter>())->value(), 2);

    auto references = context_.GetServiceReferences<Counter>();
    std::sort(references.begin(), references.end());
    EXPECT_EQ(context_.GetService(references.front())->value(), 4);
    EXPECT_EQ(context_.GetService(references.back())->value(), 2);

    const auto first = context_.GetServiceReferences<Counter>().back();
    EXPECT_EQ(any_cast<long>(first.GetProperty(Constants::SERVICE_ID)), 4);
    EXPECT_EQ(any_cast<int>(first.GetProperty("SERVICE.RANKING")), -1);
    EXPECT_EQ(any_cast<std::string>(first.GetProperty(Constants::SERVICE_SCOPE)), Constants::SCOPE_SINGLETON);
    EXPECT_THAT(any_cast<std::vector<std::string>>(first.GetProperty(Constants::OBJECTCLASS)),
                ElementsAre(us_service_interface_iid<Counter>()));
    EXPECT_EQ(us_service_interface_iid<Counter>(), "(anonymous namespace)::Counter");
    EXPECT_EQ(first.GetInterfaceId(), us_service_interface_iid<Counter>());
    EXPECT_EQ(first.GetBundle(), framework_);
}

TEST_F(ServiceRegistryTest, FiltersSelectByTheCallersProperties)
{
    for (int i = 0; i < 10; ++i) {
        add(i, {{"name", "svc" + std::to_string(i)}, {"index", i}});
    }
    EXPECT_THAT(values("(name=svc3)"), ElementsAre(3));
    EXPECT_THAT(values("(Index>=7)"), ElementsAre(7, 8, 9));
    EXPECT_THAT(values("(&(index<=2)(!(name=svc1)))"), ElementsAre(0, 2));
    EXPECT_TRUE(values("(name=svc10)").empty());
    EXPECT_THROW(values("(name=svc3"), std::invalid_argument);

    const auto untyped = context_.GetServiceReferences("", "(name=svc4)");
    ASSERT_EQ(untyped.size(), 1u);
    EXPECT_EQ(untyped.front().GetInterfaceId(), us_service_interface_iid<Counter>());
    EXPECT_TRUE(LDAPFilter("(index=4)").Match(untyped.front()));
    EXPECT_TRUE(context_.GetServiceReferences("no::Such", "").empty());
    EXPECT_FALSE(context_.GetServiceReference<Named>());
}

TEST_F(ServiceRegistryTest, OneRegistrationUnderSeveralInterfaces)
{
    const auto impl = std::make_shared<FixedCounter>(7);
    auto registration = context_.RegisterService<Counter, Named>(impl, {{"kind", std::string("both")}});

    const ServiceReference<Named> named = context_.GetServiceReference<Named>();
    ASSERT_TRUE(named);
    EXPECT_EQ(context_.GetService(named)->name(), "counter 7");
    EXPECT_EQ(registration.GetReference<Named>(), named);

    const ServiceReference<Counter> counter(named);
    ASSERT_TRUE(counter);
    EXPECT_EQ(context_.GetServiceObjects(counter).GetService().get(), static_cast<Counter*>(impl.get()));
    const ServiceReference<std::string> unrelated(named);
    EXPECT_FALSE(unrelated);

    const auto map = context_.GetService(ServiceReferenceU(named));
    EXPECT_EQ(map->size(), 2u);
    EXPECT_EQ(ExtractInterface<Named>(map).get(), static_cast<Named*>(impl.get()));
}

TEST_F(ServiceRegistryTest, ALeadingGlobalScopeNamesTheSameInterface)
{
    const auto impl = std::make_shared<FixedCounter>(3);
    auto registration = context_.RegisterService(
        std::make_shared<const InterfaceMap>(InterfaceMap{{"::Counter", std::static_pointer_cast<Counter>(impl)}}));
    for (const char* name : {"::Counter", "Counter"}) {
        const auto reference = context_.GetServiceReference(name);
        ASSERT_TRUE(reference) << name;
        EXPECT_EQ(reference.GetInterfaceId(), "Counter") << name;
        EXPECT_EQ(ExtractInterface(context_.GetService(reference), name), impl) << name;
    }
}

TEST_F(ServiceRegistryTest, ADeclaredInterfaceIsRegisteredUnderItsDeclaredName)
{
    class Impl final : public Declared {};
    auto registration = context_.RegisterService<Declared>(std::make_shared<Impl>());
    EXPECT_TRUE(context_.GetServiceReference("org.builtin2.Declared/1.0"));
    EXPECT_EQ(context_.GetServiceReference<Declared>().GetInterfaceId(), "org.builtin2.Declared/1.0");
}

// As CppMicroServices: service objects need a valid reference.
TEST_F(ServiceRegistryTest, ServiceObjectsOfAnInvalidReferenceAreRefused)
{
    EXPECT_THROW(context_.GetServiceObjects(ServiceReference<Counter>()), std::invalid_argument);
    EXPECT_THROW(context_.GetServiceObjects(ServiceReferenceU()), std::invalid_argument);
    add(1);
    EXPECT_EQ(context_.GetServiceObjects(context_.GetServiceReference<Counter>()).GetService()->value(), 1);
}

TEST_F(ServiceRegistryTest, UnregisterRemovesTheServiceOnce)
{
    std::weak_ptr<FixedCounter> watched;
    ServiceRegistration<Counter> registration;
    {
        const auto impl = std::make_shared<FixedCounter>(1);
        watched = impl;
        registration = context_.RegisterService<Counter>(impl);
    }
    const auto reference = registration.GetReference();
    const auto objects = context_.GetServiceObjects(reference);
    ASSERT_NE(objects.GetService(), nullptr);

    registration.Unregister();
    EXPECT_TRUE(values().empty());
    EXPECT_EQ(objects.GetService(), nullptr);
    EXPECT_EQ(context_.GetService(reference), nullptr);
    EXPECT_FALSE(reference.GetBundle());
    EXPECT_TRUE(watched.expired());
    EXPECT_THROW(registration.Unregister(), std::logic_error);
    EXPECT_THROW(registration.GetReference(), std::logic_error);
    EXPECT_THROW(ServiceRegistration<Counter>().Unregister(), std::logic_error);
    EXPECT_THROW(context_.GetService(ServiceReference<Counter>()), std::invalid_argument);
}

TEST_F(ServiceRegistryTest, SetPropertiesReordersAndRefilters)
{
    add(1);
    auto second = add(2, {{"colour", std::string("red")}});
    EXPECT_THAT(values(), ElementsAre(1, 2));

    second.SetProperties({{Constants::SERVICE_RANKING, 3}, {"colour", std::string("blue")}, {Constants::SERVICE_ID, 99L}});
    EXPECT_THAT(values(), ElementsAre(2, 1));
    EXPECT_THAT(values("(colour=blue)"), ElementsAre(2));
    EXPECT_TRUE(values("(colour=red)").empty());
    EXPECT_EQ(any_cast<long>(second.GetReference().GetProperty(Constants::SERVICE_ID)), 2);

    EXPECT_THROW(add(3, {{Constants::SERVICE_RANKING, std::string("high")}}), std::invalid_argument);
    EXPECT_THROW(add(3, {{Constants::SERVICE_RANKING, 1LL << 40}}), std::invalid_argument);
    EXPECT_THROW(context_.RegisterService(std::make_shared<InterfaceMap>()), std::invalid_argument);
}

TEST(FrameworkLifecycle, ContextsOfAStoppedFrameworkThrowOneMessage)
{
    Framework framework = FrameworkFactory().NewFramework({{"answer", 42}});
    EXPECT_EQ(framework.GetState(), Bundle::STATE_INSTALLED);
    EXPECT_FALSE(framework.GetBundleContext());
    framework.Init();
    EXPECT_EQ(framework.GetState(), Bundle::STATE_STARTING);
    framework.Start();
    EXPECT_EQ(framework.GetState(), Bundle::STATE_ACTIVE);
    EXPECT_EQ(framework.GetBundleId(), 0);
    EXPECT_EQ(framework.GetSymbolicName(), Constants::SYSTEM_BUNDLE_SYMBOLICNAME);

    BundleContext context = framework.GetBundleContext();
    EXPECT_EQ(any_cast<int>(context.GetProperty("answer")), 42);
    auto registration = context.RegisterService<Counter>(std::make_shared<FixedCounter>(1));
    const auto objects = context.GetServiceObjects(registration.GetReference());

    framework.Stop();
    EXPECT_EQ(framework.WaitForStop(std::chrono::milliseconds(0)).GetType(), FrameworkEvent::FRAMEWORK_STOPPED);
    EXPECT_EQ(framework.GetState(), Bundle::STATE_RESOLVED);
    EXPECT_FALSE(context);

    const auto expectInvalid = [](const auto& call) {
        try {
            call();
            ADD_FAILURE() << "a stopped context still works";
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "The bundle context is no longer valid");
        }
    };
    expectInvalid([&] { context.GetServiceReferences<Counter>(); });
    expectInvalid([&] { context.GetServiceReference<Counter>(); });
    expectInvalid([&] { context.RegisterService<Counter>(std::make_shared<FixedCounter>(2)); });
    expectInvalid([&] { context.InstallBundles("/"); });
    expectInvalid([&] { context.GetBundles(); });
    expectInvalid([&] { context.GetProperty("answer"); });
    expectInvalid([&] { objects.GetService(); });
    expectInvalid([] { BundleContext().GetBundle(); });
    EXPECT_THROW(registration.Unregister(), std::logic_error);

    framework.Start();
    EXPECT_TRUE(framework.GetBundleContext().GetServiceReferences<Counter>().empty());
    EXPECT_EQ(Framework(framework.GetBundleContext().GetBundle(0)), framework);
    EXPECT_THROW(Framework{Bundle()}, std::invalid_argument);
}

// As CppMicroServices: the type values, and an error for a framework that never ran.
TEST(FrameworkLifecycle, WaitForStopOfAFrameworkNeverStartedReportsAnError)
{
    EXPECT_EQ(FrameworkEvent::FRAMEWORK_STARTED, 1u);
    EXPECT_EQ(FrameworkEvent::FRAMEWORK_ERROR, 2u);
    EXPECT_EQ(FrameworkEvent::FRAMEWORK_WARNING, 16u);
    EXPECT_EQ(FrameworkEvent::FRAMEWORK_INFO, 32u);
    EXPECT_EQ(FrameworkEvent::FRAMEWORK_STOPPED, 64u);
    EXPECT_EQ(FrameworkEvent::FRAMEWORK_STOPPED_UPDATE, 128u);
    EXPECT_EQ(FrameworkEvent::FRAMEWORK_STOPPED_BOOTCLASSPATH_MODIFIED, 256u);
    EXPECT_EQ(FrameworkEvent::FRAMEWORK_WAIT_TIMEDOUT, 512u);

    Framework framework = FrameworkFactory().NewFramework();
    const FrameworkEvent never = framework.WaitForStop(std::chrono::milliseconds(0));
    EXPECT_TRUE(never);
    EXPECT_EQ(never.GetType(), FrameworkEvent::FRAMEWORK_ERROR);
    EXPECT_EQ(never.GetBundle(), framework);
    EXPECT_FALSE(FrameworkEvent());
    EXPECT_EQ(FrameworkEvent().GetType(), FrameworkEvent::FRAMEWORK_ERROR);

    framework.Start();
    framework.Stop();
    EXPECT_EQ(framework.WaitForStop(std::chrono::milliseconds(0)).GetType(), FrameworkEvent::FRAMEWORK_STOPPED);
}

TEST(FrameworkLifecycle, WaitForStopTimesOutWhileRunningAndWakesOnStop)
{
    Framework framework = FrameworkFactory().NewFramework();
    framework.Start();
    EXPECT_EQ(framework.WaitForStop(std::chrono::milliseconds(5)).GetType(), FrameworkEvent::FRAMEWORK_WAIT_TIMEDOUT);
    std::thread stopper([framework]() mutable { framework.Stop(); });
    EXPECT_EQ(framework.WaitForStop(std::chrono::milliseconds(0)).GetType(), FrameworkEvent::FRAMEWORK_STOPPED);
    stopper.join();
}

TEST(ServiceRegistryConcurrency, RegisterLookUpAndUnregisterFromSeveralThreads)
{
    Framework framework = FrameworkFactory().NewFramework();
    framework.Start();
    BundleContext context = framework.GetBundleContext();
    constexpr int THREADS = 4;
    constexpr int OPERATIONS = 1000;
    std::atomic<int> misses = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < THREADS; ++t) {
        threads.emplace_back([&context, &misses, t] {
            std::vector<ServiceRegistration<Counter>> kept;
            for (int i = 0; i < OPERATIONS; ++i) {
                auto registration = context.RegisterService<Counter>(std::make_shared<FixedCounter>(i),
                                                                     {{"thread", t}, {"op", i}});
                const auto found = context.GetServiceReferences<Counter>(
                    "(&(thread=" + std::to_string(t) + ")(op=" + std::to_string(i) + "))");
                if (found.size() != 1 || context.GetService(found.front())->value() != i) {
                    ++misses;
                }
                if (i % 2 == 0) {
                    registration.Unregister();
                } else {
                    kept.push_back(registration);
                }
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(misses, 0);
    EXPECT_EQ(context.GetServiceReferences<Counter>().size(), std::size_t{THREADS * OPERATIONS / 2});
    EXPECT_EQ(context.GetServiceReferences<Counter>("(thread=2)").size(), std::size_t{OPERATIONS / 2});
}
