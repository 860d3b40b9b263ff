// Finding the runtime information of one class among 1000 saved (under the table's read
// lock), against a hash-map lookup and copy without a lock; and reaching the engine object
// a class-object array holds through the class-object service, against reading the
// array's payload directly.
#include <builtin/lxeobject/CppLxeObjectImpl.hpp>
#include <builtin/lxeobject/LxeObjectBridge.hpp>
#include <builtin/lxeobject/LxeObjectRuntimeInfo.hpp>

#include <matrix/oxArray.hpp>

#include <benchmark/benchmark.h>

#include <string>
#include <unordered_map>

namespace lxebench {

class Probe final : public Velloc::builtin::lxeobject::CppLxeObjectImpl<Probe> {
public:
    static inline Velloc::builtin::builtinreg::LxeObjectId lxeObjectId;
};

} // namespace lxebench

namespace {

using namespace Velloc::builtin;

constexpr int CLASSES = 1000;

std::string classKey(int n) {
    const std::string name = "Class" + std::to_string(n);
    return "N8lxebench" + std::to_string(name.size()) + name + "E";
}

types::LxeObjectRuntimeInfo infoOf(int n) { return {"lxebench.Class" + std::to_string(n), static_cast<std::size_t>(n)}; }

const std::string& savedClasses() {
    static const std::string probe = [] {
        cppmicroservices::AnyMap lxeObjects(cppmicroservices::AnyMap::UNORDERED_MAP);
        for (int n = 0; n < CLASSES; ++n) {
            const auto info = infoOf(n);
            lxeObjects[classKey(n)] = cppmicroservices::AnyMap(cppmicroservices::AnyMap::ordered_any_map{
                {"oxClassName", info.oxClassName}, {"variantId", n}});
        }
        types::addLxeObjectRuntimeInfo(lxeObjects);
        return classKey(CLASSES / 2);
    }();
    return probe;
}

void BM_RuntimeInfoLookup(benchmark::State& state) {
    const std::string& key = savedClasses();
    for (auto _ : state) {
        types::LxeObjectRuntimeInfo info = types::getLxeObjectRuntimeInfo(key);
        benchmark::DoNotOptimize(info);
    }
}
BENCHMARK(BM_RuntimeInfoLookup);

void BM_RawRuntimeInfoLookup(benchmark::State& state) {
    std::unordered_map<std::string, types::LxeObjectRuntimeInfo> table;
    for (int n = 0; n < CLASSES; ++n) {
        table.emplace(classKey(n), infoOf(n));
    }
    const std::string key = classKey(CLASSES / 2);
    for (auto _ : state) {
        types::LxeObjectRuntimeInfo info = table.find(key)->second;
        benchmark::DoNotOptimize(info);
    }
}
BENCHMARK(BM_RawRuntimeInfoLookup);

// A 1-by-1 array of a registered engine-object class holding one probe.
matrix::ArrayPtr probeArray() {
    types::addLxeObjectRuntimeInfo(cppmicroservices::AnyMap(cppmicroservices::AnyMap::ordered_any_map{
        {typeid(lxebench::Probe).name(),
         cppmicroservices::AnyMap(cppmicroservices::AnyMap::ordered_any_map{
             {"oxClassName", std::string("lxebench.Probe")}, {"variantId", 0}})}}));
    lxeobject::defineClass("lxebench.Probe");
    lxeobject::registerLxeObjectClass<lxebench::Probe>(false);
    return matrix::ArrayPtr(lxeobject::toOxArray(new lxebench::Probe(), "lxebench.Probe"));
}

void BM_ArrayToLxeObject(benchmark::State& state) {
    const matrix::ArrayPtr array = probeArray();
    for (auto _ : state) {
        Velloc::lxe::LxeObject* object = lxeobject::fromOxArray(array.get());
        benchmark::DoNotOptimize(object);
    }
}
BENCHMARK(BM_ArrayToLxeObject);

void BM_RawArrayToLxeObject(benchmark::State& state) {
    const matrix::ArrayPtr array = probeArray();
    for (auto _ : state) {
        auto* object = static_cast<Velloc::lxe::LxeObject*>(matrix::getObjectPayload(array.get()).get());
        benchmark::DoNotOptimize(object);
    }
}
BENCHMARK(BM_RawArrayToLxeObject);

} // namespace
