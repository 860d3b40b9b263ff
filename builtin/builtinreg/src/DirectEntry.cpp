#include <builtin/builtinreg/DirectEntry.hpp>

namespace Velloc::builtin::builtinreg::detail {

namespace {

enum class ScalarsDeclared { NONE, AS_SCALARS, AS_ARRAYS, MIXED };

// How the variant declares its scalar inputs, or MIXED when some input is declared in a
// way the direct entry does not take: a flag, an engine object, a scalar of another
// class than the parameter's, a scalar where the function takes a host array.
ScalarsDeclared scalarsDeclared(const BuiltinVariant& variant, unsigned scalarInputs, const DirectEntry& plain) {
    ScalarsDeclared declared = ScalarsDeclared::NONE;
    for (std::size_t i = 0; i < variant.inputArgTypes.size(); ++i) {
        const types::ArgType& type = variant.inputArgTypes[i];
        const auto* scalar = std::get_if<types::NumericScalarTypes>(&type);
        const bool declaresScalar =
            scalar != nullptr &&
            types::InputKey::ofScalar(scalar->getElement(), scalar->isComplex()).bits() == plain.requiredKeys[i];
        const bool declaresArray = std::holds_alternative<types::OxArrayTypes>(type);
        if ((scalarInputs & (1u << i)) == 0) {
            if (!declaresArray) {
                return ScalarsDeclared::MIXED;
            }
            continue;
        }
        if (scalar != nullptr && !declaresScalar) {
            return ScalarsDeclared::MIXED;
        }
        const ScalarsDeclared here = declaresScalar ? ScalarsDeclared::AS_SCALARS
                                     : declaresArray ? ScalarsDeclared::AS_ARRAYS
                                                     : ScalarsDeclared::MIXED;
        if (here == ScalarsDeclared::MIXED || (declared != ScalarsDeclared::NONE && declared != here)) {
            return ScalarsDeclared::MIXED;
        }
        declared = here;
    }
    return declared;
}

} // namespace

void attachDirectEntries(std::vector<BuiltinVariant>& variants, std::size_t arity, unsigned scalarInputs,
                         const DirectEntry* plain, const DirectEntry* boxed) {
    for (BuiltinVariant& variant : variants) {
        if (variant.inputArgTypes.size() != arity || variant.functionDescriptor.getCallingConvention() != lxe::Plain) {
            continue;
        }
        switch (scalarsDeclared(variant, scalarInputs, *plain)) {
        case ScalarsDeclared::NONE:
        case ScalarsDeclared::AS_SCALARS: variant.directEntry = plain; break;
        case ScalarsDeclared::AS_ARRAYS: variant.directEntry = boxed; break;
        case ScalarsDeclared::MIXED: break;
        }
    }
}

} // namespace Velloc::builtin::builtinreg::detail
