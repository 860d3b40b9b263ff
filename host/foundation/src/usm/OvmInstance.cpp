#include <foundation/usm/usm.hpp>

#include <atomic>

namespace foundation::usm {

template <class Scope>
std::size_t Detail<Scope>::getNextID() {
    static std::atomic<std::size_t> next{0};
    return next.fetch_add(1, std::memory_order_relaxed);
}
template struct Detail<scope::Ovm>;

namespace detail {
[[gnu::tls_model("initial-exec")]] constinit thread_local OvmInstance* currentInstance = nullptr;
} // namespace detail

OvmInstance::OvmInstance() : serial_([] {
    static std::atomic<std::uint64_t> next{1};
    return next.fetch_add(1, std::memory_order_relaxed);
}()) {}

OvmInstance::~OvmInstance() = default;

void* OvmInstance::findErased(std::size_t id, std::type_index type) const {
    std::lock_guard lock(mutex_);
    const auto found = objects_.find(Key{id, type});
    return found != objects_.end() ? found->second.get() : nullptr;
}

void* OvmInstance::insertErased(std::size_t id, std::type_index type, ErasedObject object) {
    std::lock_guard lock(mutex_);
    return objects_.try_emplace(Key{id, type}, std::move(object)).first->second.get();
}

CurrentOvm::CurrentOvm(OvmInstance& instance) noexcept : previous_(detail::currentInstance) {
    detail::currentInstance = &instance;
}

CurrentOvm::~CurrentOvm() { detail::currentInstance = previous_; }

namespace detail {

std::string missingObjectText(const std::type_info& type, std::size_t id) {
    return "foundation::usm: no object of type " + core::demangle_typeid_name(type.name()) +
           " under id " + std::to_string(id);
}

void throwNoStorage(const std::type_info& type, std::size_t id) {
    throw NoStorageTypeError("foundation::usm: no OVM instance is current on this thread to hold " +
                             core::demangle_typeid_name(type.name()) + " under id " + std::to_string(id));
}

void throwDoesNotExist(const std::type_info& type, std::size_t id) {
    throw DoesNotExistTypeError(missingObjectText(type, id));
}

} // namespace detail
} // namespace foundation::usm
