#include "Repl.hpp"

#include "Session.hpp"

#include <matrix/oxArray.hpp>

#include <fl/i18n.hpp>

#include <editline/readline.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

namespace orvex {

namespace {

struct FreeLine {
    void operator()(char* line) const { std::free(line); }
};

} // namespace

int runInteractive(const TrackedLibraries& libraries) {
    std::cout << "orvex: " << libraries.snapshot()->builtins.size() << " builtins loaded; `help NAME` describes one, `exit` leaves.\n";
    // Warnings print where they happen, between the statement and its result.
    const auto previous = matrix::setWarningHandler(
        [](const fl::ustring& message) { std::cout << "Warning: " << fl::i18n::ustring_to_utf8(message) << '\n'; });
    Session session(libraries, std::cout);
    while (true) {
        const std::unique_ptr<char, FreeLine> line(readline(">> "));
        if (line == nullptr) {
            std::cout << '\n';
            break;
        }
        const std::string_view statement = trimmed(line.get());
        if (statement == "exit" || statement == "quit") {
            break;
        }
        if (statement.empty() || statement.front() == '%') {
            continue;
        }
        add_history(line.get());
        session.run(statement);
        std::cout.flush();
    }
    matrix::setWarningHandler(previous);
    return 0;
}

} // namespace orvex
