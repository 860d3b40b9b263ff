// The environment element functions see on worker threads. The engine's own environment
// may only be called from the thread that runs the builtin, so warnings and the first
// error are collected here under a lock and replayed into it on destruction.
#pragma once

#include <lxe/ILxeBuiltinEnvironment.hpp>

#include <exception>
#include <mutex>
#include <string>
#include <vector>

namespace Velloc::builtin::builtinreg::detail {

class ParallelEnvironment final : public lxe::ILxeBuiltinEnvironment, public lxe::ILxeBuiltinAccessors {
public:
    // parent and raised are not owned; raised may be null.
    ParallelEnvironment(lxe::ILxeBuiltinEnvironment* parent, bool* raised);
    ParallelEnvironment(const ParallelEnvironment&) = delete;
    ParallelEnvironment& operator=(const ParallelEnvironment&) = delete;

    // Replays on the creating thread, after the loop has finished: sets *raised, passes
    // the warnings in arrival order to the parent, then the stored error.
    ~ParallelEnvironment() override;

    void AddWarningMessage(const std::u16string& message) override;
    // Called inside an exception handler; the first error wins, later ones are dropped.
    void SetInternalPendingException() override;
    lxe::ILxeBuiltinAccessors* GetLxeBuiltinAccessors() override;

    bool containsException() const;

private:
    lxe::ILxeBuiltinEnvironment* parent_;
    bool* raised_;
    mutable std::mutex mutex_;
    std::vector<std::u16string> warnings_;
    std::exception_ptr exception_;
};

} // namespace Velloc::builtin::builtinreg::detail
