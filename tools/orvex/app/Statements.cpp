#include "Statements.hpp"

#include <cstddef>

namespace orvex {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f'; }

bool isWordCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// The last character of a value: a name or number, a closing bracket or parenthesis, the
// closing quote of a text, or a transpose ('  .').
bool endsAValue(char c) {
    return isWordCharacter(c) || c == ')' || c == ']' || c == '}' || c == '\'' || c == '"' || c == '.';
}

std::string_view trimmedPart(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

} // namespace

std::vector<Statement> splitStatements(std::string_view line) {
    std::vector<Statement> statements;
    std::size_t start = 0;
    int parentheses = 0;
    int brackets = 0;
    // The last character outside blanks since the statement started; '\0' at its start.
    char last = '\0';
    const auto finish = [&](std::size_t end, bool quiet) {
        const std::string_view text = trimmedPart(line.substr(start, end - start));
        if (!text.empty()) {
            statements.push_back({text, quiet});
        }
    };
    std::size_t i = 0;
    while (i < line.size()) {
        const char c = line[i];
        const bool text = c == '"' || (c == '\'' && (brackets > 0 || !endsAValue(last)));
        if (text) {
            // Up to the closing quote; a doubled quote stands for one.
            for (++i; i < line.size(); ++i) {
                if (line[i] == c) {
                    if (i + 1 < line.size() && line[i + 1] == c) {
                        ++i;
                        continue;
                    }
                    break;
                }
            }
            last = c;
            i = i < line.size() ? i + 1 : i;
            continue;
        }
        if (c == '%') {
            break;
        }
        if ((c == ',' || c == ';') && parentheses == 0 && brackets == 0) {
            finish(i, c == ';');
            start = i + 1;
            last = '\0';
            ++i;
            continue;
        }
        parentheses += c == '(' ? 1 : (c == ')' && parentheses > 0 ? -1 : 0);
        brackets += (c == '[' || c == '{') ? 1 : ((c == ']' || c == '}') && brackets > 0 ? -1 : 0);
        if (!isBlank(c)) {
            last = c;
        }
        ++i;
    }
    finish(i, false);
    return statements;
}

} // namespace orvex
