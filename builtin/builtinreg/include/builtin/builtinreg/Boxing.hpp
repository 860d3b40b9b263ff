// Boxing variants: copies of an ordinary variant that accept other argument types and
// convert ("box") each argument into what the developer function takes. The
// registration templates of defining libraries build them with these helpers.
#pragma once

#include <builtin/BuiltinVariant.hpp>

#include <lxe/ILxeBuiltinEnvironment.hpp>

#include <functional>
#include <initializer_list>
#include <typeinfo>
#include <vector>

namespace Velloc::builtin::builtinreg::detail {

// Appends one copy of original per input list, with those inputs, their texts and a
// recomputed support level; the lists are moved from. The copies share original's own
// original, which the caller sets and keeps alive.
void fillBoxedVariants(const BuiltinVariant& original, std::vector<BuiltinVariant>& out,
                       std::vector<std::vector<types::ArgType>>& boxedInputTypes);

// A boxing variant must keep its original's arity and outputs. Each failed condition
// ends the process when diagnostic terminations are armed and is passed over otherwise.
void assertBoxingVariantConsistent(const BuiltinVariant& boxingVariant, const BuiltinVariant& originalVariant);

// One record on "builtin2::Boxing": the developer's input types, the boxed ones, and the
// variant's input texts.
void logBoxingInputConversions(std::initializer_list<std::reference_wrapper<const std::type_info>> developerInputs,
                               std::initializer_list<std::reference_wrapper<const std::type_info>> boxedInputs,
                               const BuiltinVariant& variant);

// Called in an exception handler of a boxing wrapper: flags the error and, when there is
// an environment with accessors, records the exception in flight as its pending error.
void handleBoxingException(bool& exceptionRaised, lxe::ILxeBuiltinEnvironment* env) noexcept;

} // namespace Velloc::builtin::builtinreg::detail
