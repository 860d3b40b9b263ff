// A handle on an installed bundle: a directory with a manifest.json and the shared
// library it names. Copies refer to the same bundle.
#pragma once

#include "cppmicroservices/AnyMap.h"

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>

namespace cppmicroservices {

class BundleContext;

namespace detail {
class BundlePrivate;
struct BundleAccess;
} // namespace detail

class Bundle {
public:
    enum State : std::uint32_t {
        STATE_UNINSTALLED = 0x01,
        STATE_INSTALLED = 0x02,
        STATE_RESOLVED = 0x04,
        STATE_STARTING = 0x08,
        STATE_STOPPING = 0x10,
        STATE_ACTIVE = 0x20,
    };

    Bundle() = default;

    explicit operator bool() const;
    bool operator==(const Bundle& other) const;
    // By bundle id within a framework; an invalid bundle sorts after every valid one.
    bool operator<(const Bundle& other) const;

    // Each of these throws std::invalid_argument on a default-constructed Bundle.
    State GetState() const;
    // Valid while the bundle is starting, active or stopping; invalid otherwise.
    BundleContext GetBundleContext() const;
    long GetBundleId() const;
    // The bundle's directory, made absolute.
    std::string GetLocation() const;
    std::string GetSymbolicName() const;
    // Every key of the manifest's "bundle" object, and every other top-level key of the
    // manifest; JSON objects become AnyMaps, arrays std::vector<Any>.
    AnyMap GetHeaders() const;

    // Loads the library (once), creates the activator and calls its Start; no-op when
    // already active. Throws std::runtime_error naming the bundle and the failure, which
    // leaves the bundle inactive with none of its services registered. On the system bundle,
    // starts the framework.
    void Start();
    // Calls the activator's Stop, then unregisters the bundle's remaining services. On the
    // system bundle, stops the framework.
    void Stop();

protected:
    friend struct detail::BundleAccess;

    explicit Bundle(std::shared_ptr<detail::BundlePrivate> bundle);

    std::shared_ptr<detail::BundlePrivate> d_;
};

// "bundle NAME (id N)", or "invalid bundle".
std::ostream& operator<<(std::ostream& out, const Bundle& bundle);

} // namespace cppmicroservices

#include "cppmicroservices/BundleContext.h"
