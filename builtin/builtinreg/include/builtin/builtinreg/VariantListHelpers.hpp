// Helpers with which defining libraries build the variant vector of a builtin, and the
// steps of list cleanup.
#pragma once

#include <builtin/BuiltinVariant.hpp>

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Velloc::builtin::builtinreg::detail {

// Input positions that must be the literal flag text.
using FlagSpecification = std::vector<std::pair<std::size_t, std::string>>;

void removeUnsupportedVariants(std::vector<BuiltinVariant>& variants);
void sortVariants(std::vector<BuiltinVariant>& variants);
std::vector<BuiltinVariant> appendVariants(std::vector<BuiltinVariant>&& first, std::vector<BuiltinVariant>&& second);
const BuiltinVariant* findLastVariantWithSupportLevel(const std::vector<BuiltinVariant>& variants,
                                                      const std::initializer_list<types::LxeSupportLevel>& levels);

void sortFlags(FlagSpecification& flags);
// Throws std::invalid_argument, naming the builtin, the function and the flag, when a
// flag of the sorted flag list stands beyond the inputs of a function of
// parameterCount parameters (with the flags before it).
void checkFlagPositions(std::string_view orvexFunctionName, std::string_view cppFunctionName,
                        const FlagSpecification& flags, std::size_t parameterCount);
// Positions refer to the list after the earlier insertions: sort the flags first.
void addFlagInputTypes(BuiltinVariant& variant, const FlagSpecification& flags);
void addFlagInputTypes(std::vector<BuiltinVariant>& variants, const FlagSpecification& flags);

// One variant per input list, all with the same function, descriptor, outputs, flags
// and names; the new variants are sorted and appended to target.
void appendNewVariants(std::vector<BuiltinVariant>& target, void* developerFcn,
                       BuiltinVariant::CallsIntoOrvex callsIntoOrvex, BuiltinVariant::HasSideEffects hasSideEffects,
                       std::string_view cppFunctionName, std::string_view orvexFunctionName,
                       std::string_view dominantClass, const FlagSpecification& flags,
                       BuiltinVariant::HasExceptions hasExceptions,
                       const lxe::LxeFunctionDescriptor& functionDescriptor,
                       BuiltinVariant::IsElementWise isElementWise, BuiltinVariant::HasWarnings hasWarnings,
                       std::vector<types::ArgType>&& outputArgTypes,
                       std::vector<std::vector<types::ArgType>>&& inputArgTypeLists);

void assertNumberOfArgTypes(std::size_t expectedNLhs, std::size_t expectedNRhs, std::size_t actualNLhs,
                            std::size_t actualNRhs);

} // namespace Velloc::builtin::builtinreg::detail
