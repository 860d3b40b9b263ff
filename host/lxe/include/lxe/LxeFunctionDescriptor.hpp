// The engine's descriptor of a variant's callable: its generic entry (unboxed parameters
// in, one result out), its host-style entry (host arrays in and out) and its calling
// convention. The engine holds it by value and never looks inside the parameters.
#pragma once

#include <lxe/JitCallingConvention.hpp>

struct oxArray;

namespace Velloc::builtin {
class BuiltinVariant;
class Parameter;
} // namespace Velloc::builtin

namespace Velloc::lxe {

class ILxeBuiltinEnvironment;
class LxeFunctionDescriptor;

// Calls the variant with its parameters, one per non-flag input in order. Sets pending to
// true when the call raised warnings or recorded an error through the environment.
using GenericEntry = Velloc::builtin::Parameter (*)(const LxeFunctionDescriptor& descriptor,
                                                   ILxeBuiltinEnvironment& environment, bool& pending,
                                                   const Velloc::builtin::Parameter* parameters);

// Calls the variant in the host's own calling form.
using HostStyleEntry = void (*)(int nlhs, oxArray** plhs, int nrhs, oxArray** prhs,
                                const Velloc::builtin::BuiltinVariant& variant);

class LxeFunctionDescriptor {
public:
    constexpr LxeFunctionDescriptor() noexcept = default;
    constexpr LxeFunctionDescriptor(GenericEntry genericEntry, HostStyleEntry hostStyleEntry,
                                    JIT_CALLING_CONVENTION callingConvention,
                                    void* callee = nullptr) noexcept
        : genericEntry_(genericEntry), hostStyleEntry_(hostStyleEntry),
          callingConvention_(callingConvention), callee_(callee) {}

    constexpr GenericEntry getGenericEntry() const noexcept { return genericEntry_; }
    constexpr HostStyleEntry getHostStyleEntry() const noexcept { return hostStyleEntry_; }
    constexpr JIT_CALLING_CONVENTION getCallingConvention() const noexcept { return callingConvention_; }
    // The developer function the entries call, as compiled code reaches it directly.
    constexpr void* getCallee() const noexcept { return callee_; }

private:
    GenericEntry genericEntry_ = nullptr;
    HostStyleEntry hostStyleEntry_ = nullptr;
    JIT_CALLING_CONVENTION callingConvention_ = Plain;
    void* callee_ = nullptr;
};

} // namespace Velloc::lxe
