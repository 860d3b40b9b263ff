// Engine-object classes as parameter and result types of developer functions. A Counter*
// (or const Counter*) parameter stands for an object of Counter's class-object class and
// variant in two forms: the object itself, as compiled callers pass it, and the 1-by-1
// array of the class that holds it, as interpreted calls pass it. Any other object or
// array is refused by dispatch. CppLxeObjectImpl.hpp includes this header, so that every
// engine-object class can be a parameter type.
#pragma once

#include <builtin/Parameter.hpp>
#include <builtin/builtinreg/ParameterConversion.hpp>
#include <builtin/lxeobject/CppLxeObjectImpl.hpp>
#include <builtin/lxeobject/LxeObjectID.hpp>

#include <builtin/types/TypeTraitsImpl.hpp>

#include <lxe/LxeObject.hpp>

#include <cstddef>
#include <type_traits>
#include <typeinfo>

namespace Velloc::builtin::lxeobject::detail {

// Kind 0: the object type (class, variant, and the flag the variant was registered with,
// false before it is registered); kind 1: the array form. The class must be defined by the
// time a variant taking T is made; otherwise std::logic_error names it and T.
types::ArgType lxeObjectArgType(const builtinreg::LxeObjectId& id, const std::type_info& cppClass, std::size_t kind);

// Throws std::invalid_argument: the object is not of the C++ class expected.
[[noreturn]] void throwOtherLxeObject(const builtinreg::LxeObjectId& expectedId, const std::type_info& expected,
                                      const Velloc::lxe::LxeObject& actual);

} // namespace Velloc::builtin::lxeobject::detail

namespace Velloc::builtin::types {

template <class T>
    requires lxeobject::CppLxeObject<std::remove_const_t<T>>
struct TypeTraitsImpl<T*> {
    using Class = std::remove_const_t<T>;
    static constexpr unsigned long numArgTypes = 2;

    static ArgType getArgType(std::size_t kind) {
        lxeobject::adoptManifestIdentity<Class>();
        return lxeobject::detail::lxeObjectArgType(Class::lxeObjectId, typeid(Class), kind);
    }

    // An object of another C++ class under the same class-object class (another variant)
    // passes dispatch in the array form and is refused here.
    static T* fromParameter(const Parameter& parameter) {
        Velloc::lxe::LxeObject* object = builtinreg::detail::lxeObjectOfParameter(parameter);
        if (auto* typed = dynamic_cast<Class*>(object)) {
            return typed;
        }
        lxeobject::detail::throwOtherLxeObject(Class::lxeObjectId, typeid(Class), *object);
    }
};

} // namespace Velloc::builtin::types
