// A place (a reference to where an execution-engine object lives) of a given host class
// and C++ class variant.
#pragma once

#include <builtin/types/ArgTypeDirection.hpp>
#include <builtin/types/detail/ObjectTypeBase.hpp>
#include <matrix/oxArray.hpp>

#include <cstdint>
#include <string>

namespace Velloc::builtin::types {

class LxeObjectPlaceTypes : public detail::ObjectTypeBase {
public:
    constexpr LxeObjectPlaceTypes(oxClassID classId, std::uint64_t variantId) noexcept
        : ObjectTypeBase(classId, variantId) {}

    // lxe_object_place<42,3>; an open output is plain "lxe_object_place".
    std::string toString(ArgTypeDirection direction, unsigned long index) const;
    std::string toString() const { return toString(ArgTypeDirection::INPUT, 0); }

    friend constexpr bool operator==(const LxeObjectPlaceTypes& a,
                                     const LxeObjectPlaceTypes& b) noexcept {
        return a.matches(b);
    }
    friend constexpr bool operator<(const LxeObjectPlaceTypes& a,
                                    const LxeObjectPlaceTypes& b) noexcept {
        return a.sortsBefore(b);
    }
};

} // namespace Velloc::builtin::types
