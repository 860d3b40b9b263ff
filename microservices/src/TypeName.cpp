#include "cppmicroservices/detail/TypeName.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>

namespace cppmicroservices::detail {

std::string demangle(const char* mangledName)
{
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> demangled(
        abi::__cxa_demangle(mangledName, nullptr, nullptr, &status), &std::free);
    return status == 0 && demangled ? std::string(demangled.get()) : std::string(mangledName);
}

std::string demangledName(const std::type_info& type)
{
    return demangle(type.name());
}

} // namespace cppmicroservices::detail
