#include <ocos/SpecialMethods.hpp>

namespace ocos {

std::string constructorName(std::string_view className) {
    const std::size_t dot = className.rfind('.');
    return std::string(dot == std::string_view::npos ? className : className.substr(dot + 1));
}

std::optional<COSMethod> findSpecialMethod(const COSClass& cls, std::string_view name, bool isStatic) {
    std::optional<COSMethod> method = cls.findMethod(name);
    if (!method || method->isStatic != isStatic || method->access.level != AccessLevel::PUBLIC) {
        return std::nullopt;
    }
    return method;
}

} // namespace ocos
