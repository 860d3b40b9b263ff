// Takes engine-object registrations and records them with the class-object system.
#pragma once

#include <builtin/services/ILxeObjectRegister.hpp>

namespace builtinservices {

class LxeObjectRegisterService final : public Velloc::builtin::ILxeObjectRegister {
public:
    void registerLxeObject(oxClassID classId, std::size_t variantId) override;
    void registerLxeObject(oxClassID classId, std::size_t variantId, bool flag) override;
};

} // namespace builtinservices
