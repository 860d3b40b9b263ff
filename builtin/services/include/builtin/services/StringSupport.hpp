// The host string service: what the framework needs to know of the host string class to
// read text out of string arrays and to create them.
#pragma once

#include <matrix/oxArray.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Velloc::String {
class String;
}

namespace Velloc::builtin {

class StringSupport {
public:
    virtual ~StringSupport();

    // The class id of the host string class.
    virtual oxClassID getStringClassId() const = 0;

    // The text of element *element of a string array, or, for a null element, of the one
    // string the array must hold. The view stays valid while the array lives. An array that
    // is not a string array, or does not hold exactly one string when element is null,
    // throws std::invalid_argument.
    virtual std::u16string_view getStringValue(const oxArray* array, const std::size_t* element) const = 0;

    // A new string array of the given dimensions holding the texts in column-major order.
    virtual oxArray* createStringArray(matrix::Dims dims, std::vector<std::u16string> texts) const = 0;

    // A new string array in which every element is a copy of text: 1-by-1 for null dims.
    virtual oxArray* stringToOxArray(const Velloc::String::String* text, const matrix::Dims* dims) const = 0;
};

} // namespace Velloc::builtin
