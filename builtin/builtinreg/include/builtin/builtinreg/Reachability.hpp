// Variants that no interpreted call reaches, why, and what the author can do about it.
//
// The interpreter holds every value as a host array and calls invoke without the engine,
// so it reaches a variant only through the list invoke searches then
// (getSearchedByInvokeNoLxe) and only with host arrays. A variant none of whose calls
// can arrive that way is silently dead for every language user, even though it compiles
// and loads. findUnreachableVariants names each such variant of a builtin:
//
// - BOXING_REMOVED: a function of numeric scalars is reached by interpreted calls through
//   its boxed copy, which takes arrays; cleanup removes boxed copies the engine cannot
//   call, for example because another input or the result is text. Fix: take
//   the number as const oxArray*, or add a variant that does.
// - FLAG_ONLY: an input declared as a flag (.flags) takes only a literal option, which
//   only compiled callers pass; an interpreted call passes the option as text. Fix: add a
//   variant that takes the option as text and checks it.
// - COMPILED_ONLY: another input type only compiled callers pass (a numeric scalar with
//   no boxed copy, a host string object, an engine object).
// - SHADOWED: an earlier variant of the list takes every call this one takes.
//
// A variant whose interpreted calls another variant takes (the author added the variant
// the fix asks for) is not reported. Variants declared LXE_ONLY are the engine's by
// declaration and are not reported either.
#pragma once

#include <builtin/BuiltinFcn.hpp>

#include <string>
#include <vector>

namespace Velloc::builtin::builtinreg {

struct UnreachableVariant {
    enum class Kind { BOXING_REMOVED, FLAG_ONLY, COMPILED_ONLY, SHADOWED };
    Kind kind;
    // The variant by its C++ name and input types (variantLabel).
    std::string variant;
    // Why no interpreted call reaches it, in words.
    std::string reason;
    // What the author can change.
    std::string fix;
    // The variant that takes its calls (SHADOWED); empty for the other kinds.
    std::string by;
};

// "boxing removed", "flag only", "compiled callers only", "shadowed"
std::string toString(UnreachableVariant::Kind kind);
// "VARIANT: no interpreted call reaches it: REASON. Fix: FIX."
std::string toString(const UnreachableVariant& finding);

// Every variant of builtin that no interpreted call reaches, in list order. Builtins made
// with the registration templates (RegisteredBuiltin) also say why their boxed copies
// went; for others a numeric scalar input is reported as COMPILED_ONLY.
std::vector<UnreachableVariant> findUnreachableVariants(const BuiltinFcn& builtin);

} // namespace Velloc::builtin::builtinreg
