// What a session does with engine objects beyond calling their methods: indexing them and
// assigning into them, 'end' inside their index, property reads, constructors, display;
// and assignments to targets that are no variable name.
#include "Session.hpp"

#include "StatementError.hpp"

#include <orvex/formatArray.hpp>
#include <orvex/indexArray.hpp>

#include <fl/i18n.hpp>
#include <lxe/LxeObjectArrays.hpp>
#include <ocos/ClassRegistry.hpp>
#include <ocos/MethodCall.hpp>
#include <ocos/SpecialMethods.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <ostream>
#include <vector>

namespace orvex {

namespace {

using Kind = Expression::Kind;

// The class of the engine object an array holds; null for any other array.
const ocos::COSClass* objectClassOf(const oxArray* array) {
    return Velloc::lxe::getLxeObject(array) != nullptr ? ocos::findClass(matrix::getClassID(array)) : nullptr;
}

matrix::ArrayPtr charRow(std::string_view text) {
    const std::u16string units = fl::i18n::utf8_to_ustring(text);
    const std::array<std::size_t, 2> row{1, units.size()};
    matrix::ArrayPtr array(matrix::detail::do_create_uninitnumeric(row, oxCHAR_CLASS, oxREAL));
    std::copy(units.begin(), units.end(), matrix::getTypedData<char16_t>(array.get()));
    return array;
}

// Calls a method of the class in the host's calling form; its one result.
matrix::ArrayPtr callForOne(const ocos::COSClass& cls, std::string_view method, std::vector<oxArray*> arguments) {
    oxArray* result = nullptr;
    ocos::callMethod(cls, method, 1, &result, static_cast<int>(arguments.size()), arguments.data());
    return matrix::ArrayPtr(result);
}

// A dotted name, as an assignment's target may be written: letters, digits, '_' and '.'.
bool isDottedName(std::string_view text) {
    const auto word = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; };
    return !text.empty() && std::isalpha(static_cast<unsigned char>(text[0])) != 0 &&
           text.find('.') != std::string_view::npos &&
           std::all_of(text.begin(), text.end(), [&](char c) { return word(c) || c == '.'; });
}

// Where the single '=' of an assignment is: not part of ==, ~=, <= or >=.
std::size_t assignmentEquals(std::string_view statement) {
    for (std::size_t i = 0; i < statement.size(); ++i) {
        if (statement[i] != '=') {
            continue;
        }
        const bool compares = (i + 1 < statement.size() && statement[i + 1] == '=') ||
                              (i > 0 && std::string_view("=~<>").find(statement[i - 1]) != std::string_view::npos);
        if (!compares) {
            return i;
        }
        ++i;
    }
    return std::string_view::npos;
}

} // namespace

std::size_t Session::endIndex(const IndexContext& context) const {
    if (holdsElements(context.array)) {
        return endOf(context.array, context.position, context.count);
    }
    return Velloc::lxe::numberOfElements(context.array);
}

Session::Arrays Session::objectSubscripts(const oxArray* object, const Expression& expression) {
    const std::size_t count = expression.operands.size();
    Arrays subscripts;
    for (std::size_t position = 0; position < count; ++position) {
        const IndexContext inner{object, position, count};
        subscripts.push_back(operand(expression.operands[position], &inner));
    }
    return subscripts;
}

matrix::ArrayPtr Session::indexObject(const oxArray* object, const Expression& expression) {
    const Arrays subscripts = objectSubscripts(object, expression);
    std::vector<const oxArray*> handles;
    for (const matrix::ArrayPtr& subscript : subscripts) {
        handles.push_back(subscript.get());
    }
    return matrix::ArrayPtr(Velloc::lxe::parenReference(object, handles));
}

bool Session::runObjectAssignment(std::string_view statement, bool quiet) {
    const std::size_t equals = assignmentEquals(statement);
    if (equals == std::string_view::npos) {
        return false;
    }
    const std::string_view target = trimmed(statement.substr(0, equals));
    const std::size_t column = columnOf(target);
    if (isDottedName(target)) {
        const auto owner = variables_.find(target.substr(0, target.find('.')));
        const ocos::COSClass* cls = owner != variables_.end() ? objectClassOf(owner->second.get()) : nullptr;
        throw StatementError(column, "cannot assign to '" + std::string(target) + "': " +
                                         (cls != nullptr ? "objects of class '" + cls->getName() +
                                                               "' take no property assignment"
                                                         : std::string("a variable name has no '.'")));
    }
    if (target.empty() || target.back() != ')') {
        return false;
    }
    const Expression indexed = parseExpression(target, column);
    if (indexed.kind != Kind::CALL) {
        return false;
    }
    const auto variable = variables_.find(indexed.text);
    if (variable == variables_.end()) {
        throw StatementError(column, "cannot assign into '" + indexed.text + "': there is no variable of that name");
    }
    const oxArray* object = variable->second.get();
    if (objectClassOf(object) == nullptr) {
        throw StatementError(column, "indexed assignment is for engine objects; '" + indexed.text +
                                         "' is an array of " + formatType(object));
    }
    const Arrays subscripts = objectSubscripts(object, indexed);
    const std::string_view valueText = trimmed(statement.substr(equals + 1));
    const matrix::ArrayPtr value = operand(parseExpression(valueText, columnOf(valueText)), nullptr);
    std::vector<const oxArray*> handles;
    for (const matrix::ArrayPtr& subscript : subscripts) {
        handles.push_back(subscript.get());
    }
    Velloc::lxe::parenAssign(object, handles, value.get());
    if (!quiet) {
        out_ << indexed.text << " = " << display(object) << '\n';
    }
    return true;
}

std::optional<matrix::ArrayPtr> Session::readProperty(const Expression& expression) {
    const std::size_t dot = expression.text.rfind('.');
    if (dot == std::string::npos) {
        return std::nullopt;
    }
    const auto owner = variables_.find(std::string_view(expression.text).substr(0, dot));
    const ocos::COSClass* cls = owner != variables_.end() ? objectClassOf(owner->second.get()) : nullptr;
    if (cls == nullptr) {
        return std::nullopt;
    }
    const std::string property = expression.text.substr(dot + 1);
    if (!ocos::findSpecialMethod(*cls, ocos::PROPERTY_METHOD, false)) {
        const bool isMethod = cls->findMethod(property).has_value();
        throw StatementError(expression.column,
                             "objects of class '" + cls->getName() + "' have no property access (" +
                                 std::string(ocos::PROPERTY_METHOD) + ")" +
                                 (isMethod ? "; '" + property + "' is a method: call it as " + expression.text + "()"
                                           : std::string()));
    }
    const matrix::ArrayPtr name = charRow(property);
    return callForOne(*cls, ocos::PROPERTY_METHOD, {owner->second.get(), name.get()});
}

std::optional<matrix::ArrayPtr> Session::construct(const Expression& expression, const IndexContext* context) {
    const std::string& callee = expression.text;
    std::vector<const ocos::COSClass*> classes;
    if (const ocos::COSClass* named = ocos::findClass(callee)) {
        classes.push_back(named);
    } else if (callee.find('.') == std::string::npos) {
        // A class by the last part of its name; ids are handed out densely.
        for (auto id = ocos::FIRST_REGISTERED_CLASS_ID; const ocos::COSClass* cls = ocos::findClass(id);
             id = static_cast<oxClassID>(id + 1)) {
            if (ocos::constructorName(cls->getName()) == callee) {
                classes.push_back(cls);
            }
        }
    }
    std::erase_if(classes, [](const ocos::COSClass* cls) {
        return !ocos::findSpecialMethod(*cls, ocos::constructorName(cls->getName()), true);
    });
    if (classes.empty()) {
        return std::nullopt;
    }
    if (classes.size() > 1) {
        throw StatementError(expression.column, "'" + callee + "' is the constructor of classes '" +
                                                    classes[0]->getName() + "' and '" + classes[1]->getName() +
                                                    "': name the class in full");
    }
    Arrays arguments = operands(expression.operands, context);
    std::vector<oxArray*> handles;
    for (const matrix::ArrayPtr& argument : arguments) {
        handles.push_back(argument.get());
    }
    return callForOne(*classes[0], ocos::constructorName(classes[0]->getName()), std::move(handles));
}

std::string Session::display(const oxArray* array) const {
    const ocos::COSClass* cls = objectClassOf(array);
    if (cls == nullptr || !ocos::findSpecialMethod(*cls, ocos::DISPLAY_METHOD, false)) {
        return formatArray(array);
    }
    const matrix::ArrayPtr text = callForOne(*cls, ocos::DISPLAY_METHOD, {const_cast<oxArray*>(array)});
    if (!text || matrix::getClassID(text.get()) != oxCHAR_CLASS) {
        throw std::invalid_argument("the display method of class '" + cls->getName() + "' returned no char row");
    }
    const char16_t* units = matrix::getTypedData<char16_t>(text.get());
    return fl::i18n::ustring_to_utf8(std::u16string(units, units + matrix::getNumberOfElements(text.get())));
}

} // namespace orvex
