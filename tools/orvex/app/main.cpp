// orvex: runs statements over the builtins of the defining libraries found as bundles
// under the installation root (or --bundles DIR), interactively or as a script, and
// lists, shows, calls and explains them one command at a time.
#include "Commands.hpp"
#include "CompiledCall.hpp"
#include "Dump.hpp"
#include "Language.hpp"
#include "Libraries.hpp"
#include "Lint.hpp"
#include "Repl.hpp"
#include "Session.hpp"
#include "Stats.hpp"

#include <unistd.h>

#include <algorithm>
#include <exception>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

namespace {

constexpr const char* USAGE =
    "usage: orvex [--bundles DIR] [--stats]          a session: interactive on a terminal, else a script\n"
    "       orvex [--bundles DIR] [--stats] FILE     the statements of FILE as a script\n"
    "         --stats: afterwards, how often each variant was taken\n"
    "       orvex [--bundles DIR] list\n"
    "       orvex [--bundles DIR] dump [--json]       every builtin, its lists and variants\n"
    "       orvex [--bundles DIR] lint [--json] [LIBRARY...]  variants cleanup removed or found shadowed\n"
    "       orvex [--bundles DIR] show NAME\n"
    "       orvex [--bundles DIR] call NAME [ARG...]\n"
    "       orvex [--bundles DIR] compiled NAME [ARG...]  call as compiled code does: scalars, no boxing\n"
    "       orvex [--bundles DIR] explain NAME [ARG...]\n"
    "ARG is a literal: 3, -2.5, [1 2; 3 4], int8(5), single(2), true, 3+4i, 'chars', \"string\"\n";

int run(std::vector<std::string> args) {
    std::filesystem::path bundles = orvex::defaultBundleDirectory();
    if (args.size() >= 2 && args[0] == "--bundles") {
        bundles = args[1];
        args.erase(args.begin(), args.begin() + 2);
    }
    std::optional<orvex::DispatchStats> stats;
    if (!args.empty() && args[0] == "--stats") {
        stats.emplace();
        args.erase(args.begin());
    }
    const std::vector<std::string> commands{"list", "dump", "lint", "show", "call", "compiled", "explain"};
    const bool isCommand = !args.empty() && std::find(commands.begin(), commands.end(), args[0]) != commands.end();
    if (args.size() > 1 && !isCommand) {
        std::cerr << USAGE;
        return 2;
    }
    const auto builtins = orvex::loadBuiltins(bundles);
    const orvex::Language language(builtins);
    if (!isCommand) {
        std::ifstream file;
        if (!args.empty()) {
            file.open(args[0]);
            if (!file) {
                std::cerr << "orvex: cannot read " << args[0] << '\n';
                return 2;
            }
        }
        const int status = args.empty() && isatty(STDIN_FILENO) != 0
                               ? orvex::runInteractive(builtins)
                               : orvex::runScript(builtins, args.empty() ? std::cin : file, std::cout);
        if (stats) {
            stats->print(std::cout);
        }
        return status;
    }
    const std::string command = args[0];
    if (command == "list") {
        return orvex::listBuiltins(builtins, std::cout);
    }
    const bool json = args.size() > 1 && args[1] == "--json";
    if (command == "dump") {
        return orvex::dumpBuiltins(builtins, json, std::cout);
    }
    if (command == "lint") {
        return orvex::lintBuiltins(builtins, {args.begin() + (json ? 2 : 1), args.end()}, json, std::cout);
    }
    if (args.size() < 2) {
        std::cerr << USAGE;
        return 2;
    }
    const std::string name = args[1];
    const std::vector<std::string> arguments(args.begin() + 2, args.end());
    if (command == "show") {
        return orvex::showBuiltin(builtins, name, std::cout);
    }
    if (command == "call") {
        return orvex::callBuiltin(builtins, name, arguments, std::cout);
    }
    if (command == "compiled") {
        return orvex::callCompiled(builtins, name, arguments, std::cout);
    }
    if (command == "explain") {
        return orvex::explainCall(builtins, name, arguments, std::cout);
    }
    std::cerr << USAGE;
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(std::vector<std::string>(argv + 1, argv + argc));
    } catch (const std::exception& error) {
        std::cerr << "orvex: " << error.what() << '\n';
        return 2;
    }
}
