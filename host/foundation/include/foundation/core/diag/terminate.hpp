// The host's fatal assertion: for defects of a defining library, never for user errors.
#pragma once

#include <string>

namespace foundation::core::diag {

// Writes message, file, line and the full function signature to standard error, then aborts.
[[noreturn]] void terminate(const std::string& message, const char* file, int line,
                            const char* function);

// Whether the checks that only run under diagnostics are armed. Initialised from the
// environment variable FL_DIAG_TERMINATE ("1" arms them); tests may override it.
bool terminationsArmed();
void setTerminationsArmed(bool armed);

} // namespace foundation::core::diag

// The host's query under its historical name.
bool fl_diag_terminate();
