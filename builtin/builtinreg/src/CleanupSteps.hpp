// The steps of list cleanup that need more than a line: each works on the sorted list in
// place and reports what it removed or demoted.
#pragma once

#include <builtin/builtinreg/BuiltinVariantLists.hpp>

#include <vector>

namespace Velloc::builtin::builtinreg::detail {

// Removes a boxing variant whose inputs and original repeat an earlier variant's.
void removeUnreachableVariants(std::vector<BuiltinVariant>& variants, std::vector<CleanupFinding>& findings);

// Demotes to NO_SUPPORT every variant whose inputs the engine would accept for an
// earlier NO_SUPPORT variant of the same arity: the engine would otherwise take calls
// that the earlier variant must handle.
void demoteShadowedVariants(std::vector<BuiltinVariant>& variants, std::vector<CleanupFinding>& findings);

} // namespace Velloc::builtin::builtinreg::detail
