#include "LxeObjectRegistrations.hpp"

#include <map>
#include <mutex>
#include <utility>

namespace Velloc::builtin::builtinreg::detail {

namespace {

struct Indexing {
    bool flag;
    Velloc::lxe::LxeObjectDefaultIndexingMethods methods;
};

struct Registered {
    // The first C++ class that registered anything of the variant; empty while only
    // registrations by name did.
    std::string cppClass;
    std::optional<bool> flag;
    std::optional<Indexing> indexing;
};

struct Ledger {
    std::mutex mutex;
    std::map<std::pair<oxClassID, std::size_t>, Registered> byVariant;
};

Ledger& ledger() {
    static auto* const table = new Ledger();
    return *table;
}

std::string registrant(const std::string& cppClass) {
    return cppClass.empty() ? "by class name" : "for C++ class " + cppClass;
}

std::string variantText(const RegistrationClaim& claim) {
    return "class '" + claim.className + "' variant " + std::to_string(claim.variantId);
}

std::string flagText(bool flag) { return flag ? "true" : "false"; }

// Another C++ class than the one the variant belongs to.
std::optional<std::string> otherClass(const Registered& registered, const RegistrationClaim& claim) {
    if (registered.cppClass.empty() || claim.cppClass.empty() || registered.cppClass == claim.cppClass) {
        return std::nullopt;
    }
    return variantText(claim) + " is registered for C++ class " + registered.cppClass +
           "; C++ class " + claim.cppClass + " cannot be registered under the same class and variant id";
}

template <class Check>
std::optional<std::string> claim(const RegistrationClaim& claim, Check&& checkAndRecord) {
    Ledger& table = ledger();
    const std::lock_guard lock(table.mutex);
    Registered& registered = table.byVariant[{claim.classId, claim.variantId}];
    if (auto conflict = otherClass(registered, claim)) {
        return conflict;
    }
    if (auto conflict = checkAndRecord(registered)) {
        return conflict;
    }
    if (registered.cppClass.empty()) {
        registered.cppClass = claim.cppClass;
    }
    return std::nullopt;
}

} // namespace

std::optional<std::string> claimVariant(const RegistrationClaim& variant, bool flag) {
    return claim(variant, [&](Registered& registered) -> std::optional<std::string> {
        if (registered.flag && *registered.flag != flag) {
            return variantText(variant) + " is registered " + registrant(registered.cppClass) + " with flag " +
                   flagText(*registered.flag) + "; the registration " + registrant(variant.cppClass) +
                   " with flag " + flagText(flag) + " is refused";
        }
        registered.flag = flag;
        return std::nullopt;
    });
}

std::optional<std::string> claimDefaultIndexing(const RegistrationClaim& variant, bool flag,
                                                const Velloc::lxe::LxeObjectDefaultIndexingMethods& methods) {
    return claim(variant, [&](Registered& registered) -> std::optional<std::string> {
        if (registered.indexing && (registered.indexing->flag != flag || !(registered.indexing->methods == methods))) {
            return "the default indexing methods of " + variantText(variant) + " are registered " +
                   registrant(registered.cppClass) + "; other methods, registered " + registrant(variant.cppClass) +
                   ", are refused";
        }
        registered.indexing = Indexing{flag, methods};
        return std::nullopt;
    });
}

} // namespace Velloc::builtin::builtinreg::detail
