#include <lxe/LxeObjectArrays.hpp>
#include <lxe/LxeObjectTypeRegistry.hpp>

#include <ocos/ClassRegistry.hpp>

#include <array>
#include <stdexcept>
#include <string>

namespace Velloc::lxe {

namespace {

std::string classNameOf(oxClassID classId) {
    const ocos::COSClass* cls = ocos::findClass(classId);
    return cls != nullptr ? "'" + cls->getName() + "'" : std::to_string(classId);
}

LxeObject& objectIn(const oxArray* array) {
    LxeObject* object = getLxeObject(array);
    if (object == nullptr) {
        throw std::invalid_argument("expected an engine object, not an array of class " +
                                    (array != nullptr ? classNameOf(matrix::getClassID(array)) : std::string("null")));
    }
    return *object;
}

// The record of the object's variant, which has default indexing methods.
std::shared_ptr<const LxeObjectType> indexedTypeOf(const LxeObject& object, const oxArray* array) {
    auto type = findLxeObjectType(matrix::getClassID(array), object.getCppClassVariantId());
    if (!type || !type->defaultIndexing) {
        throw std::invalid_argument("objects of class " + classNameOf(matrix::getClassID(array)) + " variant " +
                                    std::to_string(object.getCppClassVariantId()) + " cannot be indexed");
    }
    return type;
}

template <class Method>
Method requireMethod(Method method, const oxArray* array, const char* what) {
    if (method == nullptr) {
        throw std::invalid_argument("objects of class " + classNameOf(matrix::getClassID(array)) + " have no " + what);
    }
    return method;
}

} // namespace

oxArray* createLxeObjectArray(oxClassID classId, ConstLxeObjectPtr object) {
    if (!object) {
        throw std::invalid_argument("no engine object to put in an array");
    }
    if (!isLxeObjectClass(classId)) {
        throw std::invalid_argument("arrays of class " + classNameOf(classId) + " cannot hold engine objects");
    }
    static constexpr std::array<std::size_t, 2> scalar{1, 1};
    // The array's payload owns the reference the pointer carried in.
    const LxeObject* held = object.detach();
    std::shared_ptr<void> payload(const_cast<LxeObject*>(held),
                                  [](void* stored) { intrusive_ptr_release(static_cast<const LxeObject*>(stored)); });
    return matrix::createObject(classId, scalar, std::move(payload));
}

LxeObject* getLxeObject(const oxArray* array) {
    if (array == nullptr || !isLxeObjectClass(matrix::getClassID(array)) || !matrix::isScalar(array)) {
        return nullptr;
    }
    return static_cast<LxeObject*>(matrix::getObjectPayload(array).get());
}

oxArray* parenReference(const oxArray* array, IndexArrays indices) {
    const LxeObject& object = objectIn(array);
    const auto type = indexedTypeOf(object, array);
    return requireMethod(type->defaultIndexing->parenReference, array, "indexed reference")(object, indices);
}

void parenAssign(const oxArray* array, IndexArrays indices, const oxArray* value) {
    LxeObject& object = objectIn(array);
    const auto type = indexedTypeOf(object, array);
    requireMethod(type->defaultIndexing->parenAssign, array, "indexed assignment")(object, indices, value);
}

std::size_t numberOfElements(const oxArray* array) {
    const LxeObject& object = objectIn(array);
    const auto type = indexedTypeOf(object, array);
    return requireMethod(type->defaultIndexing->numberOfElements, array, "number of elements")(object);
}

} // namespace Velloc::lxe
