#include <lxe/ILxeBuiltinEnvironment.hpp>

namespace Velloc::lxe {

ILxeBuiltinEnvironment::~ILxeBuiltinEnvironment() = default;

} // namespace Velloc::lxe
