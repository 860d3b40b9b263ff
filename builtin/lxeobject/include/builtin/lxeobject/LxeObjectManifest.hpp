// Saving the "lxe_objects" record of a module's manifest.json, which the module does when
// its bundle starts, before it registers its engine-object classes.
#pragma once

#include <cppmicroservices/Bundle.h>

#include <optional>
#include <string>
#include <unordered_set>

namespace Velloc::builtin::lxeobject {

// Saves the bundle's "lxe_objects" record (see LxeObjectRuntimeInfo.hpp) and returns the
// mangled class names saved; none when the manifest has no such record. A record that is
// not an object, or a bad entry, throws types::SaveLxeObjectRuntimeInfoError.
std::unordered_set<std::string> saveLxeObjectRuntimeInfo(const cppmicroservices::Bundle& bundle);

// The symbolic name of the bundle whose manifest saved the record of the mangled class
// name; none for a record saved otherwise (types::addLxeObjectRuntimeInfo).
std::optional<std::string> lxeObjectRecordBundle(const std::string& mangledClassName);

} // namespace Velloc::builtin::lxeobject
