// What modules registered for each engine-object class variant, so that a second
// registration that would replace the first in silence is refused instead. Registering
// again what is registered already (a module started again) is no conflict.
#pragma once

#include <lxe/LxeObjectDefaultIndexingMethods.hpp>
#include <matrix/oxArray.hpp>

#include <cstddef>
#include <optional>
#include <string>

namespace Velloc::builtin::builtinreg::detail {

struct RegistrationClaim {
    oxClassID classId;
    std::size_t variantId;
    const std::string& className;
    // Demangled; empty for a registration by class name alone.
    std::string cppClass;
};

// Each records the claim and returns nothing, or, when it conflicts with an earlier
// registration of the class variant, records nothing and returns a text naming both.
std::optional<std::string> claimVariant(const RegistrationClaim& claim, bool flag);
std::optional<std::string> claimDefaultIndexing(const RegistrationClaim& claim, bool flag,
                                                const Velloc::lxe::LxeObjectDefaultIndexingMethods& methods);

} // namespace Velloc::builtin::builtinreg::detail
