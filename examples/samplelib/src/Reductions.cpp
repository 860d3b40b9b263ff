#include "Reductions.hpp"

#include "Elements.hpp"

#include <builtin/builtinreg/StringTraits.hpp>

#include <foundation/core/except/Exception.hpp>

#include <cmath>
#include <cstdio>
#include <string>

namespace samplelib {

namespace errors {
struct unknownOption {
    static constexpr std::string_view component = "samplelib";
    static constexpr std::string_view key = "unknownOption";
    static constexpr std::string_view text = "{0} does not take the option '{1}'; it takes {2}.";
};
struct badDimension {
    static constexpr std::string_view component = "samplelib";
    static constexpr std::string_view key = "badDimension";
    static constexpr std::string_view text = "The dimension must be a positive integer, not {0}.";
};
} // namespace errors

namespace {

constexpr std::u16string_view spellingOf(ReductionOption option) {
    switch (option) {
    case ReductionOption::ALL: return u"all";
    case ReductionOption::OMIT_NAN: return u"omitnan";
    case ReductionOption::INCLUDE_NAN: break;
    }
    return u"includenan";
}

bool equalIgnoringCase(std::u16string_view text, std::u16string_view lower) {
    if (text.size() != lower.size()) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i] >= u'A' && text[i] <= u'Z' ? static_cast<char16_t>(text[i] - u'A' + u'a') : text[i];
        if (c != lower[i]) {
            return false;
        }
    }
    return true;
}

// "'all', 'omitnan' or 'includenan'".
std::u16string listOf(std::initializer_list<ReductionOption> options) {
    std::u16string text;
    std::size_t i = 0;
    for (const ReductionOption option : options) {
        text += i == 0 ? u"" : i + 1 == options.size() ? u" or " : u", ";
        text += u'\'';
        text += spellingOf(option);
        text += u'\'';
        ++i;
    }
    return text;
}

} // namespace

void applyOption(ReductionOptions& options, std::u16string_view text, std::string_view builtin,
                 std::initializer_list<ReductionOption> accepted) {
    for (const ReductionOption option : accepted) {
        if (!equalIgnoringCase(text, spellingOf(option))) {
            continue;
        }
        switch (option) {
        case ReductionOption::ALL: options.all = true; break;
        case ReductionOption::OMIT_NAN: options.omitNaN = true; break;
        case ReductionOption::INCLUDE_NAN: options.omitNaN = false; break;
        }
        return;
    }
    throw foundation::core::except::Exception<errors::unknownOption>(
        {std::string(builtin), std::u16string(text), listOf(accepted)});
}

std::size_t dimensionIndex(double dim) {
    if (!(dim >= 1) || dim != std::floor(dim) || dim > 1e9) {
        char text[32];
        std::snprintf(text, sizeof text, "%.17g", dim);
        throw foundation::core::except::Exception<errors::badDimension>({std::string(text)});
    }
    return static_cast<std::size_t>(dim) - 1;
}

std::size_t dimensionIndex(const oxArray* dim) {
    if (!holdsNumbers(dim) || !matrix::isScalar(dim) || matrix::isComplex(dim)) {
        std::string text = "a ";
        text += matrix::isComplex(dim) ? "complex " : "";
        text += classNameOf(dim);
        text += " array of ";
        text += std::to_string(matrix::getNumberOfElements(dim));
        text += matrix::getNumberOfElements(dim) == 1 ? " element" : " elements";
        throw foundation::core::except::Exception<errors::badDimension>({text});
    }
    return dimensionIndex(static_cast<double>(NumberReader(dim)[0].re));
}

bool readDimensionOrOption(const oxArray* argument, ReductionOptions& options, std::string_view builtin,
                           std::initializer_list<ReductionOption> accepted) {
    if (holdsNumbers(argument) && matrix::getClassID(argument) != oxCHAR_CLASS) {
        options.dim = dimensionIndex(argument);
        return true;
    }
    // The framework's own reader of text parameters: a char row vector or a scalar
    // string; it holds the reference it is given in temporaries.
    Velloc::builtin::types::Temporaries temporaries;
    const std::u16string text = Velloc::builtin::types::TypeTraitsImpl<std::u16string>{}(
        matrix::addReference(const_cast<oxArray*>(argument)), temporaries);
    applyOption(options, text, builtin, accepted);
    return false;
}

Reduction planReduction(const oxArray* a, const ReductionOptions& options, bool keepsEmpty) {
    std::vector<std::size_t> dims(matrix::getDimensions(a).begin(), matrix::getDimensions(a).end());
    const std::size_t elements = numberOfElements(dims);
    std::size_t dim = 0;
    if (options.all) {
        // Every element, as one column.
        if (keepsEmpty && elements == 0) {
            return {{0, 0}, 0, 0, 1};
        }
        return {{1, 1}, 1, elements, 1};
    }
    if (options.dim) {
        dim = *options.dim;
    } else {
        const bool zeroByZero = dims.size() == 2 && dims[0] == 0 && dims[1] == 0;
        if (zeroByZero && !keepsEmpty) {
            return {{1, 1}, 1, 0, 1};
        }
        while (dim < dims.size() && dims[dim] == 1) ++dim;
        if (dim == dims.size()) {
            dim = 0;
        }
    }
    std::size_t stride = 1;
    for (std::size_t d = 0; d < dim && d < dims.size(); ++d) {
        stride *= dims[d];
    }
    const std::size_t extent = dim < dims.size() ? dims[dim] : 1;
    if (dim < dims.size()) {
        dims[dim] = extent == 0 && keepsEmpty ? 0 : 1;
    }
    return {dims, numberOfElements(dims), extent, stride == 0 ? 1 : stride};
}

} // namespace samplelib
