#include <builtin/BuiltinVariant.hpp>

#include <foundation/core/diag/terminate.hpp>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Velloc::builtin {

namespace {

using types::ArgTypeDirection;
using types::LxeSupportLevel;

bool declaresBehaviour(const BuiltinVariant& v) {
    return v.mayHaveSideEffects || v.mayCallIntoOrvex || v.mayRaiseWarnings || v.mayThrowErrors;
}

} // namespace

BuiltinVariant::BuiltinVariant(void* developerFcn, lxe::LxeFunctionDescriptor functionDescriptor,
                               SharedArray<types::ArgType> inputArgTypes,
                               SharedArray<types::ArgType> outputArgTypes, CallsIntoOrvex callsIntoOrvex,
                               HasWarnings hasWarnings, HasExceptions hasExceptions,
                               HasSideEffects hasSideEffects, InternedText cppFunctionName,
                               InternedText orvexFunctionName, InternedText dominantClass,
                               IsElementWise isElementWise)
    : functionDescriptor(functionDescriptor),
      developerFcn(developerFcn),
      inputArgTypes(std::move(inputArgTypes)),
      outputArgTypes(std::move(outputArgTypes)),
      mayCallIntoOrvex(callsIntoOrvex == CallsIntoOrvex::YES),
      mayRaiseWarnings(hasWarnings == HasWarnings::YES),
      mayThrowErrors(hasExceptions == HasExceptions::YES),
      mayHaveSideEffects(hasSideEffects == HasSideEffects::YES),
      cppFunctionName(std::move(cppFunctionName)),
      orvexFunctionName(std::move(orvexFunctionName)),
      dominantClass(std::move(dominantClass)),
      lxeSupportLevel(LxeSupportLevel::NO_SUPPORT),
      isElementWise(isElementWise == IsElementWise::YES) {
    // An engine entry that may throw or warn must say so in its calling convention, so
    // that compiled callers pass it an environment.
    const bool isDefaultImpl = this->functionDescriptor.getGenericEntry() == nullptr;
    const bool canThrowIsConsistent =
        (this->functionDescriptor.getCallingConvention() == lxe::CanThrow) == (mayThrowErrors || mayRaiseWarnings);
    if (!(isDefaultImpl || canThrowIsConsistent)) {
        foundation::core::diag::terminate(
            "isDefaultImpl || canThrowIsConsistent", "BuiltinVariant", 250,
            "Velloc::builtin::BuiltinVariant::BuiltinVariant(void*, Velloc::lxe::LxeFunctionDescriptor, "
            "std::vector<Velloc::builtin::types::ArgType>, std::vector<Velloc::builtin::types::ArgType>, "
            "Velloc::builtin::BuiltinVariant::CallsIntoOrvex, Velloc::builtin::BuiltinVariant::HasWarnings, "
            "Velloc::builtin::BuiltinVariant::HasExceptions, Velloc::builtin::BuiltinVariant::HasSideEffects, "
            "std::string, std::string, std::string, Velloc::builtin::BuiltinVariant::IsElementWise)");
    }
    inputTypes = builtinreg::detail::typeTexts(this->inputArgTypes, ArgTypeDirection::INPUT);
    outputTypes = builtinreg::detail::typeTexts(this->outputArgTypes, ArgTypeDirection::OUTPUT);
    lxeSupportLevel = builtinreg::detail::supportLevelOfTypes(
        mayCallIntoOrvex ? LxeSupportLevel::NO_SUPPORT : LxeSupportLevel::EQUIVALENT_SUPPORT, *this);
    // The engine cannot replay per-element behaviour of an element-wise call.
    if (this->isElementWise && declaresBehaviour(*this)) {
        lxeSupportLevel = LxeSupportLevel::NO_SUPPORT;
    }
}

void swap(BuiltinVariant& a, BuiltinVariant& b) noexcept {
    BuiltinVariant tmp(std::move(a));
    a = std::move(b);
    b = std::move(tmp);
}

namespace builtinreg::detail {

SharedArray<InternedText> typeTexts(std::span<const types::ArgType> argTypes, ArgTypeDirection direction) {
    std::vector<InternedText> texts;
    texts.reserve(argTypes.size());
    for (std::size_t i = 0; i < argTypes.size(); ++i) {
        texts.push_back(types::toString(argTypes[i], direction, i));
    }
    return texts;
}

bool isUnsupportedBuiltinVariant(const BuiltinVariant& variant) {
    const auto unsupported = [](const types::ArgType& type) {
        return std::holds_alternative<types::UnsupportedArgType>(type);
    };
    return std::any_of(variant.inputArgTypes.begin(), variant.inputArgTypes.end(), unsupported) ||
           std::any_of(variant.outputArgTypes.begin(), variant.outputArgTypes.end(), unsupported);
}

LxeSupportLevel combineLxeSupportLevels(LxeSupportLevel level1, LxeSupportLevel level2) {
    switch (level1) {
    case LxeSupportLevel::EQUIVALENT_SUPPORT:
        return level2;
    case LxeSupportLevel::LXE_ONLY:
        return level2 == LxeSupportLevel::NO_SUPPORT_SCALAR_COMPLEX || level2 == LxeSupportLevel::NO_SUPPORT
                   ? level2
                   : LxeSupportLevel::LXE_ONLY;
    case LxeSupportLevel::NO_SUPPORT_SCALAR_COMPLEX:
        return level2 == LxeSupportLevel::NO_SUPPORT ? LxeSupportLevel::NO_SUPPORT
                                                     : LxeSupportLevel::NO_SUPPORT_SCALAR_COMPLEX;
    case LxeSupportLevel::NO_SUPPORT:
        return LxeSupportLevel::NO_SUPPORT;
    }
    throw std::invalid_argument("level1 is not a valid LxeSupportLevel");
}

LxeSupportLevel supportLevelOfTypes(LxeSupportLevel start, const BuiltinVariant& variant) {
    LxeSupportLevel level = start;
    for (const types::ArgType& type : variant.outputArgTypes) {
        level = combineLxeSupportLevels(level, types::getLxeSupportLevel(type, ArgTypeDirection::OUTPUT));
    }
    for (const types::ArgType& type : variant.inputArgTypes) {
        level = combineLxeSupportLevels(level, types::getLxeSupportLevel(type, ArgTypeDirection::INPUT));
    }
    return level;
}

} // namespace builtinreg::detail

} // namespace Velloc::builtin
