// Takes engine-object registrations and records them with the engine's type registry,
// which tells the class-object system in turn.
#pragma once

#include <builtin/services/ILxeObjectRegister.hpp>

namespace builtinservices {

class LxeObjectRegisterService final : public Velloc::builtin::ILxeObjectRegister {
public:
    void registerLxeObject(oxClassID classId, std::size_t variantId) override;
    void registerLxeObject(oxClassID classId, std::size_t variantId, bool flag) override;
    void registerLxeObjectDefaultIndexingMethods(oxClassID classId, std::size_t variantId, bool flag,
                                                 const Velloc::lxe::LxeObjectDefaultIndexingMethods& methods) override;
    void registerParenReferenceVariant(oxClassID classId, std::size_t variantId,
                                       const Velloc::lxe::LxeFunctionDescriptor& first,
                                       const Velloc::lxe::LxeFunctionDescriptor& second, std::string name,
                                       boost::iterator_range<std::string*> names) override;
    void registerParenAssignVariant(oxClassID classId, std::size_t variantId,
                                    const Velloc::lxe::LxeFunctionDescriptor& first,
                                    const Velloc::lxe::LxeFunctionDescriptor& second, std::string name,
                                    boost::iterator_range<std::string*> names, bool flag) override;
};

} // namespace builtinservices
