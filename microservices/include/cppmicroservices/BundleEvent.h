// A change of a bundle's life-cycle state, as bundle listeners receive it.
#pragma once

#include "cppmicroservices/Bundle.h"
#include "cppmicroservices/ListenerToken.h"

#include <iosfwd>

namespace cppmicroservices {

class BundleEvent {
public:
    enum Type : std::uint32_t {
        BUNDLE_INSTALLED = 0x01,
        BUNDLE_STARTED = 0x02,
        BUNDLE_STOPPED = 0x04,
        BUNDLE_STARTING = 0x80,
        BUNDLE_STOPPING = 0x100,
    };

    // An invalid event.
    BundleEvent() = default;
    // Throws std::invalid_argument for an invalid bundle, as CppMicroServices.
    BundleEvent(Type type, const Bundle& bundle);

    explicit operator bool() const;
    Type GetType() const;
    Bundle GetBundle() const;

private:
    Type type_ = BUNDLE_INSTALLED;
    Bundle bundle_;
};

// As CppMicroServices: "STARTED", ..., "Unknown bundle event type (N)"; an event as
// "STARTED #1 (name at location)", an invalid one as "NONE".
std::ostream& operator<<(std::ostream& out, BundleEvent::Type type);
std::ostream& operator<<(std::ostream& out, const BundleEvent& event);

} // namespace cppmicroservices
