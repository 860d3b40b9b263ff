// Starting the module: save the manifest's engine-object records, then make the buffer
// class known with its indexing and its methods, and publish the builtins that take
// buffers.
#include "BufferClass.hpp"

#include <lxebuffer/Buffer.hpp>

#include <builtin/lxeobject/CppLxeObjectImpl.hpp>
#include <builtin/lxeobject/LxeObjectBridge.hpp>
#include <builtin/lxeobject/LxeObjectManifest.hpp>

#include <builtin/services/IBuiltinLibrary.hpp>

#include <cppmicroservices/BundleActivator.h>
#include <cppmicroservices/BundleContext.h>

#include <memory>

namespace lxebuffer {

namespace {

class BufferLibrary final : public Velloc::builtin::IBuiltinLibrary {
public:
    std::string getLibraryName() const override { return "lxebuffer"; }
    std::vector<const Velloc::builtin::BuiltinFcn*> getBuiltins() const override { return {&totalBuiltin()}; }
};

} // namespace

class Activator final : public cppmicroservices::BundleActivator {
public:
    void Start(cppmicroservices::BundleContext context) override {
        using namespace Velloc::builtin;
        lxeobject::saveLxeObjectRuntimeInfo(context.GetBundle());
        lxeobject::adoptManifestIdentity<Buffer>();
        // Null without the class-object service, which the registrations below then log.
        ocos::COSClass* cls = lxeobject::defineClass(Buffer::lxeObjectId.getClassName());
        lxeobject::registerLxeObjectClass<Buffer>(false);
        lxeobject::registerLxeObjectDefaultIndexingMethods<Buffer>(false, bufferIndexing());
        if (cls != nullptr) {
            addBufferMethods(*cls);
            // Builtins that take buffers need the class: without the service there are none.
            context.RegisterService<Velloc::builtin::IBuiltinLibrary>(std::make_shared<BufferLibrary>(),
                                                                     {{"library", std::string("lxebuffer")}});
        }
    }

    void Stop(cppmicroservices::BundleContext) override {}
};

} // namespace lxebuffer

BUILTIN2_EXPORT_BUNDLE_ACTIVATOR(lxebuffer::Activator, lxebuffer)
