#include "Session.hpp"

#include <orvex/LiteralError.hpp>
#include <orvex/formatArray.hpp>
#include <orvex/parseLiteral.hpp>

#include <fl/i18n.hpp>
#include <foundation/core/except/Exception.hpp>
#include <lxe/LxeObjectArrays.hpp>
#include <ocos/ClassRegistry.hpp>
#include <ocos/MethodCall.hpp>

#include <algorithm>
#include <cctype>
#include <istream>
#include <map>
#include <ostream>
#include <stdexcept>
#include <string>

namespace orvex {

namespace {

using Velloc::builtin::BuiltinFcn;

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) text.remove_prefix(1);
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) text.remove_suffix(1);
    return text;
}

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

struct Arguments {
    std::vector<matrix::ArrayPtr> owned;
    std::vector<oxArray*> handles;
    void add(matrix::ArrayPtr array) {
        handles.push_back(array.get());
        owned.push_back(std::move(array));
    }
    void prepend(oxArray* array) {
        handles.insert(handles.begin(), array);
        owned.insert(owned.begin(), matrix::ArrayPtr(array));
    }
    int count() const { return static_cast<int>(handles.size()); }
    Velloc::lxe::IndexArrays constHandles() const {
        return {const_cast<const oxArray* const*>(handles.data()), handles.size()};
    }
};

class Session {
public:
    Session(const std::vector<LoadedBuiltin>& builtins, std::ostream& out) : builtins_(builtins), out_(out) {}

    // False when the statement failed.
    bool run(std::string_view line) {
        try {
            std::string target = "ans";
            std::string_view expression = line;
            const std::size_t equals = line.find('=');
            if (equals != std::string_view::npos && isName(trimmed(line.substr(0, equals)))) {
                target = std::string(trimmed(line.substr(0, equals)));
                expression = trimmed(line.substr(equals + 1));
            }
            matrix::ArrayPtr result = evaluate(expression);
            if (result) {
                out_ << target << " = " << formatArray(result.get()) << '\n';
                variables_[target] = std::move(result);
            }
            return true;
        } catch (const LiteralError& error) {
            out_ << error.what() << '\n';
        } catch (const foundation::core::except::IdentifiedException& error) {
            out_ << "Error (" << error.getId().component << ':' << error.getId().key << "): " << error.message()
                 << '\n';
        } catch (const std::exception& error) {
            out_ << "Error: " << error.what() << '\n';
        }
        return false;
    }

private:
    // A call of a builtin, a method or an object's indexing, whose arguments may be calls
    // too; anything else is a variable or a literal (casts such as int8(5) included).
    matrix::ArrayPtr evaluate(std::string_view expression) {
        const std::size_t open = expression.find('(');
        if (open == std::string_view::npos || expression.back() != ')' || !isName(trimmed(expression.substr(0, open)))) {
            return value(expression);
        }
        const std::string callee(trimmed(expression.substr(0, open)));
        const auto variable = variables_.find(callee);
        const BuiltinFcn* builtin = findBuiltin(callee);
        if (variable == variables_.end() && builtin == nullptr && callee.find('.') == std::string::npos) {
            return value(expression);
        }
        Arguments arguments;
        for (std::string_view text : splitArguments(expression.substr(open + 1, expression.size() - open - 2))) {
            arguments.add(evaluate(text));
        }
        if (variable != variables_.end()) {
            return matrix::ArrayPtr(Velloc::lxe::parenReference(variable->second.get(), arguments.constHandles()));
        }
        if (builtin != nullptr) {
            oxArray* result = nullptr;
            builtin->invoke(1, &result, arguments.count(), arguments.handles.data(), BuiltinFcn::NoLxe);
            return matrix::ArrayPtr(result);
        }
        return callMethod(callee, arguments);
    }

    // object.method(...) on a variable, or Class.method(...) for a static method.
    matrix::ArrayPtr callMethod(const std::string& callee, Arguments& arguments) {
        const std::size_t dot = callee.rfind('.');
        if (dot == std::string::npos) {
            throw std::invalid_argument("no builtin, variable or method named '" + callee + "'");
        }
        const std::string owner = callee.substr(0, dot);
        const std::string method = callee.substr(dot + 1);
        const ocos::COSClass* cls = nullptr;
        if (const auto variable = variables_.find(owner); variable != variables_.end()) {
            cls = ocos::findClass(matrix::getClassID(variable->second.get()));
            arguments.prepend(matrix::addReference(variable->second.get()));
        } else {
            cls = ocos::findClass(owner);
        }
        if (cls == nullptr) {
            throw std::invalid_argument("no variable or class named '" + owner + "'");
        }
        oxArray* result = nullptr;
        ocos::callMethod(*cls, method, 1, &result, arguments.count(), arguments.handles.data());
        return matrix::ArrayPtr(result);
    }

    matrix::ArrayPtr value(std::string_view text) {
        if (const auto variable = variables_.find(std::string(text)); variable != variables_.end()) {
            return matrix::ArrayPtr(matrix::addReference(variable->second.get()));
        }
        return parseLiteral(text);
    }

    const BuiltinFcn* findBuiltin(const std::string& name) const {
        for (const LoadedBuiltin& loaded : builtins_) {
            if (loaded.builtin->name == name) {
                return loaded.builtin;
            }
        }
        return nullptr;
    }

    const std::vector<LoadedBuiltin>& builtins_;
    std::ostream& out_;
    std::map<std::string, matrix::ArrayPtr, std::less<>> variables_;
};

} // namespace

int runSession(const std::vector<LoadedBuiltin>& builtins, std::istream& in, std::ostream& out) {
    Session session(builtins, out);
    int status = 0;
    for (std::string line; std::getline(in, line);) {
        const std::string_view statement = trimmed(line);
        if (statement.empty() || statement.front() == '%') {
            continue;
        }
        out << ">> " << statement << '\n';
        if (!session.run(statement)) {
            status = 1;
        }
    }
    return status;
}

} // namespace orvex
