#include "Session.hpp"

#include "Suggestions.hpp"

#include <orvex/LiteralError.hpp>
#include <orvex/formatArray.hpp>
#include <orvex/parseLiteral.hpp>

#include <builtin/builtinreg/Explain.hpp>

#include <fl/i18n.hpp>
#include <foundation/core/except/Exception.hpp>
#include <lxe/LxeObjectArrays.hpp>
#include <ocos/ClassRegistry.hpp>
#include <ocos/MethodCall.hpp>

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <iostream>
#include <istream>
#include <memory>
#include <ostream>
#include <stdexcept>

namespace orvex {

namespace {

using Velloc::builtin::BuiltinFcn;

// The prompt a statement is echoed after; carets are aligned for it.
constexpr std::size_t PROMPT_WIDTH = 3;

// An error that belongs to a place in the statement.
class StatementError : public std::invalid_argument {
public:
    StatementError(std::size_t column, const std::string& message) : std::invalid_argument(message), column_(column) {}
    std::size_t column() const noexcept { return column_; }

private:
    std::size_t column_;
};

bool isName(std::string_view text) {
    return !text.empty() && (std::isalpha(static_cast<unsigned char>(text[0])) || text[0] == '_') &&
           std::all_of(text.begin(), text.end(),
                       [](char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '.'; });
}

// Splits at commas that stand outside brackets, parentheses and quotes.
std::vector<std::string_view> splitArguments(std::string_view text) {
    std::vector<std::string_view> parts;
    int depth = 0;
    char quote = 0;
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quote != 0) {
            quote = c == quote ? 0 : quote;
        } else if (c == '\'' || c == '"') {
            quote = c;
        } else if (c == '[' || c == '(' || c == '{') {
            ++depth;
        } else if (c == ']' || c == ')' || c == '}') {
            --depth;
        } else if (c == ',' && depth == 0) {
            parts.push_back(trimmed(text.substr(start, i - start)));
            start = i + 1;
        }
    }
    if (!trimmed(text).empty()) {
        parts.push_back(trimmed(text.substr(start)));
    }
    return parts;
}

std::vector<oxArray*> handlesOf(const std::vector<matrix::ArrayPtr>& arrays) {
    std::vector<oxArray*> handles;
    for (const matrix::ArrayPtr& array : arrays) {
        handles.push_back(array.get());
    }
    return handles;
}

} // namespace

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) text.remove_prefix(1);
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) text.remove_suffix(1);
    return text;
}

Session::Session(const std::vector<LoadedBuiltin>& builtins, std::ostream& out) : builtins_(builtins), out_(out) {}

bool Session::run(std::string_view statement) {
    statement_ = statement;
    try {
        if (statement.starts_with("help ")) {
            help(trimmed(statement.substr(5)));
            return true;
        }
        std::string target = "ans";
        std::string_view expression = statement;
        const std::size_t equals = statement.find('=');
        if (equals != std::string_view::npos && isName(trimmed(statement.substr(0, equals)))) {
            target = std::string(trimmed(statement.substr(0, equals)));
            expression = trimmed(statement.substr(equals + 1));
        }
        matrix::ArrayPtr result = evaluate(expression);
        if (result) {
            out_ << target << " = " << formatArray(result.get()) << '\n';
            variables_[target] = std::move(result);
        }
        return true;
    } catch (const StatementError& error) {
        out_ << std::string(PROMPT_WIDTH + error.column(), ' ') << "^ " << error.what() << '\n';
    } catch (const foundation::core::except::IdentifiedException& error) {
        out_ << "Error (" << error.getId().component << ':' << error.getId().key << "): " << error.message() << '\n';
    } catch (const std::exception& error) {
        out_ << "Error: " << error.what() << '\n';
    }
    return false;
}

// A call of a builtin, a method or an object's indexing, whose arguments may be calls
// too; anything else is a variable or a literal (casts such as int8(5) included).
matrix::ArrayPtr Session::evaluate(std::string_view expression) {
    const std::size_t open = expression.find('(');
    if (open == std::string_view::npos || expression.back() != ')' || !isName(trimmed(expression.substr(0, open)))) {
        return value(expression);
    }
    const std::string_view callee = trimmed(expression.substr(0, open));
    const auto variable = variables_.find(callee);
    const BuiltinFcn* builtin = findBuiltin(callee);
    if (variable == variables_.end() && builtin == nullptr && callee.find('.') == std::string_view::npos) {
        return value(expression);
    }
    std::vector<matrix::ArrayPtr> arguments;
    for (std::string_view text : splitArguments(expression.substr(open + 1, expression.size() - open - 2))) {
        arguments.push_back(evaluate(text));
    }
    std::vector<oxArray*> handles = handlesOf(arguments);
    if (variable != variables_.end()) {
        return matrix::ArrayPtr(Velloc::lxe::parenReference(
            variable->second.get(), {const_cast<const oxArray* const*>(handles.data()), handles.size()}));
    }
    if (builtin != nullptr) {
        oxArray* result = nullptr;
        builtin->invoke(1, &result, static_cast<int>(handles.size()), handles.data(), BuiltinFcn::NoLxe);
        return matrix::ArrayPtr(result);
    }
    return callMethod(std::string(callee), callee, arguments);
}

// object.method(...) on a variable, or Class.method(...) for a static method.
matrix::ArrayPtr Session::callMethod(const std::string& callee, std::string_view expression,
                                     std::vector<matrix::ArrayPtr>& arguments) {
    const std::size_t dot = callee.rfind('.');
    const std::string owner = callee.substr(0, dot);
    const std::string method = callee.substr(dot + 1);
    const ocos::COSClass* cls = nullptr;
    if (const auto variable = variables_.find(owner); variable != variables_.end()) {
        cls = ocos::findClass(matrix::getClassID(variable->second.get()));
        arguments.insert(arguments.begin(), matrix::ArrayPtr(matrix::addReference(variable->second.get())));
    } else {
        cls = ocos::findClass(owner);
    }
    if (cls == nullptr) {
        throw StatementError(columnOf(expression), "no variable or class named '" + owner + "'");
    }
    std::vector<oxArray*> handles = handlesOf(arguments);
    oxArray* result = nullptr;
    ocos::callMethod(*cls, method, 1, &result, static_cast<int>(handles.size()), handles.data());
    return matrix::ArrayPtr(result);
}

matrix::ArrayPtr Session::value(std::string_view text) {
    if (const auto variable = variables_.find(text); variable != variables_.end()) {
        return matrix::ArrayPtr(matrix::addReference(variable->second.get()));
    }
    try {
        return parseLiteral(text);
    } catch (const LiteralError& error) {
        const std::size_t open = text.find('(');
        const std::string_view name = trimmed(text.substr(0, open));
        if (isName(name) && (open != std::string_view::npos || isName(text))) {
            if (findBuiltin(name) == nullptr && variables_.find(name) == variables_.end()) {
                unrecognized(name);
            }
            if (text.back() != ')') {
                throw StatementError(columnOf(text) + text.size(), "missing closing parenthesis ')'");
            }
        }
        throw StatementError(columnOf(text) + error.column(), error.message());
    }
}

const BuiltinFcn* Session::findBuiltin(std::string_view name) const {
    return orvex::findBuiltin(builtins_, name);
}

void Session::help(std::string_view name) {
    const BuiltinFcn* builtin = findBuiltin(name);
    if (builtin == nullptr) {
        unrecognized(name);
    }
    if (!builtin->getHelpContent().empty()) {
        out_ << builtin->getHelpContent() << '\n';
        return;
    }
    out_ << builtin->name << ": " << builtin->getSummary() << '\n';
    for (const Velloc::builtin::BuiltinVariant& variant : builtin->getSearchedByInvokeNoLxe()) {
        out_ << "  " << Velloc::builtin::builtinreg::variantLabel(variant) << '\n';
    }
}

void Session::unrecognized(std::string_view name) const {
    std::vector<std::string> known;
    for (const LoadedBuiltin& loaded : builtins_) {
        known.push_back(loaded.builtin->name);
    }
    for (const auto& [variable, array] : variables_) {
        known.push_back(variable);
    }
    std::string message = "Unrecognized function or variable '" + std::string(name) + "'.";
    const std::vector<std::string> near = nearestNames(name, known);
    for (std::size_t i = 0; i < near.size(); ++i) {
        message += (i == 0 ? " Did you mean " : i + 1 == near.size() ? " or " : ", ") + ("'" + near[i] + "'");
    }
    throw StatementError(columnOf(name), near.empty() ? message : message + "?");
}

// Where a part of the statement starts; parts are views into it.
std::size_t Session::columnOf(std::string_view part) const {
    const char* begin = statement_.data();
    return part.data() >= begin && part.data() <= begin + statement_.size()
               ? static_cast<std::size_t>(part.data() - begin)
               : 0;
}

namespace {

// Progress of a long script on the terminal, when its output goes elsewhere: "[120/1000]"
// rewritten in place on standard error, and wiped at the end.
class Progress {
public:
    explicit Progress(std::size_t total) : shown_(total >= LONG_SCRIPT && isatty(STDERR_FILENO) != 0 &&
                                                 isatty(STDOUT_FILENO) == 0),
                                           total_(total) {}
    ~Progress() {
        if (shown_) {
            std::cerr << "\r\033[K" << std::flush;
        }
    }
    void at(std::size_t line) const {
        if (shown_) {
            std::cerr << "\r[" << line << '/' << total_ << ']' << std::flush;
        }
    }

private:
    static constexpr std::size_t LONG_SCRIPT = 100;
    bool shown_;
    std::size_t total_;
};

} // namespace

int runScript(const std::vector<LoadedBuiltin>& builtins, std::istream& in, std::ostream& out) {
    // Warnings print where they happen, between the statement and its result.
    const auto previous = matrix::setWarningHandler(
        [&](const fl::ustring& message) { out << "Warning: " << fl::i18n::ustring_to_utf8(message) << '\n'; });
    const std::shared_ptr<void> restore(nullptr, [&](void*) { matrix::setWarningHandler(previous); });
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        lines.push_back(std::move(line));
    }
    const Progress progress(lines.size());
    Session session(builtins, out);
    for (std::size_t number = 1; number <= lines.size(); ++number) {
        progress.at(number);
        const std::string_view statement = trimmed(lines[number - 1]);
        if (statement.empty() || statement.front() == '%') {
            continue;
        }
        out << ">> " << statement << '\n';
        if (!session.run(statement)) {
            out << "stopped at line " << number << '\n';
            return 1;
        }
    }
    return 0;
}

} // namespace orvex
