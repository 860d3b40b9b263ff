// Variants and calls built by hand, for tests that look at dispatch rules rather than at
// developer functions.
#pragma once

#include <builtin/BuiltinVariant.hpp>

#include <matrix/oxArray.hpp>

#include <string>
#include <vector>

namespace samples {

using Velloc::builtin::BuiltinVariant;
using Velloc::builtin::types::ArgType;
using Velloc::builtin::types::LxeSupportLevel;

ArgType scalar(oxClassID id, bool complex = false);
ArgType anyArray();
ArgType doubleArrayAnyShape();

struct Behaviour {
    bool callsIntoOrvex = false;
    bool warns = false;
    bool throws = false;
    bool sideEffects = false;
    bool elementWise = false;
};

BuiltinVariant variant(std::vector<ArgType> inputs, std::vector<ArgType> outputs, Behaviour behaviour = {},
                       std::string name = "f");
BuiltinVariant boxingOf(const BuiltinVariant& original, std::vector<ArgType> inputs);

// Host arrays that free themselves.
struct Call {
    std::vector<matrix::ArrayPtr> owned;
    std::vector<oxArray*> handles;
    void add(oxArray* array);
};

oxArray* doubles(std::size_t rows, std::size_t cols);

} // namespace samples
