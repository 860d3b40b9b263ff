#include "CleanupSteps.hpp"

#include <builtin/builtinreg/Explain.hpp>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <optional>
#include <unordered_map>

namespace Velloc::builtin::builtinreg::detail {

namespace {

using types::ArgType;
using types::LxeSupportLevel;

// A set of small integers, one bit each.
class BitSet {
public:
    void set(std::size_t bit) {
        if (bit / 64 >= words_.size()) {
            words_.resize(bit / 64 + 1, 0);
        }
        words_[bit / 64] |= std::uint64_t{1} << (bit % 64);
    }
    const std::vector<std::uint64_t>& words() const { return words_; }

private:
    std::vector<std::uint64_t> words_;
};

// The distinct declarations met at one input position, each with the set of
// NO_SUPPORT input lists (by number) whose type at this position it accepts.
class PositionTable {
public:
    std::size_t idOf(const ArgType& type) {
        const auto [it, inserted] = ids_.try_emplace(type, types_.size());
        if (inserted) {
            types_.push_back(type);
            accepting_.emplace_back();
            // A declaration met late must still learn the earlier NO_SUPPORT inputs.
            for (std::size_t key = 0; key < shadowTypes_.size(); ++key) {
                if (types::isAcceptableToLxe(type, types_[shadowTypes_[key]])) {
                    accepting_.back().set(key);
                }
            }
        }
        return it->second;
    }

    // Registers the type of NO_SUPPORT input list number key at this position.
    void addShadowing(std::size_t key, std::size_t typeId) {
        shadowTypes_.push_back(typeId);
        for (std::size_t id = 0; id < types_.size(); ++id) {
            if (types::isAcceptableToLxe(types_[id], types_[typeId])) {
                accepting_[id].set(key);
            }
        }
    }

    const BitSet& accepting(std::size_t typeId) const { return accepting_[typeId]; }

private:
    std::unordered_map<ArgType, std::size_t, types::ArgTypeHash> ids_;
    std::vector<ArgType> types_;
    std::vector<BitSet> accepting_;
    std::vector<std::size_t> shadowTypes_; // type id at this position of each shadowing list
};

struct IdListHash {
    std::size_t operator()(const std::vector<std::size_t>& ids) const {
        std::size_t seed = ids.size();
        for (std::size_t id : ids) {
            seed ^= id + 0x9e3779b97f4a7c15ULL + (seed << 6) + (seed >> 2);
        }
        return seed;
    }
};

// The first shadowing list whose every position the candidate accepts, if any.
std::optional<std::size_t> firstShadowingKey(const std::vector<PositionTable>& positions,
                                             const std::vector<std::size_t>& ids) {
    std::size_t words = SIZE_MAX;
    for (std::size_t i = 0; i < positions.size(); ++i) {
        words = std::min(words, positions[i].accepting(ids[i]).words().size());
    }
    for (std::size_t w = 0; w < words; ++w) {
        std::uint64_t common = ~std::uint64_t{0};
        for (std::size_t i = 0; i < positions.size() && common != 0; ++i) {
            common &= positions[i].accepting(ids[i]).words()[w];
        }
        if (common != 0) {
            return w * 64 + static_cast<std::size_t>(std::countr_zero(common));
        }
    }
    return std::nullopt;
}

void demoteInRunWithoutInputs(std::vector<BuiltinVariant>& variants, std::size_t begin, std::size_t end,
                              std::vector<CleanupFinding>& findings) {
    const BuiltinVariant* shadowing = nullptr;
    for (std::size_t j = begin; j < end; ++j) {
        BuiltinVariant& w = variants[j];
        if (shadowing != nullptr && w.lxeSupportLevel != LxeSupportLevel::NO_SUPPORT) {
            w.lxeSupportLevel = combineLxeSupportLevels(w.lxeSupportLevel, shadowing->lxeSupportLevel);
            findings.push_back({CleanupFinding::Kind::SHADOWED, variantLabel(w), variantLabel(*shadowing)});
        }
        if (shadowing == nullptr && w.lxeSupportLevel == LxeSupportLevel::NO_SUPPORT) {
            shadowing = &w;
        }
    }
}

// Every candidate is tested against the distinct NO_SUPPORT input lists met before it,
// as bit sets: each position contributes the lists it accepts and the candidate is
// shadowed when some list survives the intersection. Acceptance is computed once per
// pair of distinct declarations at a position, not once per pair of variants.
void demoteInRun(std::vector<BuiltinVariant>& variants, std::size_t begin, std::size_t end, std::size_t arity,
                 std::vector<CleanupFinding>& findings) {
    std::vector<PositionTable> positions(arity);
    std::unordered_map<std::vector<std::size_t>, std::size_t, IdListHash> keys;
    std::vector<std::size_t> keyOwner; // the first variant with each shadowing list
    std::vector<std::size_t> ids(arity);
    for (std::size_t j = begin; j < end; ++j) {
        BuiltinVariant& w = variants[j];
        for (std::size_t i = 0; i < arity; ++i) {
            ids[i] = positions[i].idOf(w.inputArgTypes[i]);
        }
        if (w.lxeSupportLevel != LxeSupportLevel::NO_SUPPORT && !keyOwner.empty()) {
            if (const auto key = firstShadowingKey(positions, ids)) {
                const BuiltinVariant& v = variants[keyOwner[*key]];
                w.lxeSupportLevel = combineLxeSupportLevels(w.lxeSupportLevel, v.lxeSupportLevel);
                findings.push_back({CleanupFinding::Kind::SHADOWED, variantLabel(w), variantLabel(v)});
            }
        }
        if (w.lxeSupportLevel == LxeSupportLevel::NO_SUPPORT && keys.try_emplace(ids, keyOwner.size()).second) {
            for (std::size_t i = 0; i < arity; ++i) {
                positions[i].addShadowing(keyOwner.size(), ids[i]);
            }
            keyOwner.push_back(j);
        }
    }
}

} // namespace

void demoteShadowedVariants(std::vector<BuiltinVariant>& variants, std::vector<CleanupFinding>& findings) {
    // The list is sorted by arity, so each arity is one contiguous run.
    std::size_t begin = 0;
    while (begin < variants.size()) {
        const std::size_t arity = variants[begin].inputArgTypes.size();
        std::size_t end = begin + 1;
        while (end < variants.size() && variants[end].inputArgTypes.size() == arity) {
            ++end;
        }
        if (arity == 0) {
            demoteInRunWithoutInputs(variants, begin, end, findings);
        } else {
            demoteInRun(variants, begin, end, arity, findings);
        }
        begin = end;
    }
}

} // namespace Velloc::builtin::builtinreg::detail
