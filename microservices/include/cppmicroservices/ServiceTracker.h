// Follows the services of one interface (or those matching a filter) as they come, change
// and go, and keeps the best one at hand. Changes are handled one at a time per tracker,
// on the thread that made them, and the customizer runs under no lock of the framework;
// what it throws is reported on the log channel "cppmicroservices::listeners" (a throwing
// AddingService declines the service) and tracking goes on.
// The best service is published as a snapshot with a stamp. BorrowService, for call paths,
// lends it through a slot of the calling thread: while the stamp is the slot's, that is two
// loads and a compare, with no lock and no reference taken; the first borrow after a change
// refills the slot under the tracker's lock. GetService copies a reference out of the slot.
#pragma once

#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/Constants.h"
#include "cppmicroservices/LDAPFilter.h"
#include "cppmicroservices/LDAPProp.h"
#include "cppmicroservices/ServiceEvent.h"
#include "cppmicroservices/ServiceTrackerCustomizer.h"
#include "cppmicroservices/detail/BorrowSlots.h"
#include "cppmicroservices/detail/CallbackFailure.h"

#include <atomic>
#include <chrono>
#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <unordered_map>
#include <utility>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

namespace cppmicroservices {

template <class S, class T = S>
class ServiceTracker : protected ServiceTrackerCustomizer<S, T> {
public:
    using TrackedParamType = std::shared_ptr<T>;
    using TrackingMap = std::unordered_map<ServiceReference<S>, std::shared_ptr<T>>;

    // Tracks the services registered under S. Without a customizer, the tracker's own
    // (which gets the service object) is used.
    explicit ServiceTracker(const BundleContext& context, ServiceTrackerCustomizer<S, T>* customizer = nullptr)
        : ServiceTracker(context, std::string(interfaceExpression()), customizer)
    {
    }

    // Tracks the services registered under S that match the filter.
    ServiceTracker(const BundleContext& context, const LDAPFilter& filter,
                   ServiceTrackerCustomizer<S, T>* customizer = nullptr)
        : ServiceTracker(context, std::string(interfaceExpression() && LDAPPropExpr(filter.ToString())), customizer)
    {
    }

    ~ServiceTracker() override
    {
        try {
            Close();
        } catch (const std::exception&) {
            // The framework went first; its services are gone with it.
        }
        // Threads' slots of this number let go of what they lent when the number's next
        // tracker lends through them, or when the threads end. They are not touched here: a
        // tracker may go after its thread's slots have.
        detail::releaseBorrowSlot(borrowSlot_);
    }

    ServiceTracker(const ServiceTracker&) = delete;
    ServiceTracker& operator=(const ServiceTracker&) = delete;

    // Starts tracking: the matching services now, and those that come later. Opening an
    // open tracker does nothing. Throws std::runtime_error when the context is invalid.
    void Open()
    {
        const std::lock_guard changes(changeMutex_);
        if (token_) {
            return;
        }
        {
            const std::lock_guard lock(stateMutex_);
            trackingCount_ = 0;
        }
        token_ = context_.AddServiceListener([this](const ServiceEvent& event) { serviceChanged(event); }, filter_);
        for (const auto& reference : context_.GetServiceReferences(detail::interfaceName<S>(), filter_)) {
            if (reference.GetBundle()) { // still registered
                track(ServiceReference<S>(reference));
            }
        }
    }

    // Stops tracking; RemovedService is called for each tracked service.
    void Close()
    {
        const std::lock_guard changes(changeMutex_);
        if (!token_) {
            return;
        }
        if (context_) {
            context_.RemoveListener(std::move(token_));
        }
        token_ = ListenerToken();
        TrackingMap removed;
        {
            const std::lock_guard lock(stateMutex_);
            removed.swap(tracked_);
            trackingCount_ = -1;
            publishLocked();
        }
        // Not a structured binding: clang before 16 cannot capture one in a lambda.
        for (const auto& entry : removed) {
            detail::callReporting([&] { customizer_->RemovedService(entry.first, entry.second); }, customizerName);
        }
    }

    // The best tracked service (highest service.ranking, then lowest service.id); null
    // when none is tracked. It refreshes this thread's slot as BorrowService does.
    std::shared_ptr<T> GetService() const
    {
        T* service = BorrowService();
        return service != nullptr ? std::shared_ptr<T>(detail::borrowSlots()[borrowSlot_].keep, service) : nullptr;
    }

    // The best tracked service, lent to the calling thread without a reference of the
    // caller's own; null when none is tracked. The pointer stays valid until the same thread
    // borrows from this tracker again (BorrowService or GetService), or ends: the thread's
    // slot keeps the service alive meanwhile, even when it is unregistered. So a caller may
    // use it for the duration of a call, but must not keep it across a second borrow from
    // this tracker on its thread; to keep a service longer, take GetService(). A service
    // that goes away may live on in the slots of threads that borrowed it until they borrow
    // again or end.
    T* BorrowService() const
    {
        const std::uint64_t stamp = stamp_.load(std::memory_order_acquire);
        const auto& slots = detail::borrowSlots();
        if (borrowSlot_ < slots.size() && slots[borrowSlot_].stamp == stamp) [[likely]] {
            return static_cast<T*>(const_cast<void*>(slots[borrowSlot_].service));
        }
        return lend();
    }

    std::shared_ptr<T> GetService(const ServiceReference<S>& reference) const
    {
        const std::lock_guard lock(stateMutex_);
        const auto found = tracked_.find(reference);
        return found != tracked_.end() ? found->second : nullptr;
    }

    // Best first.
    std::vector<std::shared_ptr<T>> GetServices() const
    {
        std::vector<std::shared_ptr<T>> services;
        for (const auto& entry : bestFirst()) {
            services.push_back(entry.second);
        }
        return services;
    }

    // The best tracked reference; an invalid one when none is tracked.
    ServiceReference<S> GetServiceReference() const
    {
        const std::lock_guard lock(stateMutex_);
        return best_ != nullptr ? best_->reference : ServiceReference<S>();
    }

    // Best first.
    std::vector<ServiceReference<S>> GetServiceReferences() const
    {
        std::vector<ServiceReference<S>> references;
        for (const auto& entry : bestFirst()) {
            references.push_back(entry.first);
        }
        return references;
    }

    void GetTracked(TrackingMap& map) const
    {
        const std::lock_guard lock(stateMutex_);
        map.insert(tracked_.begin(), tracked_.end());
    }

    // Waits until a service is tracked, at most timeout (zero: without limit), and
    // returns the best one, or null. A negative timeout throws std::invalid_argument.
    template <class Rep, class Period>
    std::shared_ptr<T> WaitForService(const std::chrono::duration<Rep, Period>& timeout)
    {
        if (timeout.count() < 0) {
            throw std::invalid_argument("WaitForService: the timeout must not be negative");
        }
        std::unique_lock lock(stateMutex_);
        const auto tracking = [this] { return !tracked_.empty(); };
        if (timeout.count() == 0) {
            changed_.wait(lock, tracking);
        } else {
            changed_.wait_for(lock, timeout, tracking);
        }
        lock.unlock();
        return GetService();
    }

    // Grows by one at each service added, modified or removed; -1 while closed.
    int GetTrackingCount() const
    {
        const std::lock_guard lock(stateMutex_);
        return trackingCount_;
    }

    std::size_t Size() const
    {
        const std::lock_guard lock(stateMutex_);
        return tracked_.size();
    }

    bool IsEmpty() const { return Size() == 0; }

    // Stops tracking one service, as if it had gone.
    void Remove(const ServiceReference<S>& reference)
    {
        const std::lock_guard changes(changeMutex_);
        untrack(reference);
    }

protected:
    std::shared_ptr<T> AddingService(const ServiceReference<S>& reference) override
    {
        return std::static_pointer_cast<T>(context_.GetService(reference));
    }
    void ModifiedService(const ServiceReference<S>&, const std::shared_ptr<T>&) override {}
    void RemovedService(const ServiceReference<S>&, const std::shared_ptr<T>&) override {}

private:
    struct Best {
        ServiceReference<S> reference;
        std::shared_ptr<T> service;
    };

    ServiceTracker(const BundleContext& context, std::string filter, ServiceTrackerCustomizer<S, T>* customizer)
        : context_(context), filter_(std::move(filter)), customizer_(customizer != nullptr ? customizer : this)
    {
    }

    // Fills this thread's slot with the published snapshot and its stamp, read together.
    T* lend() const
    {
        auto& slots = detail::borrowSlots();
        if (borrowSlot_ >= slots.size()) {
            slots.resize(borrowSlot_ + 1);
        }
        detail::BorrowSlot filled;
        {
            const std::lock_guard lock(stateMutex_);
            filled.stamp = stamp_.load(std::memory_order_relaxed);
            filled.service = best_ != nullptr ? best_->service.get() : nullptr;
            filled.keep = best_;
        }
        // The slot's earlier snapshot may be the last reference to a service: it goes here,
        // outside the lock.
        std::swap(slots[borrowSlot_], filled);
        return static_cast<T*>(const_cast<void*>(slots[borrowSlot_].service));
    }

    std::vector<std::pair<ServiceReference<S>, std::shared_ptr<T>>> bestFirst() const
    {
        std::vector<std::pair<ServiceReference<S>, std::shared_ptr<T>>> entries;
        {
            const std::lock_guard lock(stateMutex_);
            entries.assign(tracked_.begin(), tracked_.end());
        }
        std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return b.first < a.first; });
        return entries;
    }

    static std::string customizerName() { return "service tracker customizer"; }

    static LDAPPropExpr interfaceExpression()
    {
        return LDAPProp(Constants::OBJECTCLASS) == detail::interfaceName<S>();
    }

    void serviceChanged(const ServiceEvent& event)
    {
        const std::lock_guard changes(changeMutex_);
        if (!token_) {
            return;
        }
        const ServiceReference<S> reference = event.GetServiceReference<S>();
        switch (event.GetType()) {
        case ServiceEvent::SERVICE_REGISTERED:
        case ServiceEvent::SERVICE_MODIFIED:
            track(reference);
            break;
        case ServiceEvent::SERVICE_MODIFIED_ENDMATCH:
        case ServiceEvent::SERVICE_UNREGISTERING:
            untrack(reference);
            break;
        }
    }

    // Under changeMutex_.
    void track(const ServiceReference<S>& reference)
    {
        std::shared_ptr<T> service = GetService(reference);
        if (service) {
            detail::callReporting([&] { customizer_->ModifiedService(reference, service); }, customizerName);
        } else {
            detail::callReporting([&] { service = customizer_->AddingService(reference); }, customizerName);
            if (!service) { // declined, or the customizer threw
                return;
            }
        }
        {
            const std::lock_guard lock(stateMutex_);
            tracked_.insert_or_assign(reference, service);
            ++trackingCount_;
            publishLocked();
        }
        changed_.notify_all();
    }

    // Under changeMutex_.
    void untrack(const ServiceReference<S>& reference)
    {
        std::shared_ptr<T> service;
        {
            const std::lock_guard lock(stateMutex_);
            const auto found = tracked_.find(reference);
            if (found == tracked_.end()) {
                return;
            }
            service = found->second;
            tracked_.erase(found);
            ++trackingCount_;
            publishLocked();
        }
        detail::callReporting([&] { customizer_->RemovedService(reference, service); }, customizerName);
    }

    // Publishes the best entry and a new stamp for borrowers; under stateMutex_.
    void publishLocked()
    {
        std::shared_ptr<const Best> next;
        if (!tracked_.empty()) {
            const auto& [reference, service] = *std::max_element(
                tracked_.begin(), tracked_.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
            next = std::make_shared<const Best>(Best{reference, service});
        }
        best_ = std::move(next);
        stamp_.store(detail::nextBorrowStamp(), std::memory_order_release);
    }

    BundleContext context_;
    const std::string filter_;
    ServiceTrackerCustomizer<S, T>* const customizer_;

    std::recursive_mutex changeMutex_; // a customizer may call back into its tracker
    ListenerToken token_;

    mutable std::mutex stateMutex_;
    std::condition_variable changed_;
    TrackingMap tracked_;
    int trackingCount_ = -1;
    std::shared_ptr<const Best> best_;
    // Names the snapshot in best_; changed with it, under stateMutex_.
    std::atomic<std::uint64_t> stamp_{0};
    const std::size_t borrowSlot_ = detail::acquireBorrowSlot();
};

} // namespace cppmicroservices
