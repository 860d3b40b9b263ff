// Per-language-instance storage: objects that belong to one language virtual-machine
// instance (OVM) rather than to a thread or to the process. Each object is keyed by an
// id, taken once per process from Detail<Scope>::getNextID(), and by its C++ type.
// The functions below act on the instance made current on the calling thread by a
// CurrentOvm guard.
#pragma once

#include <foundation/core/demangle.hpp>
#include <foundation/core/SourceLocation.hpp>
#include <foundation/core/diag/terminate.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <typeindex>
#include <typeinfo>
#include <utility>

namespace foundation::usm {

namespace scope {
struct Ovm; // one language virtual-machine instance
} // namespace scope

template <class Scope>
struct Detail {
    // Process-wide counter of the scope: each call returns a new id.
    static std::size_t getNextID();
};
extern template struct Detail<scope::Ovm>;

class OvmInstance;

namespace detail {
// The instance made current on this thread. Initial-exec: read on every checked builtin
// call, so one load rather than a call into this library.
[[gnu::tls_model("initial-exec")]] extern constinit thread_local OvmInstance* currentInstance;
} // namespace detail

class TypeError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};
// The instance holds no object of the requested type under the id yet.
class DoesNotExistTypeError : public TypeError {
public:
    using TypeError::TypeError;
};
// There is no storage to look in: no instance is current on this thread.
class NoStorageTypeError : public TypeError {
public:
    using TypeError::TypeError;
};

// The storage of one instance. Lookups and insertions are thread-safe; the objects
// themselves are as thread-safe as their own types.
class OvmInstance {
public:
    OvmInstance();
    ~OvmInstance();
    OvmInstance(const OvmInstance&) = delete;
    OvmInstance& operator=(const OvmInstance&) = delete;

    template <class T>
    T* find(std::size_t id) const {
        return static_cast<T*>(findErased(id, typeid(T)));
    }

    // Stores the object unless one of that type is already under the id, and returns the
    // stored one: two threads racing to create the same object end up sharing one.
    template <class T>
    T& insert(std::size_t id, std::unique_ptr<T> object) {
        if (!object) throw std::invalid_argument("foundation::usm::insert: null object");
        ErasedObject erased(object.get(), [](void* stored) { delete static_cast<T*>(stored); });
        object.release();
        return *static_cast<T*>(insertErased(id, typeid(T), std::move(erased)));
    }

    // The instance made current on this thread, or null.
    static OvmInstance* current() noexcept { return detail::currentInstance; }

    // A number no other instance of the process has had or will have, so that callers
    // may remember what they found in an instance without holding on to its address.
    std::uint64_t serial() const noexcept { return serial_; }

private:
    using ErasedObject = std::unique_ptr<void, void (*)(void*)>;
    using Key = std::pair<std::size_t, std::type_index>;

    void* findErased(std::size_t id, std::type_index type) const;
    void* insertErased(std::size_t id, std::type_index type, ErasedObject object);

    const std::uint64_t serial_;
    mutable std::mutex mutex_;
    std::map<Key, ErasedObject> objects_;
};

// Makes an instance current on this thread for the guard's lifetime. Guards nest; each
// restores the instance that was current before it.
class CurrentOvm {
public:
    explicit CurrentOvm(OvmInstance& instance) noexcept;
    ~CurrentOvm();
    CurrentOvm(const CurrentOvm&) = delete;
    CurrentOvm& operator=(const CurrentOvm&) = delete;

private:
    OvmInstance* previous_;
};

namespace detail {
[[noreturn]] void throwNoStorage(const std::type_info& type, std::size_t id);
[[noreturn]] void throwDoesNotExist(const std::type_info& type, std::size_t id);
std::string missingObjectText(const std::type_info& type, std::size_t id);
} // namespace detail

// The object, or null when no instance is current or it holds no such object.
template <class T>
T* find(std::size_t id) {
    const OvmInstance* instance = OvmInstance::current();
    return instance != nullptr ? instance->find<T>(id) : nullptr;
}

template <class T>
T& findOrThrow(std::size_t id) {
    const OvmInstance* instance = OvmInstance::current();
    if (instance == nullptr) detail::throwNoStorage(typeid(T), id);
    T* object = instance->find<T>(id);
    if (object == nullptr) detail::throwDoesNotExist(typeid(T), id);
    return *object;
}

// For objects whose presence is an invariant of the caller: a missing one is a defect
// and ends the process, reported at the caller's location.
template <class T>
T& findOrFail(std::size_t id, core::SourceLocation where = core::SourceLocation::current()) {
    T* object = find<T>(id);
    if (object == nullptr) {
        core::diag::terminate(detail::missingObjectText(typeid(T), id), where.file_name(),
                              static_cast<int>(where.line()), where.function_name());
    }
    return *object;
}

template <class T>
T& insert(std::size_t id, std::unique_ptr<T> object) {
    OvmInstance* instance = OvmInstance::current();
    if (instance == nullptr) detail::throwNoStorage(typeid(T), id);
    return instance->insert<T>(id, std::move(object));
}

} // namespace foundation::usm
