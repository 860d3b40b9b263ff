// The default implementation the sample's element-wise builtins share: a call that no
// variant takes is reported to the language user, as an identified error. Arrays whose
// sizes do not broadcast get a short message naming both sizes; anything else gets the
// report of every variant and why it refused.
#pragma once

#include <builtin/BuiltinFcn.hpp>
#include <builtin/builtinreg/Explain.hpp>

#include <foundation/core/except/Exception.hpp>

#include <string>

namespace samplelib {

namespace errors {
struct sizeMismatch {
    static constexpr std::string_view component = "samplelib";
    static constexpr std::string_view key = "sizeMismatch";
    static constexpr std::string_view text = "Arrays have incompatible sizes for this operation: {0} and {1}.";
};
} // namespace errors

// "2x3" for a 2-by-3 array.
std::string sizeText(const oxArray* array);

// Throws the size error when both arguments are arrays whose sizes do not broadcast.
void rejectSizeMismatch(int nrhs, oxArray* const* prhs);

template <const Velloc::builtin::BuiltinFcn& (*Builtin)()>
void reportNoMatch(int nlhs, oxArray**, int nrhs, oxArray** prhs, const Velloc::builtin::BuiltinVariant&) {
    rejectSizeMismatch(nrhs, prhs);
    Velloc::builtin::builtinreg::throwNoMatchingVariant(Builtin(), nlhs, nrhs, prhs);
}

} // namespace samplelib
