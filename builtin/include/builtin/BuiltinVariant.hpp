// One typed implementation of a builtin: the developer function, the argument types it
// takes and returns, its behaviour promises, how far the execution engine may call it
// directly, and the names used in diagnostics. Variants are plain values: lists copy,
// sort and compare them. What copies repeat is shared between them: the type lists and
// the lists of their texts are reference-counted arrays, the texts and names are held
// once per process, so a copy costs a few reference counts.
//
// The four type fields are vectors to the code that uses them:
// inputArgTypes and outputArgTypes read and write as std::vector<types::ArgType>,
// inputTypes and outputTypes as std::vector<std::string> (their elements convert to,
// compare and order with std::string). They compare with and convert to vectors, are
// assigned from them and take the vector's modifiers, copy on write: a variant changing
// a field first gets an array of its own, so the change never shows in its copies.
// Elements are read-only in place (builtin/SharedArray.hpp).
#pragma once

#include <builtin/SharedArray.hpp>
#include <builtin/InternedText.hpp>
#include <builtin/types/ArgType.hpp>
#include <builtin/types/InputKey.hpp>
#include <builtin/types/LxeSupportLevel.hpp>
#include <lxe/LxeFunctionDescriptor.hpp>

#include <boost/container/small_vector.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Velloc::builtin {

class VariantSignature;

// How invoke calls a plain developer function over numeric scalars and host arrays
// straight from the host arrays of a call, when its inputs are ones the function takes
// as they are (builtinreg/DirectEntry.hpp makes them).
struct DirectEntry {
    static constexpr std::size_t MAX_INPUTS = 4;
    // The required key of an input passed as the host array itself: any array with a key
    // will do; a null handle or an array the host rejects takes the generic entry.
    static constexpr std::uint32_t ANY_ARRAY = 0;
    // The largest input callElementWise runs over; larger ones take the generic entry,
    // whose loops share the work among threads.
    static constexpr std::size_t MAX_ELEMENT_WISE = std::size_t{1} << 15;

    // Per input, the key of the 1-by-1 array read as a scalar parameter, or ANY_ARRAY.
    std::array<std::uint32_t, MAX_INPUTS> requiredKeys;
    // Calls the function on inputs of those keys; returns a new 1-by-1 array of the value
    // it returned, or the host array it returned.
    oxArray* (*call)(oxArray* const* prhs);
    bool returnsArray;
    // For a function of one or two numeric scalars: runs it over each element of full
    // arrays of those scalars' classes, each 1-by-1 or of the output's dimensions, into a
    // new array. Null for other functions.
    oxArray* (*callElementWise)(oxArray* const* prhs) = nullptr;
};

class BuiltinVariant {
public:
    enum class CallsIntoOrvex : bool { NO = false, YES = true };
    enum class HasWarnings : bool { NO = false, YES = true };
    enum class HasExceptions : bool { NO = false, YES = true };
    enum class HasSideEffects : bool { NO = false, YES = true };
    enum class IsElementWise : bool { NO = false, YES = true };

    // Type lists and names convert from vectors and strings; passing shared ones lets
    // variants made together hold their outputs and names once.
    BuiltinVariant(void* developerFcn, lxe::LxeFunctionDescriptor functionDescriptor,
                   SharedArray<types::ArgType> inputArgTypes, SharedArray<types::ArgType> outputArgTypes,
                   CallsIntoOrvex callsIntoOrvex, HasWarnings hasWarnings, HasExceptions hasExceptions,
                   HasSideEffects hasSideEffects, InternedText cppFunctionName, InternedText orvexFunctionName,
                   InternedText dominantClass, IsElementWise isElementWise);

    BuiltinVariant(const BuiltinVariant&) = default;
    BuiltinVariant(BuiltinVariant&&) noexcept = default;
    BuiltinVariant& operator=(const BuiltinVariant&) = default;
    BuiltinVariant& operator=(BuiltinVariant&&) noexcept = default;
    ~BuiltinVariant() = default;

    friend void swap(BuiltinVariant& a, BuiltinVariant& b) noexcept;

    // Does this variant accept the call?
    bool operator==(const VariantSignature& call) const;
    // Orders the variant against a call, for searches of sorted lists.
    bool operator<(const VariantSignature& call) const;
    // Same arity and equal input types; outputs, flags and names are not compared.
    bool operator==(const BuiltinVariant& other) const;
    // The order of every variant list: arity, then input types; a boxing variant sorts
    // right behind its original.
    bool operator<(const BuiltinVariant& other) const;

    lxe::LxeFunctionDescriptor functionDescriptor;
    void* developerFcn;
    SharedArray<types::ArgType> inputArgTypes;
    SharedArray<types::ArgType> outputArgTypes;
    SharedArray<InternedText> inputTypes;
    SharedArray<InternedText> outputTypes;
    bool mayCallIntoOrvex;
    bool mayRaiseWarnings;
    bool mayThrowErrors;
    bool mayHaveSideEffects;
    InternedText cppFunctionName;
    InternedText orvexFunctionName;
    InternedText dominantClass;
    types::LxeSupportLevel lxeSupportLevel;
    // Null for an ordinary variant; for a boxing variant, the variant it was derived from.
    std::shared_ptr<const BuiltinVariant> originalVariant;
    bool isElementWise;
    // Null unless registration gave the variant one; the generic entry serves every call.
    const DirectEntry* directEntry = nullptr;
};

std::ostream& operator<<(std::ostream& out, const BuiltinVariant& variant);

// One runtime call as the comparisons see it. Each input's key is read once, when the
// call is made; its argument type is built from the key only when a comparison asks.
class VariantSignature {
public:
    VariantSignature(std::uint64_t nlhs, std::uint64_t nrhs, oxArray* const* prhs);

    std::uint64_t getNlhs() const noexcept { return nlhs_; }
    std::uint64_t getNrhs() const noexcept { return nrhs_; }
    oxArray* getArray(std::size_t position) const { return prhs_[position]; }
    types::InputKey getInputKey(std::size_t position) const { return keys_[position]; }
    const types::ArgType& getArgType(std::size_t position) const;

private:
    std::uint64_t nlhs_;
    std::uint64_t nrhs_;
    oxArray* const* prhs_;
    boost::container::small_vector<types::InputKey, 4> keys_;
    mutable boost::container::small_vector<std::optional<types::ArgType>, 4> argTypes_;
};

namespace builtinreg::detail {

// True when any input or output type is UnsupportedArgType.
bool isUnsupportedBuiltinVariant(const BuiltinVariant& variant);

// The more restrictive of two levels; throws std::invalid_argument for a value outside the
// four levels.
types::LxeSupportLevel combineLxeSupportLevels(types::LxeSupportLevel level1, types::LxeSupportLevel level2);

// start combined with the level of every output type, then of every input type.
types::LxeSupportLevel supportLevelOfTypes(types::LxeSupportLevel start, const BuiltinVariant& variant);

// The text form of each type at its position, as inputTypes and outputTypes hold them.
SharedArray<InternedText> typeTexts(std::span<const types::ArgType> argTypes, types::ArgTypeDirection direction);

} // namespace builtinreg::detail

} // namespace Velloc::builtin
