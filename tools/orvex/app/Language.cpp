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
    const Velloc::builtin::BuiltinFcn* builtin = findBuiltin(*running, name);
    if (builtin == nullptr) {
        throw std::invalid_argument("Unrecognized function '" + std::string(name) + "'.");
    }
    invokeBuiltin(*builtin, nlhs, plhs, nrhs, prhs);
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
