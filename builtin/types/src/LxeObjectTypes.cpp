#include <builtin/types/LxeObjectTypes.hpp>

#include <string>

namespace Velloc::builtin::types {

std::string LxeObjectTypes::toString(ArgTypeDirection direction, unsigned long index) const {
    const bool output = direction == ArgTypeDirection::OUTPUT;
    if (output && isOpen()) {
        return "lxe_object";
    }
    const std::string indexText = std::to_string(index);
    std::string text = "lxe_object<";
    appendIds(text, index);
    text += ',';
    if (isOpen()) {
        text += "$bool" + indexText;
    } else {
        text += flag_ ? " true" : " false";
    }
    text += output ? ",nil>" : ",$subType" + indexText + ">";
    return text;
}

} // namespace Velloc::builtin::types
