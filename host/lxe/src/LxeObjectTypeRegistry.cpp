#include <lxe/LxeObjectTypeRegistry.hpp>

#include <ocos/ClassRegistry.hpp>
#include <ocos/LxeObjectVariants.hpp>

#include <array>
#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>
#include <utility>

namespace Velloc::lxe {

namespace {

using Record = std::shared_ptr<const LxeObjectType>;

// Lookups run on every conversion of an array into an object, registrations once per
// module start: readers share the lock, and a registration replaces a record instead of
// changing one a reader may hold.
struct TypeTable {
    std::shared_mutex mutex;
    std::unordered_map<oxClassID, std::map<std::size_t, Record>> byClass;
    // One bit per class id, set once the class has a record and never cleared, so that the
    // test made on every conversion of an array into an object takes no lock.
    std::array<std::atomic<std::uint64_t>, (matrix::MAX_CLASS_ID + 1) / 64> objectClasses{};
};

TypeTable& typeTable() {
    static auto* const table = new TypeTable();
    return *table;
}

bool mayHoldLxeObjects(oxClassID classId) {
    return classId != ocos::STRING_CLASS_ID && ocos::findClass(classId) != nullptr;
}

template <class Change>
bool update(oxClassID classId, std::size_t variantId, Change&& change) {
    if (!mayHoldLxeObjects(classId)) {
        return false;
    }
    TypeTable& table = typeTable();
    const std::unique_lock lock(table.mutex);
    Record& stored = table.byClass[classId][variantId];
    auto replacement = stored ? std::make_shared<LxeObjectType>(*stored) : std::make_shared<LxeObjectType>();
    replacement->classId = classId;
    replacement->variantId = variantId;
    change(*replacement);
    stored = std::move(replacement);
    const auto id = static_cast<std::size_t>(classId);
    table.objectClasses[id / 64].fetch_or(std::uint64_t{1} << (id % 64), std::memory_order_release);
    return true;
}

} // namespace

bool registerLxeObjectType(oxClassID classId, std::size_t variantId, bool flag) {
    // The class-object system keeps its own list of a class's variants.
    return mayHoldLxeObjects(classId) && ocos::recordLxeObjectVariant(classId, {variantId, flag}) &&
           update(classId, variantId, [flag](LxeObjectType& type) { type.flag = flag; });
}

bool registerDefaultIndexingMethods(oxClassID classId, std::size_t variantId, bool flag,
                                    const LxeObjectDefaultIndexingMethods& methods) {
    return update(classId, variantId, [&](LxeObjectType& type) {
        type.defaultIndexing = methods;
        type.defaultIndexingFlag = flag;
    });
}

bool addParenReferenceVariant(oxClassID classId, std::size_t variantId, OptimizedIndexingVariant variant) {
    return update(classId, variantId,
                  [&](LxeObjectType& type) { type.parenReferenceVariants.push_back(std::move(variant)); });
}

bool addParenAssignVariant(oxClassID classId, std::size_t variantId, OptimizedIndexingVariant variant) {
    return update(classId, variantId,
                  [&](LxeObjectType& type) { type.parenAssignVariants.push_back(std::move(variant)); });
}

std::shared_ptr<const LxeObjectType> findLxeObjectType(oxClassID classId, std::size_t variantId) {
    TypeTable& table = typeTable();
    const std::shared_lock lock(table.mutex);
    const auto byClass = table.byClass.find(classId);
    if (byClass == table.byClass.end()) {
        return nullptr;
    }
    const auto found = byClass->second.find(variantId);
    return found != byClass->second.end() ? found->second : nullptr;
}

bool isLxeObjectClass(oxClassID classId) {
    if (classId == ocos::LXE_OBJECT_CLASS_ID) {
        return true;
    }
    if (classId < 0 || classId > matrix::MAX_CLASS_ID) {
        return false;
    }
    const auto id = static_cast<std::size_t>(classId);
    return (typeTable().objectClasses[id / 64].load(std::memory_order_acquire) >> (id % 64) & 1U) != 0;
}

} // namespace Velloc::lxe
