// Module manifests with an "lxe_objects" record, read as a bundle's manifest.json is read
// and saved as a starting module saves it. Reading fails only with the reader's
// std::runtime_error, saving only with SaveLxeObjectRuntimeInfoError; every class a save
// reports is then found with the values its entry declared.
#include "BundleManifest.h"
#include "Check.hpp"

#include <builtin/lxeobject/LxeObjectRuntimeInfo.hpp>
#include <cppmicroservices/Any.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <unordered_set>
#include <utility>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using cppmicroservices::AnyMap;
using namespace Velloc::builtin::types;

using fuzz::check;

// A bundle directory of this process, removed at exit: the manifest is rewritten for
// every input, and the library it names exists (an empty file) so that only the text
// decides the outcome.
class BundleDirectory {
public:
    BundleDirectory() : path_(fs::temp_directory_path() / ("builtin2-fuzz-lxe-objects-" + std::to_string(::getpid()))) {
        fs::create_directories(path_);
        std::ofstream(path_ / "libfuzzed.so").flush();
    }
    ~BundleDirectory() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    const fs::path& path() const { return path_; }

private:
    fs::path path_;
};

template <class Integer>
void checkVariantId(const cppmicroservices::Any& declared, std::size_t saved) {
    if (const auto* value = cppmicroservices::any_cast<Integer>(&declared)) {
        check(std::cmp_equal(*value, saved));
    }
}

void checkSaved(const AnyMap& record, const std::unordered_set<std::string>& saved) {
    check(saved.size() == record.size());
    for (const auto& [key, value] : record) {
        check(saved.count(key) == 1);
        const auto* fields = cppmicroservices::any_cast<AnyMap>(&value);
        check(fields != nullptr);
        const LxeObjectRuntimeInfo info = getLxeObjectRuntimeInfo(key);
        const cppmicroservices::Any& name = fields->at("oxClassName");
        if (const auto* text = cppmicroservices::any_cast<std::string>(&name)) check(info.oxClassName == *text);
        checkVariantId<int>(fields->at("variantId"), info.variantId);
        checkVariantId<long long>(fields->at("variantId"), info.variantId);
        checkVariantId<unsigned long long>(fields->at("variantId"), info.variantId);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const BundleDirectory bundle;
    const fs::path& directory = bundle.path();
    std::ofstream(directory / "manifest.json", std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));

    cppmicroservices::detail::BundleManifest manifest;
    try {
        manifest = cppmicroservices::detail::readBundleManifest(directory);
    } catch (const std::runtime_error&) {
        return 0;
    }
    const auto found = manifest.headers.find("lxe_objects");
    if (found == manifest.headers.end()) return 0;
    const auto* record = cppmicroservices::any_cast<AnyMap>(&found->second);
    if (record == nullptr) return 0;
    std::unordered_set<std::string> saved;
    try {
        saved = addLxeObjectRuntimeInfo(*record);
    } catch (const SaveLxeObjectRuntimeInfoError&) {
        return 0;
    }
    checkSaved(*record, saved);
    return 0;
}
