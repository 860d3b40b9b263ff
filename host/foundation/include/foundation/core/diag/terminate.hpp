// The host's fatal assertion: for defects of a defining library, never for user errors.
#pragma once

#include <foundation/core/SourceLocation.hpp>

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

// Whether the checks that only run under diagnostics are armed. Initialised from the
// environment variable FL_DIAG_TERMINATE ("1" arms them); tests may override it.
bool terminationsArmed();
void setTerminationsArmed(bool armed);

} // namespace foundation::core::diag

// The host's query under its historical name.
bool fl_diag_terminate();
