#include <builtin/detail/DispatchCache.hpp>

#include <matrix/oxArray.hpp>

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

} // namespace

bool DispatchCache::broadcastIsKeyed(std::uint64_t nrhs, oxArray* const* prhs, const types::InputKey* keys,
                                     bool& sameDimensions) noexcept {
    std::size_t notScalar = 0;
    bool notScalarIsEmpty = false;
    for (std::uint64_t i = 0; i < nrhs; ++i) {
        if (keys[i].shape() != Shape::SCALAR) {
            ++notScalar;
            notScalarIsEmpty = isEmptyShape(keys[i].shape());
        }
    }
    // Broadcasting is decided by the keys alone when every input has the same dimensions,
    // or when at most one input is not 1-by-1 and that one is not empty. Whether all
    // dimensions agree is part of the key; 1-by-1 inputs agree with each other and with
    // nothing else, so only several arrays that are not 1-by-1 need their dimensions
    // compared.
    sameDimensions = notScalar == 0 || nrhs == 1;
    if (notScalar == nrhs && nrhs > 1) {
        sameDimensions = true;
        for (std::uint64_t i = 1; i < nrhs && sameDimensions; ++i) {
            sameDimensions = haveSameDimensions(prhs[0], prhs[i]);
        }
    }
    return sameDimensions || (notScalar <= 1 && !notScalarIsEmpty);
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
