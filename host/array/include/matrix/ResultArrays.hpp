// Making the arrays a builtin returns: numeric arrays of a class, dimensions and
// complexity, logical arrays and char rows. Each function returns a new array holding one
// reference, which a developer function hands to its caller by returning it as oxArray*.
//
//     oxArray* ramp(const oxArray* n) {                  // 1-by-n double: 1, 2, ..., n
//         const std::size_t count = ...;
//         oxArray* out = matrix::createNumericArray({1, count}, oxDOUBLE_CLASS);
//         double* data = matrix::getTypedData<double>(out);
//         for (std::size_t i = 0; i < count; ++i) data[i] = double(i + 1);
//         return out;
//     }
//
// Data is contiguous and column-major; a complex array interleaves real and imaginary
// parts, so its data reads as std::complex<T>. Scalars of every class come from
// matrix::createScalar (oxArray.hpp); strings from Velloc::String::createScalarString and
// createStringArray (strings/StringArray.hpp).
//
// Failures throw and create nothing: matrix::ClassIdError for a class or complexity the
// function does not make (a class that holds no numbers, a complex logical or char),
// matrix::ShapeError for dimensions whose element count or bytes overflow.
#pragma once

#include <matrix/oxArray.hpp>

#include <cstddef>
#include <initializer_list>
#include <string_view>

namespace matrix {

// An array of a class that holds numbers (double, single, an integer class; also logical
// and char, real only) with every element zero: generic code makes the result of its
// input's class with it.
oxArray* createNumericArray(Dims dims, oxClassID classId, oxComplexity complexity = oxREAL);
oxArray* createNumericArray(std::initializer_list<std::size_t> dims, oxClassID classId,
                            oxComplexity complexity = oxREAL);

// The same with the elements left unset, for a result whose every element the builtin
// writes before returning it (an element-wise loop's output): no pass to clear them.
oxArray* createUninitializedNumericArray(Dims dims, oxClassID classId, oxComplexity complexity = oxREAL);
oxArray* createUninitializedNumericArray(std::initializer_list<std::size_t> dims, oxClassID classId,
                                         oxComplexity complexity = oxREAL);

// A logical array with every element false; its data reads as bool.
oxArray* createLogicalArray(Dims dims);
oxArray* createLogicalArray(std::initializer_list<std::size_t> dims);

// A 1-by-N char row from UTF-8 text (createCharRow of oxArray.hpp takes UTF-16). Text
// that is not UTF-8 throws fl::i18n::conversion_error.
oxArray* createCharRowFromUtf8(std::string_view text);

} // namespace matrix
