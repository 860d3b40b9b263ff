// A C++ parameter type the framework cannot describe. A variant that carries one is
// removed from every dispatch list.
#pragma once

#include <builtin/types/ArgTypeDirection.hpp>
#include <builtin/types/LxeSupportLevel.hpp>

#include <cstddef>

namespace Velloc::builtin::types {

struct UnsupportedArgType {
    std::size_t hash() const noexcept { return 0; }
    LxeSupportLevel getLxeSupportLevel(ArgTypeDirection) const noexcept {
        return LxeSupportLevel::NO_SUPPORT;
    }
    friend bool operator<(const UnsupportedArgType&, const UnsupportedArgType&) noexcept {
        return false;
    }
    friend bool operator==(const UnsupportedArgType&, const UnsupportedArgType&) noexcept {
        return true;
    }
};

} // namespace Velloc::builtin::types
