// The diagnostic dump of a variant, as cleanup logs and the command-line tool print it.
#include <builtin/BuiltinVariant.hpp>

#include <ostream>

namespace Velloc::builtin {

namespace {

void writeTypeList(std::ostream& out, const SharedArray<InternedText>& texts) {
    if (texts.empty()) {
        out << "NULL" << std::endl;
        return;
    }
    out << '[';
    for (std::size_t i = 0; i < texts.size(); ++i) {
        out << (i == 0 ? "" : "], [") << texts[i];
    }
    out << ']' << std::endl;
}

const char* levelText(types::LxeSupportLevel level) {
    switch (level) {
    case types::LxeSupportLevel::EQUIVALENT_SUPPORT:
        return "LxeSupportLevel::EQUIVALENT_SUPPORT\n";
    case types::LxeSupportLevel::LXE_ONLY:
        return "LxeSupportLevel::LXE_ONLY\n";
    case types::LxeSupportLevel::NO_SUPPORT_SCALAR_COMPLEX:
        return "LxeSupportLevel::NO_SUPPORT_SCALAR_COMPLEX\n";
    case types::LxeSupportLevel::NO_SUPPORT:
        return "LxeSupportLevel::NO_SUPPORT\n";
    }
    return "";
}

} // namespace

std::ostream& operator<<(std::ostream& out, const BuiltinVariant& variant) {
    out << "==================================\nBuiltinVariant:\n c++ function name: " << variant.cppFunctionName
        << "\n\t orvex function name: " << variant.orvexFunctionName
        << "\n\t dominant class: " << variant.dominantClass
        << "\n\t developer function pointer: " << variant.developerFcn
        << "\n\t Flags:\n\t\t mayCallIntoOrvex: " << variant.mayCallIntoOrvex
        << "\n\t\t mayRaiseWarnings: " << variant.mayRaiseWarnings
        << "\n\t\t mayThrowErrors: " << variant.mayThrowErrors
        << "\n\t\t mayHaveSideEffects: " << variant.mayHaveSideEffects
        << "\n\t LxeSupportLevel: " << levelText(variant.lxeSupportLevel) << "\n\t Input types: ";
    writeTypeList(out, variant.inputTypes);
    out << "\t Output types: ";
    writeTypeList(out, variant.outputTypes);
    if (variant.originalVariant) {
        out << "\t Original Output types: ";
        writeTypeList(out, variant.originalVariant->outputTypes);
        out << "\t Original developer function pointer: " << variant.originalVariant->developerFcn << '\n';
    }
    return out << "==================================\n";
}

} // namespace Velloc::builtin
