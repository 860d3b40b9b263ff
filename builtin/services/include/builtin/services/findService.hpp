// Finding services in the module framework. The builtin-services bundle is started once
// per process before the first lookup, so that the host's own services are there.
#pragma once

#include <foundation/cppmicroservices/framework.hpp>

#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/LDAPFilter.h>

#include <memory>

namespace Velloc::builtin::builtinreg {

// Installs and starts the bundle at "bin/lnxv64/builtinservices" under the installation
// root, with the filter "(started-in=builtin2/builtin)". Calls made before the first start
// has finished each start it (starting twice changes nothing); later calls do nothing. No
// lock is held meanwhile, so module activators may look services up. A bundle that cannot
// be started is logged on the channel "builtinservice::startBundle", and its services are
// then simply missing.
void loadBuiltinServices();

// The first service of interface T whose properties match the filter (a default filter
// matches every service); null when there is none or no framework runs. Throws
// std::runtime_error when the framework's context is no longer valid.
template <class T>
std::shared_ptr<T> findService(const cppmicroservices::LDAPFilter& filter = {}) {
    loadBuiltinServices();
    const auto framework = foundation::cppmicroservices::getFramework();
    if (!framework) {
        return nullptr;
    }
    const cppmicroservices::BundleContext context = framework->GetBundleContext();
    const auto references = context.GetServiceReferences<T>(filter.ToString());
    if (references.empty()) {
        return nullptr;
    }
    return context.GetServiceObjects(references.front()).GetService();
}

} // namespace Velloc::builtin::builtinreg
