// Publishes the sample builtins when the bundle starts.
#include "SampleBuiltins.hpp"

#include <builtin/services/IBuiltinLibrary.hpp>

#include <cppmicroservices/BundleActivator.h>
#include <cppmicroservices/BundleContext.h>

#include <memory>

namespace samplelib {

namespace {

class SampleLibrary final : public Velloc::builtin::IBuiltinLibrary {
public:
    std::string getLibraryName() const override { return LIBRARY; }
    std::vector<const BuiltinFcn*> getBuiltins() const override {
        return {&plusBuiltin(),     &minusBuiltin(),    &timesBuiltin(),       &rdivideBuiltin(),
                &powerBuiltin(),    &absBuiltin(),      &sqrtBuiltin(),        &hypotBuiltin(),
                &upperBuiltin(),    &strjoinBuiltin(),  &sizeBuiltin(),        &classBuiltin(),
                &describeBuiltin(), &reciprocalBuiltin(), &checkedSqrtBuiltin(), &nchoosekBuiltin(),
                &twiceBuiltin(),    &counterBuiltin(),  &uminusBuiltin(),      &uplusBuiltin(),
                &colonBuiltin(),    &eqBuiltin(),       &neBuiltin(),          &ltBuiltin(),
                &leBuiltin(),       &gtBuiltin(),       &geBuiltin(),          &andBuiltin(),
                &orBuiltin(),       &notBuiltin(),      &transposeBuiltin(),   &ctransposeBuiltin(),
                &sumBuiltin(),      &prodBuiltin(),     &meanBuiltin(),        &anyBuiltin(),
                &allBuiltin(),      &maxBuiltin(),      &minBuiltin()};
    }
};

class Activator final : public cppmicroservices::BundleActivator {
public:
    void Start(cppmicroservices::BundleContext context) override {
        context.RegisterService<Velloc::builtin::IBuiltinLibrary>(std::make_shared<SampleLibrary>(),
                                                                 {{"library", std::string(LIBRARY)}});
    }
    void Stop(cppmicroservices::BundleContext) override {}
};

} // namespace

} // namespace samplelib

BUILTIN2_EXPORT_BUNDLE_ACTIVATOR(samplelib::Activator, samplelib)
