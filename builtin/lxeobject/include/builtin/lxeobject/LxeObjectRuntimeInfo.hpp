// Which class-object class and which variant id belong to a C++ engine-object class. The
// C++ code does not know it at compile time: the module that provides the class declares
// it in the "lxe_objects" record of its manifest.json, and the record is saved into one
// process-wide table when the module starts:
//
//   "lxe_objects": {
//     "N9lxebuffer6BufferE": { "oxClassName": "lxebuffer.Buffer", "variantId": 0 }
//   }
//
// Each key is the mangled C++ class name (typeid(T).name()); "oxClassName" is any value
// castable to std::string, "variantId" any integral value that fits in size_t.
#pragma once

#include <cppmicroservices/AnyMap.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <unordered_set>

namespace Velloc::builtin::types {

struct LxeObjectRuntimeInfo {
    std::string oxClassName;
    std::size_t variantId = 0;

    friend bool operator==(const LxeObjectRuntimeInfo&, const LxeObjectRuntimeInfo&) = default;
};

class SaveLxeObjectRuntimeInfoError : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

class GetLxeObjectRuntimeInfoError : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

// Saves every entry of an "lxe_objects" record, in the record's order, and returns the
// mangled names saved. Saving an entry again with the same values changes nothing. The
// first bad entry throws SaveLxeObjectRuntimeInfoError: that entry is not saved, the
// entries before it stay saved.
std::unordered_set<std::string> addLxeObjectRuntimeInfo(const cppmicroservices::AnyMap& lxeObjects);

// The saved entry of the mangled class name, or else what the lookup-failure handler
// answers; GetLxeObjectRuntimeInfoError, listing every saved class, when neither knows it.
LxeObjectRuntimeInfo getLxeObjectRuntimeInfo(const std::string& cppClassName);

namespace testhelp {

using LxeObjectLookupFailureHandler = std::function<std::optional<LxeObjectRuntimeInfo>(const std::string&)>;

// Replaces the handler asked for classes that no manifest declared, so that tests can
// use engine-object classes without a module; an empty handler removes it. Its answers
// are not saved.
void handleLxeObjectLookupFailure(LxeObjectLookupFailureHandler handler);

} // namespace testhelp

} // namespace Velloc::builtin::types
