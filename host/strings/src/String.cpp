#include <strings/String.hpp>

#include <utility>

namespace Velloc::String {

String::String(std::u16string text) noexcept : text_(std::move(text)) {}

} // namespace Velloc::String
