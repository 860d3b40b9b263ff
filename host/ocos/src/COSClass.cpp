#include <ocos/COSClass.hpp>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace ocos {

COSClass::COSClass(std::string name, oxClassID id) : name_(std::move(name)), id_(id) {}

void COSClass::addMethod(COSMethod method) {
    if (method.name.empty()) {
        throw std::invalid_argument("ocos::COSClass::addMethod: class '" + name_ + "' cannot take a method without a name");
    }
    const std::lock_guard lock(mutex_);
    const auto existing = std::find_if(methods_.begin(), methods_.end(),
                                       [&](const COSMethod& m) { return m.name == method.name; });
    if (existing != methods_.end()) {
        *existing = std::move(method);
    } else {
        methods_.push_back(std::move(method));
    }
}

std::optional<COSMethod> COSClass::findMethod(std::string_view name) const {
    const std::lock_guard lock(mutex_);
    const auto found = std::find_if(methods_.begin(), methods_.end(),
                                    [&](const COSMethod& m) { return m.name == name; });
    if (found == methods_.end()) {
        return std::nullopt;
    }
    return *found;
}

std::vector<COSMethod> COSClass::getMethods() const {
    const std::lock_guard lock(mutex_);
    return methods_;
}

} // namespace ocos
