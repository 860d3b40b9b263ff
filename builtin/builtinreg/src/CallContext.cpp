#include <builtin/builtinreg/CallContext.hpp>

#include <fl/i18n.hpp>

namespace Velloc::builtin::builtinreg {

void CallContext::warning(const std::u16string& message) {
    environment_.AddWarningMessage(message);
    raisedWarnings_ = true;
}

void CallContext::warning(std::string_view message) {
    warning(fl::i18n::utf8_to_ustring(message));
}

} // namespace Velloc::builtin::builtinreg
