// Dispatch diagnostics: which variant a call would reach and why the others refuse it,
// computed without running anything.
#pragma once

#include <builtin/BuiltinFcn.hpp>

#include <foundation/core/except/Exception.hpp>

#include <stdexcept>
#include <string>
#include <vector>

namespace Velloc::builtin::builtinreg {

struct VariantVerdict {
    const BuiltinVariant* variant;
    // Empty when the variant accepts the call.
    std::string rejection;
};

struct Explanation {
    std::string builtinName;
    // The list invoke searches, by name; empty when invoke goes straight to the default.
    std::string listName;
    std::vector<std::string> argumentTypes;
    // The variants of the call's arity in search order, up to and including the one
    // that runs.
    std::vector<VariantVerdict> considered;
    // Null when the call goes to the default implementation.
    const BuiltinVariant* chosen = nullptr;
    bool hasDefaultImplementation = false;
};

// Like invoke, explain and describeNoMatch refuse a malformed calling form (a negative
// count, or inputs without an array) with std::invalid_argument.
Explanation explain(const BuiltinFcn& builtin, int nlhs, int nrhs, oxArray* const* prhs,
                    BuiltinFcn::VariantsToConsider variantsToConsider = BuiltinFcn::NoLxe);
std::string toString(const Explanation& explanation);

// Every variant of the builtin with the reason it refuses the call, and the call's
// argument types: what a default implementation reports when it has nothing to do.
std::string describeNoMatch(const BuiltinFcn& builtin, int nlhs, int nrhs, oxArray* const* prhs);

// A variant by its C++ name and input types, as diagnostics name it.
std::string variantLabel(const BuiltinVariant& variant);

namespace errors {
struct noMatchingVariant {
    static constexpr std::string_view component = "builtin2";
    static constexpr std::string_view key = "noMatchingVariant";
    static constexpr std::string_view text = "{0}";
};
} // namespace errors

using NoMatchingVariantError = foundation::core::except::Exception<errors::noMatchingVariant, std::invalid_argument>;

// Throws the report of describeNoMatch as an identified error.
[[noreturn]] void throwNoMatchingVariant(const BuiltinFcn& builtin, int nlhs, int nrhs, oxArray* const* prhs);

} // namespace Velloc::builtin::builtinreg
