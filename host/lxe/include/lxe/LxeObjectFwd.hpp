// The engine's objects, as far as code that only passes them around needs to know.
#pragma once

namespace Velloc::lxe {
class LxeObject;
}
