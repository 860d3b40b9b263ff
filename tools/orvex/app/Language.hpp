// The language instance the tool runs builtins in. Native code may call builtins back by
// name, among the libraries loaded at the time of the call, and the builtins are held to
// their declared promises: the checks that run under diagnostics are armed unless
// FL_DIAG_TERMINATE says otherwise.
#pragma once

#include "Libraries.hpp"

#include <foundation/usm/usm.hpp>

namespace orvex {

class Language {
public:
    // libraries must outlive the language; one language runs at a time.
    explicit Language(const TrackedLibraries& libraries);
    ~Language();
    Language(const Language&) = delete;
    Language& operator=(const Language&) = delete;

private:
    foundation::usm::OvmInstance instance_;
    foundation::usm::CurrentOvm current_;
};

} // namespace orvex
