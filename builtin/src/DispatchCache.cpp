#include <builtin/detail/DispatchCache.hpp>

#include <builtin/BuiltinVariant.hpp>

#include <algorithm>

namespace Velloc::builtin::builtinreg::detail {

namespace {

using Shape = types::InputKey::Shape;

bool isEmptyShape(Shape shape) { return shape == Shape::EMPTY_ROW || shape == Shape::EMPTY_COL || shape == Shape::EMPTY; }

bool haveSameDimensions(const oxArray* a, const oxArray* b) {
    const matrix::Dims x = matrix::getDimensions(a);
    const matrix::Dims y = matrix::getDimensions(b);
    if (x.size() != y.size()) {
        return false;
    }
    for (std::size_t i = 0; i < x.size(); ++i) {
        if (x[i] != y[i]) {
            return false;
        }
    }
    return true;
}

std::uint64_t hashOf(const CallKey& key) {
    return (key.words[0] ^ (key.words[1] * 0x9e3779b97f4a7c15ull) ^ (key.words[2] * 0xc2b2ae3d27d4eb4full)) *
           0x9e3779b97f4a7c15ull;
}

// Two slots per key: where the top bits of its hash point, and the neighbour.
static_assert(DispatchCache::SLOTS == 16);
std::size_t homeSlot(std::uint64_t hash) { return static_cast<std::size_t>(hash >> 60); }

} // namespace

std::optional<CallKey> DispatchCache::keyOf(unsigned listIndex, const VariantSignature& call) {
    const std::uint64_t nrhs = call.getNrhs();
    if (nrhs > MAX_INPUTS || call.getNlhs() > 0xff) {
        return std::nullopt;
    }
    std::size_t notScalar = 0;
    bool notScalarIsEmpty = false;
    CallKey key;
    for (std::uint64_t i = 0; i < nrhs; ++i) {
        const types::InputKey input = call.getInputKey(i);
        if (!input.isSupported()) {
            return std::nullopt;
        }
        if (input.shape() != Shape::SCALAR) {
            ++notScalar;
            notScalarIsEmpty = isEmptyShape(input.shape());
        }
        key.words[1 + i / 2] |= std::uint64_t{input.bits()} << (32 * (i % 2));
    }
    // Broadcasting is decided by the keys alone when every input has the same dimensions,
    // or when at most one input is not 1-by-1 and that one is not empty. Whether all
    // dimensions agree is part of the key; 1-by-1 inputs agree with each other and with
    // nothing else, so only several arrays that are not 1-by-1 need their dimensions
    // compared.
    bool sameDimensions = notScalar == 0 || nrhs == 1;
    if (notScalar == nrhs && nrhs > 1) {
        sameDimensions = true;
        for (std::uint64_t i = 1; i < nrhs && sameDimensions; ++i) {
            sameDimensions = haveSameDimensions(call.getArray(0), call.getArray(i));
        }
    }
    if (!sameDimensions && (notScalar > 1 || notScalarIsEmpty)) {
        return std::nullopt;
    }
    key.words[0] = 1 | (std::uint64_t{listIndex} << 1) | (std::uint64_t{sameDimensions} << 3) |
                   (call.getNlhs() << 8) | (nrhs << 16);
    return key;
}

DispatchCache::Lookup DispatchCache::find(const CallKey& key) const noexcept {
    const std::size_t home = homeSlot(hashOf(key));
    if (const Lookup found = findIn(slots_[home], key); found.found) {
        return found;
    }
    return findIn(slots_[home ^ 1], key);
}

// A seqlock without fences: the slot's words are read with acquire, so the second read of
// the sequence number cannot move before them; the writer stores them with release after
// making the number odd, so a reader that sees any new word also sees the number changed.
DispatchCache::Lookup DispatchCache::findIn(const Slot& slot, const CallKey& key) noexcept {
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

void DispatchCache::store(const CallKey& key, const BuiltinVariant* variant) noexcept {
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
    slot.variant.store(variant, std::memory_order_release);
    slot.sequence.store(sequence + 2, std::memory_order_release);
}

} // namespace Velloc::builtin::builtinreg::detail
