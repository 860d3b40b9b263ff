// One builtin as the host sees it: its name, its variant lists and its default
// implementation. invoke picks the first variant of the right list that accepts the
// call, converts the arguments, calls it, reports what it collected and converts the
// result back.
#pragma once

#include <builtin/BuiltinVariant.hpp>

#include <capabilities/CapabilityList.hpp>
#include <ocos/Ofh.hpp>

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace Velloc::builtin {

namespace builtinreg {
class BuiltinVariantLists;
namespace detail {
class DispatchCache;
}
}

// A non-owning view of a variant list.
struct VariantArray {
    const BuiltinVariant* variants = nullptr;
    std::uint64_t numVariants = 0;

    VariantArray() = default;
    VariantArray(const BuiltinVariant* variants, std::uint64_t numVariants)
        : variants(variants), numVariants(numVariants) {}
    VariantArray(std::span<const BuiltinVariant> span) : variants(span.data()), numVariants(span.size()) {}

    std::span<const BuiltinVariant> span() const noexcept { return {variants, numVariants}; }
};

class BuiltinFcn {
public:
    enum VariantsToConsider : std::int32_t {
        // The call did not pass through the execution engine.
        NoLxe = 0,
        // The engine searched its own list and declined the call.
        AfterLxe = 1,
    };

    BuiltinFcn(std::string name, capabilities::CapabilityList capabilities, VariantArray allVariants,
               VariantArray variants, VariantArray searchedByInvokeAfterLxe, VariantArray searchedByInvokeNoLxe,
               BuiltinVariant defaultVariant, Ofh_ORVEX_fn* fallbackFcn,
               VariantArray searchedByInvokeAfterLxeComplexScalar);
    // Spans the lists, which must outlive the builtin.
    BuiltinFcn(std::string name, capabilities::CapabilityList capabilities,
               const builtinreg::BuiltinVariantLists& lists, BuiltinVariant defaultVariant,
               Ofh_ORVEX_fn* fallbackFcn);

    BuiltinFcn(const BuiltinFcn&) = delete;
    BuiltinFcn& operator=(const BuiltinFcn&) = delete;
    virtual ~BuiltinFcn();

    // Defining libraries tell the host what the builtin is and where it comes from.
    virtual std::string getDefiningLibrary() const = 0;
    virtual std::string getSummary() const = 0;

    void invoke(int nlhs, oxArray** plhs, int nrhs, oxArray** prhs, VariantsToConsider variantsToConsider) const;

    virtual const std::string& getHelpContent() const;

    // The list invoke searches for this call, or an empty span when it goes straight to
    // the default implementation.
    std::span<const BuiltinVariant> chooseVariants(int nrhs, oxArray* const* prhs,
                                                   VariantsToConsider variantsToConsider) const;
    std::span<const BuiltinVariant> getAllVariants() const noexcept { return allVariants_.span(); }
    std::span<const BuiltinVariant> getSearchedByInvokeNoLxe() const noexcept { return searchedByInvokeNoLxe_.span(); }
    std::span<const BuiltinVariant> getSearchedByInvokeAfterLxe() const noexcept {
        return searchedByInvokeAfterLxe_.span();
    }
    std::span<const BuiltinVariant> getSearchedByInvokeAfterLxeComplexScalar() const noexcept {
        return searchedByInvokeAfterLxeComplexScalar_.span();
    }

    std::string name;
    capabilities::CapabilityList capabilities;
    // The list the execution engine searches.
    const BuiltinVariant* variants;
    std::uint64_t numVariants;
    BuiltinVariant defaultVariant;

private:
    VariantArray allVariants_;
    VariantArray searchedByInvokeNoLxe_;
    VariantArray searchedByInvokeAfterLxe_;
    VariantArray searchedByInvokeAfterLxeComplexScalar_;
    // What invoke chose for recent kinds of call; filled by invoke from any thread.
    std::unique_ptr<builtinreg::detail::DispatchCache> dispatchCache_;

    // Which of the three lists a list that chooseVariants returned is, for the call's key.
    unsigned listIndexOf(std::span<const BuiltinVariant> list) const noexcept;
    // Every call whose accepting variant invoke does not find in the dispatch cache at
    // once: the calling form's checks, the list, the search, the default implementation.
    void invokeSearching(int nlhs, oxArray** plhs, int nrhs, oxArray** prhs,
                         VariantsToConsider variantsToConsider) const;

public:
    // The host-level function of the builtin; kept for the host, not used by invoke.
    Ofh_ORVEX_fn* fallbackFcn;
};

// The name of the list of builtin that chooseVariants returned, as diagnostics print it.
const char* listNameOf(const BuiltinFcn& builtin, std::span<const BuiltinVariant> list);

// The contiguous run of a sorted list whose variants have nrhs inputs and outputs that
// fit nlhs (none or one when nlhs is 0).
std::span<const BuiltinVariant> findArityRun(std::span<const BuiltinVariant> sorted, std::uint64_t nlhs,
                                             std::uint64_t nrhs);

} // namespace Velloc::builtin
