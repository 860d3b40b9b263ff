#include <builtin/types/OxClassId.hpp>

#include <array>
#include <string>
#include <string_view>

namespace Velloc::builtin::types {

namespace {

constexpr std::array<std::string_view, oxFIRST_OBJECT_CLASS> fixedClassNames = {
    "oxUNKNOWN_CLASS", "oxCELL_CLASS",   "oxSTRUCT_CLASS", "oxLOGICAL_CLASS",
    "oxCHAR_CLASS",    "oxVOID_CLASS",   "oxDOUBLE_CLASS", "oxSINGLE_CLASS",
    "oxINT8_CLASS",    "oxUINT8_CLASS",  "oxINT16_CLASS",  "oxUINT16_CLASS",
    "oxINT32_CLASS",   "oxUINT32_CLASS", "oxINT64_CLASS",  "oxUINT64_CLASS",
    "oxFUNCTION_CLASS", "oxOPAQUE_CLASS",
};

} // namespace

std::string toString(oxClassID id) {
    if (id >= 0 && !isObjectClass(id)) {
        return std::string(fixedClassNames[static_cast<std::size_t>(id)]);
    }
    const bool object = id >= 0;
    std::string text = object ? "oxOBJECT_CLASS(" : "?";
    text += std::to_string(id);
    text += object ? ')' : '?';
    return text;
}

std::string_view numericClassName(oxClassID id) noexcept {
    switch (id) {
    case oxLOGICAL_CLASS: return "boolean";
    case oxCHAR_CLASS: return "oxChar";
    case oxDOUBLE_CLASS: return "double";
    case oxSINGLE_CLASS: return "single";
    case oxINT8_CLASS: return "int8";
    case oxUINT8_CLASS: return "uint8";
    case oxINT16_CLASS: return "int16";
    case oxUINT16_CLASS: return "uint16";
    case oxINT32_CLASS: return "int32";
    case oxUINT32_CLASS: return "uint32";
    case oxINT64_CLASS: return "int64";
    case oxUINT64_CLASS: return "uint64";
    default: return {};
    }
}

} // namespace Velloc::builtin::types
