// Who may reach a member of a class-object class.
#pragma once

#include <cstdint>

namespace ocos {

enum class AccessLevel : std::int32_t { PUBLIC = 0, PROTECTED = 1, PRIVATE = 2 };

struct MemberAccess {
    AccessLevel level = AccessLevel::PUBLIC;

    friend bool operator==(const MemberAccess&, const MemberAccess&) = default;
};

} // namespace ocos
