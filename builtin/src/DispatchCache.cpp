#include <builtin/detail/DispatchCache.hpp>

#include <builtin/BuiltinVariant.hpp>

namespace Velloc::builtin::builtinreg::detail {

void DispatchCache::store(const CallKey& key, const BuiltinVariant* variant, Route route) noexcept {
    static_assert(alignof(BuiltinVariant) > (ROUTE_MASK | FOUND));
    const std::uint64_t hash = hashOf(key);
    const std::size_t home = homeSlot(hash);
    // An empty slot of the two if there is one; otherwise one picked by another bit of
    // the hash, so that two keys sharing a home tend to settle in different slots.
    std::size_t index = home ^ ((hash >> 59) & 1);
    for (const std::size_t candidate : {home, home ^ 1}) {
        if (slots_[candidate].words[0].load(std::memory_order_relaxed) == 0) {
            index = candidate;
            break;
        }
    }
    Slot& slot = slots_[index];
    std::uint64_t sequence = slot.sequence.load(std::memory_order_relaxed);
    if ((sequence & 1) != 0 ||
        !slot.sequence.compare_exchange_strong(sequence, sequence + 1, std::memory_order_acquire)) {
        return;
    }
    for (std::size_t w = 0; w < key.words.size(); ++w) {
        slot.words[w].store(key.words[w], std::memory_order_release);
    }
    slot.variant.store(reinterpret_cast<std::uintptr_t>(variant) | static_cast<std::uintptr_t>(route) | FOUND,
                       std::memory_order_release);
    slot.sequence.store(sequence + 2, std::memory_order_release);
}

} // namespace Velloc::builtin::builtinreg::detail
