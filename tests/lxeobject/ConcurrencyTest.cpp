// Lookups from several threads while a module starts and registers its classes.
#include "LxeBufferModule.hpp"
#include "TestRecords.hpp"

#include <lxebuffer/Buffer.hpp>

#include <builtin/lxeobject/LxeObjectBridge.hpp>
#include <builtin/lxeobject/LxeObjectRuntimeInfo.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace Velloc::builtin;
using test_records::fields;
using test_records::mangled;
using test_records::record;

TEST(LxeObjectConcurrency, LookupsStayConsistentWhileAModuleRegisters) {
    const std::string stable = mangled("conctest", "Stable");
    types::addLxeObjectRuntimeInfo(record({{stable, fields("conctest.Stable", 1)}}));
    const std::string buffer = typeid(lxebuffer::Buffer).name();

    std::atomic<bool> done{false};
    std::atomic<int> wrongAnswers{0};
    std::atomic<long> lookups{0};
    const auto reader = [&] {
        while (!done.load()) {
            if (!(types::getLxeObjectRuntimeInfo(stable) == types::LxeObjectRuntimeInfo{"conctest.Stable", 1})) {
                ++wrongAnswers;
            }
            try {
                if (!(types::getLxeObjectRuntimeInfo(buffer) == types::LxeObjectRuntimeInfo{"lxebuffer.Buffer", 0})) {
                    ++wrongAnswers;
                }
            } catch (const types::GetLxeObjectRuntimeInfoError&) {
                // Not saved yet.
            }
            const oxClassID id = builtinreg::getClassIdByName("lxebuffer.Buffer");
            if (const auto type = builtinreg::getLxeObjectType(id, 0); type && type->classId != id) {
                ++wrongAnswers;
            }
            ++lookups;
        }
    };
    std::vector<std::thread> readers;
    for (int i = 0; i < 4; ++i) {
        readers.emplace_back(reader);
    }

    startLxeBufferModule();
    // A second module's worth of records, saved in batches.
    for (int batch = 0; batch < 20; ++batch) {
        cppmicroservices::AnyMap lxeObjects(cppmicroservices::AnyMap::ORDERED_MAP);
        for (int n = 0; n < 50; ++n) {
            lxeObjects[mangled("conctest", "C" + std::to_string(batch * 50 + n))] = fields("conctest.C", n);
        }
        EXPECT_EQ(types::addLxeObjectRuntimeInfo(lxeObjects).size(), 50U);
    }
    done = true;
    for (auto& thread : readers) {
        thread.join();
    }

    EXPECT_EQ(wrongAnswers.load(), 0);
    EXPECT_GT(lookups.load(), 0);
    EXPECT_EQ(types::getLxeObjectRuntimeInfo(mangled("conctest", "C999")).variantId, 49U);
    EXPECT_NE(builtinreg::getLxeObjectType(builtinreg::getClassIdByName("lxebuffer.Buffer"), 0), nullptr);
}

} // namespace
