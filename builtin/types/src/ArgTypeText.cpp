#include <builtin/types/ArgType.hpp>

#include <ostream>
#include <string>
#include <variant>

namespace Velloc::builtin::types {

std::string toString(const ArgType& type, ArgTypeDirection direction, unsigned long index) {
    return std::visit(
        [&](const auto& alternative) -> std::string {
            if constexpr (requires { alternative.toString(direction, index); }) {
                return alternative.toString(direction, index);
            } else if constexpr (requires { alternative.toString(); }) {
                return alternative.toString();
            } else {
                return {};
            }
        },
        type);
}

std::ostream& operator<<(std::ostream& os, const ArgType& type) {
    return os << toString(type, ArgTypeDirection::INPUT, 0);
}

} // namespace Velloc::builtin::types
