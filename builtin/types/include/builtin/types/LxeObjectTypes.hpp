// An execution-engine object of a given host class and C++ class variant.
#pragma once

#include <builtin/types/ArgTypeDirection.hpp>
#include <builtin/types/ArgTypeFwd.hpp>
#include <builtin/types/detail/ObjectTypeBase.hpp>
#include <matrix/oxArray.hpp>

#include <cstdint>
#include <string>

namespace Velloc::builtin::types {

class LxeObjectTypes : public detail::ObjectTypeBase {
public:
    // The object class as which a string or a flag is seen where an object is declared.
    static constexpr oxClassID STRING_OBJECT_CLASS_ID = static_cast<oxClassID>(19);

    constexpr LxeObjectTypes(oxClassID classId, std::uint64_t variantId, bool flag) noexcept
        : ObjectTypeBase(classId, variantId), flag_(flag) {}
    constexpr explicit LxeObjectTypes(const FlagInputType&) noexcept
        : LxeObjectTypes(STRING_OBJECT_CLASS_ID, 0, true) {}
    constexpr explicit LxeObjectTypes(const OrvexStringType&) noexcept
        : LxeObjectTypes(STRING_OBJECT_CLASS_ID, 0, true) {}

    constexpr bool getFlag() const noexcept { return flag_; }

    // lxe_object<42,3, true,$subType1>; an open output is plain "lxe_object".
    std::string toString(ArgTypeDirection direction, unsigned long index) const;
    std::string toString() const { return toString(ArgTypeDirection::INPUT, 0); }

    // A wildcard match of class and variant; the flag is not compared.
    friend constexpr bool operator==(const LxeObjectTypes& a, const LxeObjectTypes& b) noexcept {
        return a.matches(b);
    }
    friend constexpr bool operator<(const LxeObjectTypes& a, const LxeObjectTypes& b) noexcept {
        return a.sortsBefore(b);
    }

private:
    bool flag_;
};

} // namespace Velloc::builtin::types
