// What a module calls while it starts to make its engine-object classes known: each C++
// class variant under its class-object class, the indexing methods of the variant, and
// the methods of the class. The registration helpers resolve the class by name and never
// throw: an unknown class or a missing service is logged on the channel
// "builtinservice::registerLxeObject" and the registration is skipped. They return
// whether the registration was passed on.
#pragma once

#include <builtin/services/ILxeObjectRegister.hpp>

#include <lxe/LxeFunctionDescriptor.hpp>
#include <lxe/LxeObjectDefaultIndexingMethods.hpp>
#include <matrix/oxArray.hpp>
#include <ocos/COSClass.hpp>
#include <ocos/MemberAccess.hpp>

#include <boost/range/iterator_range.hpp>

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <typeinfo>

namespace Velloc::builtin::builtinreg {

// A class resolved for registration; empty (oxUNKNOWN_CLASS, no service) when it could not be.
struct LxeObjectRegistration {
    oxClassID classId = oxUNKNOWN_CLASS;
    std::shared_ptr<ILxeObjectRegister> service;
};

// A registration on behalf of a C++ class that conflicts with an earlier one of the same
// class variant: another C++ class under the same class and variant id, another flag, or
// other default indexing methods. The text names both registrations.
class LxeObjectRegistrationError : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

namespace detail {
// Resolves the class through the class-object service and adds it to the known
// engine-object classes; action names the registration in log lines ("Unable to " + action).
LxeObjectRegistration resolveLxeObjectRegistration(const std::string& className, const std::string& action);

// The registrations below on behalf of a C++ class (lxeobject::registerLxeObjectClass<T>):
// a conflict throws LxeObjectRegistrationError instead of being logged.
bool registerLxeObjectFor(const std::type_info& cppClass, const std::string& className, std::size_t variantId,
                          bool flag);
bool registerLxeObjectDefaultIndexingMethodsFor(const std::type_info& cppClass, const std::string& className,
                                                std::size_t variantId, bool flag,
                                                const Velloc::lxe::LxeObjectDefaultIndexingMethods& methods);
} // namespace detail

// Registering what a class variant has registered already changes nothing; a registration
// that conflicts with it (another flag, other default indexing methods) is logged and
// refused, so that the first stays in force.
bool registerLxeObjectHelper(const std::string& className, std::size_t variantId);
bool registerLxeObjectHelper(const std::string& className, std::size_t variantId, bool flag);
bool registerLxeObjectDefaultIndexingMethodsHelper(const std::string& className, std::size_t variantId, bool flag,
                                                   const Velloc::lxe::LxeObjectDefaultIndexingMethods& methods);
bool registerParenReferenceVariant(const std::string& className, std::size_t variantId,
                                   const Velloc::lxe::LxeFunctionDescriptor& first,
                                   const Velloc::lxe::LxeFunctionDescriptor& second, std::string name,
                                   boost::iterator_range<std::string*> names);
bool registerParenAssignVariant(const std::string& className, std::size_t variantId,
                                const Velloc::lxe::LxeFunctionDescriptor& first,
                                const Velloc::lxe::LxeFunctionDescriptor& second, std::string name,
                                boost::iterator_range<std::string*> names, bool flag);

} // namespace Velloc::builtin::builtinreg

namespace Velloc::builtin::lxeobject {

// The identifier a + "-" + b + "#", under which modules file the code of their methods.
std::string getGuid(const std::string& a, const std::string& b);

// Sets how the class finds the code of its methods from (class name, implementation name).
// Skipped with a log line when the service is missing; an unknown class throws
// std::invalid_argument.
void setOfhFinder(std::string className, ocos::OfhFinder finder);

// Adds the method to the class (see ocos::COSMethod for the flags). Skipped with a log line
// when the service is missing.
void addMethod(ocos::COSClass* cls, const std::string& name, const std::string& implementation,
               const ocos::MemberAccess& access, bool isStatic, bool isHidden, bool isSealed);

} // namespace Velloc::builtin::lxeobject
