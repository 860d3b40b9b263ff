#include "foundation/filesystem/paths.hpp"

#include <dlfcn.h>

#include <cstdlib>
#include <stdexcept>

namespace foundation::filesystem {

namespace {

std::filesystem::path rootAboveThisLibrary()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&rootAboveThisLibrary), &info) == 0 || info.dli_fname == nullptr) {
        throw std::runtime_error("cannot find where the filesystem library was loaded from");
    }
    return std::filesystem::canonical(info.dli_fname).parent_path().parent_path();
}

} // namespace

std::filesystem::path getInstallRoot()
{
    if (const char* root = std::getenv("ORVEX_ROOT"); root != nullptr && *root != '\0') {
        return root;
    }
    static const std::filesystem::path libraryRoot = rootAboveThisLibrary();
    return libraryRoot;
}

} // namespace foundation::filesystem
