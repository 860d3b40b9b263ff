// The host's fatal assertion: for defects of a defining library, never for user errors.
#pragma once

#include <foundation/core/SourceLocation.hpp>

#include <atomic>
#include <string>

namespace foundation::core::diag {

// Writes message, file, line and the full function signature to standard error, then aborts.
[[noreturn]] void terminate(const std::string& message, const char* file, int line,
                            const char* function);

// A site whose source name and line are part of a report's known form, given in place of
// where the check happens to be written in this tree.
struct ReportSite {
    const char* source;
    int line;
};

// Reports from a fixed site, with the signature of the function that calls it.
[[noreturn]] void terminate(const std::string& message, ReportSite site,
                            SourceLocation caller = SourceLocation::current());

namespace detail {
// 1 armed, 0 disarmed, -1 not yet read from the environment.
extern constinit std::atomic<signed char> armedState;
// Settles the state from the environment, unless it was set first, and returns it.
bool armedFromEnvironment();
} // namespace detail

// Whether the checks that only run under diagnostics are armed. Initialised from the
// environment variable FL_DIAG_TERMINATE ("1" arms them); tests may override it. Inline:
// every builtin call asks, so the answer is one load rather than a call into this library.
inline bool terminationsArmed() {
    const signed char state = detail::armedState.load(std::memory_order_relaxed);
    if (state < 0) [[unlikely]] {
        return detail::armedFromEnvironment();
    }
    return state != 0;
}
void setTerminationsArmed(bool armed);

} // namespace foundation::core::diag

// The host's query under its historical name.
inline bool fl_diag_terminate() { return foundation::core::diag::terminationsArmed(); }
