#include "LxeObjectRegisterService.hpp"

#include <lxe/LxeObjectTypeRegistry.hpp>

#include <utility>

namespace builtinservices {

// Registrations arrive after the class was resolved by name, so an unknown id is not
// expected; such a registration is dropped like any other for a missing class.
void LxeObjectRegisterService::registerLxeObject(oxClassID classId, std::size_t variantId) {
    registerLxeObject(classId, variantId, false);
}

void LxeObjectRegisterService::registerLxeObject(oxClassID classId, std::size_t variantId, bool flag) {
    Velloc::lxe::registerLxeObjectType(classId, variantId, flag);
}

void LxeObjectRegisterService::registerLxeObjectDefaultIndexingMethods(
    oxClassID classId, std::size_t variantId, bool flag, const Velloc::lxe::LxeObjectDefaultIndexingMethods& methods) {
    Velloc::lxe::registerDefaultIndexingMethods(classId, variantId, flag, methods);
}

void LxeObjectRegisterService::registerParenReferenceVariant(oxClassID classId, std::size_t variantId,
                                                             const Velloc::lxe::LxeFunctionDescriptor& first,
                                                             const Velloc::lxe::LxeFunctionDescriptor& second,
                                                             std::string name,
                                                             boost::iterator_range<std::string*> names) {
    Velloc::lxe::addParenReferenceVariant(
        classId, variantId, {{first, second}, std::move(name), {names.begin(), names.end()}, false});
}

void LxeObjectRegisterService::registerParenAssignVariant(oxClassID classId, std::size_t variantId,
                                                          const Velloc::lxe::LxeFunctionDescriptor& first,
                                                          const Velloc::lxe::LxeFunctionDescriptor& second,
                                                          std::string name, boost::iterator_range<std::string*> names,
                                                          bool flag) {
    Velloc::lxe::addParenAssignVariant(classId, variantId,
                                       {{first, second}, std::move(name), {names.begin(), names.end()}, flag});
}

} // namespace builtinservices
