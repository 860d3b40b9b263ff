// Severities of the framework's log records. Channels are switched as a whole, so the
// severity only labels a record for whoever reads the log.
#pragma once

namespace Velloc::builtin {

inline constexpr int LOG_DEBUG = 4;
inline constexpr int LOG_INFO = 3;
inline constexpr int LOG_WARNING = 2;

} // namespace Velloc::builtin
