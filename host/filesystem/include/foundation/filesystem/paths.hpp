// The installation root and native paths, as the host's libraries see them.
#pragma once

#include <filesystem>
#include <string_view>

namespace foundation::filesystem {

// The environment variable ORVEX_ROOT when it is set and not empty; otherwise the folder
// above the one this library was loaded from (libraries sit in <root>/lib, in the build
// tree and in an installation alike).
std::filesystem::path getInstallRoot();

// The UTF-16 path text as a native path. Throws std::filesystem::filesystem_error for text
// that is not valid UTF-16.
std::filesystem::path toNativePath(std::u16string_view path);

// base with relative appended; base itself when relative is empty. A relative that starts
// with a separator is still appended below base.
std::filesystem::path concatenate(const std::filesystem::path& base, const std::filesystem::path& relative);

} // namespace foundation::filesystem
