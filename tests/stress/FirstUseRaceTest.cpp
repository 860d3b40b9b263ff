// The process-wide tables are created on first use. This binary holds only this case, so
// that its threads are the first users: released together by a latch, each makes the
// first lookups of the log channels, the service handles (which start the builtin-services
// bundle), the scalar dimensions, the string class id, the instance ids, the class table,
// the engine-object runtime information and a first call through invoke. Every table must
// come out created once, the same for every thread.
#include <builtin/builtinreg/ElementWiseRules.hpp>
#include <builtin/builtinreg/MakeVariant.hpp>
#include <builtin/lxeobject/LxeObjectRuntimeInfo.hpp>
#include <builtin/services/ServiceHandles.hpp>
#include <builtin/types/OrvexStringType.hpp>

#include <foundation/cppmicroservices/framework.hpp>
#include <foundation/log/Channel.hpp>
#include <foundation/usm/usm.hpp>
#include <ocos/ClassRegistry.hpp>

#include <cppmicroservices/AnyMap.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <latch>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace Velloc::builtin;
using builtinreg::BuiltinVariantLists;
using builtinreg::makeVariants;
using builtinreg::noDefaultImplementation;
using builtinreg::RegisteredBuiltin;

constexpr int THREADS = 6;

double plusOf(double a, double b) { return a + b; }

// The mangled name of a class that need not exist.
std::string mangledStressClass(int t) {
    const std::string name = "T" + std::to_string(t);
    return "N6stress" + std::to_string(name.size()) + name + "E";
}

cppmicroservices::AnyMap runtimeInfoRecord(int t) {
    cppmicroservices::AnyMap fields(cppmicroservices::AnyMap::ORDERED_MAP);
    fields["oxClassName"] = std::string("stress.FirstUse");
    fields["variantId"] = t;
    cppmicroservices::AnyMap record(cppmicroservices::AnyMap::ORDERED_MAP);
    record[mangledStressClass(t)] = fields;
    return record;
}

struct Seen {
    const foundation::log::Channel* invokeChannel = nullptr;
    const foundation::log::Channel* ownChannel = nullptr;
    const void* stringSupport = nullptr;
    const void* classObjects = nullptr;
    const void* lxeObjectRegister = nullptr;
    const void* framework = nullptr;
    const std::vector<std::size_t>* scalarDims = nullptr;
    oxClassID stringClass = oxUNKNOWN_CLASS;
    oxClassID registeredClass = oxUNKNOWN_CLASS;
    std::size_t ovmId = 0;
    double sum = 0;
};

Seen firstUses(int t) {
    Seen seen;
    seen.invokeChannel = &foundation::log::channel("builtin2::invoke");
    seen.ownChannel = &foundation::log::channel("stress::firstUse");
    seen.stringSupport = builtinreg::getStringSupport().get();
    seen.classObjects = builtinreg::getOCOSRegWrapper().get();
    seen.lxeObjectRegister = builtinreg::getLxeObjectRegister().get();
    seen.framework = foundation::cppmicroservices::getFramework().get();
    seen.scalarDims = builtinreg::detail::getScalarDims();
    seen.stringClass = types::OrvexStringType::getOcosClassId();
    seen.registeredClass = ocos::registerClass("stress.FirstUse").getId();
    seen.ovmId = foundation::usm::Detail<foundation::usm::scope::Ovm>::getNextID();
    types::addLxeObjectRuntimeInfo(runtimeInfoRecord(t));
    // The first variant lists, builtin and call: cleanup, boxing and invoke create their
    // channels and checks here.
    const BuiltinVariantLists lists{makeVariants<&plusOf>("plus", {.isElementWise = true})};
    const RegisteredBuiltin plus("plus", "stress", "", lists, noDefaultImplementation("plus"));
    matrix::ArrayPtr a(matrix::createScalar<double>(t));
    matrix::ArrayPtr b(matrix::createScalar<double>(0.5));
    oxArray* args[] = {a.get(), b.get()};
    oxArray* result = nullptr;
    plus.invoke(1, &result, 2, args, BuiltinFcn::NoLxe);
    const matrix::ArrayPtr owned(result);
    seen.sum = *matrix::getTypedData<double>(result);
    return seen;
}

// The first and only case of the binary; ORVEX_ROOT is unset so that the bundle is found
// beside the libraries, as in an installation.
TEST(FirstUse, ProcessWideTablesAreCreatedOnceWhenRacedFromSeveralThreads) {
    unsetenv("ORVEX_ROOT");
    std::vector<Seen> seen(THREADS);
    std::latch start(THREADS);
    std::vector<std::thread> threads;
    for (int t = 0; t < THREADS; ++t) {
        threads.emplace_back([&seen, &start, t] {
            start.arrive_and_wait();
            seen[t] = firstUses(t);
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }

    const Seen& first = seen.front();
    EXPECT_NE(first.stringSupport, nullptr);
    EXPECT_NE(first.classObjects, nullptr);
    EXPECT_NE(first.lxeObjectRegister, nullptr);
    EXPECT_NE(first.framework, nullptr);
    ASSERT_NE(first.scalarDims, nullptr);
    EXPECT_EQ(*first.scalarDims, (std::vector<std::size_t>{1, 1}));
    EXPECT_EQ(first.stringClass, ocos::STRING_CLASS_ID);
    EXPECT_GE(first.registeredClass, ocos::FIRST_REGISTERED_CLASS_ID);
    std::set<std::size_t> ovmIds;
    for (int t = 0; t < THREADS; ++t) {
        const Seen& s = seen[t];
        EXPECT_EQ(s.invokeChannel, first.invokeChannel) << t;
        EXPECT_EQ(s.ownChannel, first.ownChannel) << t;
        EXPECT_EQ(s.stringSupport, first.stringSupport) << t;
        EXPECT_EQ(s.classObjects, first.classObjects) << t;
        EXPECT_EQ(s.lxeObjectRegister, first.lxeObjectRegister) << t;
        EXPECT_EQ(s.framework, first.framework) << t;
        EXPECT_EQ(s.scalarDims, first.scalarDims) << t;
        EXPECT_EQ(s.stringClass, first.stringClass) << t;
        EXPECT_EQ(s.registeredClass, first.registeredClass) << t;
        EXPECT_EQ(s.sum, t + 0.5) << t;
        ovmIds.insert(s.ovmId);
        EXPECT_EQ(types::getLxeObjectRuntimeInfo(mangledStressClass(t)),
                  (types::LxeObjectRuntimeInfo{"stress.FirstUse", static_cast<std::size_t>(t)}));
    }
    EXPECT_EQ(ovmIds.size(), std::size_t{THREADS}) << "instance ids are handed out once each";
}

} // namespace
