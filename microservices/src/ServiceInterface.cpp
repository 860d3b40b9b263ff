#include "cppmicroservices/ServiceInterface.h"

#include "ServiceRecord.h"

namespace cppmicroservices {

namespace detail {

std::shared_ptr<void> interfaceIn(const InterfaceMap& map, std::string_view interfaceId)
{
    interfaceId = withoutGlobalScope(interfaceId);
    for (const auto& [name, object] : map) {
        if (withoutGlobalScope(name) == interfaceId) {
            return object;
        }
    }
    return nullptr;
}

} // namespace detail

std::shared_ptr<void> ExtractInterface(const InterfaceMapConstPtr& map, const std::string& interfaceId)
{
    return map ? detail::interfaceIn(*map, interfaceId) : nullptr;
}

} // namespace cppmicroservices
