// How invoke turns the host arrays of a call into parameters, and a result back into a
// host array.
#pragma once

#include <builtin/BuiltinVariant.hpp>
#include <builtin/Parameter.hpp>

namespace Velloc::builtin::detail {

// A full real or complex numeric scalar travels as its value when the variant declares
// that scalar (directly or element-wise); an engine object declared as one travels as
// the object. Everything else travels as the host array itself, with one reference
// more, which releaseParameter gives back.
Parameter toParameter(const VariantSignature& call, std::size_t position, const types::ArgType& declared);
void releaseParameter(const Parameter& parameter);

// The result as a new host array; a result that is a host array already is handed over
// as it is, with the reference the variant gave it.
oxArray* toOxArray(const Parameter& result);

} // namespace Velloc::builtin::detail
