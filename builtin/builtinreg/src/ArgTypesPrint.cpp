#include <builtin/builtinreg/ArgTypes.hpp>

#include <ostream>
#include <vector>

namespace Velloc::builtin::builtinreg {

namespace {

// "nil" for an empty list, else "[ a, b ]".
void writeList(std::ostream& os, const std::vector<types::ArgType>& list) {
    if (list.empty()) {
        os << "nil";
        return;
    }
    os << "[ ";
    const char* separator = "";
    for (const types::ArgType& type : list) {
        os << separator << type;
        separator = ", ";
    }
    os << " ]";
}

} // namespace

std::ostream& operator<<(std::ostream& os, const ArgTypes& argTypes) {
    os << "outputs: ";
    writeList(os, argTypes.outputs);
    os << "\ninputs: [";
    const char* separator = "";
    for (const auto& signature : argTypes.inputs) {
        os << separator << "  ";
        writeList(os, signature);
        separator = ",\n";
    }
    return os << "\n]\n";
}

} // namespace Velloc::builtin::builtinreg
