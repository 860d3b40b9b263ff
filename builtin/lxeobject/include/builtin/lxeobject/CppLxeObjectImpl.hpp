// Writing a C++ engine-object class: derive from CppLxeObjectImpl<T> and declare the
// identity as a static member. Whatever the class leaves unassigned comes from its
// module's manifest record; what it assigns must agree with that record.
//
//   class Buffer : public lxeobject::CppLxeObjectImpl<Buffer> {
//   public:
//       static inline builtinreg::LxeObjectId lxeObjectId;   // all from the manifest
//   };
//
//   // in the module's activator, after saveLxeObjectRuntimeInfo(bundle):
//   lxeobject::registerLxeObjectClass<Buffer>(false);
#pragma once

#include <builtin/lxeobject/LxeObjectID.hpp>
#include <builtin/lxeobject/LxeObjectIndexing.hpp>
#include <builtin/lxeobject/LxeObjectRegistry.hpp>
#include <builtin/lxeobject/LxeObjectRuntimeInfo.hpp>

#include <lxe/LxeObject.hpp>

#include <concepts>
#include <cstddef>
#include <string>
#include <type_traits>
#include <typeinfo>

namespace Velloc::builtin::lxeobject {

template <class T>
concept CppLxeObject = std::is_convertible_v<T*, const Velloc::lxe::LxeObject*> && requires {
    { T::lxeObjectId } -> std::same_as<builtinreg::LxeObjectId&>;
};

template <class T>
class CppLxeObjectImpl : public Velloc::lxe::LxeObject {
public:
    const char* getOcosClassName() const noexcept override { return T::lxeObjectId.getClassName(); }
    std::size_t getCppClassVariantId() const noexcept override { return T::lxeObjectId.getVariantId(); }
};

// What the manifest record of T declares. Without a record, GetLxeObjectRuntimeInfoError.
template <CppLxeObject T>
std::size_t manifestVariantIdOf() {
    return types::getLxeObjectRuntimeInfo(typeid(T).name()).variantId;
}

template <CppLxeObject T>
const char* manifestClassNameOf() {
    static const std::string name = types::getLxeObjectRuntimeInfo(typeid(T).name()).oxClassName;
    return name.c_str();
}

namespace detail {
// Throws builtinreg::LxeObjectRegistrationError, naming the bundle whose manifest declared
// the class, when the class name the code gives is not the manifest's.
void checkClassNameAgainstManifest(const char* codeName, const std::type_info& cppClass);
} // namespace detail

// Completes T's identity from its manifest record, and checks that what T assigned itself
// is the record's: a class name that differs throws builtinreg::LxeObjectRegistrationError
// naming the bundle; a variant id that differs ends the process.
template <CppLxeObject T>
void adoptManifestIdentity() {
    builtinreg::LxeObjectId& id = T::lxeObjectId;
    if (id.getNameFunction() == builtinreg::LxeObjectId::DEFAULT_NAME_FUNCTION) {
        id.setNameFunction(&manifestClassNameOf<T>);
    }
    if (id.getNameFunction() != &manifestClassNameOf<T>) {
        // Once passed, never again: the name and the record do not change.
        static const bool nameChecked = (detail::checkClassNameAgainstManifest(id.getClassName(), typeid(T)), true);
        (void)nameChecked;
    }
    if (id.getVariantId() == builtinreg::LxeObjectId::DEFAULT_VARIANT_ID) {
        id.setVariantId(manifestVariantIdOf<T>());
    }
    builtinreg::detail::assertLxeVariantIdMatches(id.getVariantId(), &manifestVariantIdOf<T>, typeid(T));
}

// Registers T as an engine object of its class, and the default indexing methods of T.
// Both return whether the registration was passed on (see LxeObjectIndexing.hpp). One that
// conflicts with an earlier registration of the class variant (another C++ class under the
// same class and variant id, another flag, other methods) throws
// builtinreg::LxeObjectRegistrationError naming both; registering the same again is allowed.
template <CppLxeObject T>
bool registerLxeObjectClass(bool flag) {
    adoptManifestIdentity<T>();
    return builtinreg::detail::registerLxeObjectFor(typeid(T), T::lxeObjectId.getClassName(),
                                                    T::lxeObjectId.getVariantId(), flag);
}

template <CppLxeObject T>
bool registerLxeObjectDefaultIndexingMethods(bool flag, const Velloc::lxe::LxeObjectDefaultIndexingMethods& methods) {
    adoptManifestIdentity<T>();
    return builtinreg::detail::registerLxeObjectDefaultIndexingMethodsFor(
        typeid(T), T::lxeObjectId.getClassName(), T::lxeObjectId.getVariantId(), flag, methods);
}

} // namespace Velloc::builtin::lxeobject

// Every engine-object class can be a parameter and result type of developer functions.
#include <builtin/lxeobject/LxeObjectTypeTraitsImpl.hpp>
