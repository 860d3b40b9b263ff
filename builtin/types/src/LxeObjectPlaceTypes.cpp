#include <builtin/types/LxeObjectPlaceTypes.hpp>

#include <string>

namespace Velloc::builtin::types {

std::string LxeObjectPlaceTypes::toString(ArgTypeDirection direction, unsigned long index) const {
    if (direction == ArgTypeDirection::OUTPUT && isOpen()) {
        return "lxe_object_place";
    }
    std::string text = "lxe_object_place<";
    appendIds(text, index);
    return text + ">";
}

} // namespace Velloc::builtin::types
