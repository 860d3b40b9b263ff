#include "Workspace.hpp"

#include <orvex/formatArray.hpp>

#include <algorithm>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace orvex {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t'; }

// The names after command in statement, or none when statement is not that command:
// "who" gives no names, "who x y" two; "who = 1" and "who(1)" are not the command.
std::optional<std::vector<std::string_view>> namesAfter(std::string_view statement, std::string_view command) {
    if (!statement.starts_with(command)) {
        return std::nullopt;
    }
    std::string_view rest = statement.substr(command.size());
    if (!rest.empty() && !isBlank(rest.front())) {
        return std::nullopt;
    }
    std::vector<std::string_view> names;
    while (true) {
        while (!rest.empty() && isBlank(rest.front())) rest.remove_prefix(1);
        if (rest.empty()) {
            return names;
        }
        if (names.empty() && (rest.front() == '=' || rest.front() == '(')) {
            return std::nullopt;
        }
        std::size_t end = 0;
        while (end < rest.size() && !isBlank(rest[end])) ++end;
        names.push_back(rest.substr(0, end));
        rest.remove_prefix(end);
    }
}

// The variables named, in the order of their names; every variable when names is empty.
std::vector<Variables::const_iterator> selected(const Variables& variables,
                                                const std::vector<std::string_view>& names) {
    std::vector<Variables::const_iterator> chosen;
    for (auto it = variables.begin(); it != variables.end(); ++it) {
        if (names.empty() || std::find(names.begin(), names.end(), it->first) != names.end()) {
            chosen.push_back(it);
        }
    }
    return chosen;
}

// "Your variables are:" and the names on one line, as array languages list them;
// nothing when there are none.
void who(const Variables& variables, const std::vector<std::string_view>& names, std::ostream& out) {
    const auto chosen = selected(variables, names);
    if (chosen.empty()) {
        return;
    }
    out << "Your variables are:\n";
    const char* separator = "";
    for (const auto& variable : chosen) {
        out << separator << variable->first;
        separator = "  ";
    }
    out << '\n';
}

// A table of names, sizes and classes ("complex double", "sparse double" and the
// class-object classes by name), its columns aligned.
void whos(const Variables& variables, const std::vector<std::string_view>& names, std::ostream& out) {
    const auto chosen = selected(variables, names);
    if (chosen.empty()) {
        return;
    }
    struct Row {
        std::string name, size, cls;
    };
    std::vector<Row> rows{{"Name", "Size", "Class"}};
    for (const auto& variable : chosen) {
        // formatType gives "2x3 complex double": the size, a blank, then the class.
        const std::string type = formatType(variable->second.get());
        const std::size_t blank = type.find(' ');
        rows.push_back(
            {variable->first, type.substr(0, blank), blank == std::string::npos ? "" : type.substr(blank + 1)});
    }
    std::size_t nameWidth = 0;
    std::size_t sizeWidth = 0;
    for (const Row& row : rows) {
        nameWidth = std::max(nameWidth, row.name.size());
        sizeWidth = std::max(sizeWidth, row.size.size());
    }
    for (const Row& row : rows) {
        out << "  " << row.name << std::string(nameWidth - row.name.size() + 2, ' ') << row.size
            << std::string(sizeWidth - row.size.size() + 2, ' ') << row.cls << '\n';
    }
}

// "clear all" and "clear variables" clear every variable, as array languages read them.
void clear(Variables& variables, const std::vector<std::string_view>& names) {
    const bool everything = names.empty() || (names.size() == 1 && (names[0] == "all" || names[0] == "variables"));
    if (everything) {
        variables.clear();
        return;
    }
    for (const std::string_view name : names) {
        if (const auto variable = variables.find(name); variable != variables.end()) {
            variables.erase(variable);
        }
    }
}

} // namespace

bool runWorkspaceCommand(std::string_view statement, Variables& variables, std::ostream& out) {
    if (const auto names = namesAfter(statement, "whos")) {
        whos(variables, *names, out);
        return true;
    }
    if (const auto names = namesAfter(statement, "who")) {
        who(variables, *names, out);
        return true;
    }
    if (const auto names = namesAfter(statement, "clear")) {
        clear(variables, *names);
        return true;
    }
    return false;
}

} // namespace orvex
