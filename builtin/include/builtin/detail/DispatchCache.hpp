// The variant a builtin's invoke chose for each recently seen kind of call. A builtin's
// lists never change, so the first acceptable variant for a list, an output count and the
// keys of the inputs never changes either: a call whose key is found skips the search.
//
// Lock-free: each slot is guarded by a sequence number that is odd while a writer fills
// it. A reader that sees the number change (or odd) treats the slot as a miss, and a
// writer that finds the slot busy leaves it; either way the call falls back to the search.
//
// The key and the probe are inline: invoke runs them on every call.
#pragma once

#include <builtin/types/InputKey.hpp>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace Velloc::builtin {

class BuiltinVariant;

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

    // The key of a call of at most MAX_INPUTS inputs, given the keys of its inputs; false
    // when the first acceptable variant may depend on more than those keys: an input the
    // host rejects, or element-wise broadcasting between arrays of different dimensions
    // that are not 1-by-1.
    static bool keyOf(unsigned listIndex, std::uint64_t nlhs, std::uint64_t nrhs, oxArray* const* prhs,
                      const types::InputKey* keys, CallKey& key) noexcept;

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

    static std::uint64_t hashOf(const CallKey& key) noexcept {
        return (key.words[0] ^ (key.words[1] * 0x9e3779b97f4a7c15ull) ^ (key.words[2] * 0xc2b2ae3d27d4eb4full)) *
               0x9e3779b97f4a7c15ull;
    }
    // Two slots per key: where the top bits of its hash point, and the neighbour.
    static std::size_t homeSlot(std::uint64_t hash) noexcept {
        static_assert(SLOTS == 16);
        return static_cast<std::size_t>(hash >> 60);
    }
    static Lookup findIn(const Slot& slot, const CallKey& key) noexcept;
    // Whether the call's inputs decide broadcasting by their keys; sameDimensions says
    // whether all of them have the same dimensions.
    static bool broadcastIsKeyed(std::uint64_t nrhs, oxArray* const* prhs, const types::InputKey* keys,
                                 bool& sameDimensions) noexcept;

    std::array<Slot, SLOTS> slots_;
};

inline bool DispatchCache::keyOf(unsigned listIndex, std::uint64_t nlhs, std::uint64_t nrhs, oxArray* const* prhs,
                                 const types::InputKey* keys, CallKey& key) noexcept {
    if (nrhs > MAX_INPUTS || nlhs > 0xff) {
        return false;
    }
    bool allScalar = true;
    for (std::uint64_t i = 0; i < nrhs; ++i) {
        if (!keys[i].isSupported()) {
            return false;
        }
        allScalar = allScalar && keys[i].shape() == types::InputKey::Shape::SCALAR;
        key.words[1 + i / 2] |= std::uint64_t{keys[i].bits()} << (32 * (i % 2));
    }
    // 1-by-1 inputs have the same dimensions, and broadcast with each other.
    bool sameDimensions = true;
    if (!allScalar && !broadcastIsKeyed(nrhs, prhs, keys, sameDimensions)) {
        return false;
    }
    key.words[0] = 1 | (std::uint64_t{listIndex} << 1) | (std::uint64_t{sameDimensions} << 3) | (nlhs << 8) |
                   (nrhs << 16);
    return true;
}

inline DispatchCache::Lookup DispatchCache::find(const CallKey& key) const noexcept {
    const std::size_t home = homeSlot(hashOf(key));
    if (const Lookup found = findIn(slots_[home], key); found.found) {
        return found;
    }
    return findIn(slots_[home ^ 1], key);
}

// A seqlock without fences: the slot's words are read with acquire, so the second read of
// the sequence number cannot move before them; the writer stores them with release after
// making the number odd, so a reader that sees any new word also sees the number changed.
inline DispatchCache::Lookup DispatchCache::findIn(const Slot& slot, const CallKey& key) noexcept {
    const std::uint64_t before = slot.sequence.load(std::memory_order_acquire);
    const std::uint64_t first = slot.words[0].load(std::memory_order_acquire);
    const std::uint64_t second = slot.words[1].load(std::memory_order_acquire);
    const std::uint64_t third = slot.words[2].load(std::memory_order_acquire);
    const BuiltinVariant* variant = slot.variant.load(std::memory_order_acquire);
    // An odd number is a slot being filled; a changed one, a slot refilled while read.
    const bool settled = (before & 1) == 0 && slot.sequence.load(std::memory_order_relaxed) == before;
    if (settled && first == key.words[0] && second == key.words[1] && third == key.words[2]) {
        return {true, variant};
    }
    return {};
}

} // namespace builtinreg::detail

} // namespace Velloc::builtin
