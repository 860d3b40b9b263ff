#include <builtin/lxeobject/CppLxeObjectImpl.hpp>
#include <builtin/lxeobject/LxeObjectManifest.hpp>
#include <builtin/lxeobject/LxeObjectRuntimeInfo.hpp>

#include <foundation/core/demangle.hpp>

#include <map>
#include <mutex>

namespace Velloc::builtin::lxeobject {

namespace {

struct RecordBundles {
    std::mutex mutex;
    std::map<std::string, std::string, std::less<>> byClass;
};

RecordBundles& recordBundles() {
    static auto* const table = new RecordBundles();
    return *table;
}

} // namespace

std::optional<std::string> lxeObjectRecordBundle(const std::string& mangledClassName) {
    RecordBundles& table = recordBundles();
    const std::lock_guard lock(table.mutex);
    const auto found = table.byClass.find(mangledClassName);
    return found != table.byClass.end() ? std::optional(found->second) : std::nullopt;
}

std::unordered_set<std::string> saveLxeObjectRuntimeInfo(const cppmicroservices::Bundle& bundle) {
    const cppmicroservices::AnyMap headers = bundle.GetHeaders();
    const auto record = headers.find("lxe_objects");
    if (record == headers.end()) {
        return {};
    }
    const auto* lxeObjects = cppmicroservices::any_cast<cppmicroservices::AnyMap>(&record->second);
    if (lxeObjects == nullptr) {
        throw types::SaveLxeObjectRuntimeInfoError("Error while trying to save the lxe_objects of bundle " +
                                                   bundle.GetSymbolicName() +
                                                   ". Details: lxe_objects must be an object keyed by mangled c++ "
                                                   "class names.");
    }
    std::unordered_set<std::string> saved = types::addLxeObjectRuntimeInfo(*lxeObjects);
    RecordBundles& table = recordBundles();
    const std::lock_guard lock(table.mutex);
    for (const std::string& cppClass : saved) {
        table.byClass.try_emplace(cppClass, bundle.GetSymbolicName());
    }
    return saved;
}

namespace detail {

void checkClassNameAgainstManifest(const char* codeName, const std::type_info& cppClass) {
    const std::string manifestName = types::getLxeObjectRuntimeInfo(cppClass.name()).oxClassName;
    if (manifestName == codeName) {
        return;
    }
    const std::optional<std::string> bundle = lxeObjectRecordBundle(cppClass.name());
    throw builtinreg::LxeObjectRegistrationError(
        "C++ class " + foundation::core::demangle_typeid_name(cppClass.name()) + " names its class '" + codeName +
        "' in its LxeObjectId, but " +
        (bundle ? "the manifest.json of bundle '" + *bundle + "'" : std::string("its lxe_objects record")) +
        " declares '" + manifestName + "' under \"" + cppClass.name() +
        "\": the two must agree (or leave the name to the manifest with a default LxeObjectId).");
}

} // namespace detail

} // namespace Velloc::builtin::lxeobject
