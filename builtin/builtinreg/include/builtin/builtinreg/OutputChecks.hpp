// Checks of what a variant left in its output slots. A variant that breaks its output
// contract is a defect of its defining library and ends the process; outputs the
// language user did not get are a language error.
#pragma once

#include <builtin/BuiltinVariant.hpp>
#include <builtin/Parameter.hpp>

#include <foundation/core/except/Exception.hpp>
#include <foundation/core/except/messages/legacy_two_part.hpp>

#include <cstdint>
#include <string>
#include <typeinfo>

namespace Velloc::builtin {

using UnassignedOutputsError =
    foundation::core::except::Exception<ORVEX::legacy_two_part::unassignedOutputs, std::exception>;

// Returns when all nlhs outputs are set; otherwise destroys those that are, nulls every
// slot and throws UnassignedOutputsError naming the function.
void throwIfUnassignedOutputs(const std::u16string& fcnName, int nlhs, oxArray** plhs);

namespace builtinreg::detail {

// plhs[index] is null although index < nlhs.
[[noreturn]] void assertLhsIsNotNull(std::int64_t nlhs, std::int64_t index, const BuiltinVariant& variant);
// The variant wrote plhs[index] with index >= nlhs.
[[noreturn]] void assertLhsOverflow(std::int64_t nlhs, std::int64_t index, const BuiltinVariant& variant);
// The first output must be of the declared type; an array of no describable type passes.
void assertLhsWrongType(const BuiltinVariant& variant, const oxArray* returned);
[[noreturn]] void assertParameterWrongType(const std::type_info& expected, const Parameter& parameter,
                                           const types::ArgType& argType);

} // namespace builtinreg::detail

} // namespace Velloc::builtin
