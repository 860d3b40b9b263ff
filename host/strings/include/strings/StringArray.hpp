// Host arrays of the string class (ocos::STRING_CLASS_ID): class-object arrays whose
// payload holds one String per element, in column-major order. Only the functions here
// create such arrays, so every array of that class carries that payload.
#pragma once

#include <strings/String.hpp>

#include <matrix/oxArray.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Velloc::String {

bool isStringArray(const oxArray* array);

// An array of the given dimensions holding the texts. A count that does not fill the
// dimensions throws std::invalid_argument; dimensions the host cannot represent throw
// what the array library throws.
oxArray* createStringArray(matrix::Dims dims, std::vector<std::u16string> texts);
// An array of the given dimensions in which every element is a copy of text.
oxArray* createFilledStringArray(matrix::Dims dims, const String& text);
// A 1-by-1 string array: a scalar string. A builtin returning text may instead return
// std::u16string or std::string, which the framework turns into a scalar string.
oxArray* createScalarString(const String& text);
oxArray* createScalarString(std::u16string_view text);
// The same from UTF-8; text that is not UTF-8 throws fl::i18n::conversion_error.
oxArray* createScalarStringFromUtf8(std::string_view text);

// Element index of a string array, valid while the array lives. Throws
// std::invalid_argument for an array of another class and std::out_of_range for an
// index past the end.
const String& getStringElement(const oxArray* array, std::size_t index);

} // namespace Velloc::String
