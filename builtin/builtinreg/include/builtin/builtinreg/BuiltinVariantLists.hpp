// The variant lists of one builtin: every variant that survives cleanup, sorted by
// arity and input types, and the lists that the execution engine and invoke search.
// Built once, usually during static initialisation of a defining library, and kept in
// static storage: builtins span these lists without owning them.
#pragma once

#include <builtin/BuiltinVariant.hpp>

#include <initializer_list>
#include <span>
#include <string>
#include <vector>

namespace Velloc::builtin::builtinreg {

// One finding of cleanup: a variant that can never run, or that the engine may no
// longer call because an earlier variant takes its calls.
// Variants are named by their C++ name and input types, as diagnostics print them.
struct CleanupFinding {
    enum class Kind { UNSUPPORTED, UNREACHABLE, SHADOWED, UNSUPPORTED_BOXING };
    Kind kind;
    std::string variant;
    // The variant that makes it unreachable or shadows it; empty for the other kinds.
    std::string by;
};

std::string toString(CleanupFinding::Kind kind);
// "shadowed: f [double] by g [double]"
std::string toString(const CleanupFinding& finding);

class BuiltinVariantLists {
public:
    explicit BuiltinVariantLists(std::vector<BuiltinVariant>&& variants);
    BuiltinVariantLists(const std::initializer_list<std::vector<BuiltinVariant>>& variantLists);

    static std::vector<BuiltinVariant> concatenateVariantSpans(
        std::initializer_list<std::span<const BuiltinVariant>> spans);
    static std::span<const BuiltinVariant> makeSpan(const std::vector<BuiltinVariant>& variants);

    std::vector<BuiltinVariant> all;
    std::vector<BuiltinVariant> searchedByLxe;
    std::vector<BuiltinVariant> searchedByInvokeAfterLxe;
    std::vector<BuiltinVariant> searchedByInvokeAfterLxeComplexScalarRhs;
    std::vector<BuiltinVariant> searchedByInvokeNoLxe;

    // What cleanup removed or demoted, in the order it found them.
    const std::vector<CleanupFinding>& getCleanupFindings() const noexcept { return findings_; }
    // The boxed copies cleanup removed because the engine could not call them (findings
    // of kind UNSUPPORTED_BOXING), as they were: the reachability report
    // (builtinreg/Reachability.hpp) says from them why their originals lost the
    // interpreter's calls.
    const std::vector<BuiltinVariant>& getRemovedBoxingVariants() const noexcept { return removedBoxing_; }

private:
    std::vector<CleanupFinding> findings_;
    std::vector<BuiltinVariant> removedBoxing_;
};

} // namespace Velloc::builtin::builtinreg
