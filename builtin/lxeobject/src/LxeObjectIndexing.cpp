#include <builtin/lxeobject/LxeObjectIndexing.hpp>
#include <builtin/lxeobject/LxeObjectRegistry.hpp>

#include <builtin/services/ServiceHandles.hpp>

#include <foundation/log/Channel.hpp>

#include <utility>

namespace Velloc::builtin {

namespace {

const foundation::log::Channel& registrationChannel() {
    static const foundation::log::Channel& channel = foundation::log::channel("builtinservice::registerLxeObject");
    return channel;
}

template <class BuildText>
void logRegistration(int line, BuildText&& build) {
    foundation::log::logIf(registrationChannel(), 0, __FILE__, line, std::forward<BuildText>(build));
}

} // namespace

namespace builtinreg {

namespace detail {

LxeObjectRegistration resolveLxeObjectRegistration(const std::string& className, const std::string& action) {
    const auto& registerService = getLxeObjectRegister();
    const auto& wrapper = getOCOSRegWrapper();
    if (!registerService || !wrapper) {
        logRegistration(__LINE__, [&] {
            return "Unable to " + action + ", Details:" + (wrapper ? "" : " ocos Reg Service not available.") +
                   (registerService ? "" : " lxeRegService not available.");
        });
        return {};
    }
    const oxClassID classId = wrapper->getClassIdByName(className);
    if (classId == oxUNKNOWN_CLASS) {
        logRegistration(__LINE__,
                        [&] { return "Unable to " + action + ", Details: unknown class '" + className + "'"; });
        return {};
    }
    addAsKnownLxeObject(classId);
    return {classId, registerService};
}

} // namespace detail

namespace {

// Resolves the class and, when that succeeds, hands its id to the register service.
template <class Register>
bool registerWith(const std::string& className, const std::string& action, Register&& call) {
    const LxeObjectRegistration target = detail::resolveLxeObjectRegistration(className, action);
    if (target.service) {
        std::forward<Register>(call)(*target.service, target.classId);
    }
    return target.service != nullptr;
}

} // namespace

bool registerLxeObjectHelper(const std::string& className, std::size_t variantId) {
    return registerWith(className, "register LxeObjects", [&](ILxeObjectRegister& service, oxClassID classId) {
        service.registerLxeObject(classId, variantId);
    });
}

bool registerLxeObjectHelper(const std::string& className, std::size_t variantId, bool flag) {
    return registerWith(className, "register LxeObjects", [&](ILxeObjectRegister& service, oxClassID classId) {
        service.registerLxeObject(classId, variantId, flag);
    });
}

bool registerLxeObjectDefaultIndexingMethodsHelper(const std::string& className, std::size_t variantId, bool flag,
                                                   const Velloc::lxe::LxeObjectDefaultIndexingMethods& methods) {
    return registerWith(className, "register LxeObject default indexing methods",
                        [&](ILxeObjectRegister& service, oxClassID classId) {
                            service.registerLxeObjectDefaultIndexingMethods(classId, variantId, flag, methods);
                        });
}

bool registerParenReferenceVariant(const std::string& className, std::size_t variantId,
                                   const Velloc::lxe::LxeFunctionDescriptor& first,
                                   const Velloc::lxe::LxeFunctionDescriptor& second, std::string name,
                                   boost::iterator_range<std::string*> names) {
    return registerWith(className, "register LxeObject optimized ParenReference indexing method",
                        [&](ILxeObjectRegister& service, oxClassID classId) {
                            service.registerParenReferenceVariant(classId, variantId, first, second, name, names);
                        });
}

bool registerParenAssignVariant(const std::string& className, std::size_t variantId,
                                const Velloc::lxe::LxeFunctionDescriptor& first,
                                const Velloc::lxe::LxeFunctionDescriptor& second, std::string name,
                                boost::iterator_range<std::string*> names, bool flag) {
    return registerWith(className, "register LxeObject optimized ParenAssign indexing method",
                        [&](ILxeObjectRegister& service, oxClassID classId) {
                            service.registerParenAssignVariant(classId, variantId, first, second, name, names, flag);
                        });
}

} // namespace builtinreg

namespace lxeobject {

std::string getGuid(const std::string& a, const std::string& b) { return a + "-" + b + "#"; }

void setOfhFinder(std::string className, ocos::OfhFinder finder) {
    if (const auto& wrapper = builtinreg::getOCOSRegWrapper()) {
        wrapper->setOfhFinder(std::move(className), std::move(finder));
        return;
    }
    logRegistration(__LINE__, [&] {
        return "Unable to set the method finder of class '" + className + "', Details: ocos Reg Service not available.";
    });
}

void addMethod(ocos::COSClass* cls, const std::string& name, const std::string& implementation,
               const ocos::MemberAccess& access, bool isStatic, bool isHidden, bool isSealed) {
    if (const auto& wrapper = builtinreg::getOCOSRegWrapper()) {
        wrapper->addMethod(cls, name, implementation, access, isStatic, isHidden, isSealed);
        return;
    }
    logRegistration(__LINE__, [&] {
        return "Unable to add the method '" + name + "', Details: ocos Reg Service not available.";
    });
}

} // namespace lxeobject

} // namespace Velloc::builtin
