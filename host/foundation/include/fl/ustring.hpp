// UTF-16 text as the host keeps it.
#pragma once

#include <string>
#include <string_view>

namespace fl {
using uchar = char16_t;
using ustring = std::u16string;
using ustring_view = std::u16string_view;
} // namespace fl
