#include <foundation/core/demangle.hpp>

#include <cstdlib>
#include <cxxabi.h>
#include <memory>

namespace foundation::core {

std::string demangle_typeid_name(const char* name) {
    if (name == nullptr) return {};
    if (*name == '*') ++name;
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> demangled(
        abi::__cxa_demangle(name, nullptr, nullptr, &status), &std::free);
    return status == 0 && demangled ? std::string(demangled.get()) : std::string(name);
}

} // namespace foundation::core
