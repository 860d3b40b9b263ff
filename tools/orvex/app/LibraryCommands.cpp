#include "LibraryCommands.hpp"

#include <foundation/cppmicroservices/framework.hpp>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>

namespace orvex {

namespace {

// The argument of "WORD ARG", or none when statement is not that command. "load = 1"
// assigns to a variable of that name instead.
std::optional<std::string> argumentOf(std::string_view statement, std::string_view word) {
    if (!statement.starts_with(word) || statement.size() == word.size() || statement[word.size()] != ' ') {
        return std::nullopt;
    }
    std::string_view argument = statement.substr(word.size() + 1);
    while (!argument.empty() && argument.front() == ' ') argument.remove_prefix(1);
    if (argument.empty() || argument.front() == '=') {
        return std::nullopt;
    }
    return std::string(argument);
}

// Each bundle at path on its own: one that fails is reported and skipped, the others load.
void load(const std::string& path, std::ostream& out) {
    if (!std::filesystem::is_directory(path)) {
        throw std::invalid_argument("load: no bundle directory at '" + path + "'");
    }
    if (loadBundles(path, out) == 0) {
        throw std::invalid_argument("load: no bundle at '" + path + "' started");
    }
    out << "loaded " << path << '\n';
}

void unload(const std::string& name, const std::vector<LoadedBuiltin>& builtins, std::ostream& out) {
    // Only defining libraries: the framework's other bundles are not the user's to stop.
    const bool loaded = std::any_of(builtins.begin(), builtins.end(),
                                    [&](const LoadedBuiltin& builtin) { return builtin.library == name; });
    const auto framework = foundation::cppmicroservices::getFramework();
    if (!loaded || !framework) {
        throw std::invalid_argument("unload: no library named '" + name + "' is loaded");
    }
    for (auto& bundle : framework->GetBundleContext().GetBundles()) {
        if (bundle.GetSymbolicName() == name) {
            bundle.Stop();
        }
    }
    out << "unloaded " << name << '\n';
}

} // namespace

bool runLibraryCommand(std::string_view statement, const std::vector<LoadedBuiltin>& builtins, std::ostream& out) {
    if (const auto path = argumentOf(statement, "load")) {
        load(*path, out);
        return true;
    }
    if (const auto name = argumentOf(statement, "unload")) {
        unload(*name, builtins, out);
        return true;
    }
    return false;
}

} // namespace orvex
