// The variant a builtin's invoke chose for each recently seen kind of call. A builtin's
// lists never change, so the first acceptable variant for a list, an output count and the
// keys of the inputs never changes either: a call whose key is found skips the search.
//
// Lock-free: each slot is guarded by a sequence number that is odd while a writer fills
// it. A reader that sees the number change (or odd) treats the slot as a miss, and a
// writer that finds the slot busy leaves it; either way the call falls back to the search.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace Velloc::builtin {

class BuiltinVariant;
class VariantSignature;

namespace builtinreg::detail {

// The list searched, the output count and the inputs' keys, packed. A zero first word
// marks an empty slot; every valid key has its lowest bit set.
struct CallKey {
    std::array<std::uint64_t, 3> words{};
    friend bool operator==(const CallKey&, const CallKey&) = default;
};

class DispatchCache {
public:
    static constexpr std::size_t MAX_INPUTS = 4;
    static constexpr std::size_t SLOTS = 16;

    // The key of the call, or none when the first acceptable variant may depend on more
    // than the inputs' keys: more than MAX_INPUTS inputs, an input the host rejects, or
    // element-wise broadcasting between arrays of different dimensions that are not
    // 1-by-1.
    static std::optional<CallKey> keyOf(unsigned listIndex, const VariantSignature& call);

    struct Lookup {
        bool found = false;
        const BuiltinVariant* variant = nullptr; // null when no variant accepts the call
    };
    Lookup find(const CallKey& key) const noexcept;
    // Best effort: a slot another thread is filling is left as it is.
    void store(const CallKey& key, const BuiltinVariant* variant) noexcept;

private:
    struct Slot {
        std::atomic<std::uint64_t> sequence{0};
        std::array<std::atomic<std::uint64_t>, 3> words{};
        std::atomic<const BuiltinVariant*> variant{nullptr};
    };

    static Lookup findIn(const Slot& slot, const CallKey& key) noexcept;

    std::array<Slot, SLOTS> slots_;
};

} // namespace builtinreg::detail

} // namespace Velloc::builtin
