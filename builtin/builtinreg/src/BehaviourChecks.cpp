#include <builtin/builtinreg/BehaviourChecks.hpp>

#include <fl/i18n.hpp>
#include <foundation/core/diag/terminate.hpp>
#include <foundation/log/Channel.hpp>
#include <foundation/usm/usm.hpp>
#include <lxe/LanguageCalls.hpp>

#include <memory>
#include <sstream>

namespace Velloc::builtin {

namespace {

using builtinreg::detail::ActiveVariants;
using builtinreg::detail::foundStack;

std::size_t activeVariantsId() {
    static const std::size_t id = foundation::usm::Detail<foundation::usm::scope::Ovm>::getNextID();
    return id;
}

// The stack of the instance current on this thread, without making one.
const ActiveVariants* findActiveVariants() {
    const foundation::usm::OvmInstance* instance = foundation::usm::OvmInstance::current();
    if (instance == nullptr) {
        return nullptr;
    }
    if (foundStack.serial == instance->serial()) {
        return foundStack.active;
    }
    return instance->find<ActiveVariants>(activeVariantsId());
}

void assertDoesNotCall(const ActiveVariants& active) {
    const BuiltinVariant* const innermost = active.innermost();
    if (innermost == nullptr || innermost->mayCallIntoOrvex) {
        return;
    }
    const BuiltinVariant& variant = *innermost;
    foundation::core::diag::terminate(
        "The " + variant.cppFunctionName + " implementation of the ORVEX builtin function " +
            variant.orvexFunctionName + " is marked as not calling into orvex, but does." +
            "Need to change builtin doxygen from \"vlDoesNotCallORVEX true\" to \"vlDoesNotCallORVEX false\"\n",
        "CallsORVEXCheck", __LINE__,
        "void {anonymous}::vlDoesNotCallORVEXAssertion(const std::stack<const Velloc::builtin::BuiltinVariant*>&, "
        "const BuiltinVariant*)");
}


void logExecution(const char* heading, const BuiltinVariant* variant, int line) {
    foundation::log::logIf(builtinreg::detail::executionChannel(), 1, "LogBuiltinVariantExecution", line, [&] {
        std::ostringstream text;
        text << heading;
        if (variant != nullptr) {
            text << *variant;
        }
        return text.str();
    });
}

} // namespace

void vlDoesNotCallORVEXAssertion() {
    if (const ActiveVariants* active = findActiveVariants()) {
        assertDoesNotCall(*active);
    }
}

namespace builtinreg {

namespace detail {

[[gnu::tls_model("initial-exec")]] constinit thread_local FoundStack foundStack;

ActiveVariants& noteActiveVariants(foundation::usm::OvmInstance* instance) {
    if (instance == nullptr) {
        thread_local ActiveVariants outsideInstances;
        return outsideInstances;
    }
    // The host runs the check on each call into the language once a variant has been
    // pushed; every push in an instance passes here first on its thread.
    static const bool checkInstalled = (lxe::setLanguageEntryCheck(&vlDoesNotCallORVEXAssertion), true);
    (void)checkInstalled;
    ActiveVariants* active = instance->find<ActiveVariants>(activeVariantsId());
    if (active == nullptr) {
        active = &instance->insert(activeVariantsId(), std::make_unique<ActiveVariants>());
    }
    foundStack = {instance->serial(), active};
    return *active;
}

void ActiveVariants::grow() {
    const std::size_t depth = static_cast<std::size_t>(top_ - storage_.data());
    storage_.resize(storage_.size() * 2);
    top_ = storage_.data() + depth;
    limit_ = storage_.data() + storage_.size();
}

const foundation::log::Channel& executionChannel() {
    static const foundation::log::Channel& channel = foundation::log::channel("builtin2::invoke");
    return channel;
}

bool AssertIfWarnings::operator()(const fl::ustring& warning) const {
    foundation::core::diag::terminate("builtin: \"" + variant_.orvexFunctionName + "\" function: \"" +
                                          variant_.cppFunctionName +
                                          "\" claims no warnings but generated this warning:\n" +
                                          fl::i18n::to_string(warning),
                                      "CaptureWarnings", __LINE__,
                                      "bool Velloc::builtin::builtinreg::detail::AssertIfWarnings::operator()(const "
                                      "fl::ustring&) const");
}

LogBuiltinVariantExecution_::LogBuiltinVariantExecution_(const BuiltinVariant* variant) : variant_(variant) {
    logExecution("Executing: ", variant_, __LINE__);
}

LogBuiltinVariantExecution_::~LogBuiltinVariantExecution_() {
    logExecution("Execution complete: ", variant_, __LINE__);
}

} // namespace detail

} // namespace builtinreg

} // namespace Velloc::builtin
