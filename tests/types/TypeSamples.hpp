// Short spellings of argument types for the tests.
#pragma once

#include <builtin/types/ArgType.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace typesamples {

using namespace Velloc::builtin::types;
using Shape = OxArrayTypes::Shape;
using Density = OxArrayTypes::Density;
using Complexity = OxArrayTypes::Complexity;
constexpr auto STRICT = SignatureTolerance::STRICT;
constexpr auto RELAXED = SignatureTolerance::RELAXED;
constexpr auto INPUT = ArgTypeDirection::INPUT;
constexpr auto OUTPUT = ArgTypeDirection::OUTPUT;
constexpr std::uint64_t ANY_DIMS = OxArrayTypes::ANY_NUM_DIMS;

inline OxArrayTypes array(oxClassID element, Shape shape, Density density, Complexity complexity,
                          std::uint64_t numDims, SignatureTolerance tolerance = STRICT) {
    OxArrayTypes type(element, shape, density, complexity, numDims);
    type.setSignatureTolerance(tolerance);
    return type;
}

// A full real double of the given shape.
inline OxArrayTypes realDouble(Shape shape, std::uint64_t numDims,
                               SignatureTolerance tolerance = STRICT) {
    return array(oxDOUBLE_CLASS, shape, Density::FULL, Complexity::NOT_COMPLEX, numDims, tolerance);
}

inline OxArrayTypes relaxedOpenArray() {
    OxArrayTypes type = OxArrayTypes::fullyOpen();
    type.setSignatureTolerance(RELAXED);
    return type;
}

inline NumericScalarTypes scalar(oxClassID element, bool complex = false) {
    return {element, complex ? NumericScalarTypes::Complexity::COMPLEX
                             : NumericScalarTypes::Complexity::NOT_COMPLEX};
}

inline oxClassID classId(int id) { return static_cast<oxClassID>(id); }

// One step of the 64-bit hash combine, written out from its definition.
inline std::uint64_t hashCombine(std::uint64_t seed, std::uint64_t value) {
    std::uint64_t x = seed + 0x9e3779b9 + value;
    x ^= x >> 32;
    x *= 0xe9846af9b1a615dULL;
    x ^= x >> 32;
    x *= 0xe9846af9b1a615dULL;
    return x ^ (x >> 28);
}

// The text of every type of a list, for comparing lists in one assertion.
inline std::vector<std::string> texts(const std::vector<ArgType>& types) {
    std::vector<std::string> result;
    for (const ArgType& type : types) {
        result.push_back(toString(type, INPUT, 0));
    }
    return result;
}

} // namespace typesamples
