#include "CompiledCall.hpp"

#include <orvex/LiteralError.hpp>
#include <orvex/formatArray.hpp>
#include <orvex/parseLiteral.hpp>

#include <builtin/builtinreg/InlineCWrappers.hpp>
#include <builtin/builtinreg/ParameterAccess.hpp>

#include <fl/i18n.hpp>
#include <foundation/core/except/Exception.hpp>
#include <strings/StringArray.hpp>

#include <algorithm>
#include <complex>
#include <exception>
#include <optional>
#include <ostream>
#include <utility>

namespace orvex {

namespace {

using Velloc::builtin::BuiltinVariant;
using Velloc::builtin::Parameter;
namespace detail = Velloc::builtin::builtinreg::detail;

// The numeric scalar types compiled callers pass: the first thirteen of the wrapper list.
using ScalarIndices = std::make_index_sequence<13>;

// An argument as compiled code passes it: its value and its index in the wrapper list.
struct ScalarArgument {
    Parameter value;
    unsigned long index;
    Velloc::builtin::types::NumericScalarTypes type;
};

// A literal of the command line as compiled code sees it: a numeric scalar, or a literal
// text ('omitnan' or "omitnan"), which a flag position takes when it is the flag's text.
struct CompiledArgument {
    std::optional<ScalarArgument> scalar;
    std::optional<std::u16string> text;
};

std::optional<std::u16string> textOf(const oxArray* array) {
    if (matrix::getClassID(array) == oxCHAR_CLASS) {
        const matrix::Dims dims = matrix::getDimensions(array);
        if (dims.size() == 2 && (dims[0] == 1 || matrix::isEmpty(array))) {
            const char16_t* data = matrix::getTypedData<char16_t>(array);
            return data == nullptr ? std::u16string() : std::u16string(data, matrix::getNumberOfElements(array));
        }
        return std::nullopt;
    }
    if (Velloc::String::isStringArray(array) && matrix::getNumberOfElements(array) == 1) {
        return Velloc::String::getStringElement(array, 0).text();
    }
    return std::nullopt;
}

template <std::size_t... I>
std::optional<ScalarArgument> scalarOf(const oxArray* array, std::index_sequence<I...>) {
    std::optional<ScalarArgument> found;
    (... || [&] {
        using T = detail::WrapperTypeAt<I>;
        if (matrix::getClassID(array) != detail::classOfValue<T>() ||
            matrix::isComplex(array) != detail::isComplexValue<T>()) {
            return false;
        }
        found = ScalarArgument{Parameter(*matrix::getTypedData<T>(array)), I,
                               {detail::classOfValue<T>(),
                                detail::isComplexValue<T>()
                                    ? Velloc::builtin::types::NumericScalarTypes::Complexity::COMPLEX
                                    : Velloc::builtin::types::NumericScalarTypes::Complexity::NOT_COMPLEX}};
        return true;
    }());
    return found;
}

std::optional<unsigned long> indexOf(const Velloc::builtin::types::NumericScalarTypes& type) {
    std::optional<unsigned long> index;
    [&]<std::size_t... I>(std::index_sequence<I...>) {
        (... || [&] {
            using T = detail::WrapperTypeAt<I>;
            if (type.getElement() != detail::classOfValue<T>() || type.isComplex() != detail::isComplexValue<T>()) {
                return false;
            }
            index = I;
            return true;
        }());
    }(ScalarIndices{});
    return index;
}

// The result record as a host array.
oxArray* arrayOf(const detail::InlineCResult& record) {
    oxArray* out = nullptr;
    [&]<std::size_t... I>(std::index_sequence<I...>) {
        (... || (record.tag == static_cast<std::int32_t>(I) &&
                 (detail::parameterConversionImpl(&out, detail::readInlineCResult<detail::WrapperTypeAt<I>>(record)),
                  true)));
    }(ScalarIndices{});
    return out;
}

// What the engine's environment does: keeps warnings and the pending error.
class EngineEnvironment final : public Velloc::lxe::ILxeBuiltinEnvironment, public Velloc::lxe::ILxeBuiltinAccessors {
public:
    void AddWarningMessage(const std::u16string& message) override { warnings.push_back(message); }
    Velloc::lxe::ILxeBuiltinAccessors* GetLxeBuiltinAccessors() override { return this; }
    void SetInternalPendingException() override { error = std::current_exception(); }

    std::vector<std::u16string> warnings;
    std::exception_ptr error;
};

// The first variant the engine may call with exactly these arguments: each numeric scalar
// of its declared type, and each literal text at a flag position equal to the flag, as
// compiled code matches its option texts; and the index of its scalar result.
const BuiltinVariant* findCompiledVariant(std::span<const BuiltinVariant> list,
                                          const std::vector<CompiledArgument>& arguments, unsigned long& resultIndex) {
    for (const BuiltinVariant& variant : list) {
        if (variant.inputArgTypes.size() != arguments.size() || variant.outputArgTypes.size() != 1) {
            continue;
        }
        const auto* result = std::get_if<Velloc::builtin::types::NumericScalarTypes>(&variant.outputArgTypes[0]);
        const std::optional<unsigned long> index = result != nullptr ? indexOf(*result) : std::nullopt;
        bool takesThem = true;
        for (std::size_t i = 0; i < arguments.size() && takesThem; ++i) {
            const auto& declared = variant.inputArgTypes[i];
            if (const auto* flag = std::get_if<Velloc::builtin::types::FlagInputType>(&declared)) {
                takesThem = arguments[i].text && *arguments[i].text == flag->getValue();
            } else {
                const auto* scalar = std::get_if<Velloc::builtin::types::NumericScalarTypes>(&declared);
                takesThem = scalar != nullptr && arguments[i].scalar && *scalar == arguments[i].scalar->type;
            }
        }
        if (index && takesThem) {
            resultIndex = *index;
            return &variant;
        }
    }
    return nullptr;
}

} // namespace

int callCompiled(const std::vector<LoadedBuiltin>& builtins, const std::string& name,
                 const std::vector<std::string>& argumentTexts, std::ostream& out) {
    const Velloc::builtin::BuiltinFcn* builtin = findBuiltin(builtins, name);
    if (builtin == nullptr) {
        out << "orvex: no builtin named '" << name << "'; 'orvex list' shows them\n";
        return 2;
    }
    std::vector<CompiledArgument> arguments;
    for (std::size_t i = 0; i < argumentTexts.size(); ++i) {
        CompiledArgument argument;
        try {
            const matrix::ArrayPtr array = parseLiteral(argumentTexts[i]);
            if (matrix::getNumberOfElements(array.get()) == 1 && !matrix::isSparse(array.get())) {
                argument.scalar = scalarOf(array.get(), ScalarIndices{});
            }
            if (!argument.scalar) {
                argument.text = textOf(array.get());
            }
        } catch (const LiteralError& error) {
            out << "orvex: argument " << i + 1 << ": " << error.what() << '\n';
            return 2;
        }
        if (!argument.scalar && !argument.text) {
            out << "orvex: argument " << i + 1
                << ": compiled callers pass numeric scalars, and literal option texts at flag positions\n";
            return 2;
        }
        arguments.push_back(std::move(argument));
    }
    unsigned long resultIndex = 0;
    const BuiltinVariant* variant =
        findCompiledVariant({builtin->variants, builtin->numVariants}, arguments, resultIndex);
    // Flags are matched, not passed: the wrapper takes the scalars, one or two.
    std::vector<const ScalarArgument*> scalars;
    for (const CompiledArgument& argument : arguments) {
        if (argument.scalar) {
            scalars.push_back(&*argument.scalar);
        }
    }
    if (variant != nullptr && (scalars.empty() || scalars.size() > 2)) {
        variant = nullptr;
    }
    if (variant == nullptr) {
        out << "orvex: no variant of " << name
            << " that the engine calls takes these arguments (one or two numeric scalars of its declared types, "
               "and the literal option text at each of its flag positions)\n";
        return 2;
    }
    out << "compiled call of " << variant->cppFunctionName << '\n';

    std::vector<Parameter> parameters;
    for (const ScalarArgument* argument : scalars) {
        parameters.push_back(argument->value);
    }
    EngineEnvironment environment;
    bool raised = false;
    const detail::InlineCResult record =
        scalars.size() == 1
            ? detail::getExportedInlineCWrapperFcn(nullptr, resultIndex, scalars[0]->index)(
                  &variant->functionDescriptor, &environment, &raised, parameters.data())
            : detail::getExportedInlineCWrapperFcn(nullptr, resultIndex, scalars[0]->index, scalars[1]->index)(
                  &variant->functionDescriptor, &environment, &raised, parameters.data());
    if (raised) {
        for (const std::u16string& warning : environment.warnings) {
            out << "Warning: " << fl::i18n::ustring_to_utf8(warning) << '\n';
        }
        if (environment.error) {
            try {
                std::rethrow_exception(environment.error);
            } catch (const foundation::core::except::IdentifiedException& error) {
                out << "Error (" << error.getId().component << ':' << error.getId().key << "): " << error.message()
                    << '\n';
            } catch (const std::exception& error) {
                out << "Error: " << error.what() << '\n';
            }
            return 1;
        }
    }
    const matrix::ArrayPtr result(arrayOf(record));
    out << "ans = " << formatArray(result.get()) << '\n';
    return 0;
}

} // namespace orvex
