// A bundle's shared library, opened on the bundle's first start with RTLD_NOW |
// RTLD_LOCAL. It is never closed: service objects, their vtables and activators from it may
// still be referenced after the bundle stops, and until the process exits.
#pragma once

#include <filesystem>
#include <string>

namespace cppmicroservices::detail {

class BundleLibrary {
public:
    explicit BundleLibrary(std::filesystem::path path);

    // Throws std::runtime_error naming the library, the bundle and the loader's reason.
    void load(const std::string& symbolicName);
    // The exported symbol, or null; the library must be loaded.
    void* symbol(const std::string& name) const;
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
    void* handle_ = nullptr;
};

} // namespace cppmicroservices::detail
