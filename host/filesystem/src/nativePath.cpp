#include "foundation/filesystem/paths.hpp"

#include <string>

namespace foundation::filesystem {

std::filesystem::path toNativePath(std::u16string_view path)
{
    return std::filesystem::path(std::u16string(path)).make_preferred();
}

std::filesystem::path concatenate(const std::filesystem::path& base, const std::filesystem::path& relative)
{
    return relative.empty() ? base : base / relative.relative_path();
}

} // namespace foundation::filesystem
