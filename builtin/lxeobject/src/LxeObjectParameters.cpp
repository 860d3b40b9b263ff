// Engine objects as the parameters of developer functions: their argument types, and the
// objects read back out of the parameters that callers pass.
#include <builtin/lxeobject/LxeObjectTypeTraitsImpl.hpp>

#include <builtin/builtinreg/ParameterConversion.hpp>
#include <builtin/lxeobject/LxeObjectBridge.hpp>
#include <builtin/services/ServiceHandles.hpp>

#include <foundation/core/demangle.hpp>

#include <stdexcept>
#include <string>

namespace Velloc::builtin {

namespace builtinreg::detail {

Velloc::lxe::LxeObject* lxeObjectOfParameter(const Parameter& parameter) {
    if (Velloc::lxe::LxeObject* const* object = boost::get<Velloc::lxe::LxeObject*>(&parameter)) {
        return *object;
    }
    if (oxArray* const* array = boost::get<oxArray*>(&parameter)) {
        return lxeobject::fromOxArray(*array);
    }
    types::detail::assertLxeObjectFromParameterType(typeid(Velloc::lxe::LxeObject*), parameter);
}

} // namespace builtinreg::detail

namespace lxeobject::detail {

namespace {

std::string cppNameOf(const std::type_info& type) { return foundation::core::demangle_typeid_name(type.name()); }

} // namespace

types::ArgType lxeObjectArgType(const builtinreg::LxeObjectId& id, const std::type_info& cppClass, std::size_t kind) {
    const oxClassID classId = builtinreg::getClassIdByName(id.getClassName());
    // Without the class-object service nothing is resolved, and the parameter stays open.
    if (classId == oxUNKNOWN_CLASS && builtinreg::getOCOSRegWrapper() != nullptr) {
        throw std::logic_error("A parameter or result of type " + cppNameOf(cppClass) +
                               "* stands for objects of class '" + id.getClassName() +
                               "', which is not defined: the module defines the class "
                               "(lxeobject::defineClass) and registers it before it makes the variants that "
                               "take or return it.");
    }
    if (kind == 0) {
        const auto registered = builtinreg::getLxeObjectType(classId, id.getVariantId());
        return types::LxeObjectTypes(classId, id.getVariantId(), registered != nullptr && registered->flag);
    }
    return types::OxArrayTypes(classId, types::OxArrayTypes::Shape::SCALAR, types::OxArrayTypes::Density::FULL,
                               types::OxArrayTypes::Complexity::NOT_COMPLEX, 0);
}

void throwOtherLxeObject(const builtinreg::LxeObjectId& expectedId, const std::type_info& expected,
                         const Velloc::lxe::LxeObject& actual) {
    throw std::invalid_argument("expected an object of C++ class " + cppNameOf(expected) + " (class '" +
                                expectedId.getClassName() + "' variant " + std::to_string(expectedId.getVariantId()) +
                                "), not one of C++ class " + cppNameOf(typeid(actual)) + " (class '" +
                                actual.getOcosClassName() + "' variant " +
                                std::to_string(actual.getCppClassVariantId()) + ")");
}

} // namespace lxeobject::detail

} // namespace Velloc::builtin
