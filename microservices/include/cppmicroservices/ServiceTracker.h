// Follows the services of one interface (or those matching a filter) as they come, change
// and go, and keeps the best one at hand. Changes are handled one at a time per tracker,
// on the thread that made them, and the customizer runs under no lock of the framework;
// what it throws is reported on the log channel "cppmicroservices::listeners" (a throwing
// AddingService declines the service) and tracking goes on.
// The best service is published as a snapshot with a stamp. BorrowService, for call paths,
// lends it through a slot of the calling thread: while the stamp is the slot's, that is two
// loads and a compare, with no lock and no reference taken; the first borrow after a change
// refills the slot under the tracker's lock. GetService copies a reference out of the slot.
// WaitForService ends when a service comes, the timeout passes, the tracker closes or goes,
// or its bundle context ends; the destructor returns only once no thread is inside.
#pragma once

#include "cppmicroservices/Bundle.h"
#include "cppmicroservices/BundleContext.h"
#include "cppmicroservices/BundleEvent.h"
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
#include <type_traits>
#include <vector>

namespace cppmicroservices {

namespace detail {

// Counts the threads inside a tracker (waiting for a service, or hearing an event for it),
// so that its destructor returns only once the last one has left. Shared with the
// tracker's listeners, which the framework may still call while the tracker goes: once
// closed, the gate lets nobody in.
class TrackerGate {
public:
    // False once closed: the caller must not touch the tracker.
    bool enter()
    {
        const std::lock_guard lock(mutex_);
        if (closed_) {
            return false;
        }
        ++inside_;
        return true;
    }

    void leave()
    {
        const std::lock_guard lock(mutex_);
        if (--inside_ == 0) {
            left_.notify_all();
        }
    }

    // Lets nobody in from now on and waits until everyone inside has left.
    void close()
    {
        std::unique_lock lock(mutex_);
        closed_ = true;
        left_.wait(lock, [this] { return inside_ == 0; });
    }

    // Leaves the gate when it goes; holds the gate itself, not the tracker.
    class Visit {
    public:
        explicit Visit(std::shared_ptr<TrackerGate> gate) : gate_(std::move(gate)), entered_(gate_->enter()) {}
        ~Visit()
        {
            if (entered_) {
                gate_->leave();
            }
        }
        Visit(const Visit&) = delete;
        Visit& operator=(const Visit&) = delete;
        explicit operator bool() const { return entered_; }

    private:
        const std::shared_ptr<TrackerGate> gate_;
        const bool entered_;
    };

private:
    std::mutex mutex_;
    std::condition_variable left_;
    long inside_ = 0;
    bool closed_ = false;
};

} // namespace detail

// S void: a ServiceTracker<void> follows the services that match its filter, whatever
// their interfaces, and keeps each one's interface map (TrackedParamType const InterfaceMap).
template <class S, class T = S>
class ServiceTracker : protected ServiceTrackerCustomizer<S, T> {
public:
    // The type of the tracked objects, as in CppMicroServices: T, or const InterfaceMap for
    // ServiceTracker<void>.
    using TrackedParamType = typename ServiceTrackerCustomizer<S, T>::TrackedParmType;
    using TrackingMap = std::unordered_map<ServiceReference<S>, std::shared_ptr<TrackedParamType>>;

    // Tracks the services registered under S. Without a customizer, the tracker's own
    // (which gets the service object) is used.
    explicit ServiceTracker(const BundleContext& context, ServiceTrackerCustomizer<S, T>* customizer = nullptr)
        requires(!std::is_void_v<S>)
        : ServiceTracker(context, std::string(interfaceExpression()), customizer)
    {
    }

    // Tracks the services registered under S that match the filter; for S void, every
    // service that matches it.
    ServiceTracker(const BundleContext& context, const LDAPFilter& filter,
                   ServiceTrackerCustomizer<S, T>* customizer = nullptr)
        : ServiceTracker(context, filterText(filter), customizer)
    {
    }

    // Closes the tracker, which wakes every thread waiting in WaitForService, and returns
    // once no thread is inside the tracker any more (waiting, or handling an event for it).
    // So it must not be called from the tracker's own customizer.
    ~ServiceTracker() override
    {
        try {
            Close();
        } catch (const std::exception&) {
            // The framework went first; its services are gone with it.
        }
        gate_->close();
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
        try {
            // First the end of the context, so that no stop passes unseen between the
            // listener and the look at the states.
            const long ownBundle = context_.GetBundle().GetBundleId();
            endToken_ = context_.AddBundleListener(
                [this, gate = gate_, ownBundle](const BundleEvent& event) {
                    if (event.GetType() == BundleEvent::BUNDLE_STOPPING) {
                        const long stopping = event.GetBundle().GetBundleId();
                        if (stopping == ownBundle || stopping == 0) { // the framework stops every bundle
                            if (const detail::TrackerGate::Visit visit(gate); visit) {
                                contextEnding();
                            }
                        }
                    }
                });
            if (contextEndingNow()) {
                contextEnding();
            }
            {
                const std::lock_guard lock(stateMutex_);
                trackingCount_ = 0;
            }
            token_ = context_.AddServiceListener(
                [this, gate = gate_](const ServiceEvent& event) {
                    if (const detail::TrackerGate::Visit visit(gate); visit) {
                        serviceChanged(event);
                    }
                },
                filter_);
            for (const auto& reference : context_.GetServiceReferences(interfaceId(), filter_)) {
                if (reference.GetBundle()) { // still registered
                    track(ServiceReference<S>(reference));
                }
            }
        } catch (...) {
            removeListeners();
            const std::lock_guard lock(stateMutex_);
            trackingCount_ = -1;
            throw;
        }
    }

    // Stops tracking; RemovedService is called for each tracked service, and every thread
    // waiting in WaitForService returns null.
    void Close()
    {
        const std::lock_guard changes(changeMutex_);
        if (!token_) {
            return;
        }
        removeListeners();
        TrackingMap removed;
        {
            const std::lock_guard lock(stateMutex_);
            removed.swap(tracked_);
            trackingCount_ = -1;
            ++closes_;
            publishLocked();
        }
        changed_.notify_all();
        // Not a structured binding: clang before 16 cannot capture one in a lambda.
        for (const auto& entry : removed) {
            detail::callReporting([&] { customizer_->RemovedService(entry.first, entry.second); }, customizerName);
        }
    }

    // The best tracked service (highest service.ranking, then lowest service.id); null
    // when none is tracked. It refreshes this thread's slot as BorrowService does.
    std::shared_ptr<TrackedParamType> GetService() const
    {
        const detail::BorrowSlot& slot = currentSlot();
        return slot.service != nullptr ? std::shared_ptr<TrackedParamType>(slot.keep, lent(slot)) : nullptr;
    }

    // The best tracked service, lent to the calling thread without a reference of the
    // caller's own; null when none is tracked. The pointer stays valid until the same thread
    // borrows from this tracker again (BorrowService or GetService), the tracker is
    // destroyed, or the thread ends: the thread's slot keeps the service alive meanwhile,
    // even when it is unregistered or the tracker closed. So a caller may use it for the
    // duration of a call, but must not keep it across a second borrow from this tracker on
    // its thread, nor past the tracker's life; to keep a service longer, take GetService().
    // A service that goes away may live on in the slots of threads that borrowed it until
    // they borrow again or end. A borrow made after the thread's slots are gone (from a
    // thread_local destructor, or a static destructor on the main thread) keeps its service
    // until the process exits.
    TrackedParamType* BorrowService() const { return lent(currentSlot()); }

    std::shared_ptr<TrackedParamType> GetService(const ServiceReference<S>& reference) const
    {
        const std::lock_guard lock(stateMutex_);
        const auto found = tracked_.find(reference);
        return found != tracked_.end() ? found->second : nullptr;
    }

    // Best first.
    std::vector<std::shared_ptr<TrackedParamType>> GetServices() const
    {
        std::vector<std::shared_ptr<TrackedParamType>> services;
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
    // returns the best one; null after the timeout, at once when the tracker is not open,
    // and when it closes or is destroyed meanwhile. A negative timeout throws
    // std::invalid_argument. When no service is tracked and the tracker's bundle context is
    // no longer valid, or is ending (its bundle, or the framework, stopping), it throws
    // std::logic_error rather than wait for a service that cannot come, as CppMicroServices.
    template <class Rep, class Period>
    std::shared_ptr<TrackedParamType> WaitForService(const std::chrono::duration<Rep, Period>& timeout)
    {
        if (timeout.count() < 0) {
            throw std::invalid_argument("WaitForService: the timeout must not be negative");
        }
        const detail::TrackerGate::Visit visit(gate_);
        if (!visit) {
            return nullptr; // being destroyed
        }
        std::unique_lock lock(stateMutex_);
        if (tracked_.empty()) {
            if (trackingCount_ < 0) {
                return nullptr;
            }
            if (contextEndingNow()) {
                ending_ = true; // also when its stop began before the tracker heard of it
            }
            const std::uint64_t closes = closes_;
            const auto ready = [this, closes] { return !tracked_.empty() || closes_ != closes || ending_; };
            if (timeout.count() == 0) {
                changed_.wait(lock, ready);
            } else {
                changed_.wait_for(lock, timeout, ready);
            }
            if (tracked_.empty()) {
                if (ending_ && closes_ == closes) {
                    throw std::logic_error("WaitForService: the bundle context of the tracker is no longer valid");
                }
                return nullptr;
            }
        }
        return best_->service;
    }

    std::shared_ptr<TrackedParamType> WaitForService() { return WaitForService(std::chrono::milliseconds::zero()); }

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
    std::shared_ptr<TrackedParamType> AddingService(const ServiceReference<S>& reference) override
    {
        if constexpr (std::is_void_v<S>) {
            return context_.GetService(reference);
        } else {
            return std::static_pointer_cast<TrackedParamType>(context_.GetService(reference));
        }
    }
    void ModifiedService(const ServiceReference<S>&, const std::shared_ptr<TrackedParamType>&) override {}
    void RemovedService(const ServiceReference<S>&, const std::shared_ptr<TrackedParamType>&) override {}

private:
    struct Best {
        ServiceReference<S> reference;
        std::shared_ptr<TrackedParamType> service;
    };

    ServiceTracker(const BundleContext& context, std::string filter, ServiceTrackerCustomizer<S, T>* customizer)
        : context_(context), filter_(std::move(filter)), customizer_(customizer != nullptr ? customizer : this)
    {
    }

    // The interface looked up when opening: none for S void.
    static const std::string& interfaceId()
    {
        if constexpr (std::is_void_v<S>) {
            static const std::string none;
            return none;
        } else {
            return detail::interfaceName<S>();
        }
    }

    static std::string filterText(const LDAPFilter& filter)
    {
        if constexpr (std::is_void_v<S>) {
            return filter.ToString();
        } else {
            return interfaceExpression() && LDAPPropExpr(filter.ToString());
        }
    }

    static TrackedParamType* lent(const detail::BorrowSlot& slot)
    {
        return static_cast<TrackedParamType*>(const_cast<void*>(slot.service));
    }

    // This thread's slot, refilled first when the tracker published since it was filled.
    const detail::BorrowSlot& currentSlot() const
    {
        const std::uint64_t stamp = stamp_.load(std::memory_order_acquire);
        const detail::BorrowSlot* slot = detail::findBorrowSlot(borrowSlot_);
        if (slot != nullptr && slot->stamp == stamp) [[likely]] {
            return *slot;
        }
        return lend();
    }

    // Fills this thread's slot with the published snapshot and its stamp, read together.
    const detail::BorrowSlot& lend() const
    {
        detail::BorrowSlot filled;
        {
            const std::lock_guard lock(stateMutex_);
            filled.stamp = stamp_.load(std::memory_order_relaxed);
            filled.service = best_ != nullptr ? best_->service.get() : nullptr;
            filled.keep = best_;
        }
        // The slot's earlier snapshot may be the last reference to a service: it goes
        // there, outside the lock.
        return detail::storeBorrowSlot(borrowSlot_, std::move(filled));
    }

    // Under changeMutex_. The context may be gone already.
    void removeListeners()
    {
        try {
            if (context_) {
                context_.RemoveListener(std::move(token_));
                context_.RemoveListener(std::move(endToken_));
            }
        } catch (const std::runtime_error&) {
            // It went meanwhile, and its listeners with it.
        }
        token_ = ListenerToken();
        endToken_ = ListenerToken();
    }

    // Whether the context is no longer valid, or its bundle or the framework is stopping.
    // Takes only leaf locks of the framework.
    bool contextEndingNow() const
    {
        try {
            return !context_ || context_.GetBundle().GetState() == Bundle::STATE_STOPPING ||
                   context_.GetBundle(0).GetState() == Bundle::STATE_STOPPING;
        } catch (const std::exception&) {
            return true; // it went meanwhile
        }
    }

    // The tracker's bundle, or the framework, stops: its context is about to end, so
    // waiting for a service would wait for good.
    void contextEnding()
    {
        {
            const std::lock_guard lock(stateMutex_);
            ending_ = true;
        }
        changed_.notify_all();
    }

    std::vector<std::pair<ServiceReference<S>, std::shared_ptr<TrackedParamType>>> bestFirst() const
    {
        std::vector<std::pair<ServiceReference<S>, std::shared_ptr<TrackedParamType>>> entries;
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
        std::shared_ptr<TrackedParamType> service = GetService(reference);
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
        std::shared_ptr<TrackedParamType> service;
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
    ListenerToken token_;    // service events; set while open
    ListenerToken endToken_; // the bundle events that end the context

    mutable std::mutex stateMutex_;
    std::condition_variable changed_;
    TrackingMap tracked_;
    int trackingCount_ = -1;
    std::uint64_t closes_ = 0; // how often it closed, which ends the waits begun before
    bool ending_ = false;      // the context has ended, or its bundle or the framework stops
    std::shared_ptr<const Best> best_;
    // Names the snapshot in best_; changed with it, under stateMutex_.
    std::atomic<std::uint64_t> stamp_{0};
    const std::size_t borrowSlot_ = detail::acquireBorrowSlot();
    const std::shared_ptr<detail::TrackerGate> gate_ = std::make_shared<detail::TrackerGate>();
};

} // namespace cppmicroservices
