// Engine-object classes as parameter types of developer functions: a Buffer* parameter
// stands for an object of Buffer's class-object class and variant.
#pragma once

#include <builtin/lxeobject/CppLxeObjectImpl.hpp>
#include <builtin/lxeobject/LxeObjectBridge.hpp>

#include <builtin/types/TypeTraitsImpl.hpp>

#include <type_traits>

namespace Velloc::builtin::types {

// Asked when a variant is made: the class must be declared in a saved manifest record (or
// answered by the lookup-failure handler), and its class resolvable, by then. The flag is
// the one the variant was registered with (false before it is registered).
template <class T>
    requires lxeobject::CppLxeObject<std::remove_const_t<T>>
struct TypeTraitsImpl<T*> {
    static ArgType getArgType() {
        using Class = std::remove_const_t<T>;
        lxeobject::adoptManifestIdentity<Class>();
        const builtinreg::LxeObjectId& id = Class::lxeObjectId;
        const oxClassID classId = builtinreg::getClassIdByName(id.getClassName());
        const auto registered = builtinreg::getLxeObjectType(classId, id.getVariantId());
        return LxeObjectTypes(classId, id.getVariantId(), registered != nullptr && registered->flag);
    }
};

} // namespace Velloc::builtin::types
