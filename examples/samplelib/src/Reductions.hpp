// What the sample's reductions (sum, prod, mean, any, all, max, min) share: how they are
// told where to run and what to do with NaN, and which elements of the operand each
// element of the result takes.
//
// Where a reduction runs, as the language writes it:
//     sum(m)           along the first dimension whose extent is not 1 (the columns of a
//                      matrix, the elements of a vector)
//     sum(m, 2)        along a given dimension; beyond the last one, each element alone
//     sum(m, 'all')    over every element, into a 1-by-1 result
//     mean(m, 'omitnan'), sum(m, 2, 'omitnan'), sum(m, 'all', 'omitnan')   NaN left out
//
// Option texts reach a builtin in two ways, and the sample declares both:
//  - Compiled callers know an option text when they are compiled, and pass it as a flag.
//    A variant declares the flag by its input position and literal text,
//        makeVariants<&overAll<&sumCore>>("sum", {.mayThrowErrors = true, .flags = {{1, "all"}}})
//    and is matched only by that exact text; the flag is not passed on, so overAll takes
//    just the array and there is one developer function per option (or set of options).
//  - The interpreter holds every value as an array: the text 'all' reaches the builtin as
//    a char row vector ("all" as a string), which a flag never accepts. A variant whose
//    parameter is a text type (std::u16string_view takes a char row or a string) receives
//    the text and reads it with applyOption below, which knows the spellings and reports
//    a text the builtin does not take as the language error samplelib:unknownOption.
// Both kinds of variant end in the builtin's one core function, given ReductionOptions.
#pragma once

#include <builtin/BuiltinFcn.hpp>
#include <builtin/builtinreg/Explain.hpp>

#include <matrix/oxArray.hpp>

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <vector>

namespace samplelib {

// Where a reduction runs and what it does with NaN.
struct ReductionOptions {
    // 0-based; none: the first dimension whose extent is not 1.
    std::optional<std::size_t> dim = std::nullopt;
    // 'all': every element, into a 1-by-1 result.
    bool all = false;
    // 'omitnan': NaN elements are left out ('includenan', the default, keeps them).
    bool omitNaN = false;
};

// The option texts, as the language spells them: 'all', 'omitnan', 'includenan'.
enum class ReductionOption { ALL, OMIT_NAN, INCLUDE_NAN };

// Reads one option text given at run time into options. The spelling is compared without
// regard to case, as the language compares it; a text that is not one of those builtin
// takes (accepted) is the error samplelib:unknownOption, which names them.
void applyOption(ReductionOptions& options, std::u16string_view text, std::string_view builtin,
                 std::initializer_list<ReductionOption> accepted);

// An argument that is either a dimension or an option text, as the second of sum(x, 2,
// 'omitnan') and sum(x, 'all', 'omitnan') is: numbers are read as the dimension (true),
// a char row vector or a string as an option (false).
bool readDimensionOrOption(const oxArray* argument, ReductionOptions& options, std::string_view builtin,
                           std::initializer_list<ReductionOption> accepted);

// The dimension argument, 1-based as the language writes it, as a 0-based index: it must
// be a positive integer, else the error samplelib:badDimension. The second form takes a
// real scalar of any numeric class.
std::size_t dimensionIndex(double dim);
std::size_t dimensionIndex(const oxArray* dim);

// Which operand elements each result element takes. Element k of the result reduces the
// extent elements of the operand at first(k), first(k) + stride, first(k) + 2*stride, ...
struct Reduction {
    std::vector<std::size_t> dims; // of the result, at least two
    std::size_t count;             // elements of the result
    std::size_t extent;
    std::size_t stride;
    std::size_t first(std::size_t k) const { return k % stride + (k / stride) * stride * extent; }
};

// The plan for reducing a along options.dim (or its first non-singleton dimension, or all
// of it). The result has extent 1 along the reduced dimension, with the language's rules
// for empty operands:
//  - keepsEmpty false (sum, prod, mean, any, all): an empty dimension reduces to one
//    element, the reduction's value for nothing (sum(zeros(0, 3)) is [0 0 0]), and a 0-by-0
//    operand reduced along its default dimension gives one element (sum([]) is 0);
//  - keepsEmpty true (max, min): an empty dimension stays empty (max([]) is [], and
//    max(zeros(0, 3)) is 0-by-3), as there is no maximum of nothing.
Reduction planReduction(const oxArray* a, const ReductionOptions& options, bool keepsEmpty);

// The forms of a call that sum, prod, mean, any and all share, each ending in the builtin's
// one core function: along the first dimension, along a given one, over every element as
// a compiled caller's flag says ('all'), and with 'all' as the interpreter passes it, as
// text (Name names the builtin in the message about a text it does not take).
using ReductionCore = oxArray* (*)(const oxArray*, const ReductionOptions&);

template <ReductionCore core>
oxArray* alongFirst(const oxArray* a) {
    return core(a, {});
}

template <ReductionCore core>
oxArray* along(const oxArray* a, double dim) {
    return core(a, {.dim = dimensionIndex(dim)});
}

template <ReductionCore core>
oxArray* overAll(const oxArray* a) {
    return core(a, {.all = true});
}

template <ReductionCore core, const char* Name>
oxArray* withAllOption(const oxArray* a, std::u16string_view option) {
    ReductionOptions options;
    applyOption(options, option, Name, {ReductionOption::ALL});
    return core(a, options);
}

// The default implementation of the reductions: the report of every variant and why it
// refused the call, as the identified error builtin2:noMatchingVariant.
template <const Velloc::builtin::BuiltinFcn& (*Builtin)()>
void reportUnmatchedCall(int nlhs, oxArray**, int nrhs, oxArray** prhs, const Velloc::builtin::BuiltinVariant&) {
    Velloc::builtin::builtinreg::throwNoMatchingVariant(Builtin(), nlhs, nrhs, prhs);
}

} // namespace samplelib
