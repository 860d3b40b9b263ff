#include "PropertyKeys.h"

#include "cppmicroservices/AnyMap.h"

#include <mutex>
#include <string>
#include <unordered_map>

namespace cppmicroservices::detail {

namespace {

class KeyTable {
public:
    std::uint32_t intern(std::string_view key)
    {
        const std::lock_guard lock(mutex_);
        const auto [position, inserted] = ids_.try_emplace(std::string(key), static_cast<std::uint32_t>(ids_.size()));
        return position->second;
    }

    std::optional<std::uint32_t> find(std::string_view key) const
    {
        const std::lock_guard lock(mutex_);
        const auto position = ids_.find(std::string(key));
        return position != ids_.end() ? std::optional(position->second) : std::nullopt;
    }

private:
    mutable std::mutex mutex_;
    std::unordered_map<std::string, std::uint32_t, any_map_cihash, any_map_ciequal> ids_;
};

// Never destroyed, so that filters and registrations met during exit still find it.
KeyTable& keyTable()
{
    static auto* const table = new KeyTable();
    return *table;
}

} // namespace

std::uint32_t internPropertyKey(std::string_view key)
{
    return keyTable().intern(key);
}

std::optional<std::uint32_t> knownPropertyKey(std::string_view key)
{
    return keyTable().find(key);
}

} // namespace cppmicroservices::detail
