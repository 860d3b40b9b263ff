#include <builtin/builtinreg/MakeVariant.hpp>

#include <builtin/builtinreg/Boxing.hpp>

#include <memory>

namespace Velloc::builtin::builtinreg {

namespace detail {

void finishVariants(std::vector<BuiltinVariant>& variants, std::size_t first,
                    const std::optional<types::LxeSupportLevel>& lxeSupportLevel) {
    if (!lxeSupportLevel) {
        return;
    }
    for (std::size_t i = first; i < variants.size(); ++i) {
        BuiltinVariant& variant = variants[i];
        // LXE_ONLY is a placement, not a restriction: it replaces an unrestricted level.
        variant.lxeSupportLevel =
            *lxeSupportLevel == types::LxeSupportLevel::LXE_ONLY &&
                    variant.lxeSupportLevel == types::LxeSupportLevel::EQUIVALENT_SUPPORT
                ? types::LxeSupportLevel::LXE_ONLY
                : combineLxeSupportLevels(variant.lxeSupportLevel, *lxeSupportLevel);
    }
}

std::vector<types::ArgType> boxedInputTypes(const BuiltinVariant& original) {
    using types::OxArrayTypes;
    std::vector<types::ArgType> inputs(original.inputArgTypes.begin(), original.inputArgTypes.end());
    bool boxes = false;
    for (types::ArgType& input : inputs) {
        if (const auto* scalar = std::get_if<types::NumericScalarTypes>(&input)) {
            OxArrayTypes array(scalar->getElement(), OxArrayTypes::Shape::UNKNOWN, OxArrayTypes::Density::FULL,
                               scalar->isComplex() ? OxArrayTypes::Complexity::COMPLEX
                                                   : OxArrayTypes::Complexity::NOT_COMPLEX,
                               OxArrayTypes::ANY_NUM_DIMS);
            array.setSignatureTolerance(types::SignatureTolerance::RELAXED);
            input = array;
            boxes = true;
        }
    }
    return boxes ? inputs : std::vector<types::ArgType>{};
}

void appendBoxedVariants(std::vector<BuiltinVariant>& variants, std::size_t count,
                         std::initializer_list<std::reference_wrapper<const std::type_info>> developerInputs,
                         std::initializer_list<std::reference_wrapper<const std::type_info>> boxedInputs) {
    for (std::size_t i = 0; i < count; ++i) {
        std::vector<types::ArgType> inputs = boxedInputTypes(variants[i]);
        if (inputs.empty()) {
            continue;
        }
        std::vector<std::vector<types::ArgType>> lists;
        lists.push_back(std::move(inputs));
        // The copies refer to their original, which they keep alive.
        BuiltinVariant source(variants[i]);
        source.originalVariant = std::make_shared<const BuiltinVariant>(variants[i]);
        const std::size_t first = variants.size();
        fillBoxedVariants(source, variants, lists);
        for (std::size_t b = first; b < variants.size(); ++b) {
            assertBoxingVariantConsistent(variants[b], *variants[b].originalVariant);
            logBoxingInputConversions(developerInputs, boxedInputs, variants[b]);
        }
    }
}

} // namespace detail

BuiltinVariant noDefaultImplementation(std::string_view orvexFunctionName) {
    return BuiltinVariant(nullptr, lxe::LxeFunctionDescriptor(), {}, {}, BuiltinVariant::CallsIntoOrvex::NO,
                          BuiltinVariant::HasWarnings::NO, BuiltinVariant::HasExceptions::NO,
                          BuiltinVariant::HasSideEffects::NO, "", std::string(orvexFunctionName), "",
                          BuiltinVariant::IsElementWise::NO);
}

RegisteredBuiltin::RegisteredBuiltin(std::string name, std::string definingLibrary, std::string summary,
                                     const BuiltinVariantLists& lists, BuiltinVariant defaultVariant,
                                     Ofh_ORVEX_fn* fallbackFcn)
    : BuiltinFcn(std::move(name), {}, lists, std::move(defaultVariant), fallbackFcn),
      definingLibrary_(std::move(definingLibrary)),
      summary_(std::move(summary)),
      lists_(lists) {}

} // namespace Velloc::builtin::builtinreg
