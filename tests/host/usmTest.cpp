#include <foundation/usm/usm.hpp>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

namespace usm = foundation::usm;

std::size_t nextId() { return usm::Detail<usm::scope::Ovm>::getNextID(); }

TEST(InstanceStorage, FindsInsertsAndReportsWhatIsMissing) {
    const std::size_t id = nextId();
    EXPECT_NE(nextId(), id);

    EXPECT_EQ(usm::find<int>(id), nullptr);
    EXPECT_THROW(usm::findOrThrow<int>(id), usm::NoStorageTypeError);
    EXPECT_THROW(usm::insert<int>(id, std::make_unique<int>(1)), usm::NoStorageTypeError);

    usm::OvmInstance instance;
    const usm::CurrentOvm current(instance);
    EXPECT_THROW(usm::findOrThrow<int>(id), usm::DoesNotExistTypeError);
    int& stored = usm::insert<int>(id, std::make_unique<int>(7));
    EXPECT_EQ(&usm::findOrThrow<int>(id), &stored);
    EXPECT_EQ(usm::find<long>(id), nullptr) << "objects are keyed by type as well as id";
    EXPECT_EQ(&usm::insert<int>(id, std::make_unique<int>(8)), &stored) << "the first insertion stays";
    EXPECT_EQ(stored, 7);
}

TEST(InstanceStorage, GuardsNestAndInstancesStayApart) {
    const std::size_t id = nextId();
    usm::OvmInstance first;
    usm::OvmInstance second;
    {
        const usm::CurrentOvm outer(first);
        usm::insert<std::string>(id, std::make_unique<std::string>("first"));
        {
            const usm::CurrentOvm inner(second);
            EXPECT_EQ(usm::find<std::string>(id), nullptr);
            usm::insert<std::string>(id, std::make_unique<std::string>("second"));
        }
        EXPECT_EQ(usm::findOrThrow<std::string>(id), "first");
        std::thread([&] {
            EXPECT_EQ(usm::OvmInstance::current(), nullptr) << "the current instance is per thread";
            const usm::CurrentOvm onThisThread(second);
            EXPECT_EQ(usm::findOrThrow<std::string>(id), "second");
        }).join();
    }
    EXPECT_EQ(usm::OvmInstance::current(), nullptr);
}

TEST(InstanceStorage, ConcurrentFirstInsertionsShareOneObject) {
    const std::size_t id = nextId();
    usm::OvmInstance instance;
    std::vector<int*> seen(8);
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < seen.size(); ++t) {
        threads.emplace_back([&, t] {
            const usm::CurrentOvm current(instance);
            seen[t] = &usm::insert<int>(id, std::make_unique<int>(static_cast<int>(t)));
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (int* object : seen) EXPECT_EQ(object, seen[0]);
}

TEST(InstanceStorageDeathTest, FindOrFailTerminatesNamingTheCaller) {
    const std::size_t id = nextId();
    usm::OvmInstance instance;
    const usm::CurrentOvm current(instance);
    EXPECT_DEATH(usm::findOrFail<double>(id),
                 "no object of type double under id " + std::to_string(id) +
                     "\n  file: tests/host/usmTest\\.cpp\n.*TestBody");
}

} // namespace
