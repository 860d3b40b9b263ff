// Why a variant refuses a call, in words a builtin author can act on.
#pragma once

#include <builtin/BuiltinVariant.hpp>
#include <builtin/types/ArgType.hpp>

#include <cstddef>
#include <string>

namespace Velloc::builtin::builtinreg {

// The first reason, in the order acceptance tests them (input count, output count, then
// each input in turn), why the variant does not accept the call; empty when it does.
std::string describeRejection(const BuiltinVariant& variant, const VariantSignature& call);

// The text form of the run-time type of one input of the call, as declarations print.
std::string describeArgument(const VariantSignature& call, std::size_t position);

// A declared type in words an author recognises: "a scalar string", "a char row vector"
// and "an empty char array" (the kinds a text parameter takes), "the option text
// 'omitnan'" (a flag), "a double scalar", "any array"; otherwise "an array " and the
// type's text form.
std::string describeDeclaredType(const types::ArgType& type, types::ArgTypeDirection direction,
                                 std::size_t position);

// The language's name of a class: "double", "single", "int8", "logical", "char", "cell",
// "string", ...; "class N" for other class-object classes.
std::string languageClassName(oxClassID classId);

} // namespace Velloc::builtin::builtinreg
