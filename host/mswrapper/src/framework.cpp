#include "foundation/cppmicroservices/framework.hpp"

#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/FrameworkFactory.h>
#include <cppmicroservices/LDAPFilter.h>

#include <stdexcept>

namespace foundation::cppmicroservices {

namespace {

std::shared_ptr<::cppmicroservices::Framework> startFramework()
{
    try {
        auto framework =
            std::make_shared<::cppmicroservices::Framework>(::cppmicroservices::FrameworkFactory().NewFramework());
        framework->Init();
        framework->Start();
        return framework;
    } catch (const std::exception&) {
        return nullptr;
    }
}

} // namespace

std::shared_ptr<::cppmicroservices::Framework> getFramework()
{
    // Never destroyed: at exit the static objects of bundle libraries may already be gone,
    // so stopping their activators then is not safe.
    static const auto* const framework = new std::shared_ptr<::cppmicroservices::Framework>(startFramework());
    return *framework;
}

void installAndStart(const std::filesystem::path& path, const std::string& ldapFilter)
{
    const auto framework = getFramework();
    if (!framework) {
        throw std::runtime_error("cannot install bundles from '" + path.string() +
                                 "': the module framework is not running");
    }
    const ::cppmicroservices::LDAPFilter filter =
        ldapFilter.empty() ? ::cppmicroservices::LDAPFilter() : ::cppmicroservices::LDAPFilter(ldapFilter);
    for (auto& bundle : framework->GetBundleContext().InstallBundles(path.string())) {
        if (ldapFilter.empty() || filter.Match(bundle.GetHeaders())) {
            bundle.Start();
        }
    }
}

} // namespace foundation::cppmicroservices
