// The qualified name of a function given as a template argument, read from the
// compiler's description of the instantiation, so that diagnostics name the developer
// function without the author repeating it.
#pragma once

#include <string>
#include <string_view>

namespace Velloc::builtin::builtinreg::detail {

template <auto Fcn>
std::string functionNameOf() {
    const std::string_view pretty = __PRETTY_FUNCTION__;
    constexpr std::string_view marker = "Fcn = ";
    const std::size_t start = pretty.find(marker);
    if (start == std::string_view::npos) {
        return std::string(pretty);
    }
    std::string_view name = pretty.substr(start + marker.size());
    name = name.substr(0, name.find_first_of(";]"));
    if (name.starts_with('&')) {
        name.remove_prefix(1);
    }
    // Functions in unnamed namespaces are still best known by the rest of their name.
    std::string qualified(name);
    constexpr std::string_view unnamed = "{anonymous}::";
    for (std::size_t at = qualified.find(unnamed); at != std::string::npos; at = qualified.find(unnamed)) {
        qualified.erase(at, unnamed.size());
    }
    return qualified;
}

} // namespace Velloc::builtin::builtinreg::detail
