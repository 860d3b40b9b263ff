// The environment a builtin runs in: it collects the warnings the builtin raises and the
// error it records, for the caller to report once the builtin has returned.
#pragma once

#include <string>

namespace Velloc::lxe {

class ILxeBuiltinAccessors {
public:
    // Called inside an exception handler: records the exception in flight as the pending
    // error, replacing an earlier one.
    virtual void SetInternalPendingException() = 0;

protected:
    ~ILxeBuiltinAccessors() = default;
};

class ILxeBuiltinEnvironment {
public:
    virtual ~ILxeBuiltinEnvironment();

    // Appends a warning; warnings are reported in the order they were added.
    virtual void AddWarningMessage(const std::u16string& message) = 0;
    // The accessor interface of this environment; may be null.
    virtual ILxeBuiltinAccessors* GetLxeBuiltinAccessors() = 0;
};

} // namespace Velloc::lxe
