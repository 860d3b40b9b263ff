#include <ocos/MethodCall.hpp>

#include <stdexcept>
#include <string>

namespace ocos {

void callMethod(const COSClass& cls, std::string_view name, int nlhs, oxArray** plhs, int nrhs, oxArray** prhs) {
    const auto describe = [&] { return "the method '" + std::string(name) + "' of class '" + cls.getName() + "'"; };
    const std::optional<COSMethod> method = cls.findMethod(name);
    if (!method) {
        throw std::invalid_argument("class '" + cls.getName() + "' has no method '" + std::string(name) + "'");
    }
    if (method->access.level != AccessLevel::PUBLIC) {
        throw std::invalid_argument(describe() + " is not public");
    }
    if (!method->isStatic && (nrhs < 1 || prhs[0] == nullptr || matrix::getClassID(prhs[0]) != cls.getId())) {
        throw std::invalid_argument(describe() + " must be called with an object of the class first");
    }
    Ofh_ORVEX_fn* const code = cls.findOfh(method->implementation);
    if (code == nullptr) {
        throw std::invalid_argument(describe() + " has no code under '" + method->implementation + "'");
    }
    code(nlhs, plhs, nrhs, prhs);
}

} // namespace ocos
