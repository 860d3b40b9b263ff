// Why a variant refuses a call, in words a builtin author can act on.
#pragma once

#include <builtin/BuiltinVariant.hpp>

#include <string>

namespace Velloc::builtin::builtinreg {

// The first reason, in the order acceptance tests them (input count, output count, then
// each input in turn), why the variant does not accept the call; empty when it does.
std::string describeRejection(const BuiltinVariant& variant, const VariantSignature& call);

// The text form of the run-time type of one input of the call, as declarations print.
std::string describeArgument(const VariantSignature& call, std::size_t position);

} // namespace Velloc::builtin::builtinreg
