#include <builtin/types/detail/HostClassQueries.hpp>

namespace Velloc::builtin::types::detail {

// No service answers these yet: both classes are unknown, which every caller treats as
// a missing service.
std::optional<oxClassID> queryStringClassId() { return std::nullopt; }

std::optional<oxClassID> queryEngineObjectClassId() { return std::nullopt; }

} // namespace Velloc::builtin::types::detail
