// Variants that interpreted calls cannot reach through an engine-object input, in words a
// builtin author can act on, for the reports of tools that load libraries.
//
// The interpreter holds every value in a host array, an engine object in a 1-by-1 array of
// its class; an input declared as the object itself (lxe_object<...>) or as an object
// place accepts only what compiled callers pass. A parameter that points to an
// engine-object class (Counter*) therefore makes two variants: the object form for
// compiled callers, and the array form, which interpreted calls reach.
#pragma once

#include <builtin/BuiltinVariant.hpp>

#include <span>
#include <string>

namespace Velloc::builtin::builtinreg {

// Why no interpreted call reaches the variant because of an input declared as an engine
// object or object place, and what to write instead; empty when no such input keeps
// them away, or when every such input has a twin in list (a variant of the same developer
// function taking the object's array at that position), as the variants made from a
// class pointer have.
std::string engineObjectInputReason(const BuiltinVariant& variant, std::span<const BuiltinVariant> list);

} // namespace Velloc::builtin::builtinreg
