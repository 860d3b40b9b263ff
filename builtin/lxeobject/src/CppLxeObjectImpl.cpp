// Class and variant ids of engine-object classes across language instances.
#include <builtin/lxeobject/LxeObjectRegistry.hpp>

#include <foundation/core/diag/terminate.hpp>

#include <map>
#include <mutex>

namespace Velloc::builtin::types::detail {

namespace {

struct VariantCounters {
    std::mutex mutex;
    std::map<oxClassID, std::size_t> lastHandedOut;
};

// The report names the site the host's tools know it by, wherever the check sits here.
constexpr foundation::core::diag::ReportSite CLASS_ID_SITE{"CppLxeObjectImpl", 42};

VariantCounters& variantCounters() {
    static auto* const counters = new VariantCounters();
    return *counters;
}

} // namespace

std::size_t getNextCppClassVariant(oxClassID classId) {
    VariantCounters& counters = variantCounters();
    const std::lock_guard lock(counters.mutex);
    const auto [last, first] = counters.lastHandedOut.try_emplace(classId, 0);
    if (!first) {
        ++last->second;
    }
    return last->second;
}

oxClassID getLxeObjectClassID(const char*) { return oxUNKNOWN_CLASS; }

void registerLxeObject(std::pair<oxClassID, std::size_t>) {}

void assertLxeObjectHasExpectedClassID(oxClassID classId, const std::string& name) {
    if (getLxeObjectClassID(name.c_str()) != classId && fl_diag_terminate()) {
        foundation::core::diag::terminate("The oxClassID of LxeObjects should be consistent across all ovm instances.",
                                          CLASS_ID_SITE);
    }
}

} // namespace Velloc::builtin::types::detail
