#include <builtin/lxeobject/LxeObjectID.hpp>

#include <foundation/core/diag/terminate.hpp>

namespace Velloc::builtin::builtinreg {

namespace {

// These reports name the site the host's tools know them by, wherever the check sits here.
constexpr foundation::core::diag::ReportSite VARIANT_ID_SITE{"LxeObjectID", 12};
constexpr foundation::core::diag::ReportSite NAME_FUNCTION_SITE{"LxeObjectID", 20};

} // namespace

void assertIsDefaultVariantIdOrSame(std::size_t newId, std::size_t currentId, std::size_t defaultId) {
    if (currentId != newId && currentId != defaultId && fl_diag_terminate()) {
        foundation::core::diag::terminate(
            "Cannot assign conflicting variant id values to Velloc::builtin::builtinreg::LxeObjectId",
            VARIANT_ID_SITE);
    }
}

void assertIsDefaultNameFuncPtrOrSame(LxeObjectId::NameFunction newFn, LxeObjectId::NameFunction currentFn,
                                      LxeObjectId::NameFunction defaultFn) {
    if (currentFn != newFn && currentFn != defaultFn && fl_diag_terminate()) {
        foundation::core::diag::terminate(
            "Cannot assign conflicting name functions to Velloc::builtin::builtinreg::LxeObjectId",
            NAME_FUNCTION_SITE);
    }
}

void LxeObjectId::setVariantId(std::size_t variantId) {
    assertIsDefaultVariantIdOrSame(variantId, getVariantId(), DEFAULT_VARIANT_ID);
    variantId_.store(variantId, std::memory_order_release);
}

void LxeObjectId::setNameFunction(NameFunction nameFunction) {
    assertIsDefaultNameFuncPtrOrSame(nameFunction, getNameFunction(), DEFAULT_NAME_FUNCTION);
    nameFunction_.store(nameFunction, std::memory_order_release);
}

const char* LxeObjectId::getClassName() const {
    const NameFunction name = getNameFunction();
    const char* text = name != nullptr ? name() : nullptr;
    return text != nullptr ? text : "";
}

} // namespace Velloc::builtin::builtinreg
