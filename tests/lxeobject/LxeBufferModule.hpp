// Starting the example buffer module from the build tree; later calls do nothing.
#pragma once

#include <foundation/cppmicroservices/framework.hpp>

#include <filesystem>

inline void startLxeBufferModule() {
    foundation::cppmicroservices::installAndStart(std::filesystem::path(BUILD_ROOT) / "modules/lxebuffer", "");
}
