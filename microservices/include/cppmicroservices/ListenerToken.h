// Listeners of service and bundle events, and the token that names one added listener
// for BundleContext::RemoveListener (move-only, as the listener it names is removed once).
#pragma once

#include <functional>

namespace cppmicroservices {

class BundleEvent;
class ServiceEvent;
using ServiceListener = std::function<void(const ServiceEvent&)>;
using BundleListener = std::function<void(const BundleEvent&)>;

class ListenerToken {
public:
    // An invalid token.
    ListenerToken() = default;
    explicit ListenerToken(long id) : id_(id) {}

    ListenerToken(ListenerToken&& other) noexcept : id_(other.id_) { other.id_ = 0; }
    ListenerToken& operator=(ListenerToken&& other) noexcept
    {
        id_ = other.id_;
        other.id_ = 0;
        return *this;
    }
    ListenerToken(const ListenerToken&) = delete;
    ListenerToken& operator=(const ListenerToken&) = delete;

    explicit operator bool() const { return id_ != 0; }
    long Id() const { return id_; }

private:
    long id_ = 0;
};

} // namespace cppmicroservices
