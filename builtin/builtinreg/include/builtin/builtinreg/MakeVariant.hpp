// What a builtin author writes. Each developer function becomes one variant per input
// signature that its C++ parameter types stand for:
//
//     double plusDouble(double a, double b) { return a + b; }
//     oxArray* plusArrays(const oxArray* a, const oxArray* b);
//
//     const BuiltinVariantLists& plusLists() {
//         static const BuiltinVariantLists lists{
//             makeVariants<&plusDouble>("plus", {.isElementWise = true}),
//             makeVariants<&plusArrays>("plus", {.mayThrowErrors = true}),
//         };
//         return lists;
//     }
//     RegisteredBuiltin plus("plus", "sample", "adds two arrays", plusLists(), noDefaultImplementation("plus"));
//
// Only what differs from the defaults is stated. A function whose first parameter is
// CallContext& may raise warnings (unless it declares mayRaiseWarnings = false and uses
// the context only to call the language); one that declares mayThrowErrors reports the
// exceptions it throws as the call's error.
//
// A function that is not element-wise and takes numeric scalars also gets a boxed copy
// that takes host arrays of those classes, so that the interpreter, which holds every
// value as an array, reaches it: a 1-by-1 array is unboxed into the scalar, any other
// size is the language error builtin2:notScalar.
//
// A parameter that points to an engine object (Counter*, const Counter*, LxeObject*)
// gives two variants: one taking the object, for compiled callers, and one taking the
// 1-by-1 array of the object's class, which interpreted calls reach. A result of such a
// type becomes an array of the object's class; an object returned without references is
// owned by that array.
#pragma once

#include <builtin/BuiltinFcn.hpp>
#include <builtin/builtinreg/ArgTypesOf.hpp>
#include <builtin/builtinreg/BuiltinVariantLists.hpp>
#include <builtin/builtinreg/CanThrowAdapter.hpp>
#include <builtin/builtinreg/DirectEntry.hpp>
#include <builtin/builtinreg/FunctionName.hpp>
#include <builtin/builtinreg/GenericEntry.hpp>
#include <builtin/builtinreg/HostStyleEntry.hpp>
#include <builtin/builtinreg/VariantListHelpers.hpp>

#include <functional>
#include <initializer_list>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

namespace Velloc::builtin::builtinreg {

struct VariantOptions {
    bool mayCallIntoOrvex = false;
    // Unset: the function may warn exactly when it takes a CallContext.
    std::optional<bool> mayRaiseWarnings = std::nullopt;
    bool mayThrowErrors = false;
    bool mayHaveSideEffects = false;
    bool isElementWise = false;
    // Relaxed: a declaration takes every run-time value its C++ type can be read from.
    types::SignatureTolerance tolerance = types::SignatureTolerance::RELAXED;
    // Input positions that must be the literal flag text; they are matched, not passed.
    detail::FlagSpecification flags = {};
    std::string dominantClass = {};
    // A level more restrictive than the one the types give, when the engine must not
    // call the function (or only the engine may).
    std::optional<types::LxeSupportLevel> lxeSupportLevel = std::nullopt;
    // The name in diagnostics; the developer function's qualified name when empty.
    std::string cppFunctionName = {};
};

namespace detail {

// Applies what the options add after the constructor computed the level.
void finishVariants(std::vector<BuiltinVariant>& variants, std::size_t first, const VariantOptions& options);

// The boxed inputs of an original variant: each numeric scalar becomes a host array of its
// class and complexity, of any size. Empty when no input is a numeric scalar.
std::vector<types::ArgType> boxedInputTypes(const BuiltinVariant& original);

// The variants that take an engine object in the array interpreted calls hold it in (the
// array form of a parameter that points to an engine object, objectPointers[i] for the
// i-th parameter) are the interpreter's: they are kept from compiled callers, and their
// numeric scalars are taken as arrays too, as boxed copies would take them.
void settleObjectArrayVariants(std::vector<BuiltinVariant>& variants, std::initializer_list<bool> objectPointers);

// Appends a checked boxed copy of each of the first count variants that has one.
// developerInputs and boxedInputs name the C++ types, for the boxing channel.
void appendBoxedVariants(std::vector<BuiltinVariant>& variants, std::size_t count,
                         std::initializer_list<std::reference_wrapper<const std::type_info>> developerInputs,
                         std::initializer_list<std::reference_wrapper<const std::type_info>> boxedInputs);

template <class T>
const std::type_info& boxedTypeOf() {
    return isParameterValue<T> ? typeid(oxArray*) : typeid(T);
}

} // namespace detail

template <auto Fcn>
std::vector<BuiltinVariant> makeVariants(std::string_view orvexFunctionName, VariantOptions options = {}) {
    using Traits = detail::FunctionTraits<decltype(Fcn)>;
    using B = BuiltinVariant;
    const bool warns = options.mayRaiseWarnings.value_or(Traits::takesContext);
    const bool throws = options.mayThrowErrors;
    const lxe::JIT_CALLING_CONVENTION convention = warns || throws ? lxe::CanThrow : lxe::Plain;
    lxe::GenericEntry entry = &detail::GenericEntry<Fcn>::template entry<false>;
    if (options.isElementWise) {
        if constexpr (detail::GenericEntry<Fcn>::CAN_RUN_ELEMENT_WISE) {
            entry = &detail::GenericEntry<Fcn>::template entry<true>;
        } else {
            throw std::invalid_argument(detail::functionNameOf<Fcn>() +
                                        " cannot be element-wise: it must map one or two numeric scalars to one");
        }
    }
    void* developerFcn = reinterpret_cast<void*>(Fcn);
    // Compiled callers reach a function that warns or throws through its adapter.
    // A function that takes a context but neither warns nor throws has no shape compiled
    // callers know.
    void* callee = convention == lxe::CanThrow ? detail::CanThrowAdapter<Fcn>::callee()
                   : Traits::takesContext      ? nullptr
                                               : developerFcn;
    const lxe::LxeFunctionDescriptor descriptor(entry, nullptr, convention, callee);
    ArgTypes argTypes = getArgTypesOf<typename Traits::Signature>(options.tolerance);
    const std::string cppName =
        options.cppFunctionName.empty() ? detail::functionNameOf<Fcn>() : options.cppFunctionName;
    detail::sortFlags(options.flags);

    std::vector<BuiltinVariant> variants;
    detail::appendNewVariants(variants, developerFcn, B::CallsIntoOrvex{options.mayCallIntoOrvex},
                              B::HasSideEffects{options.mayHaveSideEffects}, cppName, orvexFunctionName,
                              options.dominantClass, options.flags, B::HasExceptions{throws}, descriptor,
                              B::IsElementWise{options.isElementWise}, B::HasWarnings{warns},
                              std::move(argTypes.outputs), std::move(argTypes.inputs));
    detail::finishVariants(variants, 0, options);
    if (!options.isElementWise) {
        using Entry = detail::GenericEntry<Fcn>;
        [&]<std::size_t... I>(std::index_sequence<I...>) {
            detail::settleObjectArrayVariants(variants,
                                              {detail::isLxeObjectPointer<typename Entry::template Arg<I>>...});
            detail::appendBoxedVariants(variants, variants.size(),
                                        {std::cref(typeid(typename Entry::template Arg<I>))...},
                                        {std::cref(detail::boxedTypeOf<typename Entry::template Arg<I>>())...});
        }(std::make_index_sequence<Entry::ARITY>{});
    }
    using Direct = detail::DirectEntryOf<Fcn, false>;
    if constexpr (Direct::EXISTS) {
        detail::attachDirectEntries(variants, Direct::ARITY, Direct::SCALAR_INPUTS, &Direct::ENTRY,
                                    &detail::DirectEntryOf<Fcn, true>::ENTRY);
    }
    return variants;
}

// The default implementation: takes every call that no variant accepts, in the host's
// own calling form. Outputs it leaves unset for the caller raise the language error
// ORVEX:legacy_two_part:unassignedOutputs; a write past them ends the process.
template <auto Fcn>
BuiltinVariant defaultImplementation(std::string_view orvexFunctionName) {
    static_assert(std::is_same_v<decltype(Fcn), lxe::HostStyleEntry>,
                  "a default implementation is void(int nlhs, oxArray** plhs, int nrhs, oxArray** prhs, "
                  "const BuiltinVariant&)");
    return BuiltinVariant(reinterpret_cast<void*>(Fcn),
                          lxe::LxeFunctionDescriptor(nullptr, &detail::checkedHostStyleEntry, lxe::Plain),
                          {}, {}, BuiltinVariant::CallsIntoOrvex::YES, BuiltinVariant::HasWarnings::YES,
                          BuiltinVariant::HasExceptions::YES, BuiltinVariant::HasSideEffects::YES,
                          detail::functionNameOf<Fcn>(), std::string(orvexFunctionName), "",
                          BuiltinVariant::IsElementWise::NO);
}

// A builtin without a default implementation: a call that no variant accepts throws
// std::logic_error.
BuiltinVariant noDefaultImplementation(std::string_view orvexFunctionName);

// A builtin of a defining library, spanning lists that outlive it.
class RegisteredBuiltin final : public BuiltinFcn {
public:
    RegisteredBuiltin(std::string name, std::string definingLibrary, std::string summary,
                      const BuiltinVariantLists& lists, BuiltinVariant defaultVariant,
                      Ofh_ORVEX_fn* fallbackFcn = nullptr);

    std::string getDefiningLibrary() const override { return definingLibrary_; }
    std::string getSummary() const override { return summary_; }
    // What cleanup removed from or demoted in the lists, for tools that lint libraries.
    const std::vector<CleanupFinding>& getCleanupFindings() const noexcept { return lists_.getCleanupFindings(); }

private:
    std::string definingLibrary_;
    std::string summary_;
    const BuiltinVariantLists& lists_;
};

} // namespace Velloc::builtin::builtinreg
