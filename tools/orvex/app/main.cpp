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
    "       orvex [--bundles DIR] list               every builtin, its library and summary\n"
    "       orvex [--bundles DIR] dump [--json]       every builtin, its lists and variants\n"
    "       orvex [--bundles DIR] lint [--json] [LIBRARY...]  variants cleanup removed or found shadowed\n"
    "       orvex [--bundles DIR] show NAME          the variants of a builtin, list by list\n"
    "       orvex [--bundles DIR] call NAME [ARG...]  call a builtin and print its result\n"
    "       orvex [--bundles DIR] compiled NAME [ARG...]  call as compiled code does: scalars, no boxing\n"
    "       orvex [--bundles DIR] explain NAME [ARG...]  the variant a call reaches and why the others refuse\n"
    "       orvex --help | -h | help                 this text\n"
    "ARG is a literal: 3, -2.5, 1e3, Inf, 3+4i, [1 2; 3 4], [1 -2], int8(5), single(2), true,\n"
    "  'chars', \"string\"\n"
    "A session statement is an expression, maybe assigned: x = 1 + 2*3, y = -sqrt(x + 2),\n"
    "  r = 1:2:9, r(end), m(2, :), r(r > 3), m', b.append(4); operators call plus, minus,\n"
    "  times, rdivide, power, uminus, uplus, colon, mtimes, mrdivide, mpower, eq, ne, lt, le,\n"
    "  gt, ge, and, or, not, transpose, ctranspose; && and || take scalars; statements on a\n"
    "  line are separated by ',' (shown) or ';' (quiet); 'who', 'whos' and 'clear [NAME...]'\n"
    "  list and remove variables; 'help NAME' describes a builtin, 'help' lists them\n"
    "environment:\n"
    "  ORVEX_ROOT         the installation root; bundles are found under ORVEX_ROOT/modules\n"
    "  BUILTIN2_LOG       log channels, comma-separated or '*', e.g. BUILTIN2_LOG=builtin2::dispatch\n"
    "  FL_DIAG_TERMINATE  1 arms the checks that end the process on a broken promise, 0 disarms\n"
    "                     them; orvex arms them when it is unset\n";

int run(std::vector<std::string> args) {
    if (args.size() == 1 && (args[0] == "--help" || args[0] == "-h" || args[0] == "help")) {
        std::cout << USAGE;
        return 0;
    }
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
    const orvex::TrackedLibraries libraries(bundles);
    const auto snapshot = libraries.snapshot();
    const std::vector<orvex::LoadedBuiltin>& builtins = snapshot->builtins;
    const orvex::Language language(libraries);
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
                               ? orvex::runInteractive(libraries)
                               : orvex::runScript(libraries, args.empty() ? std::cin : file, std::cout);
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
