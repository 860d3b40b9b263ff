#include <builtin/builtinreg/CallContext.hpp>

#include <fl/i18n.hpp>
#include <lxe/LanguageCalls.hpp>

#include <vector>

namespace Velloc::builtin::builtinreg {

void CallContext::warning(const std::u16string& message) {
    environment_.AddWarningMessage(message);
    raisedWarnings_ = true;
}

void CallContext::warning(std::string_view message) {
    warning(fl::i18n::utf8_to_ustring(message));
}

oxArray* CallContext::callOrvex(std::string_view name, std::initializer_list<oxArray*> arguments) {
    std::vector<oxArray*> inputs(arguments);
    oxArray* result = nullptr;
    lxe::callLanguageFunction(name, 1, &result, static_cast<int>(inputs.size()), inputs.data());
    return result;
}

namespace detail {

lxe::ILxeBuiltinEnvironment& discardingEnvironment() noexcept {
    class Discarding final : public lxe::ILxeBuiltinEnvironment {
    public:
        void AddWarningMessage(const std::u16string&) override {}
        lxe::ILxeBuiltinAccessors* GetLxeBuiltinAccessors() override { return nullptr; }
    };
    static Discarding environment;
    return environment;
}

} // namespace detail

} // namespace Velloc::builtin::builtinreg
