// Starting the module: save the manifest's engine-object records, then make the buffer
// class known with its indexing and its methods.
#include "BufferClass.hpp"

#include <lxebuffer/Buffer.hpp>

#include <builtin/lxeobject/CppLxeObjectImpl.hpp>
#include <builtin/lxeobject/LxeObjectBridge.hpp>
#include <builtin/lxeobject/LxeObjectManifest.hpp>

#include <cppmicroservices/BundleActivator.h>
#include <cppmicroservices/BundleContext.h>

namespace lxebuffer {

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
        }
    }

    void Stop(cppmicroservices::BundleContext) override {}
};

} // namespace lxebuffer

BUILTIN2_EXPORT_BUNDLE_ACTIVATOR(lxebuffer::Activator, lxebuffer)
