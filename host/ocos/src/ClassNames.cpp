#include <ocos/ClassNames.hpp>

#include <ocos/ClassRegistry.hpp>

#include <array>
#include <string_view>

namespace ocos {

namespace {

// Indexed by class id.
constexpr std::array<std::string_view, oxFIRST_OBJECT_CLASS> BUILT_IN_NAMES{
    "unknown", "cell",  "struct", "logical", "char",  "void",   "double", "single", "int8",
    "uint8",   "int16", "uint16", "int32",   "uint32", "int64", "uint64", "function_handle", "opaque",
};

} // namespace

std::string describeClass(oxClassID id) {
    if (id >= 0 && id < oxFIRST_OBJECT_CLASS) {
        return std::string(BUILT_IN_NAMES[static_cast<std::size_t>(id)]);
    }
    if (const COSClass* cls = findClass(id)) {
        return cls->getName();
    }
    return "class " + std::to_string(id);
}

} // namespace ocos
