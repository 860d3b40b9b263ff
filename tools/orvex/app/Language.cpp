#include "Language.hpp"

#include <foundation/core/diag/terminate.hpp>
#include <lxe/LanguageCalls.hpp>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace orvex {

namespace {

const std::vector<LoadedBuiltin>* running = nullptr;

void callByName(std::string_view name, int nlhs, oxArray** plhs, int nrhs, oxArray** prhs) {
    // The builtins are sorted by name.
    const auto found = std::lower_bound(running->begin(), running->end(), name,
                                        [](const LoadedBuiltin& b, std::string_view n) { return b.builtin->name < n; });
    if (found == running->end() || found->builtin->name != name) {
        throw std::invalid_argument("Unrecognized function '" + std::string(name) + "'.");
    }
    found->builtin->invoke(nlhs, plhs, nrhs, prhs, Velloc::builtin::BuiltinFcn::NoLxe);
}

} // namespace

Language::Language(const std::vector<LoadedBuiltin>& builtins) : current_(instance_) {
    running = &builtins;
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
