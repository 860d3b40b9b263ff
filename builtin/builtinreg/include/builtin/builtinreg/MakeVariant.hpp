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
// size is the language error builtin2:notScalar. Cleanup removes a boxed copy the engine
// cannot call (a text input or result, a complex scalar): take such numbers as
// const oxArray*. builtinreg/Reachability.hpp names every variant no interpreted call
// reaches, with the fix.
//
// A parameter that points to an engine object (Counter*, const Counter*, LxeObject*)
// gives two variants: one taking the object, for compiled callers, and one taking the
// 1-by-1 array of the object's class, which interpreted calls reach. A result of such a
// type becomes an array of the object's class; an object returned without references is
// owned by that array.
//
// The compiler refuses what it can see: a function declared element-wise that does not
// map one or two numeric scalars to one, and a parameter or result type the framework
// cannot describe; each error names the rule.
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

#include <concepts>
#include <functional>
#include <initializer_list>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

namespace Velloc::builtin::builtinreg {

namespace detail {

// The rules a declaration can break that the compiler sees. Each is a function that is
// never defined and not constexpr: a declaration that breaks the rule calls it while the
// compiler evaluates the declaration, so the compiler's error names the rule.
namespace rules {
void an_element_wise_function_maps_one_or_two_numeric_scalars_to_one_numeric_scalar();
} // namespace rules

template <auto Fcn>
constexpr bool canRunElementWise() {
    if constexpr (std::is_null_pointer_v<decltype(Fcn)>) {
        return true;
    } else {
        return GenericEntry<Fcn>::CAN_RUN_ELEMENT_WISE;
    }
}

// The isElementWise option of a declaration of Fcn: stated as true or false where the
// function is declared, so that declaring element-wise a function that cannot run so
// fails to compile, naming the rule. The options of no function in particular
// (VariantOptions) take any value, and makeVariants checks it when it runs.
template <auto Fcn>
class ElementWiseOption {
public:
    constexpr ElementWiseOption() = default;
    consteval ElementWiseOption(bool on) // NOLINT: stated as a bool
        requires(!std::is_null_pointer_v<decltype(Fcn)>)
        : on_(on) {
        if (on && !canRunElementWise<Fcn>()) {
            rules::an_element_wise_function_maps_one_or_two_numeric_scalars_to_one_numeric_scalar();
        }
    }
    constexpr ElementWiseOption(bool on) // NOLINT: stated as a bool
        requires(std::is_null_pointer_v<decltype(Fcn)>)
        : on_(on) {}
    constexpr operator bool() const noexcept { return on_; } // NOLINT: read as a bool

private:
    bool on_ = false;
};

} // namespace detail

// What a declaration states beyond its C++ signature. makeVariants<&f>(name, {...})
// takes the options of f, BasicVariantOptions<&f>, written in place with designated
// initializers; VariantOptions, the options of no function in particular, may be kept
// in a variable and given to several declarations.
template <auto Fcn = nullptr>
struct BasicVariantOptions {
    bool mayCallIntoOrvex = false;
    // Unset: the function may warn exactly when it takes a CallContext.
    std::optional<bool> mayRaiseWarnings = std::nullopt;
    bool mayThrowErrors = false;
    bool mayHaveSideEffects = false;
    // Element-wise: a function of one or two numeric scalars returning one also takes
    // arrays of their classes, element by element, broadcasting singleton dimensions.
    detail::ElementWiseOption<Fcn> isElementWise = false;
    // Relaxed: a declaration takes every run-time value its C++ type can be read from.
    types::SignatureTolerance tolerance = types::SignatureTolerance::RELAXED;
    // Input positions that must be the literal option text, {{1, "omitnan"}}: they are
    // matched, not passed. Only compiled callers pass a literal option; interpreted calls
    // pass text as a char row or a string, which a flag does not take (README, "Option
    // texts").
    detail::FlagSpecification flags = {};
    std::string dominantClass = {};
    // A level more restrictive than the one the types give, when the engine must not
    // call the function (or only the engine may).
    std::optional<types::LxeSupportLevel> lxeSupportLevel = std::nullopt;
    // The name in diagnostics; the developer function's qualified name when empty.
    std::string cppFunctionName = {};
};

using VariantOptions = BasicVariantOptions<>;

namespace detail {

// Applies a declared level after the constructor computed the level from the types.
void finishVariants(std::vector<BuiltinVariant>& variants, std::size_t first,
                    const std::optional<types::LxeSupportLevel>& lxeSupportLevel);

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

namespace detail {

// Each C++ parameter and the result of a developer function must be a type the framework
// describes; the compiler names the type and its position where one is not.
template <class T>
concept DescribedType = !requires { typename types::TypeTraitsImpl<std::remove_cvref_t<T>>::Undescribed; };

template <class T, std::size_t Position>
struct ParameterTypeRule {
    static_assert(DescribedType<T>,
                  "makeVariants: a parameter type the framework cannot describe (the type and its position are "
                  "named above). A parameter is a numeric scalar (double, float, bool, char16_t, the fixed-width "
                  "integers, std::complex<double>, std::complex<float>), a host array (const oxArray*), or text "
                  "(std::u16string, std::string, std::u16string_view), after an optional CallContext& first");
    static constexpr bool HOLDS = DescribedType<T>;
};

template <class T>
struct ResultTypeRule {
    static_assert(std::is_void_v<T> || DescribedType<T>,
                  "makeVariants: a result type the framework cannot describe (the type is named above). A result "
                  "is void, a numeric scalar, a host array handed to the caller (oxArray*), or text "
                  "(std::u16string, std::string)");
    static constexpr bool HOLDS = std::is_void_v<T> || DescribedType<T>;
};

template <auto Fcn>
constexpr bool checkSignatureRules() {
    using Traits = FunctionTraits<decltype(Fcn)>;
    return ResultTypeRule<typename Traits::Result>::HOLDS &&
           []<std::size_t... I>(std::index_sequence<I...>) {
               return (ParameterTypeRule<std::tuple_element_t<I, typename Traits::Parameters>, I + 1>::HOLDS && ...);
           }(std::make_index_sequence<std::tuple_size_v<typename Traits::Parameters>>{});
}

template <auto Fcn, class Options>
std::vector<BuiltinVariant> makeVariantsWith(std::string_view orvexFunctionName, Options options) {
    static_assert(checkSignatureRules<Fcn>());
    using Traits = FunctionTraits<decltype(Fcn)>;
    using B = BuiltinVariant;
    const bool warns = options.mayRaiseWarnings.value_or(Traits::takesContext);
    const bool throws = options.mayThrowErrors;
    const bool elementWise = options.isElementWise;
    const lxe::JIT_CALLING_CONVENTION convention = warns || throws ? lxe::CanThrow : lxe::Plain;
    lxe::GenericEntry entry = &GenericEntry<Fcn>::template entry<false>;
    if (elementWise) {
        if constexpr (GenericEntry<Fcn>::CAN_RUN_ELEMENT_WISE) {
            entry = &GenericEntry<Fcn>::template entry<true>;
        } else {
            // Only options kept in a VariantOptions variable get here: the compiler refuses
            // the declaration otherwise.
            throw std::invalid_argument("builtin " + std::string(orvexFunctionName) + ": " + functionNameOf<Fcn>() +
                                        " is declared element-wise, but an element-wise function maps one or two "
                                        "numeric scalars to one numeric scalar");
        }
    }
    void* developerFcn = reinterpret_cast<void*>(Fcn);
    // Compiled callers reach a function that warns or throws through its adapter.
    // A function that takes a context but neither warns nor throws has no shape compiled
    // callers know.
    void* callee = convention == lxe::CanThrow ? CanThrowAdapter<Fcn>::callee()
                   : Traits::takesContext      ? nullptr
                                               : developerFcn;
    const lxe::LxeFunctionDescriptor descriptor(entry, nullptr, convention, callee);
    ArgTypes argTypes = getArgTypesOf<typename Traits::Signature>(options.tolerance);
    const std::string cppName = options.cppFunctionName.empty() ? functionNameOf<Fcn>() : options.cppFunctionName;
    sortFlags(options.flags);
    checkFlagPositions(orvexFunctionName, cppName, options.flags, argTypes.inputs.empty() ? 0 : argTypes.inputs[0].size());

    std::vector<BuiltinVariant> variants;
    appendNewVariants(variants, developerFcn, B::CallsIntoOrvex{options.mayCallIntoOrvex},
                      B::HasSideEffects{options.mayHaveSideEffects}, cppName, orvexFunctionName,
                      options.dominantClass, options.flags, B::HasExceptions{throws}, descriptor,
                      B::IsElementWise{elementWise}, B::HasWarnings{warns}, std::move(argTypes.outputs),
                      std::move(argTypes.inputs));
    finishVariants(variants, 0, options.lxeSupportLevel);
    if (!elementWise) {
        using Entry = GenericEntry<Fcn>;
        [&]<std::size_t... I>(std::index_sequence<I...>) {
            settleObjectArrayVariants(variants, {isLxeObjectPointer<typename Entry::template Arg<I>>...});
            appendBoxedVariants(variants, variants.size(), {std::cref(typeid(typename Entry::template Arg<I>))...},
                                {std::cref(boxedTypeOf<typename Entry::template Arg<I>>())...});
        }(std::make_index_sequence<Entry::ARITY>{});
    }
    using Direct = DirectEntryOf<Fcn, false>;
    if constexpr (Direct::EXISTS) {
        attachDirectEntries(variants, Direct::ARITY, Direct::SCALAR_INPUTS, &Direct::ENTRY,
                            &DirectEntryOf<Fcn, true>::ENTRY);
    }
    return variants;
}

} // namespace detail

// The variants of one developer function: one per input signature its C++ types stand
// for, and the boxed copies (see the top of this file). The options are written in
// place, {.isElementWise = true, .mayThrowErrors = true}; the compiler refuses a function
// declared element-wise that cannot run so, and a parameter or result type the framework
// cannot describe, naming the rule.
template <auto Fcn>
std::vector<BuiltinVariant> makeVariants(std::string_view orvexFunctionName, BasicVariantOptions<Fcn> options = {}) {
    return detail::makeVariantsWith<Fcn>(orvexFunctionName, std::move(options));
}

// The same with options kept in a VariantOptions variable. A function declared
// element-wise here that cannot run so throws std::invalid_argument naming the builtin
// and the function, when the declaration runs.
template <auto Fcn, class Options>
    requires std::same_as<Options, VariantOptions>
std::vector<BuiltinVariant> makeVariants(std::string_view orvexFunctionName, const Options& options) {
    return detail::makeVariantsWith<Fcn>(orvexFunctionName, options);
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
    const BuiltinVariantLists& getLists() const noexcept { return lists_; }

private:
    std::string definingLibrary_;
    std::string summary_;
    const BuiltinVariantLists& lists_;
};

} // namespace Velloc::builtin::builtinreg
