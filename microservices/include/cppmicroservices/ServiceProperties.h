// The properties of a service: text keys compared without regard to ASCII case.
#pragma once

#include "cppmicroservices/AnyMap.h"

namespace cppmicroservices {

using ServiceProperties = AnyMap::unordered_any_cimap;

} // namespace cppmicroservices
