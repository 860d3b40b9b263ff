// Acceptance of calls and the sort order of variant lists.
#include <builtin/BuiltinVariant.hpp>


#include <algorithm>

namespace Velloc::builtin {

namespace {

bool outputsFitCall(std::size_t outputs, std::uint64_t nlhs) {
    // A call that asks for no output may still take the one a variant returns.
    return outputs == nlhs || (nlhs == 0 && outputs == 1);
}

bool sizesBroadcast(matrix::Dims a, matrix::Dims b) {
    const std::size_t compared = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < compared; ++i) {
        const bool equal = a[i] == b[i] && a[i] != 0;
        const bool aSingleton = a[i] == 1 && b[i] != 0;
        const bool bSingleton = b[i] == 1 && a[i] != 0;
        if (!(equal || aSingleton || bSingleton)) {
            return false;
        }
    }
    return true;
}

// Element-wise calls broadcast one or two arrays; flags take no part. Empty arrays never
// pass: they have nothing for the element function to run on.
bool passesElementWiseShapeTest(const BuiltinVariant& variant, const VariantSignature& call) {
    const oxArray* arrays[2] = {nullptr, nullptr};
    std::size_t count = 0;
    for (std::size_t i = 0; i < variant.inputArgTypes.size(); ++i) {
        if (types::skipDuringInvoke(variant.inputArgTypes[i])) {
            continue;
        }
        if (count == 2) {
            return false;
        }
        arrays[count++] = call.getArray(i);
    }
    if (count == 1) {
        return true;
    }
    if (count == 0 || arrays[0] == nullptr || arrays[1] == nullptr) {
        return false;
    }
    return sizesBroadcast(matrix::getDimensions(arrays[0]), matrix::getDimensions(arrays[1]));
}

bool acceptsEveryInput(const BuiltinVariant& variant, const VariantSignature& call) {
    for (std::size_t i = 0; i < variant.inputArgTypes.size(); ++i) {
        if (!types::isAcceptable(variant.inputArgTypes[i], call.getArgType(i))) {
            return false;
        }
    }
    return true;
}

bool acceptsEveryInputElementWise(const BuiltinVariant& variant, const VariantSignature& call) {
    for (std::size_t i = 0; i < variant.inputArgTypes.size(); ++i) {
        if (!types::isAcceptableElementWise(variant.inputArgTypes[i], call.getArgType(i))) {
            return false;
        }
    }
    return true;
}

// The first position at which the lists differ decides. Types are equal when neither is
// less, so two comparisons per position tell all three cases apart.
template <class TypeAt>
bool lexicographicallyLess(const SharedArray<types::ArgType>& left, std::size_t count, TypeAt right) {
    for (std::size_t i = 0; i < count; ++i) {
        const types::ArgType& r = right(i);
        if (left[i] < r) {
            return true;
        }
        if (r < left[i]) {
            return false;
        }
    }
    return false;
}

} // namespace

bool BuiltinVariant::operator==(const VariantSignature& call) const {
    if (inputArgTypes.size() != call.getNrhs() || !outputsFitCall(outputArgTypes.size(), call.getNlhs())) {
        return false;
    }
    if (acceptsEveryInput(*this, call)) {
        return true;
    }
    return isElementWise && acceptsEveryInputElementWise(*this, call) && passesElementWiseShapeTest(*this, call);
}

bool BuiltinVariant::operator<(const VariantSignature& call) const {
    if (inputArgTypes.size() != call.getNrhs()) {
        return inputArgTypes.size() < call.getNrhs();
    }
    // No allowance for a call without outputs here: searches rank by exact counts.
    if (outputArgTypes.size() != call.getNlhs()) {
        return outputArgTypes.size() < call.getNlhs();
    }
    const BuiltinVariant* compared = this;
    if (originalVariant) {
        if (*originalVariant == call) {
            return false;
        }
        compared = originalVariant.get();
    }
    return lexicographicallyLess(compared->inputArgTypes, compared->inputArgTypes.size(),
                                 [&](std::size_t i) -> const types::ArgType& { return call.getArgType(i); });
}

bool BuiltinVariant::operator==(const BuiltinVariant& other) const {
    if (this == &other) {
        return true;
    }
    return inputArgTypes.size() == other.inputArgTypes.size() &&
           outputArgTypes.size() == other.outputArgTypes.size() &&
           std::equal(inputArgTypes.begin(), inputArgTypes.end(), other.inputArgTypes.begin());
}

bool BuiltinVariant::operator<(const BuiltinVariant& other) const {
    const BuiltinVariant* a = this;
    const BuiltinVariant* b = &other;
    const bool sameOriginal = originalVariant && other.originalVariant && *originalVariant == *other.originalVariant;
    if (!sameOriginal) {
        a = originalVariant ? originalVariant.get() : this;
        b = other.originalVariant ? other.originalVariant.get() : &other;
    }
    if (a->inputArgTypes.size() != b->inputArgTypes.size()) {
        return a->inputArgTypes.size() < b->inputArgTypes.size();
    }
    if (a->outputArgTypes.size() != b->outputArgTypes.size()) {
        return a->outputArgTypes.size() < b->outputArgTypes.size();
    }
    // A boxing variant sorts right behind its original.
    if (!other.originalVariant && originalVariant && other == *originalVariant) {
        return false;
    }
    if (!originalVariant && other.originalVariant && *this == *other.originalVariant) {
        return true;
    }
    return lexicographicallyLess(a->inputArgTypes, a->inputArgTypes.size(),
                                 [&](std::size_t i) -> const types::ArgType& { return b->inputArgTypes[i]; });
}

VariantSignature::VariantSignature(std::uint64_t nlhs, std::uint64_t nrhs, oxArray* const* prhs)
    : nlhs_(nlhs), nrhs_(nrhs), prhs_(prhs), keys_(nrhs, boost::container::default_init) {
    // A signature without handles is compared by its counts alone, as when lists are searched
    // by arity: its keys stay those of a missing input.
    for (std::uint64_t i = 0; i < nrhs; ++i) {
        keys_[i] = types::InputKey::of(prhs != nullptr ? prhs[i] : nullptr);
    }
}

// A call that the dispatch cache serves never builds an argument type.
const types::ArgType& VariantSignature::getArgType(std::size_t position) const {
    if (argTypes_.empty()) {
        argTypes_.resize(nrhs_);
    }
    std::optional<types::ArgType>& cached = argTypes_[position];
    if (!cached) {
        cached.emplace(keys_[position].argType());
    }
    return *cached;
}

} // namespace Velloc::builtin
