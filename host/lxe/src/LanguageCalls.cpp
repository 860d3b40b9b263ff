#include <lxe/LanguageCalls.hpp>

#include <atomic>
#include <stdexcept>
#include <string>

namespace Velloc::lxe {
namespace {

std::atomic<LanguageFunctionCaller> installedCaller{nullptr};
std::atomic<LanguageEntryCheck> installedCheck{nullptr};

} // namespace

LanguageFunctionCaller setLanguageFunctionCaller(LanguageFunctionCaller caller) noexcept {
    return installedCaller.exchange(caller);
}

LanguageEntryCheck setLanguageEntryCheck(LanguageEntryCheck check) noexcept { return installedCheck.exchange(check); }

void callLanguageFunction(std::string_view name, int nlhs, oxArray** plhs, int nrhs, oxArray** prhs) {
    if (const LanguageEntryCheck check = installedCheck.load()) {
        check();
    }
    const LanguageFunctionCaller caller = installedCaller.load();
    if (caller == nullptr) {
        throw std::logic_error("cannot call " + std::string(name) + ": no language is running in this process");
    }
    caller(name, nlhs, plhs, nrhs, prhs);
}

} // namespace Velloc::lxe
