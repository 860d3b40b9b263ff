// Prints the argument type the framework sees for host arrays of every class, and which
// of a few declared argument types accept each of them.
#include "DemoArrays.hpp"
#include "DemoDeclarations.hpp"

#include <builtin/types/ArgTypeOfOxArray.hpp>

#include <iomanip>
#include <iostream>
#include <sstream>
#include <variant>

namespace {

using namespace Velloc::builtin::types;

// The debug form of a host array descriptor, or the alternative's own text otherwise.
std::string debugText(const ArgType& type) {
    std::ostringstream text;
    if (const auto* array = std::get_if<OxArrayTypes>(&type)) {
        text << *array;
    } else {
        text << type;
    }
    return text.str();
}

void printClassification(const std::vector<demo::NamedArray>& arrays) {
    std::cout << "Host arrays and the argument type each is classified as:\n";
    for (const auto& [description, array] : arrays) {
        const ArgType actual = getArgTypeOfOxArray(array.get());
        std::cout << "  " << std::left << std::setw(20) << description;
        if (std::holds_alternative<UnsupportedArgType>(actual)) {
            std::cout << "UnsupportedArgType\n";
        } else {
            std::cout << toString(actual, ArgTypeDirection::INPUT, 0) << "\n  "
                      << std::setw(20) << "" << debugText(actual) << '\n';
        }
    }
}

void printDeclarations(const std::vector<demo::NamedDeclaration>& declarations) {
    std::cout << "\nDeclared argument types:\n";
    for (const auto& d : declarations) {
        std::cout << "  " << std::left << std::setw(40) << d.label << d.type << '\n';
    }
}

void printAcceptance(const std::vector<demo::NamedArray>& arrays,
                     const std::vector<demo::NamedDeclaration>& declarations) {
    std::cout << "\nWhich declarations accept which arrays (x accepts, . rejects):\n  "
              << std::left << std::setw(20) << "";
    for (const auto& d : declarations) std::cout << d.label.front() << ' ';
    std::cout << '\n';
    for (const auto& [description, array] : arrays) {
        const ArgType actual = getArgTypeOfOxArray(array.get());
        std::cout << "  " << std::left << std::setw(20) << description;
        for (const auto& d : declarations) std::cout << (isAcceptable(d.type, actual) ? "x " : ". ");
        std::cout << '\n';
    }
}

} // namespace

int main() {
    const auto arrays = demo::makeDemoArrays();
    const auto declarations = demo::makeDemoDeclarations();
    printClassification(arrays);
    printDeclarations(declarations);
    printAcceptance(arrays, declarations);
}
