// One library, several bundles beside each other, each going wrong in its own way (and one
// going right), so that the tool shows that one mistake takes down only itself:
// - goodlib publishes addOne, which works;
// - badreg publishes a builtin whose registration fails: triple is declared element-wise
//   through options kept in a variable, which the compiler cannot check against the
//   function, and an element-wise function takes one or two inputs;
// - throwing has an activator that throws;
// - quiet starts and registers nothing;
// - noactivator and wrongname (manifests only) have no activator and name a library that
//   does not exist.
#include <builtin/builtinreg/MakeVariant.hpp>
#include <builtin/services/IBuiltinLibrary.hpp>

#include <cppmicroservices/BundleActivator.h>
#include <cppmicroservices/BundleContext.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace badbundles {

namespace {

using namespace Velloc::builtin::builtinreg;
using Velloc::builtin::BuiltinFcn;

double addOne(double x) { return x + 1; }
double triple(double a, double b, double c) { return a + b + c; }

constexpr VariantOptions ELEMENT_WISE{.isElementWise = true};

const BuiltinFcn& addOneBuiltin() {
    static const BuiltinVariantLists lists{makeVariants<&addOne>("addOne", ELEMENT_WISE)};
    static const RegisteredBuiltin builtin("addOne", "goodlib", "x + 1", lists, noDefaultImplementation("addOne"));
    return builtin;
}

const BuiltinFcn& tripleBuiltin() {
    static const BuiltinVariantLists lists{makeVariants<&triple>("triple", ELEMENT_WISE)};
    static const RegisteredBuiltin builtin("triple", "badreg", "a + b + c", lists, noDefaultImplementation("triple"));
    return builtin;
}

class Library final : public Velloc::builtin::IBuiltinLibrary {
public:
    Library(std::string name, const BuiltinFcn& (*builtin)()) : name_(std::move(name)), builtin_(builtin) {}
    std::string getLibraryName() const override { return name_; }
    std::vector<const BuiltinFcn*> getBuiltins() const override { return {&builtin_()}; }

private:
    std::string name_;
    const BuiltinFcn& (*builtin_)();
};

template <const char* Name, const BuiltinFcn& (*Builtin)()>
class Publishing final : public cppmicroservices::BundleActivator {
public:
    void Start(cppmicroservices::BundleContext context) override {
        context.RegisterService<Velloc::builtin::IBuiltinLibrary>(std::make_shared<Library>(Name, Builtin));
    }
    void Stop(cppmicroservices::BundleContext) override {}
};

constexpr char GOODLIB[] = "goodlib";
constexpr char BADREG[] = "badreg";
using GoodLib = Publishing<GOODLIB, &addOneBuiltin>;
using BadReg = Publishing<BADREG, &tripleBuiltin>;

class Throwing final : public cppmicroservices::BundleActivator {
public:
    void Start(cppmicroservices::BundleContext) override {
        throw std::runtime_error("the activator of throwing fails on purpose");
    }
    void Stop(cppmicroservices::BundleContext) override {}
};

class Quiet final : public cppmicroservices::BundleActivator {
public:
    void Start(cppmicroservices::BundleContext) override {}
    void Stop(cppmicroservices::BundleContext) override {}
};

} // namespace

} // namespace badbundles

BUILTIN2_EXPORT_BUNDLE_ACTIVATOR(badbundles::GoodLib, goodlib)
BUILTIN2_EXPORT_BUNDLE_ACTIVATOR(badbundles::BadReg, badreg)
BUILTIN2_EXPORT_BUNDLE_ACTIVATOR(badbundles::Throwing, throwing)
BUILTIN2_EXPORT_BUNDLE_ACTIVATOR(badbundles::Quiet, quiet)
