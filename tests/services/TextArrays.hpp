// Reading text through the string traits the way a caller does: the array handed in is
// owned by the call's temporaries list.
#pragma once

#include <builtin/builtinreg/StringTraits.hpp>

#include <matrix/oxArray.hpp>

#include <array>
#include <cstddef>
#include <string>
#include <utility>

namespace text_arrays {

using Velloc::builtin::types::Temporaries;
using Velloc::builtin::types::TypeTraitsImpl;

template <class Text>
Text readOwned(oxArray* owned) {
    Temporaries temporaries;
    return Text(TypeTraitsImpl<Text>{}(owned, temporaries));
}

inline oxArray* chars(std::size_t rows, std::size_t cols, std::u16string_view codeUnits) {
    const std::array<std::size_t, 2> dims{rows, cols};
    return matrix::createCharArray(dims, codeUnits);
}

inline const char* const WRONG_SHAPE = "only scalar strings or char row vectors are expected.";

// The text of the std::invalid_argument that reading the array raises; empty when none.
inline std::string rejection(oxArray* owned) {
    try {
        readOwned<std::u16string>(owned);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return {};
}

} // namespace text_arrays
