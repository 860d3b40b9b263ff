#include <builtin/builtinreg/VariantListHelpers.hpp>

#include <foundation/core/diag/terminate.hpp>

#include <algorithm>
#include <iterator>
#include <stdexcept>
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

void checkFlagPositions(std::string_view orvexFunctionName, std::string_view cppFunctionName,
                        const FlagSpecification& flags, std::size_t parameterCount) {
    for (std::size_t k = 0; k < flags.size(); ++k) {
        const auto& [position, text] = flags[k];
        if (position > parameterCount + k) {
            throw std::invalid_argument("builtin " + std::string(orvexFunctionName) + ": the flag '" + text +
                                        "' of " + std::string(cppFunctionName) + " is at input position " +
                                        std::to_string(position) + ", but the inputs (counted from 0) end at " +
                                        std::to_string(parameterCount + k));
        }
    }
}

void addFlagInputTypes(BuiltinVariant& variant, const FlagSpecification& flags) {
    if (flags.empty()) {
        return;
    }
    // The other texts keep the positions they were made with.
    std::vector<InternedText> texts(variant.inputTypes.begin(), variant.inputTypes.end());
    std::vector<types::ArgType> inputs(variant.inputArgTypes.begin(), variant.inputArgTypes.end());
    for (const auto& [position, text] : flags) {
        types::ArgType flag = types::FlagInputType(text);
        texts.insert(texts.begin() + static_cast<std::ptrdiff_t>(position),
                     types::toString(flag, types::ArgTypeDirection::INPUT, position));
        inputs.insert(inputs.begin() + static_cast<std::ptrdiff_t>(position), std::move(flag));
    }
    variant.inputTypes = std::move(texts);
    variant.inputArgTypes = std::move(inputs);
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
    // Every variant made here holds the same outputs and names.
    const SharedArray<types::ArgType> outputs(std::move(outputArgTypes));
    const InternedText cppName(cppFunctionName);
    const InternedText orvexName(orvexFunctionName);
    const InternedText dominant(dominantClass);
    std::vector<BuiltinVariant> made;
    made.reserve(inputArgTypeLists.size());
    for (std::vector<types::ArgType>& inputs : inputArgTypeLists) {
        made.emplace_back(developerFcn, functionDescriptor, std::move(inputs), outputs, callsIntoOrvex, hasWarnings,
                          hasExceptions, hasSideEffects, cppName, orvexName, dominant, isElementWise);
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
