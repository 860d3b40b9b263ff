#include "CleanupSteps.hpp"

#include <builtin/builtinreg/Explain.hpp>

#include <boost/container_hash/hash.hpp>

#include <algorithm>
#include <unordered_map>

namespace Velloc::builtin::builtinreg::detail {

namespace {

// Inputs and the identity of the original: what a caller can tell two variants apart by.
struct ReachKey {
    const SharedArray<types::ArgType>* inputs;
    const BuiltinVariant* original;

    friend bool operator==(const ReachKey& a, const ReachKey& b) {
        return a.original == b.original &&
               std::equal(a.inputs->begin(), a.inputs->end(), b.inputs->begin(), b.inputs->end(),
                          [](const types::ArgType& x, const types::ArgType& y) { return types::operator==(x, y); });
    }
};

struct ReachKeyHash {
    std::size_t operator()(const ReachKey& key) const {
        std::size_t seed = key.inputs->size();
        for (const types::ArgType& type : *key.inputs) {
            boost::hash_combine(seed, types::hash(type));
        }
        boost::hash_combine(seed, key.original);
        return seed;
    }
};

} // namespace

void removeUnreachableVariants(std::vector<BuiltinVariant>& variants, std::vector<CleanupFinding>& findings) {
    // Keys point into kept variants, which stay in place until the compaction below.
    std::unordered_map<ReachKey, std::size_t, ReachKeyHash> firstWithKey;
    firstWithKey.reserve(variants.size());
    std::vector<bool> removed(variants.size(), false);
    for (std::size_t i = 0; i < variants.size(); ++i) {
        const BuiltinVariant& variant = variants[i];
        const auto [it, inserted] =
            firstWithKey.try_emplace(ReachKey{&variant.inputArgTypes, variant.originalVariant.get()}, i);
        if (!inserted && variant.originalVariant) {
            removed[i] = true;
            findings.push_back({CleanupFinding::Kind::UNREACHABLE, variantLabel(variant), variantLabel(variants[it->second])});
        }
    }
    std::size_t kept = 0;
    for (std::size_t i = 0; i < variants.size(); ++i) {
        if (!removed[i]) {
            if (kept != i) {
                variants[kept] = std::move(variants[i]);
            }
            ++kept;
        }
    }
    variants.erase(variants.begin() + static_cast<std::ptrdiff_t>(kept), variants.end());
}

} // namespace Velloc::builtin::builtinreg::detail
