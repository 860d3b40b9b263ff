#include "Commands.hpp"

#include <orvex/LiteralError.hpp>
#include <orvex/formatArray.hpp>
#include <orvex/parseLiteral.hpp>

#include <builtin/builtinreg/Explain.hpp>
#include <builtin/builtinreg/Reachability.hpp>

#include <fl/i18n.hpp>
#include <foundation/core/except/Exception.hpp>

#include <algorithm>
#include <exception>
#include <ostream>

namespace orvex {

namespace {

using Velloc::builtin::BuiltinFcn;
using Velloc::builtin::BuiltinVariant;

constexpr int BUILTIN_ERROR = 1;
constexpr int USAGE_ERROR = 2;

const BuiltinFcn* findBuiltin(const std::vector<LoadedBuiltin>& builtins, const std::string& name, std::ostream& out) {
    const BuiltinFcn* builtin = orvex::findBuiltin(builtins, name);
    if (builtin == nullptr) {
        out << "orvex: no builtin named '" << name << "'; 'orvex list' shows them";
        // A library that forgot to publish its builtins is the likely cause of a new name's absence.
        const std::vector<std::string> quiet = bundlesWithoutBuiltins();
        for (std::size_t i = 0; i < quiet.size(); ++i) {
            out << (i == 0 ? " (bundles without builtins: " : ", ") << quiet[i];
        }
        out << (quiet.empty() ? "\n" : ")\n");
    }
    return builtin;
}

// The arguments as host arrays, owned for the duration of the command.
struct Arguments {
    std::vector<matrix::ArrayPtr> owned;
    std::vector<oxArray*> handles;
};

bool parseArguments(const std::vector<std::string>& texts, Arguments& arguments, std::ostream& out) {
    for (std::size_t i = 0; i < texts.size(); ++i) {
        try {
            arguments.owned.push_back(parseLiteral(texts[i]));
        } catch (const LiteralError& error) {
            out << "orvex: argument " << i + 1 << ": " << error.what() << '\n';
            return false;
        }
        arguments.handles.push_back(arguments.owned.back().get());
    }
    return true;
}

void showList(const char* title, std::span<const BuiltinVariant> list, std::ostream& out) {
    out << title << " (" << list.size() << (list.size() == 1 ? " variant" : " variants") << ")\n";
    for (const BuiltinVariant& variant : list) {
        out << variant;
    }
}

} // namespace

int listBuiltins(const std::vector<LoadedBuiltin>& builtins, std::ostream& out) {
    std::size_t width = 0;
    for (const LoadedBuiltin& loaded : builtins) {
        width = std::max(width, loaded.builtin->name.size());
    }
    for (const LoadedBuiltin& loaded : builtins) {
        out << loaded.builtin->name << std::string(width - loaded.builtin->name.size() + 2, ' ') << loaded.library
            << ": " << loaded.builtin->getSummary() << " (" << loaded.builtin->getAllVariants().size()
            << (loaded.builtin->getAllVariants().size() == 1 ? " variant)\n" : " variants)\n");
        // Variants the interpreter never reaches, under the builtin they belong to.
        for (const auto& finding : Velloc::builtin::builtinreg::findUnreachableVariants(*loaded.builtin)) {
            out << "    unreachable " << toString(finding) << '\n';
        }
    }
    for (const std::string& bundle : bundlesWithoutBuiltins()) {
        out << "bundle without builtins: " << bundle << '\n';
    }
    return 0;
}

int showBuiltin(const std::vector<LoadedBuiltin>& builtins, const std::string& name, std::ostream& out) {
    const BuiltinFcn* builtin = findBuiltin(builtins, name, out);
    if (builtin == nullptr) {
        return USAGE_ERROR;
    }
    out << builtin->name << ": " << builtin->getSummary() << '\n';
    showList("searched without the engine", builtin->getSearchedByInvokeNoLxe(), out);
    showList("searched by the engine", {builtin->variants, builtin->numVariants}, out);
    showList("searched after the engine declined", builtin->getSearchedByInvokeAfterLxe(), out);
    showList("searched after the engine declined a complex scalar", builtin->getSearchedByInvokeAfterLxeComplexScalar(),
             out);
    out << "default implementation: "
        << (builtin->defaultVariant.functionDescriptor.getHostStyleEntry() != nullptr
                ? builtin->defaultVariant.cppFunctionName.str()
                : std::string("none"))
        << '\n';
    const auto unreachable = Velloc::builtin::builtinreg::findUnreachableVariants(*builtin);
    if (!unreachable.empty()) {
        out << "variants no interpreted call reaches:\n";
        for (const auto& finding : unreachable) {
            out << "  " << toString(finding) << '\n';
        }
    }
    return 0;
}

int callBuiltin(const std::vector<LoadedBuiltin>& builtins, const std::string& name,
                const std::vector<std::string>& argumentTexts, std::ostream& out) {
    const BuiltinFcn* builtin = findBuiltin(builtins, name, out);
    Arguments arguments;
    if (builtin == nullptr || !parseArguments(argumentTexts, arguments, out)) {
        return USAGE_ERROR;
    }
    // Warnings print where they happen, between the call and its result.
    const auto previous = matrix::setWarningHandler(
        [&](const fl::ustring& message) { out << "Warning: " << fl::i18n::ustring_to_utf8(message) << '\n'; });
    oxArray* result = nullptr;
    int status = 0;
    try {
        invokeBuiltin(*builtin, 1, &result, static_cast<int>(arguments.handles.size()), arguments.handles.data());
        out << "ans = " << formatArray(result) << '\n';
    } catch (const foundation::core::except::IdentifiedException& error) {
        out << "Error (" << error.getId().component << ':' << error.getId().key << "): " << error.message() << '\n';
        status = BUILTIN_ERROR;
    } catch (const std::exception& error) {
        out << "Error: " << error.what() << '\n';
        status = BUILTIN_ERROR;
    }
    matrix::destroyArray(result);
    matrix::setWarningHandler(previous);
    return status;
}

int explainCall(const std::vector<LoadedBuiltin>& builtins, const std::string& name,
                const std::vector<std::string>& argumentTexts, std::ostream& out) {
    const BuiltinFcn* builtin = findBuiltin(builtins, name, out);
    Arguments arguments;
    if (builtin == nullptr || !parseArguments(argumentTexts, arguments, out)) {
        return USAGE_ERROR;
    }
    const auto explanation = Velloc::builtin::builtinreg::explain(
        *builtin, 1, static_cast<int>(arguments.handles.size()), arguments.handles.data());
    out << Velloc::builtin::builtinreg::toString(explanation);
    return 0;
}

} // namespace orvex
