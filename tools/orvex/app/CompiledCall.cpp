#include "CompiledCall.hpp"

#include <orvex/LiteralError.hpp>
#include <orvex/formatArray.hpp>
#include <orvex/parseLiteral.hpp>

#include <builtin/builtinreg/InlineCWrappers.hpp>
#include <builtin/builtinreg/ParameterAccess.hpp>

#include <fl/i18n.hpp>
#include <foundation/core/except/Exception.hpp>

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

// The first variant the engine may call with exactly these scalar types, and the index
// of its scalar result.
const BuiltinVariant* findCompiledVariant(std::span<const BuiltinVariant> list,
                                          const std::vector<ScalarArgument>& arguments, unsigned long& resultIndex) {
    for (const BuiltinVariant& variant : list) {
        if (variant.inputArgTypes.size() != arguments.size() || variant.outputArgTypes.size() != 1) {
            continue;
        }
        const auto* result = std::get_if<Velloc::builtin::types::NumericScalarTypes>(&variant.outputArgTypes[0]);
        const std::optional<unsigned long> index = result != nullptr ? indexOf(*result) : std::nullopt;
        const bool takesThem = std::equal(arguments.begin(), arguments.end(), variant.inputArgTypes.begin(),
                                          [](const ScalarArgument& argument, const auto& declared) {
                                              const auto* scalar =
                                                  std::get_if<Velloc::builtin::types::NumericScalarTypes>(&declared);
                                              return scalar != nullptr && *scalar == argument.type;
                                          });
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
    std::vector<ScalarArgument> arguments;
    for (std::size_t i = 0; i < argumentTexts.size(); ++i) {
        std::optional<ScalarArgument> argument;
        try {
            const matrix::ArrayPtr array = parseLiteral(argumentTexts[i]);
            if (matrix::getNumberOfElements(array.get()) == 1 && !matrix::isSparse(array.get())) {
                argument = scalarOf(array.get(), ScalarIndices{});
            }
        } catch (const LiteralError& error) {
            out << "orvex: argument " << i + 1 << ": " << error.what() << '\n';
            return 2;
        }
        if (!argument) {
            out << "orvex: argument " << i + 1 << ": compiled callers pass numeric scalars only\n";
            return 2;
        }
        arguments.push_back(std::move(*argument));
    }
    unsigned long resultIndex = 0;
    const BuiltinVariant* variant =
        arguments.empty() || arguments.size() > 2
            ? nullptr
            : findCompiledVariant({builtin->variants, builtin->numVariants}, arguments, resultIndex);
    if (variant == nullptr) {
        out << "orvex: no variant of " << name << " that the engine calls takes these one or two scalars\n";
        return 2;
    }
    out << "compiled call of " << variant->cppFunctionName << '\n';

    std::vector<Parameter> parameters;
    for (const ScalarArgument& argument : arguments) {
        parameters.push_back(argument.value);
    }
    EngineEnvironment environment;
    bool raised = false;
    const detail::InlineCResult record =
        arguments.size() == 1
            ? detail::getExportedInlineCWrapperFcn(nullptr, resultIndex, arguments[0].index)(
                  &variant->functionDescriptor, &environment, &raised, parameters.data())
            : detail::getExportedInlineCWrapperFcn(nullptr, resultIndex, arguments[0].index, arguments[1].index)(
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
