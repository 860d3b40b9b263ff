#include <builtin/lxeobject/LxeObjectRuntimeInfo.hpp>

#include <boost/exception/diagnostic_information.hpp>
#include <boost/numeric/conversion/cast.hpp>

#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace Velloc::builtin::types {

namespace {

using cppmicroservices::Any;
using cppmicroservices::AnyMap;

struct RuntimeInfoTable {
    std::shared_mutex mutex;
    std::unordered_map<std::string, LxeObjectRuntimeInfo> entries;
    testhelp::LxeObjectLookupFailureHandler lookupFailureHandler;
};

// Never destroyed: modules may look classes up while the process exits.
RuntimeInfoTable& runtimeInfoTable() {
    static auto* const table = new RuntimeInfoTable();
    return *table;
}

std::string saveErrorPrefix(const std::string& key) { return "Error while trying to save " + key + " runtime info. Details: "; }

// A mangled name holds no NUL; the demangler would stop at one and judge only the front.
bool demangles(const std::string& name) {
    if (name.find('\0') != std::string::npos) {
        return false;
    }
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> demangled(
        abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &status), &std::free);
    return status == 0 && demangled != nullptr;
}

std::string classNameOf(const Any& value) {
    if (const auto* text = cppmicroservices::any_cast<std::string>(&value)) {
        return *text;
    }
    if (const auto* view = cppmicroservices::any_cast<std::string_view>(&value)) {
        return std::string(*view);
    }
    if (const auto* literal = cppmicroservices::any_cast<const char*>(&value); literal != nullptr && *literal != nullptr) {
        return *literal;
    }
    throw cppmicroservices::BadAnyCastException(value.Type(), typeid(std::string));
}

template <class Integer>
bool tryVariantId(const Any& value, const std::string& key, std::size_t& variantId) {
    const Integer* held = cppmicroservices::any_cast<Integer>(&value);
    if (held == nullptr) {
        return false;
    }
    try {
        variantId = boost::numeric_cast<std::size_t>(*held);
    } catch (const boost::numeric::bad_numeric_cast&) {
        throw SaveLxeObjectRuntimeInfoError("Unable to cast variant id for " + key +
                                            " to size_t.\nVariant id must be a value greater than or equal to 0.");
    }
    return true;
}

// Manifests read from JSON hold int, long long or unsigned long long; records built in
// code may hold any integer width.
std::size_t variantIdOf(const Any& value, const std::string& key) {
    std::size_t variantId = 0;
    if (tryVariantId<int>(value, key, variantId) || tryVariantId<long long>(value, key, variantId) ||
        tryVariantId<unsigned long long>(value, key, variantId) || tryVariantId<long>(value, key, variantId) ||
        tryVariantId<unsigned long>(value, key, variantId) || tryVariantId<unsigned>(value, key, variantId) ||
        tryVariantId<short>(value, key, variantId) || tryVariantId<unsigned short>(value, key, variantId) ||
        tryVariantId<signed char>(value, key, variantId) || tryVariantId<unsigned char>(value, key, variantId) ||
        tryVariantId<char>(value, key, variantId)) {
        return variantId;
    }
    throw cppmicroservices::BadAnyCastException(value.Type(), typeid(std::size_t));
}

void saveEntry(RuntimeInfoTable& table, const std::string& key, const Any& value) {
    if (!demangles(key)) {
        throw SaveLxeObjectRuntimeInfoError(saveErrorPrefix(key) + "found cppClassName '" + key +
                                            "', but this is not a demangelable typename.\nEach key within lxe_objects "
                                            "MUST be a mangled c++ class name.");
    }
    const AnyMap* fields = cppmicroservices::any_cast<AnyMap>(&value);
    if (fields == nullptr) {
        const cppmicroservices::BadAnyCastException castError(value.Type(), typeid(AnyMap));
        throw SaveLxeObjectRuntimeInfoError(
            saveErrorPrefix(key) + castError.what() +
            "\nEach value in the lxe_objects object must be an object containing 'oxClassName' and 'variantId' "
            "keys'. 'oxClassName' must be a type castable to std::string and 'variantId' must be a type castable "
            "to size_t for each and every lxe_object");
    }
    if (fields->count("oxClassName") == 0 || fields->count("variantId") == 0) {
        throw SaveLxeObjectRuntimeInfoError(saveErrorPrefix(key) +
                                            "missing 'oxClassName' and/or 'variantId' as keys\n'oxClassName' and "
                                            "'variantId' MUST be present for each lxe_object");
    }
    const std::size_t variantId = variantIdOf(fields->at("variantId"), key);
    LxeObjectRuntimeInfo info{classNameOf(fields->at("oxClassName")), variantId};

    if (const auto stored = table.entries.find(key); stored != table.entries.end()) {
        if (!(stored->second == info)) {
            throw SaveLxeObjectRuntimeInfoError(saveErrorPrefix(key) + "Attempted to insert " + key +
                                                ", but the class already exists with different lxe runtime "
                                                "information.");
        }
        return;
    }
    table.entries.emplace(key, std::move(info));
}

} // namespace

std::unordered_set<std::string> addLxeObjectRuntimeInfo(const cppmicroservices::AnyMap& lxeObjects) {
    RuntimeInfoTable& table = runtimeInfoTable();
    const std::unique_lock lock(table.mutex);
    std::unordered_set<std::string> saved;
    for (const auto& [key, value] : lxeObjects) {
        try {
            saveEntry(table, key, value);
        } catch (const SaveLxeObjectRuntimeInfoError&) {
            throw;
        } catch (const std::exception& error) {
            throw SaveLxeObjectRuntimeInfoError("Unexpected error while trying to save " + key +
                                                " runtime info. Details: " + error.what());
        } catch (...) {
            throw SaveLxeObjectRuntimeInfoError("Unknown error while trying to save " + key +
                                                " runtime info. Details: " +
                                                boost::current_exception_diagnostic_information());
        }
        saved.insert(key);
    }
    return saved;
}

LxeObjectRuntimeInfo getLxeObjectRuntimeInfo(const std::string& cppClassName) {
    RuntimeInfoTable& table = runtimeInfoTable();
    const std::shared_lock lock(table.mutex);
    if (const auto found = table.entries.find(cppClassName); found != table.entries.end()) {
        return found->second;
    }
    if (table.lookupFailureHandler) {
        if (std::optional<LxeObjectRuntimeInfo> answered = table.lookupFailureHandler(cppClassName)) {
            return std::move(*answered);
        }
    }
    std::string message = "Error while trying to get " + cppClassName + " runtime info. Details: " + cppClassName +
                          " is not found as a saved lxe object.\nLxeObjects:\n";
    for (const auto& entry : table.entries) {
        message += "'" + entry.first + "'\n";
    }
    throw GetLxeObjectRuntimeInfoError(message);
}

namespace testhelp {

void handleLxeObjectLookupFailure(LxeObjectLookupFailureHandler handler) {
    RuntimeInfoTable& table = runtimeInfoTable();
    LxeObjectLookupFailureHandler previous;
    {
        const std::unique_lock lock(table.mutex);
        previous = std::exchange(table.lookupFailureHandler, std::move(handler));
    }
    // The previous handler is destroyed here, unlocked: what it captured may look classes up
    // as it goes.
}

} // namespace testhelp

} // namespace Velloc::builtin::types
