// orvex: runs statements over the builtins of the defining libraries found as bundles
// under the installation root (and in each --bundles DIR), interactively or as a script,
// lists, shows, calls and explains them one command at a time, and writes new libraries.
#include "Commands.hpp"
#include "CompiledCall.hpp"
#include "Dump.hpp"
#include "Language.hpp"
#include "Libraries.hpp"
#include "Lint.hpp"
#include "NewLibrary.hpp"
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
    "usage: orvex [OPTION...]                       a session: interactive on a terminal, else a script\n"
    "       orvex [OPTION...] FILE                  the statements of FILE as a script\n"
    "       orvex [OPTION...] list                  every builtin, its library and summary\n"
    "       orvex [OPTION...] dump [--json]         every builtin, its lists and variants\n"
    "       orvex [OPTION...] lint [--json] [LIBRARY...]  variants no interpreted call reaches, or that\n"
    "                                               cleanup removed or found shadowed\n"
    "       orvex [OPTION...] show NAME             the variants of a builtin, list by list\n"
    "       orvex [OPTION...] call NAME [ARG...]    call a builtin and print its result\n"
    "       orvex [OPTION...] compiled NAME [ARG...]  call as compiled code does: scalars and literal\n"
    "                                               option texts, no boxing\n"
    "       orvex [OPTION...] explain NAME [ARG...]  the variant a call reaches and why the others refuse\n"
    "       orvex new NAME [DIR]                    write a new library NAME, ready to build, into DIR\n"
    "                                               (default ./NAME)\n"
    "       orvex --help | -h | help                this text\n"
    "OPTION:\n"
    "  --bundles DIR        also load the bundles in DIR (a bundle's folder, or a folder of them);\n"
    "                       may be repeated, and adds to the default folder ORVEX_ROOT/modules\n"
    "  --no-default-bundles leave the default folder out\n"
    "  --stats              (sessions) afterwards, how often each variant was taken\n"
    "A bundle that fails to load is reported with its path and the reason, and the others load.\n"
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
    if (!args.empty() && args[0] == "new") {
        if (args.size() < 2 || args.size() > 3) {
            std::cerr << USAGE;
            return 2;
        }
        return orvex::writeNewLibrary(args[1], std::filesystem::path(args.size() == 3 ? args[2] : args[1]),
                                      std::cout, std::cerr);
    }
    orvex::BundleFolders folders;
    std::optional<orvex::DispatchStats> stats;
    while (!args.empty() && args[0].starts_with("--")) {
        if (args[0] == "--bundles" && args.size() >= 2) {
            folders.extra.emplace_back(args[1]);
            args.erase(args.begin(), args.begin() + 2);
        } else if (args[0] == "--no-default-bundles") {
            folders.withDefault = false;
            args.erase(args.begin());
        } else if (args[0] == "--stats") {
            stats.emplace();
            args.erase(args.begin());
        } else {
            std::cerr << "orvex: " << (args[0] == "--bundles" ? "--bundles needs a folder" : "unknown option " + args[0])
                      << '\n'
                      << USAGE;
            return 2;
        }
    }
    const std::vector<std::string> commands{"list", "dump", "lint", "show", "call", "compiled", "explain"};
    const bool isCommand = !args.empty() && std::find(commands.begin(), commands.end(), args[0]) != commands.end();
    if (args.size() > 1 && !isCommand) {
        std::cerr << USAGE;
        return 2;
    }
    // list, show and lint print the variants no interpreted call reaches themselves.
    const bool listsUnreachable = isCommand && (args[0] == "list" || args[0] == "show" || args[0] == "lint");
    const orvex::TrackedLibraries libraries(folders, std::cerr, !listsUnreachable);
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
