#include "Language.hpp"

#include <foundation/core/diag/terminate.hpp>
#include <lxe/LanguageCalls.hpp>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace orvex {

namespace {

const TrackedLibraries* running = nullptr;

// Looks the name up among the libraries tracked now, so a library loaded or unloaded since
// the language started is seen; the snapshot keeps the callee's library alive for the call.
void callByName(std::string_view name, int nlhs, oxArray** plhs, int nrhs, oxArray** prhs) {
    const auto snapshot = running->snapshot();
    const Velloc::builtin::BuiltinFcn* builtin = findBuiltin(snapshot->builtins, name);
    if (builtin == nullptr) {
        throw std::invalid_argument("Unrecognized function '" + std::string(name) + "'.");
    }
    invokeBuiltin(*builtin, nlhs, plhs, nrhs, prhs);
}

} // namespace

Language::Language(const TrackedLibraries& libraries) : current_(instance_) {
    running = &libraries;
    Velloc::lxe::setLanguageFunctionCaller(&callByName);
    if (std::getenv("FL_DIAG_TERMINATE") == nullptr) {
        foundation::core::diag::setTerminationsArmed(true);
    }
}

Language::~Language() {
    Velloc::lxe::setLanguageFunctionCaller(nullptr);
    running = nullptr;
}

} // namespace orvex
