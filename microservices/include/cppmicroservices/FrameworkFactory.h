// Creates frameworks.
#pragma once

#include "cppmicroservices/Any.h"
#include "cppmicroservices/Framework.h"

#include <string>
#include <unordered_map>

namespace cppmicroservices {

// Framework properties, readable through BundleContext::GetProperty.
using FrameworkConfiguration = std::unordered_map<std::string, Any>;

class FrameworkFactory {
public:
    // A new framework in the INSTALLED state; call Init or Start before use.
    Framework NewFramework(const FrameworkConfiguration& configuration = FrameworkConfiguration());
};

} // namespace cppmicroservices
