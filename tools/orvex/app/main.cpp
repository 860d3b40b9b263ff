// orvex: lists, shows, calls and explains the builtins of the defining libraries found
// as bundles under the installation root (or --bundles DIR).
#include "Commands.hpp"
#include "Libraries.hpp"
#include "Session.hpp"

#include <exception>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace {

constexpr const char* USAGE =
    "usage: orvex [--bundles DIR] list\n"
    "       orvex [--bundles DIR] show NAME\n"
    "       orvex [--bundles DIR] call NAME [ARG...]\n"
    "       orvex [--bundles DIR] explain NAME [ARG...]\n"
    "       orvex [--bundles DIR] session [FILE]      statements from FILE or standard input\n"
    "ARG is a literal: 3, -2.5, [1 2; 3 4], int8(5), single(2), true, 3+4i, 'chars', \"string\"\n";

int run(std::vector<std::string> args) {
    std::filesystem::path bundles = orvex::defaultBundleDirectory();
    if (args.size() >= 2 && args[0] == "--bundles") {
        bundles = args[1];
        args.erase(args.begin(), args.begin() + 2);
    }
    if (args.empty() || (args[0] != "list" && args[0] != "session" && args.size() < 2)) {
        std::cerr << USAGE;
        return 2;
    }
    const std::string command = args[0];
    const auto builtins = orvex::loadBuiltins(bundles);
    if (command == "list") {
        return orvex::listBuiltins(builtins, std::cout);
    }
    if (command == "session") {
        if (args.size() < 2) {
            return orvex::runSession(builtins, std::cin, std::cout);
        }
        std::ifstream file(args[1]);
        if (!file) {
            std::cerr << "orvex: cannot read " << args[1] << '\n';
            return 2;
        }
        return orvex::runSession(builtins, file, std::cout);
    }
    const std::string name = args[1];
    const std::vector<std::string> arguments(args.begin() + 2, args.end());
    if (command == "show") {
        return orvex::showBuiltin(builtins, name, std::cout);
    }
    if (command == "call") {
        return orvex::callBuiltin(builtins, name, arguments, std::cout);
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
