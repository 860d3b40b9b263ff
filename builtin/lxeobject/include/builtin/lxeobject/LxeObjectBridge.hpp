// Between host arrays and engine objects, and from class names to classes, through the
// class-object service. Without the service, lookups answer "unknown" and conversions to
// arrays answer null; only fromOxArray throws.
#pragma once

#include <lxe/LxeObject.hpp>
#include <lxe/LxeObjectTypeRegistry.hpp>
#include <matrix/oxArray.hpp>
#include <ocos/COSClass.hpp>

#include <boost/intrusive_ptr.hpp>

#include <cstddef>
#include <memory>
#include <string>

namespace Velloc::builtin::builtinreg {

// oxUNKNOWN_CLASS when the service is missing or knows no class of that name.
oxClassID getClassIdByName(const std::string& name);

// The engine's record of the class variant; null when the service is missing or the
// variant was never registered.
std::shared_ptr<const Velloc::lxe::LxeObjectType> getLxeObjectType(oxClassID classId, std::size_t variantId);

} // namespace Velloc::builtin::builtinreg

namespace Velloc::builtin::lxeobject {

// The engine object the array holds. Without the service throws std::runtime_error
// "Cannot get LxeObject runtime provider service"; an array holding no engine object
// throws std::invalid_argument.
Velloc::lxe::LxeObject* fromOxArray(const oxArray* array);

// A new array of the named class holding the object, which it takes over; null when the
// service is missing. An unknown class throws std::invalid_argument.
oxArray* toOxArray(boost::intrusive_ptr<const Velloc::lxe::LxeObject>&& object, const char* className);

// The class of that name, created when there is none; null when the service is missing.
ocos::COSClass* defineClass(const std::string& name);

} // namespace Velloc::builtin::lxeobject
