#include "BundleLibrary.h"

#include <dlfcn.h>

#include <stdexcept>

namespace cppmicroservices::detail {

BundleLibrary::BundleLibrary(std::filesystem::path path) : path_(std::move(path)) {}

void BundleLibrary::load(const std::string& symbolicName)
{
    if (handle_ != nullptr) {
        return;
    }
    handle_ = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle_ == nullptr) {
        const char* reason = dlerror();
        throw std::runtime_error("cannot load the library '" + path_.string() + "' of bundle '" + symbolicName +
                                 "': " + (reason ? reason : "unknown error"));
    }
}

void* BundleLibrary::symbol(const std::string& name) const
{
    return handle_ != nullptr ? dlsym(handle_, name.c_str()) : nullptr;
}

} // namespace cppmicroservices::detail
