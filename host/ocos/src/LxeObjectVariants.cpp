#include <ocos/LxeObjectVariants.hpp>

#include <ocos/ClassRegistry.hpp>

#include <map>
#include <mutex>

namespace ocos {

namespace {

struct VariantTable {
    std::mutex mutex;
    std::map<oxClassID, std::map<std::size_t, bool>> flagsByVariant;
};

VariantTable& variantTable() {
    static auto* const table = new VariantTable();
    return *table;
}

} // namespace

bool recordLxeObjectVariant(oxClassID classId, const LxeObjectVariant& variant) {
    if (findClass(classId) == nullptr) {
        return false;
    }
    VariantTable& table = variantTable();
    const std::lock_guard lock(table.mutex);
    table.flagsByVariant[classId][variant.variantId] = variant.flag;
    return true;
}

std::vector<LxeObjectVariant> getLxeObjectVariants(oxClassID classId) {
    VariantTable& table = variantTable();
    const std::lock_guard lock(table.mutex);
    std::vector<LxeObjectVariant> variants;
    if (const auto found = table.flagsByVariant.find(classId); found != table.flagsByVariant.end()) {
        for (const auto& [variantId, flag] : found->second) {
            variants.push_back({variantId, flag});
        }
    }
    return variants;
}

} // namespace ocos
