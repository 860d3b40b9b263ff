// Names of the standard service properties and of the system bundle.
#pragma once

#include <string>

namespace cppmicroservices::Constants {

inline const std::string SYSTEM_BUNDLE_LOCATION = "System Bundle";
inline const std::string SYSTEM_BUNDLE_SYMBOLICNAME = "system_bundle";

// The interface names a service is registered under (std::vector<std::string>).
inline const std::string OBJECTCLASS = "objectclass";
// A number unique to each registration, increasing from 1 (long).
inline const std::string SERVICE_ID = "service.id";
// Higher ranks are preferred; 0 unless the registering code says otherwise (int).
inline const std::string SERVICE_RANKING = "service.ranking";
inline const std::string SERVICE_SCOPE = "service.scope";
inline const std::string SCOPE_SINGLETON = "singleton";

} // namespace cppmicroservices::Constants
