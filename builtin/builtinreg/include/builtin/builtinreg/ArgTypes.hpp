// The argument types of one declared variant: its outputs and every input signature
// that its C++ parameter types stand for.
#pragma once

#include <builtin/types/ArgType.hpp>

#include <cstddef>
#include <initializer_list>
#include <iosfwd>
#include <vector>

namespace Velloc::builtin::builtinreg {

struct ArgTypes {
    std::vector<types::ArgType> outputs;
    // Each inner list is one complete input signature, one type per parameter position.
    std::vector<std::vector<types::ArgType>> inputs;
};

// Expands per-position alternatives into every input signature (the Cartesian product,
// position 0 varying fastest) and applies `tolerance` to every type. numArgTypes[i] is
// the number of alternatives of position i and getArgType[i](k) the k-th of them; a null
// getOutputArgType means no outputs. Lists of different lengths terminate the process.
ArgTypes getArgTypes(types::SignatureTolerance tolerance,
                     const std::initializer_list<const unsigned long>& numArgTypes,
                     const std::initializer_list<const types::ArgType& (*)(unsigned long)>& getArgType,
                     const types::ArgType& (*getOutputArgType)(std::size_t));

// The outputs on one line ("nil" when there are none), then one line per input
// signature inside "inputs: [" and "]".
std::ostream& operator<<(std::ostream& os, const ArgTypes& argTypes);

} // namespace Velloc::builtin::builtinreg
