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

namespace {

// Numeric scalars as host arrays of their class and complexity, of any size; whether any was.
bool boxScalars(std::vector<types::ArgType>& inputs) {
    using types::OxArrayTypes;
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
    return boxes;
}

// Whether a parameter that points to an engine object is declared in its array form.
// Flags hold positions of their own, which no parameter has.
bool takesObjectArray(const BuiltinVariant& variant, std::initializer_list<bool> objectPointers) {
    const bool* pointer = objectPointers.begin();
    for (const types::ArgType& input : variant.inputArgTypes) {
        if (std::holds_alternative<types::FlagInputType>(input)) {
            continue;
        }
        if (pointer == objectPointers.end()) {
            break;
        }
        if (*pointer++ && std::holds_alternative<types::OxArrayTypes>(input)) {
            return true;
        }
    }
    return false;
}

} // namespace

std::vector<types::ArgType> boxedInputTypes(const BuiltinVariant& original) {
    std::vector<types::ArgType> inputs(original.inputArgTypes.begin(), original.inputArgTypes.end());
    return boxScalars(inputs) ? inputs : std::vector<types::ArgType>{};
}

void settleObjectArrayVariants(std::vector<BuiltinVariant>& variants, std::initializer_list<bool> objectPointers) {
    for (BuiltinVariant& variant : variants) {
        if (!takesObjectArray(variant, objectPointers)) {
            continue;
        }
        std::vector<types::ArgType> inputs(variant.inputArgTypes.begin(), variant.inputArgTypes.end());
        if (boxScalars(inputs)) {
            variant.inputArgTypes = std::move(inputs);
            variant.inputTypes = typeTexts(variant.inputArgTypes, types::ArgTypeDirection::INPUT);
        }
        variant.lxeSupportLevel = types::LxeSupportLevel::NO_SUPPORT;
    }
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
