#include <builtin/lxeobject/LxeObjectIndexing.hpp>
#include <builtin/lxeobject/LxeObjectRegistry.hpp>

#include "LxeObjectRegistrations.hpp"

#include <builtin/services/ServiceHandles.hpp>

#include <foundation/core/demangle.hpp>
#include <foundation/log/Channel.hpp>

#include <optional>
#include <typeinfo>
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

// registerWith, once the ledger has taken the claim. A conflict with an earlier
// registration of the class variant is refused: on behalf of a C++ class it throws, by
// class name alone it is logged, as the other failures of registration are.
template <class Claim, class Register>
bool registerClaimed(const std::string& className, std::size_t variantId, const std::type_info* cppClass,
                     const std::string& action, Claim&& claim, Register&& call) {
    const LxeObjectRegistration target = detail::resolveLxeObjectRegistration(className, action);
    if (!target.service) {
        return false;
    }
    const detail::RegistrationClaim claimed{
        target.classId, variantId, className,
        cppClass != nullptr ? foundation::core::demangle_typeid_name(cppClass->name()) : std::string()};
    if (const std::optional<std::string> conflict = claim(claimed)) {
        if (cppClass != nullptr) {
            throw LxeObjectRegistrationError("Unable to " + action + ": " + *conflict + ".");
        }
        logRegistration(__LINE__, [&] { return "Unable to " + action + ", Details: " + *conflict + "."; });
        return false;
    }
    std::forward<Register>(call)(*target.service, target.classId);
    return true;
}

bool registerVariant(const std::string& className, std::size_t variantId, const std::type_info* cppClass,
                     std::optional<bool> flag) {
    return registerClaimed(
        className, variantId, cppClass, "register LxeObjects",
        [&](const detail::RegistrationClaim& claim) { return detail::claimVariant(claim, flag.value_or(false)); },
        [&](ILxeObjectRegister& service, oxClassID classId) {
            if (flag) {
                service.registerLxeObject(classId, variantId, *flag);
            } else {
                service.registerLxeObject(classId, variantId);
            }
        });
}

bool registerIndexing(const std::string& className, std::size_t variantId, const std::type_info* cppClass, bool flag,
                      const Velloc::lxe::LxeObjectDefaultIndexingMethods& methods) {
    return registerClaimed(
        className, variantId, cppClass, "register LxeObject default indexing methods",
        [&](const detail::RegistrationClaim& claim) { return detail::claimDefaultIndexing(claim, flag, methods); },
        [&](ILxeObjectRegister& service, oxClassID classId) {
            service.registerLxeObjectDefaultIndexingMethods(classId, variantId, flag, methods);
        });
}

} // namespace

namespace detail {

bool registerLxeObjectFor(const std::type_info& cppClass, const std::string& className, std::size_t variantId,
                          bool flag) {
    return registerVariant(className, variantId, &cppClass, flag);
}

bool registerLxeObjectDefaultIndexingMethodsFor(const std::type_info& cppClass, const std::string& className,
                                                std::size_t variantId, bool flag,
                                                const Velloc::lxe::LxeObjectDefaultIndexingMethods& methods) {
    return registerIndexing(className, variantId, &cppClass, flag, methods);
}

} // namespace detail

bool registerLxeObjectHelper(const std::string& className, std::size_t variantId) {
    return registerVariant(className, variantId, nullptr, std::nullopt);
}

bool registerLxeObjectHelper(const std::string& className, std::size_t variantId, bool flag) {
    return registerVariant(className, variantId, nullptr, flag);
}

bool registerLxeObjectDefaultIndexingMethodsHelper(const std::string& className, std::size_t variantId, bool flag,
                                                   const Velloc::lxe::LxeObjectDefaultIndexingMethods& methods) {
    return registerIndexing(className, variantId, nullptr, flag, methods);
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
