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
        if (existing->isSealed) {
            throw std::logic_error("ocos::COSClass::addMethod: the method '" + method.name + "' of class '" + name_ +
                                   "' is sealed and cannot be replaced");
        }
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

void COSClass::setOfhFinder(OfhFinder finder) {
    const std::lock_guard lock(mutex_);
    finder_ = std::move(finder);
}

Ofh_ORVEX_fn* COSClass::findOfh(const std::string& implementation) const {
    OfhFinder finder;
    {
        const std::lock_guard lock(mutex_);
        finder = finder_;
    }
    // Called unlocked: a finder may itself look at this class.
    return finder ? finder(name_, implementation) : nullptr;
}

} // namespace ocos
