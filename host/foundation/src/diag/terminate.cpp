// The fatal assertion and the switch that arms the checks run only under diagnostics.
#include <foundation/core/diag/terminate.hpp>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace foundation::core::diag {
namespace {

std::atomic<bool>& armedFlag() {
    static std::atomic<bool> armed{[] {
        const char* value = std::getenv("FL_DIAG_TERMINATE");
        return value != nullptr && std::strcmp(value, "1") == 0;
    }()};
    return armed;
}

} // namespace

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

bool terminationsArmed() { return armedFlag().load(std::memory_order_relaxed); }

void setTerminationsArmed(bool armed) { armedFlag().store(armed, std::memory_order_relaxed); }

} // namespace foundation::core::diag

bool fl_diag_terminate() { return foundation::core::diag::terminationsArmed(); }
