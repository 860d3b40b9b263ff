#include <builtin/builtinreg/VariantListHelpers.hpp>

#include <foundation/core/diag/terminate.hpp>

#include <algorithm>
#include <iterator>
#include <string>

namespace Velloc::builtin::builtinreg::detail {

void removeUnsupportedVariants(std::vector<BuiltinVariant>& variants) {
    std::erase_if(variants, isUnsupportedBuiltinVariant);
}

void sortVariants(std::vector<BuiltinVariant>& variants) {
    std::sort(variants.begin(), variants.end());
}

std::vector<BuiltinVariant> appendVariants(std::vector<BuiltinVariant>&& first, std::vector<BuiltinVariant>&& second) {
    std::vector<BuiltinVariant> result(std::move(first));
    result.reserve(result.size() + second.size());
    std::move(second.begin(), second.end(), std::back_inserter(result));
    return result;
}

const BuiltinVariant* findLastVariantWithSupportLevel(const std::vector<BuiltinVariant>& variants,
                                                      const std::initializer_list<types::LxeSupportLevel>& levels) {
    for (auto it = variants.rbegin(); it != variants.rend(); ++it) {
        if (std::find(levels.begin(), levels.end(), it->lxeSupportLevel) != levels.end()) {
            return &*it;
        }
    }
    return nullptr;
}

void sortFlags(FlagSpecification& flags) {
    std::sort(flags.begin(), flags.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
}

void addFlagInputTypes(BuiltinVariant& variant, const FlagSpecification& flags) {
    for (const auto& [position, text] : flags) {
        types::ArgType flag = types::FlagInputType(text);
        variant.inputTypes.insert(variant.inputTypes.begin() + static_cast<std::ptrdiff_t>(position),
                                  types::toString(flag, types::ArgTypeDirection::INPUT, position));
        variant.inputArgTypes.insert(variant.inputArgTypes.begin() + static_cast<std::ptrdiff_t>(position),
                                     std::move(flag));
    }
}

void addFlagInputTypes(std::vector<BuiltinVariant>& variants, const FlagSpecification& flags) {
    for (BuiltinVariant& variant : variants) {
        addFlagInputTypes(variant, flags);
    }
}

void appendNewVariants(std::vector<BuiltinVariant>& target, void* developerFcn,
                       BuiltinVariant::CallsIntoOrvex callsIntoOrvex, BuiltinVariant::HasSideEffects hasSideEffects,
                       std::string_view cppFunctionName, std::string_view orvexFunctionName,
                       std::string_view dominantClass, const FlagSpecification& flags,
                       BuiltinVariant::HasExceptions hasExceptions,
                       const lxe::LxeFunctionDescriptor& functionDescriptor,
                       BuiltinVariant::IsElementWise isElementWise, BuiltinVariant::HasWarnings hasWarnings,
                       std::vector<types::ArgType>&& outputArgTypes,
                       std::vector<std::vector<types::ArgType>>&& inputArgTypeLists) {
    std::vector<BuiltinVariant> made;
    made.reserve(inputArgTypeLists.size());
    for (std::vector<types::ArgType>& inputs : inputArgTypeLists) {
        made.emplace_back(developerFcn, functionDescriptor, std::move(inputs), outputArgTypes, callsIntoOrvex,
                          hasWarnings, hasExceptions, hasSideEffects, std::string(cppFunctionName),
                          std::string(orvexFunctionName), std::string(dominantClass), isElementWise);
        addFlagInputTypes(made.back(), flags);
    }
    sortVariants(made);
    target.reserve(target.size() + made.size());
    std::move(made.begin(), made.end(), std::back_inserter(target));
}

void assertNumberOfArgTypes(std::size_t expectedNLhs, std::size_t expectedNRhs, std::size_t actualNLhs,
                            std::size_t actualNRhs) {
    static constexpr const char* SIGNATURE =
        "void Velloc::builtin::builtinreg::detail::assertNumberOfArgTypes(size_t, size_t, size_t, size_t)";
    if (expectedNLhs != actualNLhs) {
        foundation::core::diag::terminate("expectedNLhs == actualNLhs", "MakeVariant", 17, SIGNATURE);
    }
    if (expectedNRhs != actualNRhs) {
        foundation::core::diag::terminate("expectedNRhs == actualNRhs", "MakeVariant", 18, SIGNATURE);
    }
}

} // namespace Velloc::builtin::builtinreg::detail
