// Service interface names and the map from interface names to one service object's
// interfaces.
#pragma once

#include "cppmicroservices/detail/TypeName.h"

#include <map>
#include <memory>
#include <string>
#include <type_traits>

namespace cppmicroservices {

// The name a service interface is registered and looked up under: its demangled C++ name
// unless specialised. Stable across libraries, since it depends only on the type.
template <class T>
std::string us_service_interface_iid()
{
    return detail::demangledName(typeid(T));
}

} // namespace cppmicroservices

// Gives the interface Type the name Id (a string literal) in place of its C++ name, so
// that libraries agree on it whatever their compilers call the type. At global scope.
#define CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(Type, Id)                                                        \
    template <>                                                                                                     \
    inline std::string cppmicroservices::us_service_interface_iid<Type>()                                          \
    {                                                                                                               \
        return Id;                                                                                                  \
    }

namespace cppmicroservices {

namespace detail {

// The interface name of T, computed once per process and library.
template <class T>
const std::string& interfaceName()
{
    static const std::string name = us_service_interface_iid<T>();
    return name;
}

} // namespace detail

// Interface name -> the service object seen through that interface.
using InterfaceMap = std::map<std::string, std::shared_ptr<void>>;
using InterfaceMapPtr = std::shared_ptr<InterfaceMap>;
using InterfaceMapConstPtr = std::shared_ptr<const InterfaceMap>;

template <class... Interfaces, class Impl>
InterfaceMapPtr MakeInterfaceMap(const std::shared_ptr<Impl>& impl)
{
    static_assert(sizeof...(Interfaces) > 0, "name at least one interface");
    static_assert((std::is_convertible_v<Impl*, Interfaces*> && ...),
                  "the implementation must derive from every interface it is registered under");
    auto map = std::make_shared<InterfaceMap>();
    (map->insert_or_assign(detail::interfaceName<Interfaces>(), std::static_pointer_cast<Interfaces>(impl)), ...);
    return map;
}

// The service object registered under interfaceId, or null.
std::shared_ptr<void> ExtractInterface(const InterfaceMapConstPtr& map, const std::string& interfaceId);

template <class Interface>
std::shared_ptr<Interface> ExtractInterface(const InterfaceMapConstPtr& map)
{
    return std::static_pointer_cast<Interface>(ExtractInterface(map, detail::interfaceName<Interface>()));
}

} // namespace cppmicroservices
