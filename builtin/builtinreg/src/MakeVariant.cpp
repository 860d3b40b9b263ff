#include <builtin/builtinreg/MakeVariant.hpp>

namespace Velloc::builtin::builtinreg {

namespace detail {

void finishVariants(std::vector<BuiltinVariant>& variants, std::size_t first, const VariantOptions& options) {
    if (!options.lxeSupportLevel) {
        return;
    }
    for (std::size_t i = first; i < variants.size(); ++i) {
        BuiltinVariant& variant = variants[i];
        // LXE_ONLY is a placement, not a restriction: it replaces an unrestricted level.
        variant.lxeSupportLevel =
            *options.lxeSupportLevel == types::LxeSupportLevel::LXE_ONLY &&
                    variant.lxeSupportLevel == types::LxeSupportLevel::EQUIVALENT_SUPPORT
                ? types::LxeSupportLevel::LXE_ONLY
                : combineLxeSupportLevels(variant.lxeSupportLevel, *options.lxeSupportLevel);
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
      summary_(std::move(summary)) {}

} // namespace Velloc::builtin::builtinreg
