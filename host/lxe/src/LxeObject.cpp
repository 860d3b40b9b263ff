#include <lxe/LxeObject.hpp>

namespace Velloc::lxe {

LxeObject::~LxeObject() = default;

} // namespace Velloc::lxe
