#include <builtin/builtinreg/InlineCResult.hpp>

namespace Velloc::builtin::builtinreg::detail {

std::complex<double>* complexDoubleResultStorage() noexcept {
    thread_local std::complex<double> storage;
    return &storage;
}

} // namespace Velloc::builtin::builtinreg::detail
