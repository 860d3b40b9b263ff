#include <builtin/builtinreg/ObjectReachability.hpp>

#include "ObjectClassText.hpp"

#include <algorithm>
#include <optional>

namespace Velloc::builtin::builtinreg {

namespace {

// The class an input declared as an object or object place takes (oxUNKNOWN_CLASS: any).
std::optional<oxClassID> objectInputClass(const types::ArgType& input) {
    if (const auto* object = std::get_if<types::LxeObjectTypes>(&input)) {
        return object->getOcosClassId();
    }
    if (const auto* place = std::get_if<types::LxeObjectPlaceTypes>(&input)) {
        return place->getOcosClassId();
    }
    return std::nullopt;
}

// A variant of the same function and arity that takes, at position, the array of the class.
bool hasArrayTwin(const BuiltinVariant& variant, std::size_t position, oxClassID classId,
                  std::span<const BuiltinVariant> list) {
    return std::any_of(list.begin(), list.end(), [&](const BuiltinVariant& other) {
        if (other.developerFcn != variant.developerFcn ||
            other.inputArgTypes.size() != variant.inputArgTypes.size()) {
            return false;
        }
        const auto* array = std::get_if<types::OxArrayTypes>(&other.inputArgTypes[position]);
        return array != nullptr && array->getElement() == classId;
    });
}

} // namespace

std::string engineObjectInputReason(const BuiltinVariant& variant, std::span<const BuiltinVariant> list) {
    for (std::size_t i = 0; i < variant.inputArgTypes.size(); ++i) {
        const std::optional<oxClassID> classId = objectInputClass(variant.inputArgTypes[i]);
        if (!classId || hasArrayTwin(variant, i, *classId, list)) {
            continue;
        }
        return "input " + std::to_string(i + 1) + " takes " +
               detail::describeDeclaredObject(variant.inputArgTypes[i], variant.inputTypes[i]) +
               " as only compiled callers pass it; interpreted calls pass objects in arrays of their class. "
               "Declare the parameter as a pointer to the object's C++ class (Counter* or const Counter*), "
               "which also makes the variant that takes the array, or take const oxArray* and read the object "
               "with lxeobject::fromOxArray.";
    }
    return {};
}

} // namespace Velloc::builtin::builtinreg
