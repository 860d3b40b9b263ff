#include "Session.hpp"

#include "Commands.hpp"
#include "LibraryCommands.hpp"
#include "StatementError.hpp"
#include "Statements.hpp"
#include "Suggestions.hpp"
#include "Workspace.hpp"

#include <orvex/LiteralError.hpp>
#include <orvex/formatArray.hpp>
#include <orvex/indexArray.hpp>
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
using Kind = Expression::Kind;

// The prompt a statement is echoed after; carets are aligned for it.
constexpr std::size_t PROMPT_WIDTH = 3;

bool isName(std::string_view text) {
    return !text.empty() && (std::isalpha(static_cast<unsigned char>(text[0])) || text[0] == '_') &&
           std::all_of(text.begin(), text.end(),
                       [](char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '.'; });
}

std::vector<oxArray*> handlesOf(const std::vector<matrix::ArrayPtr>& arrays) {
    std::vector<oxArray*> handles;
    for (const matrix::ArrayPtr& array : arrays) {
        handles.push_back(array.get());
    }
    return handles;
}

// The operators that multiply, divide and raise whole matrices, and the element-wise
// builtins that agree with them on scalars.
struct MatrixOperator {
    std::string_view symbol;
    std::string_view matrixBuiltin;
    std::string_view elementBuiltin;
    std::string_view elementSymbol;
};
constexpr MatrixOperator MATRIX_OPERATORS[] = {
    {"*", "mtimes", "times", ".*"},
    {"/", "mrdivide", "rdivide", "./"},
    {"^", "mpower", "power", ".^"},
};

// The builtin each of the other binary operators calls.
struct OperatorBuiltin {
    std::string_view symbol;
    std::string_view builtin;
};
constexpr OperatorBuiltin BINARY_BUILTINS[] = {
    {"+", "plus"}, {"-", "minus"}, {".*", "times"}, {"./", "rdivide"}, {".^", "power"}, {"==", "eq"},
    {"~=", "ne"},  {"<", "lt"},    {"<=", "le"},    {">", "gt"},       {">=", "ge"},    {"&", "and"},
    {"|", "or"},
};

std::string_view elementWiseBuiltin(std::string_view symbol) {
    const auto found = std::find_if(std::begin(BINARY_BUILTINS), std::end(BINARY_BUILTINS),
                                    [&](const OperatorBuiltin& op) { return op.symbol == symbol; });
    return found != std::end(BINARY_BUILTINS) ? found->builtin : std::string_view();
}

std::string_view unaryBuiltin(std::string_view symbol) {
    return symbol == "-" ? "uminus" : symbol == "+" ? "uplus" : "not";
}

// The transposes: ' conjugates complex elements, .' does not.
std::string_view postfixBuiltin(std::string_view symbol) { return symbol == "'" ? "ctranspose" : "transpose"; }

} // namespace

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) text.remove_prefix(1);
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) text.remove_suffix(1);
    return text;
}

Session::Session(const std::vector<LoadedBuiltin>& builtins, std::ostream& out) : builtins_(&builtins), out_(out) {}

Session::Session(const TrackedLibraries& libraries, std::ostream& out)
    : libraries_(&libraries), snapshot_(libraries.snapshot()), generation_(libraries.generation()), out_(out) {
    builtins_ = &snapshot_->builtins;
}

// Takes the libraries as they are now when one came or went since the last statement.
void Session::followLibraries() {
    if (libraries_ != nullptr && libraries_->generation() != generation_) {
        generation_ = libraries_->generation();
        snapshot_ = libraries_->snapshot();
        builtins_ = &snapshot_->builtins;
    }
}

bool Session::run(std::string_view line) {
    statement_ = line;
    for (const Statement& statement : splitStatements(line)) {
        if (!runStatement(statement.text, statement.quiet)) {
            return false;
        }
    }
    return true;
}

bool Session::runStatement(std::string_view statement, bool quiet) {
    followLibraries();
    try {
        if (statement == "list") {
            listBuiltins(*builtins_, out_);
            return true;
        }
        if (libraries_ != nullptr && runLibraryCommand(statement, *builtins_, out_)) {
            followLibraries();
            return true;
        }
        if (statement == "help" || statement.starts_with("help ")) {
            help(trimmed(statement.substr(4)));
            return true;
        }
        if (runWorkspaceCommand(statement, variables_, out_)) {
            return true;
        }
        std::string_view expression = statement;
        if (runObjectAssignment(expression, quiet)) {
            return true;
        }
        std::string target = "ans";
        const std::size_t equals = expression.find('=');
        // "x == y" compares; only a lone '=' assigns.
        const bool assigns = equals != std::string_view::npos && expression.substr(equals, 2) != "==";
        if (assigns && isName(trimmed(expression.substr(0, equals)))) {
            target = std::string(trimmed(expression.substr(0, equals)));
            expression = trimmed(expression.substr(equals + 1));
        }
        matrix::ArrayPtr result = evaluate(parseExpression(expression, columnOf(expression)), nullptr);
        if (result) {
            if (!quiet) {
                out_ << target << " = " << display(result.get()) << '\n';
            }
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

matrix::ArrayPtr Session::evaluate(const Expression& expression, const IndexContext* context) {
    switch (expression.kind) {
    case Kind::REAL_NUMBER:
    case Kind::IMAGINARY:
    case Kind::LITERAL: return literal(expression.text, expression.column);
    case Kind::NAME: return name(expression);
    case Kind::CALL: return call(expression, context);
    case Kind::UNARY:
        return applyOperator(unaryBuiltin(expression.text), expression, operands(expression.operands, context));
    case Kind::BINARY: return binary(expression, context);
    case Kind::POSTFIX:
        return applyOperator(postfixBuiltin(expression.text), expression, operands(expression.operands, context));
    case Kind::RANGE: return applyOperator("colon", expression, operands(expression.operands, context));
    case Kind::END:
        if (context == nullptr) {
            throw StatementError(expression.column, "'end' stands for the last index only inside an index of an array");
        }
        return matrix::ArrayPtr(matrix::createScalar(static_cast<double>(endIndex(*context))));
    case Kind::ALL: break;
    }
    throw StatementError(expression.column, "':' alone selects everything only as a subscript of an array");
}

// A value to pass on: a call that returns nothing has none.
matrix::ArrayPtr Session::operand(const Expression& expression, const IndexContext* context) {
    matrix::ArrayPtr value = evaluate(expression, context);
    if (!value) {
        throw StatementError(expression.column, "'" + std::string(expression.source) + "' returns no value");
    }
    return value;
}

Session::Arrays Session::operands(const std::vector<Expression>& expressions, const IndexContext* context) {
    Arrays values;
    for (const Expression& expression : expressions) {
        values.push_back(operand(expression, context));
    }
    return values;
}

matrix::ArrayPtr Session::literal(const std::string& text, std::size_t column) const {
    try {
        return parseLiteral(text);
    } catch (const LiteralError& error) {
        throw StatementError(column + error.column(), error.message());
    }
}

// A variable, a builtin called without arguments, or a word of the literal language.
matrix::ArrayPtr Session::name(const Expression& expression) {
    if (const auto variable = variables_.find(expression.text); variable != variables_.end()) {
        return matrix::ArrayPtr(matrix::addReference(variable->second.get()));
    }
    if (std::optional<matrix::ArrayPtr> property = readProperty(expression)) {
        return std::move(*property);
    }
    if (const BuiltinFcn* builtin = findBuiltin(expression.text)) {
        return invoke(*builtin, {});
    }
    try {
        return parseLiteral(expression.text);
    } catch (const LiteralError&) {
        unrecognized(expression.text, expression.column);
    }
}

// An index of a variable, a builtin call, a method call, or a cast such as int8(5).
matrix::ArrayPtr Session::call(const Expression& expression, const IndexContext* context) {
    const std::string& callee = expression.text;
    if (const auto variable = variables_.find(callee); variable != variables_.end()) {
        return index(variable->second.get(), expression);
    }
    if (const BuiltinFcn* builtin = findBuiltin(callee)) {
        return invoke(*builtin, operands(expression.operands, context));
    }
    if (std::optional<matrix::ArrayPtr> made = construct(expression, context)) {
        return std::move(*made);
    }
    if (callee.find('.') != std::string::npos) {
        Arrays arguments = operands(expression.operands, context);
        return callMethod(expression, arguments);
    }
    try {
        return parseLiteral(expression.source);
    } catch (const LiteralError& error) {
        // Failing at its first character, the literal language does not know the name.
        if (error.column() == 0) {
            unrecognized(callee, expression.column);
        }
        throw StatementError(expression.column + error.column(), error.message());
    }
}

// Arrays of elements are indexed here; engine objects index themselves.
matrix::ArrayPtr Session::index(const oxArray* array, const Expression& expression) {
    if (!holdsElements(array)) {
        return indexObject(array, expression);
    }
    const std::size_t count = expression.operands.size();
    Arrays subscripts;
    for (std::size_t position = 0; position < count; ++position) {
        const Expression& subscript = expression.operands[position];
        const IndexContext inner{array, position, count};
        subscripts.push_back(subscript.kind == Kind::ALL ? nullptr : operand(subscript, &inner));
    }
    std::vector<const oxArray*> handles(subscripts.size());
    std::transform(subscripts.begin(), subscripts.end(), handles.begin(),
                   [](const matrix::ArrayPtr& subscript) { return subscript.get(); });
    try {
        return indexArray(array, handles);
    } catch (const IndexError& error) {
        throw StatementError(expression.column, error.what());
    }
}

matrix::ArrayPtr Session::binary(const Expression& expression, const IndexContext* context) {
    if (expression.text == "&&" || expression.text == "||") {
        return shortCircuit(expression, context);
    }
    const auto matrixOperator = std::find_if(std::begin(MATRIX_OPERATORS), std::end(MATRIX_OPERATORS),
                                             [&](const MatrixOperator& op) { return op.symbol == expression.text; });
    if (matrixOperator == std::end(MATRIX_OPERATORS)) {
        return applyOperator(elementWiseBuiltin(expression.text), expression, operands(expression.operands, context));
    }
    if (findBuiltin(matrixOperator->matrixBuiltin) != nullptr ||
        findBuiltin(matrixOperator->elementBuiltin) == nullptr) {
        return applyOperator(matrixOperator->matrixBuiltin, expression, operands(expression.operands, context));
    }
    Arrays arguments = operands(expression.operands, context);
    if (!matrix::isScalar(arguments[0].get()) || !matrix::isScalar(arguments[1].get())) {
        throw StatementError(expression.column,
                             "'" + expression.text + "' takes scalars only: no loaded library provides '" +
                                 std::string(matrixOperator->matrixBuiltin) + "' for arrays; '" +
                                 std::string(matrixOperator->elementSymbol) + "' works element by element");
    }
    return applyOperator(matrixOperator->elementBuiltin, expression, std::move(arguments));
}

// a && b and a || b take scalars. The left operand decides alone when not(a) says it is
// false (&&) or true (||), and the right one is not evaluated; otherwise the result is
// and(a, b) or or(a, b). Every class the builtins take is read as they read it.
matrix::ArrayPtr Session::shortCircuit(const Expression& expression, const IndexContext* context) {
    const bool isAnd = expression.text == "&&";
    const auto scalarOperand = [&](const Expression& side) {
        matrix::ArrayPtr value = operand(side, context);
        if (!matrix::isScalar(value.get())) {
            throw StatementError(side.column,
                                 "Operands to the '" + expression.text +
                                     "' operator must be convertible to logical scalar values; this one has " +
                                     std::to_string(matrix::getNumberOfElements(value.get())) + " elements");
        }
        return value;
    };
    Arrays arguments;
    arguments.push_back(scalarOperand(expression.operands[0]));
    Arrays negated;
    negated.push_back(matrix::ArrayPtr(matrix::addReference(arguments[0].get())));
    const matrix::ArrayPtr isFalse = applyOperator("not", expression, std::move(negated));
    const bool leftIsFalse = matrix::getClassID(isFalse.get()) == oxLOGICAL_CLASS &&
                             matrix::isScalar(isFalse.get()) && *matrix::getTypedData<bool>(isFalse.get());
    if (leftIsFalse == isAnd) {
        return matrix::ArrayPtr(matrix::createScalar(!isAnd));
    }
    arguments.push_back(scalarOperand(expression.operands[1]));
    return applyOperator(isAnd ? "and" : "or", expression, std::move(arguments));
}

matrix::ArrayPtr Session::applyOperator(std::string_view builtinName, const Expression& expression, Arrays arguments) {
    const BuiltinFcn* builtin = findBuiltin(builtinName);
    if (builtin == nullptr) {
        throw StatementError(expression.column, "Unrecognized function '" + std::string(builtinName) +
                                                    "' for the operator '" + expression.text + "'.");
    }
    return invoke(*builtin, arguments);
}

// object.method(...) on a variable, or Class.method(...) for a static method.
matrix::ArrayPtr Session::callMethod(const Expression& expression, Arrays& arguments) {
    const std::string& callee = expression.text;
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
        throw StatementError(expression.column, "no variable or class named '" + owner + "'");
    }
    std::vector<oxArray*> handles = handlesOf(arguments);
    oxArray* result = nullptr;
    ocos::callMethod(*cls, method, 1, &result, static_cast<int>(handles.size()), handles.data());
    return matrix::ArrayPtr(result);
}

matrix::ArrayPtr Session::invoke(const BuiltinFcn& builtin, const Arrays& arguments) const {
    std::vector<oxArray*> handles = handlesOf(arguments);
    oxArray* result = nullptr;
    invokeBuiltin(builtin, 1, &result, static_cast<int>(handles.size()), handles.data());
    return matrix::ArrayPtr(result);
}

const BuiltinFcn* Session::findBuiltin(std::string_view name) const {
    return orvex::findBuiltin(*builtins_, name);
}

void Session::help(std::string_view name) {
    if (name.empty()) {
        listBuiltins(*builtins_, out_);
        return;
    }
    const BuiltinFcn* builtin = findBuiltin(name);
    if (builtin == nullptr) {
        unrecognized(name, columnOf(name));
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

void Session::unrecognized(std::string_view name, std::size_t column) const {
    std::vector<std::string> known;
    for (const LoadedBuiltin& loaded : *builtins_) {
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
    throw StatementError(column, near.empty() ? message : message + "?");
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

int runScript(const TrackedLibraries& libraries, std::istream& in, std::ostream& out) {
    // Warnings print where they happen, between the statement and its result.
    const auto previous = matrix::setWarningHandler(
        [&](const fl::ustring& message) { out << "Warning: " << fl::i18n::ustring_to_utf8(message) << '\n'; });
    const std::shared_ptr<void> restore(nullptr, [&](void*) { matrix::setWarningHandler(previous); });
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        lines.push_back(std::move(line));
    }
    const Progress progress(lines.size());
    Session session(libraries, out);
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
