// A defining library with the declarations the reachability report and option texts are
// about, each beside the one that fixes it:
// - repeat takes its count as a numeric scalar beside text: its boxed copy, through which
//   interpreted calls would reach it, goes (its result is a string, which the engine
//   cannot take), so no interpreted call reaches it;
// - repeatArray takes the count as const oxArray*, which interpreted calls reach;
// - roundTo offers the option 'up' to compiled callers as a flag and to interpreted calls
//   as text, checked by the function;
// - ceilOnly offers it as a flag only, which no interpreted call reaches.
#include <builtin/builtinreg/MakeVariant.hpp>
#include <builtin/services/IBuiltinLibrary.hpp>

#include <cppmicroservices/BundleActivator.h>
#include <cppmicroservices/BundleContext.h>

#include <foundation/core/except/Exception.hpp>
#include <matrix/ResultArrays.hpp>

#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace authorlib {

namespace {

using namespace Velloc::builtin::builtinreg;
using Velloc::builtin::BuiltinFcn;

namespace errors {
struct badOption {
    static constexpr std::string_view component = "authorlib";
    static constexpr std::string_view key = "badOption";
    static constexpr std::string_view text = "Unknown option '{0}': the option is 'up'.";
};
struct notDouble {
    static constexpr std::string_view component = "authorlib";
    static constexpr std::string_view key = "notDouble";
    static constexpr std::string_view text = "roundTo with an option takes real double arrays.";
};
struct badCount {
    static constexpr std::string_view component = "authorlib";
    static constexpr std::string_view key = "badCount";
    static constexpr std::string_view text = "The count must be one int32 of at least 0.";
};
} // namespace errors

std::u16string repeatText(std::u16string_view text, std::int32_t count) {
    std::u16string out;
    for (std::int32_t i = 0; i < count; ++i) {
        out += text;
    }
    return out;
}

std::u16string repeatArray(std::u16string_view text, const oxArray* count) {
    if (matrix::getClassID(count) != oxINT32_CLASS || !matrix::isScalar(count) || matrix::isComplex(count) ||
        *matrix::getTypedData<std::int32_t>(count) < 0) {
        throw foundation::core::except::Exception<errors::badCount>(std::vector<foundation::core::except::MessageArgument>{});
    }
    return repeatText(text, *matrix::getTypedData<std::int32_t>(count));
}

double roundNearest(double x) { return std::round(x); }
double roundUp(double x) { return std::ceil(x); }

// The option as text, for interpreted calls: the same options the flags offer, checked.
oxArray* roundWithOption(const oxArray* x, std::u16string_view option) {
    if (option != u"up") {
        throw foundation::core::except::Exception<errors::badOption>({std::u16string(option)});
    }
    if (matrix::getClassID(x) != oxDOUBLE_CLASS || matrix::isComplex(x) || matrix::isSparse(x)) {
        throw foundation::core::except::Exception<errors::notDouble>(std::vector<foundation::core::except::MessageArgument>{});
    }
    const matrix::Dims dims = matrix::getDimensions(x);
    oxArray* out = matrix::createUninitializedNumericArray(dims, oxDOUBLE_CLASS);
    const double* in = matrix::getTypedData<double>(x);
    double* rounded = matrix::getTypedData<double>(out);
    for (std::size_t i = 0; i < matrix::getNumberOfElements(x); ++i) {
        rounded[i] = std::ceil(in[i]);
    }
    return out;
}

const BuiltinFcn& repeatBuiltin() {
    static const BuiltinVariantLists lists{
        makeVariants<&repeatText>("repeat"),
    };
    static const RegisteredBuiltin builtin("repeat", "authorlib", "text repeated, the count unboxed", lists,
                                           noDefaultImplementation("repeat"));
    return builtin;
}

const BuiltinFcn& repeatArrayBuiltin() {
    static const BuiltinVariantLists lists{
        makeVariants<&repeatText>("repeatArray"),
        makeVariants<&repeatArray>("repeatArray", {.mayThrowErrors = true}),
    };
    static const RegisteredBuiltin builtin("repeatArray", "authorlib", "text repeated, the count as an array", lists,
                                           noDefaultImplementation("repeatArray"));
    return builtin;
}

const BuiltinFcn& roundToBuiltin() {
    static const BuiltinVariantLists lists{
        makeVariants<&roundNearest>("roundTo", {.isElementWise = true}),
        makeVariants<&roundUp>("roundTo", {.isElementWise = true, .flags = {{1, "up"}}}),
        makeVariants<&roundWithOption>("roundTo", {.mayThrowErrors = true}),
    };
    static const RegisteredBuiltin builtin("roundTo", "authorlib", "rounds, or rounds up with 'up'", lists,
                                           noDefaultImplementation("roundTo"));
    return builtin;
}

const BuiltinFcn& ceilOnlyBuiltin() {
    static const BuiltinVariantLists lists{
        makeVariants<&roundUp>("ceilOnly", {.isElementWise = true, .flags = {{1, "up"}}}),
    };
    static const RegisteredBuiltin builtin("ceilOnly", "authorlib", "rounds up with 'up', for compiled callers",
                                           lists, noDefaultImplementation("ceilOnly"));
    return builtin;
}

class AuthorLibrary final : public Velloc::builtin::IBuiltinLibrary {
public:
    std::string getLibraryName() const override { return "authorlib"; }
    std::vector<const BuiltinFcn*> getBuiltins() const override {
        return {&repeatBuiltin(), &repeatArrayBuiltin(), &roundToBuiltin(), &ceilOnlyBuiltin()};
    }
};

class Activator final : public cppmicroservices::BundleActivator {
public:
    void Start(cppmicroservices::BundleContext context) override {
        context.RegisterService<Velloc::builtin::IBuiltinLibrary>(std::make_shared<AuthorLibrary>(),
                                                                 {{"library", std::string("authorlib")}});
    }
    void Stop(cppmicroservices::BundleContext) override {}
};

} // namespace

} // namespace authorlib

BUILTIN2_EXPORT_BUNDLE_ACTIVATOR(authorlib::Activator, authorlib)
