// A defining library with one mistake: its second variant of halve takes exactly the calls
// the first one takes, so no call can ever reach it.
#include <builtin/builtinreg/MakeVariant.hpp>
#include <builtin/services/IBuiltinLibrary.hpp>

#include <cppmicroservices/BundleActivator.h>
#include <cppmicroservices/BundleContext.h>

#include <memory>

namespace lintlib {

namespace {

using namespace Velloc::builtin::builtinreg;

double halve(double x) { return x / 2; }
double halveAgain(double x) { return x * 0.5; }

const Velloc::builtin::BuiltinFcn& halveBuiltin() {
    static const BuiltinVariantLists lists{
        makeVariants<&halve>("halve", {.isElementWise = true}),
        makeVariants<&halveAgain>("halve", {.isElementWise = true}),
    };
    static const RegisteredBuiltin builtin("halve", "lintlib", "x / 2, declared twice", lists,
                                           noDefaultImplementation("halve"));
    return builtin;
}

class LintLibrary final : public Velloc::builtin::IBuiltinLibrary {
public:
    std::string getLibraryName() const override { return "lintlib"; }
    std::vector<const Velloc::builtin::BuiltinFcn*> getBuiltins() const override { return {&halveBuiltin()}; }
};

class Activator final : public cppmicroservices::BundleActivator {
public:
    void Start(cppmicroservices::BundleContext context) override {
        context.RegisterService<Velloc::builtin::IBuiltinLibrary>(std::make_shared<LintLibrary>(),
                                                                 {{"library", std::string("lintlib")}});
    }
    void Stop(cppmicroservices::BundleContext) override {}
};

} // namespace

} // namespace lintlib

BUILTIN2_EXPORT_BUNDLE_ACTIVATOR(lintlib::Activator, lintlib)
