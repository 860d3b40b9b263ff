// The identity a C++ engine-object class declares: its variant id under its class-object
// class, and a function returning that class's name. Each starts unassigned and may be
// assigned once; assigning the value it already holds again is allowed.
//
//   class Buffer : public lxeobject::CppLxeObjectImpl<Buffer> {
//   public:
//       static inline builtinreg::LxeObjectId lxeObjectId{0, [] { return "lxebuffer.Buffer"; }};
//   };
#pragma once

#include <atomic>
#include <cstddef>
#include <limits>

namespace Velloc::builtin::builtinreg {

class LxeObjectId {
public:
    using NameFunction = const char* (*)();

    static constexpr std::size_t DEFAULT_VARIANT_ID = std::numeric_limits<std::size_t>::max();
    static constexpr NameFunction DEFAULT_NAME_FUNCTION = nullptr;

    constexpr LxeObjectId() noexcept = default;
    constexpr LxeObjectId(std::size_t variantId, NameFunction nameFunction) noexcept
        : variantId_(variantId), nameFunction_(nameFunction) {}
    LxeObjectId(const LxeObjectId&) = delete;
    LxeObjectId& operator=(const LxeObjectId&) = delete;

    // A value conflicting with one already assigned is a defect of the module: it ends the
    // process when diagnostics are armed, and is stored otherwise.
    void setVariantId(std::size_t variantId);
    void setNameFunction(NameFunction nameFunction);

    std::size_t getVariantId() const noexcept { return variantId_.load(std::memory_order_acquire); }
    NameFunction getNameFunction() const noexcept { return nameFunction_.load(std::memory_order_acquire); }
    // What the name function returns; "" while none is assigned.
    const char* getClassName() const;

private:
    std::atomic<std::size_t> variantId_{DEFAULT_VARIANT_ID};
    std::atomic<NameFunction> nameFunction_{DEFAULT_NAME_FUNCTION};
};

// Pass when currentId is newId or defaultId; otherwise, when diagnostics are armed, end the
// process with "Cannot assign conflicting variant id values to
// Velloc::builtin::builtinreg::LxeObjectId".
void assertIsDefaultVariantIdOrSame(std::size_t newId, std::size_t currentId, std::size_t defaultId);
// The same rule for name functions.
void assertIsDefaultNameFuncPtrOrSame(LxeObjectId::NameFunction newFn, LxeObjectId::NameFunction currentFn,
                                      LxeObjectId::NameFunction defaultFn);

} // namespace Velloc::builtin::builtinreg
