#include <builtin/BuiltinFcn.hpp>

#include <builtin/LogSeverity.hpp>
#include <builtin/builtinreg/BuiltinVariantLists.hpp>
#include <builtin/detail/DispatchCache.hpp>

#include <foundation/log/Channel.hpp>

#include <algorithm>
#include <sstream>

namespace Velloc::builtin {

namespace {

std::string asString(VariantArray list) {
    std::ostringstream text;
    text << "variants:\n";
    for (const BuiltinVariant& variant : list.span()) {
        text << variant;
    }
    return text.str();
}

// Output counts ordered for a call asking for nlhs: with nlhs 0, counts 0 and 1 both fit.
int compareOutputs(std::size_t outputs, std::uint64_t nlhs) {
    if (nlhs == 0) {
        return outputs <= 1 ? 0 : 1;
    }
    return outputs == nlhs ? 0 : (outputs < nlhs ? -1 : 1);
}

int compareArity(const BuiltinVariant& variant, std::uint64_t nlhs, std::uint64_t nrhs) {
    const std::size_t inputs = variant.inputArgTypes.size();
    if (inputs != nrhs) {
        return inputs < nrhs ? -1 : 1;
    }
    return compareOutputs(variant.outputArgTypes.size(), nlhs);
}

} // namespace

BuiltinFcn::BuiltinFcn(std::string name, capabilities::CapabilityList capabilities, VariantArray allVariants,
                       VariantArray variants, VariantArray searchedByInvokeAfterLxe,
                       VariantArray searchedByInvokeNoLxe, BuiltinVariant defaultVariant,
                       Ofh_ORVEX_fn* fallbackFcn, VariantArray searchedByInvokeAfterLxeComplexScalar)
    : name(std::move(name)),
      capabilities(std::move(capabilities)),
      variants(variants.variants),
      numVariants(variants.numVariants),
      defaultVariant(std::move(defaultVariant)),
      allVariants_(allVariants),
      searchedByInvokeNoLxe_(searchedByInvokeNoLxe),
      searchedByInvokeAfterLxe_(searchedByInvokeAfterLxe),
      searchedByInvokeAfterLxeComplexScalar_(searchedByInvokeAfterLxeComplexScalar),
      dispatchCache_(std::make_unique<builtinreg::detail::DispatchCache>()),
      fallbackFcn(fallbackFcn) {
    static foundation::log::Channel& channel = foundation::log::channel("builtin2::BuiltinFcn");
    foundation::log::logIf(channel, LOG_DEBUG, "BuiltinFcn", 542, [&] {
        return " asString(allVariants_)=" + asString(allVariants_) +
               " asString(VariantArray(variants, numVariants))=" + asString(VariantArray(this->variants, numVariants)) +
               " asString(searchedByInvokeNoLxe_)=" + asString(searchedByInvokeNoLxe_) +
               " asString(searchedByInvokeAfterLxe_)=" + asString(searchedByInvokeAfterLxe_) +
               " asString(searchedByInvokeAfterLxeComplexScalar_)=" + asString(searchedByInvokeAfterLxeComplexScalar_);
    });
}

BuiltinFcn::BuiltinFcn(std::string name, capabilities::CapabilityList capabilities,
                       const builtinreg::BuiltinVariantLists& lists, BuiltinVariant defaultVariant,
                       Ofh_ORVEX_fn* fallbackFcn)
    : BuiltinFcn(std::move(name), std::move(capabilities), VariantArray(lists.all), VariantArray(lists.searchedByLxe),
                 VariantArray(lists.searchedByInvokeAfterLxe), VariantArray(lists.searchedByInvokeNoLxe),
                 std::move(defaultVariant), fallbackFcn,
                 VariantArray(lists.searchedByInvokeAfterLxeComplexScalarRhs)) {}

BuiltinFcn::~BuiltinFcn() = default;

const std::string& BuiltinFcn::getHelpContent() const {
    static const std::string empty;
    return empty;
}

std::span<const BuiltinVariant> BuiltinFcn::chooseVariants(int nrhs, oxArray* const* prhs,
                                                           VariantsToConsider variantsToConsider) const {
    if (variantsToConsider == NoLxe) {
        return searchedByInvokeNoLxe_.span();
    }
    // The lists differ only when some variant leaves complex scalars to invoke.
    if (searchedByInvokeAfterLxeComplexScalar_.numVariants > searchedByInvokeAfterLxe_.numVariants) {
        for (int i = 0; i < nrhs; ++i) {
            if (prhs[i] != nullptr && matrix::isComplex(prhs[i]) && matrix::isScalar(prhs[i])) {
                return searchedByInvokeAfterLxeComplexScalar_.span();
            }
        }
    }
    return searchedByInvokeAfterLxe_.span();
}

const char* listNameOf(const BuiltinFcn& builtin, std::span<const BuiltinVariant> list) {
    if (list.data() == builtin.getSearchedByInvokeNoLxe().data()) {
        return "searchedByInvokeNoLxe";
    }
    if (list.data() == builtin.getSearchedByInvokeAfterLxeComplexScalar().data() &&
        list.size() == builtin.getSearchedByInvokeAfterLxeComplexScalar().size()) {
        return "searchedByInvokeAfterLxeComplexScalar";
    }
    return "searchedByInvokeAfterLxe";
}

std::span<const BuiltinVariant> findArityRun(std::span<const BuiltinVariant> sorted, std::uint64_t nlhs,
                                             std::uint64_t nrhs) {
    const auto first = std::partition_point(sorted.begin(), sorted.end(), [&](const BuiltinVariant& v) {
        return compareArity(v, nlhs, nrhs) < 0;
    });
    const auto last = std::partition_point(first, sorted.end(), [&](const BuiltinVariant& v) {
        return compareArity(v, nlhs, nrhs) == 0;
    });
    return {first, last};
}

} // namespace Velloc::builtin
