#include "ObjectClassText.hpp"

#include <ocos/ClassRegistry.hpp>

#include <optional>

namespace Velloc::builtin::builtinreg::detail {

namespace {

// "class 'counter.Counter'", or "class 42" for an id that names no class.
std::string classText(oxClassID classId) {
    const ocos::COSClass* cls = ocos::findClass(classId);
    return cls != nullptr ? "class '" + cls->getName() + "'" : "class " + std::to_string(classId);
}

// Strings are class objects too, but diagnostics speak of them as strings.
bool isDescribedAsObject(oxClassID classId) {
    return types::isObjectClass(classId) && classId != ocos::STRING_CLASS_ID;
}

} // namespace

std::optional<oxClassID> declaredObjectClass(const types::ArgType& declared) {
    oxClassID classId = oxUNKNOWN_CLASS;
    if (const auto* object = std::get_if<types::LxeObjectTypes>(&declared)) {
        classId = object->getOcosClassId();
    } else if (const auto* place = std::get_if<types::LxeObjectPlaceTypes>(&declared)) {
        classId = place->getOcosClassId();
    } else if (const auto* array = std::get_if<types::OxArrayTypes>(&declared)) {
        classId = array->getElement();
    }
    return isDescribedAsObject(classId) ? std::optional(classId) : std::nullopt;
}

std::string describeObjectArray(const oxArray* array) {
    const oxClassID classId = matrix::getClassID(array);
    if (!isDescribedAsObject(classId)) {
        return {};
    }
    const std::string cls = classText(classId);
    if (matrix::isScalar(array)) {
        return "an object of " + cls;
    }
    std::string dims;
    for (const std::size_t extent : matrix::getDimensions(array)) {
        dims += (dims.empty() ? "" : "x") + std::to_string(extent);
    }
    return "a " + dims + " array of " + cls;
}

std::string describeDeclaredObject(const types::ArgType& declared, std::string_view text) {
    const std::optional<oxClassID> classId = declaredObjectClass(declared);
    if (!classId) {
        return std::string(text);
    }
    return "an object of " + classText(*classId) + " (" + std::string(text) + ")";
}

} // namespace Velloc::builtin::builtinreg::detail
