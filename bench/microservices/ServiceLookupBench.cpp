// Finding one service among 100 of an interface by an LDAP filter, against the floor of a
// hand-written scan over 100 property maps comparing one key; and fetching the service a
// tracker follows, against a pointer published behind an acquire load.
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkFactory.h>
#include <cppmicroservices/ServiceTracker.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

constexpr int SERVICES = 100;
constexpr int WANTED = 42;

class BenchService {
public:
    virtual ~BenchService() = default;
    virtual int index() const = 0;
};

class IndexedService final : public BenchService {
public:
    explicit IndexedService(int index) : index_(index) {}
    int index() const override { return index_; }

private:
    int index_;
};

std::string nameOf(int index)
{
    return "service-" + std::to_string(index);
}

void BM_ServiceLookupWithFilter(benchmark::State& state)
{
    auto framework = cppmicroservices::FrameworkFactory().NewFramework();
    framework.Start();
    auto context = framework.GetBundleContext();
    for (int i = 0; i < SERVICES; ++i) {
        context.RegisterService<BenchService>(std::make_shared<IndexedService>(i),
                                              {{"name", nameOf(i)}, {"index", i}, {"group", i % 4}});
    }
    const std::string filter = "(name=" + nameOf(WANTED) + ")";
    for (auto _ : state) {
        const auto references = context.GetServiceReferences<BenchService>(filter);
        benchmark::DoNotOptimize(references.front());
    }
}
BENCHMARK(BM_ServiceLookupWithFilter);

void BM_RawServiceLookup(benchmark::State& state)
{
    std::vector<std::unordered_map<std::string, std::string>> properties;
    for (int i = 0; i < SERVICES; ++i) {
        properties.push_back({{"name", nameOf(i)}, {"index", std::to_string(i)}, {"group", std::to_string(i % 4)}});
    }
    const std::string wanted = nameOf(WANTED);
    for (auto _ : state) {
        const std::unordered_map<std::string, std::string>* found = nullptr;
        for (const auto& map : properties) {
            const auto position = map.find("name");
            if (position != map.end() && position->second == wanted) {
                found = &map;
                break;
            }
        }
        benchmark::DoNotOptimize(found);
    }
}
BENCHMARK(BM_RawServiceLookup);

// A framework with 100 services, all followed by an open tracker.
struct TrackedServices {
    TrackedServices()
    {
        auto context = framework.GetBundleContext();
        for (int i = 0; i < SERVICES; ++i) {
            context.RegisterService<BenchService>(std::make_shared<IndexedService>(i));
        }
        tracker.Open();
    }

    static cppmicroservices::Framework started()
    {
        auto framework = cppmicroservices::FrameworkFactory().NewFramework();
        framework.Start();
        return framework;
    }

    cppmicroservices::Framework framework = started();
    cppmicroservices::ServiceTracker<BenchService> tracker{framework.GetBundleContext()};
};

// The call path's fetch of a tracked service while 100 are tracked: borrowed through the
// calling thread's slot.
void BM_TrackerGetService(benchmark::State& state)
{
    const TrackedServices tracked;
    const auto& tracker = tracked.tracker;
    for (auto _ : state) {
        benchmark::DoNotOptimize(tracker.BorrowService());
    }
}
BENCHMARK(BM_TrackerGetService);

// The same fetch taking a reference of its own, as GetService() does.
void BM_TrackerGetServiceShared(benchmark::State& state)
{
    const TrackedServices tracked;
    const auto& tracker = tracked.tracker;
    for (auto _ : state) {
        const auto service = tracker.GetService();
        benchmark::DoNotOptimize(service.get());
    }
}
BENCHMARK(BM_TrackerGetServiceShared);

void BM_RawAcquirePointerRead(benchmark::State& state)
{
    const IndexedService service(WANTED);
    std::atomic<const BenchService*> published{&service};
    for (auto _ : state) {
        benchmark::DoNotOptimize(published.load(std::memory_order_acquire));
    }
}
BENCHMARK(BM_RawAcquirePointerRead);

} // namespace
