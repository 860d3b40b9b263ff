// Engine objects and their classes in dispatch diagnostics, by class name rather than id.
#pragma once

#include <builtin/types/ArgType.hpp>

#include <matrix/oxArray.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace Velloc::builtin::builtinreg::detail {

// The specific class-object class a declared type takes, if it takes one.
std::optional<oxClassID> declaredObjectClass(const types::ArgType& declared);

// "an object of class 'counter.Counter'" for a 1-by-1 array of a class-object class,
// "a 1x3 array of class ..." for a larger one; empty for arrays of built-in classes.
std::string describeObjectArray(const oxArray* array);

// A declared input as diagnostics print it: its text, preceded by the class it takes when
// that is a class-object class ("an object of class 'counter.Counter' (lxe_object<...>)").
std::string describeDeclaredObject(const types::ArgType& declared, std::string_view text);

} // namespace Velloc::builtin::builtinreg::detail
