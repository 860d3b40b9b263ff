#include <builtin/builtinreg/Explain.hpp>

#include <builtin/builtinreg/Rejection.hpp>

#include <sstream>
#include <variant>
#include <stdexcept>

namespace Velloc::builtin::builtinreg {

namespace {

std::vector<std::string> argumentTypesOf(const VariantSignature& call) {
    std::vector<std::string> types;
    for (std::size_t i = 0; i < call.getNrhs(); ++i) {
        types.push_back(describeArgument(call, i));
    }
    return types;
}

// Argument descriptions or a variant's input texts.
template <class Texts>
std::string joined(const Texts& texts) {
    std::string out;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        out += (i == 0 ? "" : ", ") + texts[i];
    }
    return out;
}

// The diagnostics read every argument the counts promise: a malformed calling form is
// refused, as invoke refuses it, before it becomes a read past the arguments.
VariantSignature checkedCall(const BuiltinFcn& builtin, const char* function, int nlhs, int nrhs,
                             oxArray* const* prhs) {
    if (nlhs < 0 || nrhs < 0 || (nrhs > 0 && prhs == nullptr)) {
        throw std::invalid_argument(std::string(function) + " of " + builtin.name + ": " + std::to_string(nlhs) +
                                    " outputs, " + std::to_string(nrhs) + " inputs from " +
                                    (prhs == nullptr ? "no array" : "an array"));
    }
    return VariantSignature(static_cast<std::uint64_t>(nlhs), static_cast<std::uint64_t>(nrhs), prhs);
}

std::string callText(const std::string& name, int nlhs, const std::vector<std::string>& argumentTypes) {
    return name + "(" + joined(argumentTypes) + ") with " + std::to_string(nlhs) +
           (nlhs == 1 ? " output" : " outputs");
}

} // namespace

std::string variantLabel(const BuiltinVariant& variant) {
    // Arrays of a class-object class (strings, engine objects) print in the type language
    // as a fully open array; a label names their class instead, so that a text parameter
    // does not read as "any array", and names the char arrays a text parameter takes.
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < variant.inputTypes.size(); ++i) {
        const auto* array = i < variant.inputArgTypes.size()
                                ? std::get_if<types::OxArrayTypes>(&variant.inputArgTypes[i])
                                : nullptr;
        const auto shape = array != nullptr ? array->getShape().first : types::OxArrayTypes::Shape::UNKNOWN;
        if (array != nullptr && types::isObjectClass(array->getElement())) {
            texts.push_back((shape == types::OxArrayTypes::Shape::SCALAR ? "scalar " : "") +
                            languageClassName(array->getElement()));
        } else if (array != nullptr && array->getElement() == oxCHAR_CLASS &&
                   (shape == types::OxArrayTypes::Shape::ROW || shape == types::OxArrayTypes::Shape::EMPTY)) {
            // The other two kinds a text parameter takes.
            texts.push_back(shape == types::OxArrayTypes::Shape::ROW ? "char row" : "empty char");
        } else {
            texts.push_back(variant.inputTypes[i].str());
        }
    }
    return variant.cppFunctionName + " [" + joined(texts) + "]";
}

Explanation explain(const BuiltinFcn& builtin, int nlhs, int nrhs, oxArray* const* prhs,
                    BuiltinFcn::VariantsToConsider variantsToConsider) {
    Explanation explanation;
    explanation.builtinName = builtin.name;
    explanation.hasDefaultImplementation = builtin.defaultVariant.functionDescriptor.getHostStyleEntry() != nullptr;
    const VariantSignature call = checkedCall(builtin, "explain", nlhs, nrhs, prhs);
    explanation.argumentTypes = argumentTypesOf(call);
    const std::span<const BuiltinVariant> list = builtin.chooseVariants(nrhs, prhs, variantsToConsider);
    if (list.empty()) {
        return explanation;
    }
    explanation.listName = listNameOf(builtin, list);
    for (const BuiltinVariant& variant : findArityRun(list, call.getNlhs(), call.getNrhs())) {
        if (variant == call) {
            explanation.considered.push_back({&variant, {}});
            explanation.chosen = &variant;
            break;
        }
        explanation.considered.push_back({&variant, describeRejection(variant, call)});
    }
    return explanation;
}

std::string toString(const Explanation& explanation) {
    std::ostringstream out;
    out << "call: " << explanation.builtinName << "(" << joined(explanation.argumentTypes) << ")\n";
    if (explanation.listName.empty()) {
        out << "list: none (the builtin has no variants for this kind of call)\n";
    } else {
        out << "list: " << explanation.listName << '\n';
    }
    if (explanation.considered.empty() && !explanation.listName.empty()) {
        out << "no variant of this arity\n";
    }
    for (const VariantVerdict& verdict : explanation.considered) {
        if (verdict.rejection.empty()) {
            out << "  runs    " << variantLabel(*verdict.variant) << '\n';
        } else {
            out << "  refuses " << variantLabel(*verdict.variant) << ": " << verdict.rejection << '\n';
        }
    }
    if (explanation.chosen == nullptr) {
        out << (explanation.hasDefaultImplementation ? "result: the default implementation takes the call\n"
                                                     : "result: no implementation; the call fails\n");
    }
    return out.str();
}

std::string describeNoMatch(const BuiltinFcn& builtin, int nlhs, int nrhs, oxArray* const* prhs) {
    const VariantSignature call = checkedCall(builtin, "describeNoMatch", nlhs, nrhs, prhs);
    std::ostringstream out;
    const std::string library = builtin.getDefiningLibrary();
    out << "No variant of " << builtin.name << " accepts the call " << callText(builtin.name, nlhs, argumentTypesOf(call))
        << (library.empty() ? "" : " (" + builtin.name + " is a builtin of " + library + ")") << '.';
    for (const BuiltinVariant& variant : builtin.getAllVariants()) {
        const std::string reason = describeRejection(variant, call);
        out << "\n  " << variantLabel(variant) << ": " << (reason.empty() ? "accepts, but is not searched here" : reason);
    }
    return out.str();
}

void throwNoMatchingVariant(const BuiltinFcn& builtin, int nlhs, int nrhs, oxArray* const* prhs) {
    throw NoMatchingVariantError({describeNoMatch(builtin, nlhs, nrhs, prhs)});
}

} // namespace Velloc::builtin::builtinreg
