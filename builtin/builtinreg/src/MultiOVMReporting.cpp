#include <builtin/builtinreg/MultiOVMReporting.hpp>

#include <foundation/log/Channel.hpp>

namespace Velloc::builtin::builtinreg::detail {

namespace {

constexpr int SEVERITY = 1;

void logViolation(const foundation::log::Channel& channel, const std::string& builtinName,
                  const std::string& className) {
    foundation::log::logIf(channel, SEVERITY, "MultiOVMReporting", __LINE__, [&] {
        return "Non-Multi-OVM builtin " + builtinName + " on class " + className + " called.";
    });
}

} // namespace

void logMultiOvmViolation(const BuiltinVariant* variant) {
    static const foundation::log::Channel& channel = foundation::log::channel("builtinservice::MultiOVMReporting");
    if (variant != nullptr) {
        logViolation(channel, variant->orvexFunctionName, variant->dominantClass);
    }
}

void logMultiOvmReportingViolation(const std::string& builtinName, const std::string& className) {
    static const foundation::log::Channel& channel = foundation::log::channel("builtinservice::MultiOVMReporting");
    logViolation(channel, builtinName, className);
}

} // namespace Velloc::builtin::builtinreg::detail
