// The default implementation the sample's element-wise builtins share. A call that no
// variant takes is either one on an empty array, answered with an empty result of the
// broadcast size, or reported to the language user as an identified error: arrays whose
// sizes do not broadcast get a short message naming both sizes; anything else gets the
// report of every variant and why it refused.
#pragma once

#include "Broadcasting.hpp"

#include <builtin/BuiltinFcn.hpp>
#include <builtin/builtinreg/Explain.hpp>

namespace samplelib {

template <const Velloc::builtin::BuiltinFcn& (*Builtin)()>
void reportNoMatch(int nlhs, oxArray** plhs, int nrhs, oxArray** prhs, const Velloc::builtin::BuiltinVariant&) {
    if (nrhs == 2 && prhs[0] != nullptr && prhs[1] != nullptr) {
        rejectSizeMismatch(prhs[0], prhs[1]);
        if (matrix::ArrayPtr empty = emptyResult(Builtin(), prhs[0], prhs[1])) {
            plhs[0] = empty.release();
            return;
        }
    }
    Velloc::builtin::builtinreg::throwNoMatchingVariant(Builtin(), nlhs, nrhs, prhs);
}

} // namespace samplelib
