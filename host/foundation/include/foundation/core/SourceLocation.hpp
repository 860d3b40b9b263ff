// Where a call was written (file, line, function), captured as a default argument at the
// call site. It is std::source_location where the standard library provides one; clang 14
// over libstdc++ 12 does not, and there the same three facts come from the compiler's
// builtins (the function then without its signature).
#pragma once

#include <version>

#if defined(__cpp_lib_source_location)
#include <source_location>
#else
#include <cstdint>
#endif

namespace foundation::core {

#if defined(__cpp_lib_source_location)
using SourceLocation = std::source_location;
#else
class SourceLocation {
public:
    static constexpr SourceLocation current(const char* file = __builtin_FILE(), std::uint_least32_t line = __builtin_LINE(),
                                            const char* function = __builtin_FUNCTION()) noexcept {
        SourceLocation here;
        here.file_ = file;
        here.line_ = line;
        here.function_ = function;
        return here;
    }

    constexpr const char* file_name() const noexcept { return file_; }
    constexpr std::uint_least32_t line() const noexcept { return line_; }
    constexpr const char* function_name() const noexcept { return function_; }

private:
    const char* file_ = "";
    std::uint_least32_t line_ = 0;
    const char* function_ = "";
};
#endif

} // namespace foundation::core
