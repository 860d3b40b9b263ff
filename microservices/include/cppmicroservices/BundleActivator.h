// The entry points of a bundle's library: the framework calls Start when the bundle
// starts and Stop when it stops.
#pragma once

#include "cppmicroservices/BundleContext.h"

namespace cppmicroservices {

class BundleActivator {
public:
    virtual ~BundleActivator() = default;
    virtual void Start(BundleContext context) = 0;
    virtual void Stop(BundleContext context) = 0;
};

namespace detail {

template <class Activator>
BundleActivator* newActivator()
{
    return new Activator();
}

inline void deleteActivator(BundleActivator* activator)
{
    delete activator;
}

} // namespace detail

} // namespace cppmicroservices

// Exports the activator of the bundle with the given symbolic name, as the two C functions
// the framework looks up when it starts the bundle:
//   builtin2_create_activator_<symbolicName> and builtin2_destroy_activator_<symbolicName>.
// This is the module framework's one macro: a C symbol whose name is built from the
// bundle's symbolic name cannot be produced by a template. Write it once per bundle, at
// namespace scope in one source file:
//   BUILTIN2_EXPORT_BUNDLE_ACTIVATOR(MyActivator, my_bundle)
#define BUILTIN2_EXPORT_BUNDLE_ACTIVATOR(ActivatorType, symbolicName)                                     \
    extern "C" __attribute__((visibility("default"))) ::cppmicroservices::BundleActivator*                \
        builtin2_create_activator_##symbolicName()                                                        \
    {                                                                                                     \
        return ::cppmicroservices::detail::newActivator<ActivatorType>();                                  \
    }                                                                                                     \
    extern "C" __attribute__((visibility("default"))) void builtin2_destroy_activator_##symbolicName(      \
        ::cppmicroservices::BundleActivator* activator)                                                   \
    {                                                                                                     \
        ::cppmicroservices::detail::deleteActivator(activator);                                           \
    }
