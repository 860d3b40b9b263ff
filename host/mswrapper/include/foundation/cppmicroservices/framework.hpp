// The process's one module framework.
#pragma once

#include <cppmicroservices/Framework.h>

#include <filesystem>
#include <memory>
#include <string>

namespace foundation::cppmicroservices {

// The framework, created, initialised and started by the first call (once, whichever
// thread calls first) and kept until the process exits; null when it could not start.
std::shared_ptr<::cppmicroservices::Framework> getFramework();

// Installs the bundles at path (a bundle directory, or a directory of them) into the
// framework and starts each whose manifest headers match the LDAP filter (every one when
// the filter is empty). Bundles installed before are not installed again; active ones stay
// as they are. Install, filter and start failures propagate; std::runtime_error when there
// is no framework.
void installAndStart(const std::filesystem::path& path, const std::string& ldapFilter);

} // namespace foundation::cppmicroservices
