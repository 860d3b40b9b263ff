// The interactive session: a prompt with line editing and history, statements as in a
// script, `help NAME`, and `exit`. Errors are reported and the session goes on with its
// variables kept.
#pragma once

#include "Libraries.hpp"

#include <vector>

namespace orvex {

// Reads from the terminal until `exit` or end of input; returns 0.
int runInteractive(const TrackedLibraries& libraries);

} // namespace orvex
