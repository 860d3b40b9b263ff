#include "LxeObjectRegisterService.hpp"

#include <ocos/LxeObjectVariants.hpp>

namespace builtinservices {

// Registrations arrive after the class was resolved by name, so an unknown id is not
// expected; such a registration is dropped like any other for a missing class.
void LxeObjectRegisterService::registerLxeObject(oxClassID classId, std::size_t variantId) {
    registerLxeObject(classId, variantId, false);
}

void LxeObjectRegisterService::registerLxeObject(oxClassID classId, std::size_t variantId, bool flag) {
    ocos::recordLxeObjectVariant(classId, {variantId, flag});
}

} // namespace builtinservices
