// How the sample's element-wise builtins size their results: two arrays broadcast when,
// at each dimension, their extents agree or one of them is 1; the result takes the other
// extent, so an empty operand against a scalar or a matching empty gives an empty result.
// Arrays that do not broadcast get one size error, whatever their class.
#pragma once

#include <builtin/BuiltinFcn.hpp>

#include <matrix/oxArray.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

// The dimensions a and b broadcast to, or nothing when they do not.
std::optional<std::vector<std::size_t>> broadcastDims(const oxArray* a, const oxArray* b);

// Throws the size error when a and b do not broadcast.
void rejectSizeMismatch(const oxArray* a, const oxArray* b);

// The result of a call of builtin on a and b when either is empty and they broadcast: an
// empty array of the broadcast size, of the class the builtin gives for one element of
// each operand's class. Null when neither is empty, or no element-wise variant of the
// builtin takes those classes. The framework never runs an element-wise variant on an
// empty operand, so the builtin's variants are asked which would take the call instead.
matrix::ArrayPtr emptyResult(const Velloc::builtin::BuiltinFcn& builtin, const oxArray* a, const oxArray* b);

} // namespace samplelib
