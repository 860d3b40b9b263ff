#include <builtin/builtinreg/BehaviourChecks.hpp>

#include <fl/i18n.hpp>
#include <foundation/core/diag/terminate.hpp>
#include <foundation/log/Channel.hpp>
#include <foundation/usm/usm.hpp>
#include <lxe/LanguageCalls.hpp>

#include <deque>
#include <memory>
#include <sstream>
#include <stack>

namespace Velloc::builtin {

namespace {

using ActiveVariants = std::stack<const BuiltinVariant*, std::deque<const BuiltinVariant*>>;

std::size_t activeVariantsId() {
    static const std::size_t id = foundation::usm::Detail<foundation::usm::scope::Ovm>::getNextID();
    return id;
}

// The active-variant stack of the instance current on this thread, as this thread last
// found it: an instance keeps its stack until it is destroyed, and its serial number is
// never reused, so an armed call looks the stack up once per thread and instance.
struct FoundStack {
    std::uint64_t serial = 0;
    ActiveVariants* active = nullptr;
};
[[gnu::tls_model("initial-exec")]] constinit thread_local FoundStack foundStack;

ActiveVariants* findActiveVariants(const foundation::usm::OvmInstance& instance) {
    if (foundStack.active == nullptr || foundStack.serial != instance.serial()) {
        ActiveVariants* active = instance.find<ActiveVariants>(activeVariantsId());
        if (active == nullptr) {
            return nullptr;
        }
        foundStack = {instance.serial(), active};
    }
    return foundStack.active;
}

ActiveVariants* findActiveVariants() {
    const foundation::usm::OvmInstance* instance = foundation::usm::OvmInstance::current();
    return instance != nullptr ? findActiveVariants(*instance) : nullptr;
}

void assertDoesNotCall(const ActiveVariants& active) {
    if (active.empty() || active.top() == nullptr || active.top()->mayCallIntoOrvex) {
        return;
    }
    const BuiltinVariant& variant = *active.top();
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

CallsORVEXCheckAsserted::CallsORVEXCheckAsserted(const BuiltinVariant* variant) : pushed_(false) {
    // The host runs the check on each call into the language once a guard has existed.
    static const bool checkInstalled = (lxe::setLanguageEntryCheck(&vlDoesNotCallORVEXAssertion), true);
    (void)checkInstalled;
    ActiveVariants* active = findActiveVariants();
    if (active == nullptr) {
        if (foundation::usm::OvmInstance::current() == nullptr) {
            return; // outside a language instance nothing is checked
        }
        active = &foundation::usm::insert(activeVariantsId(), std::make_unique<ActiveVariants>());
    }
    active->push(variant);
    pushed_ = true;
}

CallsORVEXCheckAsserted::~CallsORVEXCheckAsserted() {
    if (pushed_) {
        ActiveVariants* active = findActiveVariants();
        (active != nullptr ? *active : foundation::usm::findOrFail<ActiveVariants>(activeVariantsId())).pop();
    }
}

namespace detail {

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
