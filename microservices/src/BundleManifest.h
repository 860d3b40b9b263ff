// Finding bundle directories and reading their manifest.json:
//   {"bundle": {"symbolic_name": "...", "library": "libX.so", "activator": true, ...}, ...}
#pragma once

#include "cppmicroservices/AnyMap.h"

#include <filesystem>
#include <string>
#include <vector>

namespace cppmicroservices::detail {

struct BundleManifest {
    std::filesystem::path directory; // absolute and canonical
    std::string symbolicName;
    std::filesystem::path library; // absolute
    bool hasActivator = false;
    AnyMap headers{AnyMap::UNORDERED_MAP_CASEINSENSITIVE_KEYS};
};

// The bundle directories at location: location itself when it holds a manifest.json,
// else its immediate subdirectories that do, by name. Throws std::runtime_error when
// location does not exist, is not a directory or yields no bundle directory.
std::vector<std::filesystem::path> bundleDirectoriesAt(const std::string& location);

// Throws std::runtime_error naming the manifest file and what is wrong with it.
BundleManifest readBundleManifest(const std::filesystem::path& directory);

} // namespace cppmicroservices::detail
