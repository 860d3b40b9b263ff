#include "Dump.hpp"

#include "Commands.hpp"

#include <boost/json.hpp>

#include <ostream>
#include <span>

namespace orvex {

namespace {

using Velloc::builtin::BuiltinVariant;

const char* conventionName(Velloc::lxe::JIT_CALLING_CONVENTION convention) {
    switch (convention) {
    case Velloc::lxe::Plain: return "Plain";
    case Velloc::lxe::WithCallee: return "WithCallee";
    case Velloc::lxe::CanThrow: return "CanThrow";
    case Velloc::lxe::CanThrowLxeInternal: return "CanThrowLxeInternal";
    }
    return "unknown";
}

const char* levelName(Velloc::builtin::types::LxeSupportLevel level) {
    using Velloc::builtin::types::LxeSupportLevel;
    switch (level) {
    case LxeSupportLevel::EQUIVALENT_SUPPORT: return "EQUIVALENT_SUPPORT";
    case LxeSupportLevel::LXE_ONLY: return "LXE_ONLY";
    case LxeSupportLevel::NO_SUPPORT_SCALAR_COMPLEX: return "NO_SUPPORT_SCALAR_COMPLEX";
    case LxeSupportLevel::NO_SUPPORT: return "NO_SUPPORT";
    }
    return "unknown";
}

boost::json::array textsOf(const Velloc::builtin::SharedArray<Velloc::builtin::InternedText>& texts) {
    boost::json::array array;
    for (const std::string& text : texts) {
        array.emplace_back(text);
    }
    return array;
}

boost::json::array variantsOf(std::span<const BuiltinVariant> list) {
    boost::json::array variants;
    for (const BuiltinVariant& variant : list) {
        variants.push_back({{"cppFunctionName", variant.cppFunctionName.str()},
                            {"inputs", textsOf(variant.inputTypes)},
                            {"outputs", textsOf(variant.outputTypes)},
                            {"mayCallIntoOrvex", variant.mayCallIntoOrvex},
                            {"mayRaiseWarnings", variant.mayRaiseWarnings},
                            {"mayThrowErrors", variant.mayThrowErrors},
                            {"mayHaveSideEffects", variant.mayHaveSideEffects},
                            {"isElementWise", variant.isElementWise},
                            {"isBoxed", variant.originalVariant != nullptr},
                            {"lxeSupportLevel", levelName(variant.lxeSupportLevel)},
                            {"convention", conventionName(variant.functionDescriptor.getCallingConvention())}});
    }
    return variants;
}

} // namespace

int dumpBuiltins(const std::vector<LoadedBuiltin>& builtins, bool json, std::ostream& out) {
    if (!json) {
        for (const LoadedBuiltin& loaded : builtins) {
            showBuiltin(builtins, loaded.builtin->name, out);
        }
        return 0;
    }
    boost::json::array document;
    for (const LoadedBuiltin& loaded : builtins) {
        const Velloc::builtin::BuiltinFcn& builtin = *loaded.builtin;
        document.push_back(
            {{"name", builtin.name},
             {"library", loaded.library},
             {"summary", builtin.getSummary()},
             {"searchedByInvokeNoLxe", variantsOf(builtin.getSearchedByInvokeNoLxe())},
             {"searchedByLxe", variantsOf({builtin.variants, builtin.numVariants})},
             {"searchedByInvokeAfterLxe", variantsOf(builtin.getSearchedByInvokeAfterLxe())},
             {"searchedByInvokeAfterLxeComplexScalar", variantsOf(builtin.getSearchedByInvokeAfterLxeComplexScalar())},
             {"defaultImplementation", builtin.defaultVariant.functionDescriptor.getHostStyleEntry() != nullptr
                                           ? boost::json::value(builtin.defaultVariant.cppFunctionName.str())
                                           : boost::json::value(nullptr)}});
    }
    out << boost::json::serialize(document) << '\n';
    return 0;
}

} // namespace orvex
