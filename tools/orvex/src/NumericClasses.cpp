#include "NumericClasses.hpp"

#include <array>
#include <utility>

namespace orvex::detail {
namespace {

constexpr std::array<std::pair<oxClassID, std::string_view>, 18> CLASS_NAMES{{
    {oxUNKNOWN_CLASS, "unknown"},
    {oxCELL_CLASS, "cell"},
    {oxSTRUCT_CLASS, "struct"},
    {oxLOGICAL_CLASS, "logical"},
    {oxCHAR_CLASS, "char"},
    {oxVOID_CLASS, "void"},
    {oxDOUBLE_CLASS, "double"},
    {oxSINGLE_CLASS, "single"},
    {oxINT8_CLASS, "int8"},
    {oxUINT8_CLASS, "uint8"},
    {oxINT16_CLASS, "int16"},
    {oxUINT16_CLASS, "uint16"},
    {oxINT32_CLASS, "int32"},
    {oxUINT32_CLASS, "uint32"},
    {oxINT64_CLASS, "int64"},
    {oxUINT64_CLASS, "uint64"},
    {oxFUNCTION_CLASS, "function_handle"},
    {oxOPAQUE_CLASS, "opaque"},
}};

} // namespace

std::string_view builtinClassName(oxClassID id) {
    for (const auto& [classId, name] : CLASS_NAMES) {
        if (classId == id) return name;
    }
    return "unknown";
}

std::optional<oxClassID> castClass(std::string_view name) {
    for (const auto& [classId, className] : CLASS_NAMES) {
        if (className == name && holdsElements(classId) && classId != oxCHAR_CLASS) {
            return classId;
        }
    }
    return std::nullopt;
}

} // namespace orvex::detail
