// The check that the variant id compiled into an engine-object class agrees with its
// manifest.
#include <builtin/lxeobject/LxeObjectRegistry.hpp>

#include <foundation/core/demangle.hpp>
#include <foundation/core/diag/terminate.hpp>

#include <mutex>
#include <set>
#include <typeindex>
#include <unordered_map>

namespace Velloc::builtin::builtinreg::detail {

namespace {

// The report names the site the host's tools know it by, wherever the check sits here.
constexpr foundation::core::diag::ReportSite MANIFEST_MISMATCH_SITE{"LxeObjectTypeTraitsImpl", 37};

struct CheckedVariantIds {
    std::mutex mutex;
    std::unordered_map<std::type_index, std::set<std::size_t>> byClass;
};

CheckedVariantIds& checkedVariantIds() {
    static auto* const checked = new CheckedVariantIds();
    return *checked;
}

// True the first time the pair is seen.
bool markChecked(const std::type_info& cppClass, std::size_t variantId) {
    CheckedVariantIds& checked = checkedVariantIds();
    const std::lock_guard lock(checked.mutex);
    return checked.byClass[std::type_index(cppClass)].insert(variantId).second;
}

} // namespace

void assertLxeVariantIdMatches(std::size_t variantId, const std::function<std::size_t()>& manifestVariantId,
                               const std::type_info& cppClass) {
    if (!markChecked(cppClass, variantId)) {
        return;
    }
    // Read unlocked: the manifest reader takes the runtime-information lock.
    const std::size_t declared = manifestVariantId();
    if (declared == variantId) {
        return;
    }
    foundation::core::diag::terminate("Error LxeObject " + foundation::core::demangle_typeid_name(cppClass.name()) +
                                          " has different variant id between manifest.json(" +
                                          std::to_string(declared) + ") and microservice_impl.cpp(" +
                                          std::to_string(variantId) + ").",
                                      MANIFEST_MISMATCH_SITE);
}

} // namespace Velloc::builtin::builtinreg::detail
