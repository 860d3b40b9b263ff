// A session: statements evaluated one at a time, each an expression whose result is
// printed and kept under a name for later statements.
//
//     x = 1 + 2*3                            operators call the builtins of their names
//     y = sqrt(-x) .^ 2                      builtin call; arguments are expressions
//     r = 1:2:9                              ranges
//     r(end), r([1 3]), m(2, :)              indexing of arrays
//     b = lxebuffer.Buffer.create([1 2 3])   static method of a class
//     b = Buffer([1 2 3])                    constructor of a class (ocos/SpecialMethods.hpp)
//     b.append([4 5])                        method of an object
//     b(2), b(end), b.size                   indexing an object, its property access
//     b(end + 1) = 6                         assigning into an object
//     v(v > 2 & v < 8), m', s == 'abc'       comparisons, logic, transposes (Expression.hpp)
//     z = x + 1;                             a ';' at the end keeps the result quiet
//     x = 3; y = 4, z = 5                    several statements a line (Statements.hpp)
//     who, whos, clear x                     the variables themselves (Workspace.hpp)
//     help plus                              what a builtin does and the variants it has
//     help                                   every builtin
//     list                                   every builtin, with its library
//     unload samplelib, load modules/samplelib   libraries that come and go (LibraryCommands.hpp)
//
// Each operator calls the builtin of its name in the loaded libraries: + plus, - minus,
// .* times, ./ rdivide, .^ power, unary - uminus and + uplus, a:b and a:s:b colon;
// == eq, ~= ne, < lt, <= le, > gt, >= ge, & and, | or, unary ~ not, .' transpose and
// ' ctranspose; and * mtimes, / mrdivide, ^ mpower. Where no library provides mtimes,
// mrdivide or mpower, their operators take scalars and call times, rdivide or power,
// which agree on scalars. a && b and a || b take scalars and short-circuit: not(a)
// decides whether b is evaluated, and(a, b) or or(a, b) gives the result when it is.
//
// A statement that fails leaves the variables as they were, and ends its line: the
// statements before it on the line have run, those after it do not. Errors that belong to a
// place in the statement are reported with a caret under it, aligned for a statement
// echoed after the three-character prompt ">> ".
#pragma once

#include "Expression.hpp"
#include "Libraries.hpp"
#include "Workspace.hpp"

#include <matrix/oxArray.hpp>

#include <iosfwd>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvex {

class Session {
public:
    // A session over a fixed list of builtins.
    Session(const std::vector<LoadedBuiltin>& builtins, std::ostream& out);
    // A session over the libraries loaded at each statement, which may load and unload them.
    Session(const TrackedLibraries& libraries, std::ostream& out);

    // Runs the statements of a line, separated by ',' (result shown) or ';' (quiet), and
    // prints their results or the error of the first that fails, which ends the line;
    // false when one failed.
    bool run(std::string_view line);

private:
    // The array an 'end' inside an index stands in, and the subscript it is part of.
    struct IndexContext {
        const oxArray* array;
        std::size_t position;
        std::size_t count;
    };
    using Arrays = std::vector<matrix::ArrayPtr>;

    bool runStatement(std::string_view statement, bool quiet);
    matrix::ArrayPtr evaluate(const Expression& expression, const IndexContext* context);
    matrix::ArrayPtr operand(const Expression& expression, const IndexContext* context);
    Arrays operands(const std::vector<Expression>& expressions, const IndexContext* context);
    matrix::ArrayPtr literal(const std::string& text, std::size_t column) const;
    matrix::ArrayPtr name(const Expression& expression);
    matrix::ArrayPtr call(const Expression& expression, const IndexContext* context);
    // Subscripts are evaluated in the context of the array indexed.
    matrix::ArrayPtr index(const oxArray* array, const Expression& expression);
    matrix::ArrayPtr binary(const Expression& expression, const IndexContext* context);
    matrix::ArrayPtr shortCircuit(const Expression& expression, const IndexContext* context);
    matrix::ArrayPtr applyOperator(std::string_view builtinName, const Expression& expression, Arrays arguments);
    matrix::ArrayPtr callMethod(const Expression& expression, Arrays& arguments);
    // Engine objects (ObjectStatements.cpp): obj(i) with 'end' as the object's element
    // count, obj(i) = v, obj.property, Class(args) for a class with a constructor, and
    // the display of a value; an assignment to a dotted name is an error.
    std::size_t endIndex(const IndexContext& context) const;
    Arrays objectSubscripts(const oxArray* object, const Expression& expression);
    matrix::ArrayPtr indexObject(const oxArray* object, const Expression& expression);
    bool runObjectAssignment(std::string_view statement, bool quiet);
    std::optional<matrix::ArrayPtr> readProperty(const Expression& expression);
    std::optional<matrix::ArrayPtr> construct(const Expression& expression, const IndexContext* context);
    std::string display(const oxArray* array) const;
    matrix::ArrayPtr invoke(const Velloc::builtin::BuiltinFcn& builtin, const Arrays& arguments) const;
    const Velloc::builtin::BuiltinFcn* findBuiltin(std::string_view name) const;
    void help(std::string_view name);
    [[noreturn]] void unrecognized(std::string_view name, std::size_t column) const;
    std::size_t columnOf(std::string_view part) const;
    void followLibraries();

    const std::vector<LoadedBuiltin>* builtins_;
    const TrackedLibraries* libraries_ = nullptr;
    // Holds the libraries builtins_ points into while a statement calls them.
    std::shared_ptr<const LibrarySnapshot> snapshot_;
    int generation_ = 0;
    std::ostream& out_;
    Variables variables_;
    std::string_view statement_;
};

// text without the blanks around it.
std::string_view trimmed(std::string_view text);

// Runs the statements of a script, one per line (blank lines and lines starting with %
// are skipped), echoing each; stops at the first that fails. Returns 1 then, naming the
// line, else 0.
int runScript(const TrackedLibraries& libraries, std::istream& in, std::ostream& out);

} // namespace orvex
