// The fatal assertion and the switch that arms the checks run only under diagnostics.
#include <foundation/core/diag/terminate.hpp>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace foundation::core::diag {
namespace detail {

constinit std::atomic<signed char> armedState{-1};

bool armedFromEnvironment() {
    const char* value = std::getenv("FL_DIAG_TERMINATE");
    signed char unread = -1;
    // A state set before the first read wins over the environment.
    armedState.compare_exchange_strong(unread, value != nullptr && std::strcmp(value, "1") == 0 ? 1 : 0,
                                       std::memory_order_relaxed);
    return armedState.load(std::memory_order_relaxed) != 0;
}

} // namespace detail

void terminate(const std::string& message, const char* file, int line, const char* function) {
    // stdio rather than iostreams: this runs in processes whose state is already suspect.
    std::fprintf(stderr, "Fatal assertion: %s\n  file: %s\n  line: %d\n  function: %s\n",
                 message.c_str(), file != nullptr ? file : "?", line,
                 function != nullptr ? function : "?");
    std::fflush(stderr);
    std::abort();
}

void terminate(const std::string& message, ReportSite site, SourceLocation caller) {
    terminate(message, site.source, site.line, caller.function_name());
}

void setTerminationsArmed(bool armed) { detail::armedState.store(armed ? 1 : 0, std::memory_order_relaxed); }

} // namespace foundation::core::diag
