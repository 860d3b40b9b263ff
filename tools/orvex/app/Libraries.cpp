#include "Libraries.hpp"

#include <builtin/builtinreg/Explain.hpp>
#include <builtin/builtinreg/Reachability.hpp>
#include <builtin/services/findService.hpp>

#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Constants.h>

#include <foundation/cppmicroservices/framework.hpp>
#include <foundation/filesystem/paths.hpp>

#include <algorithm>
#include <iostream>
#include <ostream>
#include <stdexcept>

namespace orvex {

namespace {

namespace fs = std::filesystem;

// The bundles loadBundles started, by id, for bundlesWithoutBuiltins.
struct StartedBundles {
    std::mutex mutex;
    std::vector<long> ids;
};

StartedBundles& startedBundles() {
    static StartedBundles* const bundles = new StartedBundles; // used until exit
    return *bundles;
}

// The bundle directories at path: path itself when it holds a manifest, else its
// subdirectories that do, by name.
std::vector<fs::path> bundleDirectoriesAt(const fs::path& path) {
    if (fs::exists(path / "manifest.json")) {
        return {path};
    }
    std::vector<fs::path> found;
    for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
        if (entry.is_directory() && fs::exists(entry.path() / "manifest.json")) {
            found.push_back(entry.path());
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

bool declaresActivator(const cppmicroservices::Bundle& bundle) {
    const cppmicroservices::AnyMap headers = bundle.GetHeaders();
    const auto found = headers.find("activator");
    if (found == headers.end()) {
        return false;
    }
    const bool* value = cppmicroservices::any_cast<bool>(&found->second);
    return value != nullptr && *value;
}

long serviceIdOf(const cppmicroservices::ServiceReferenceBase& reference) {
    const cppmicroservices::Any id = reference.GetProperty(cppmicroservices::Constants::SERVICE_ID);
    const long* value = cppmicroservices::any_cast<long>(&id);
    return value != nullptr ? *value : -1;
}

std::string bundleText(const cppmicroservices::Bundle& bundle) {
    return bundle ? "the bundle '" + bundle.GetSymbolicName() + "' at " + bundle.GetLocation() : "an unknown bundle";
}

} // namespace

std::vector<fs::path> BundleFolders::all() const {
    std::vector<fs::path> folders;
    if (withDefault) {
        folders.push_back(defaultBundleDirectory());
    }
    folders.insert(folders.end(), extra.begin(), extra.end());
    return folders;
}

std::filesystem::path defaultBundleDirectory() {
    return foundation::filesystem::getInstallRoot() / "modules";
}

std::size_t loadBundles(const std::filesystem::path& path, std::ostream& report) {
    if (!fs::is_directory(path)) {
        throw std::invalid_argument("no bundle directory at '" + path.string() + "'");
    }
    const auto framework = foundation::cppmicroservices::getFramework();
    if (!framework) {
        throw std::runtime_error("the module framework did not start");
    }
    std::size_t started = 0;
    for (const fs::path& directory : bundleDirectoriesAt(path)) {
        try {
            for (cppmicroservices::Bundle& bundle : framework->GetBundleContext().InstallBundles(directory.string())) {
                bundle.Start();
                ++started;
                {
                    StartedBundles& bundles = startedBundles();
                    const std::lock_guard lock(bundles.mutex);
                    if (std::find(bundles.ids.begin(), bundles.ids.end(), bundle.GetBundleId()) == bundles.ids.end()) {
                        bundles.ids.push_back(bundle.GetBundleId());
                    }
                }
                if (!declaresActivator(bundle)) {
                    report << "orvex: " << bundleText(bundle)
                           << " has no activator (its manifest does not say \"activator\": true), so it registers "
                              "no builtins\n";
                }
            }
        } catch (const std::exception& error) {
            report << "orvex: skipped the bundle at " << directory.string() << ": " << error.what() << '\n';
        }
    }
    return started;
}

std::vector<std::string> bundlesWithoutBuiltins() {
    std::vector<std::string> found;
    const auto framework = foundation::cppmicroservices::getFramework();
    if (!framework) {
        return found;
    }
    const cppmicroservices::BundleContext context = framework->GetBundleContext();
    std::vector<long> publishing;
    for (const auto& reference : context.GetServiceReferences<Velloc::builtin::IBuiltinLibrary>()) {
        if (const cppmicroservices::Bundle bundle = reference.GetBundle()) {
            publishing.push_back(bundle.GetBundleId());
        }
    }
    std::vector<long> ids;
    {
        StartedBundles& bundles = startedBundles();
        const std::lock_guard lock(bundles.mutex);
        ids = bundles.ids;
    }
    for (const long id : ids) {
        const cppmicroservices::Bundle bundle = context.GetBundle(id);
        if (bundle && bundle.GetState() == cppmicroservices::Bundle::STATE_ACTIVE &&
            std::find(publishing.begin(), publishing.end(), id) == publishing.end()) {
            found.push_back(bundle.GetSymbolicName() + " (" + bundle.GetLocation() + ")");
        }
    }
    return found;
}

TrackedLibraries::TrackedLibraries(const BundleFolders& folders, std::ostream& report, bool reportUnreachable)
    : report_(report), reportUnreachable_(reportUnreachable) {
    // The host's own services first: defining libraries rely on them.
    Velloc::builtin::builtinreg::loadBuiltinServices();
    const auto framework = foundation::cppmicroservices::getFramework();
    if (!framework) {
        throw std::runtime_error("the module framework did not start");
    }
    for (const fs::path& folder : folders.all()) {
        try {
            loadBundles(folder, report_);
        } catch (const std::exception& error) {
            report_ << "orvex: skipped the bundle folder " << folder.string() << ": " << error.what() << '\n';
        }
    }
    tracker_ = std::make_unique<cppmicroservices::ServiceTracker<Velloc::builtin::IBuiltinLibrary>>(
        framework->GetBundleContext());
    tracker_->Open();
}

TrackedLibraries::TrackedLibraries(const std::filesystem::path& directory)
    : TrackedLibraries(BundleFolders{false, {directory}}, std::cerr) {}

const TrackedLibraries::Checked& TrackedLibraries::check(
    const cppmicroservices::ServiceReference<Velloc::builtin::IBuiltinLibrary>& reference,
    Velloc::builtin::IBuiltinLibrary& library) const {
    const long id = serviceIdOf(reference);
    {
        const std::lock_guard lock(mutex_);
        if (const auto found = checked_.find(id); found != checked_.end()) {
            return found->second;
        }
    }
    // Registration runs here, the first time the library is asked for its builtins: what
    // only it can see fails this library alone.
    Checked checked;
    std::string reason;
    try {
        checked.name = library.getLibraryName();
        checked.builtins = library.getBuiltins();
        if (std::find(checked.builtins.begin(), checked.builtins.end(), nullptr) != checked.builtins.end()) {
            reason = "getBuiltins() returned a null builtin";
        }
    } catch (const std::exception& error) {
        reason = error.what();
    } catch (...) {
        reason = "registration threw something that is not a std::exception";
    }
    checked.usable = reason.empty();
    const std::lock_guard lock(mutex_);
    const auto [entry, inserted] = checked_.emplace(id, std::move(checked));
    if (inserted) {
        const Checked& result = entry->second;
        if (!result.usable) {
            report_ << "orvex: the library '" << (result.name.empty() ? "?" : result.name) << "' of "
                    << bundleText(reference.GetBundle()) << " is not loaded: " << reason << '\n';
        } else if (reportUnreachable_) {
            for (const Velloc::builtin::BuiltinFcn* builtin : result.builtins) {
                for (const auto& finding : Velloc::builtin::builtinreg::findUnreachableVariants(*builtin)) {
                    report_ << "orvex: " << result.name << ": " << builtin->name << ": " << toString(finding)
                            << '\n';
                }
            }
        }
    }
    return entry->second;
}

void TrackedLibraries::reportHidden(const std::vector<LoadedBuiltin>& builtins) const {
    for (std::size_t i = 1; i < builtins.size(); ++i) {
        const LoadedBuiltin& first = builtins[i - 1];
        const LoadedBuiltin& hidden = builtins[i];
        if (hidden.builtin->name != first.builtin->name || hidden.builtin == first.builtin) {
            continue;
        }
        const std::string key = hidden.library + "\n" + hidden.builtin->name;
        const std::lock_guard lock(mutex_);
        if (hiddenReported_.insert(key).second) {
            report_ << "orvex: the builtin '" << hidden.builtin->name << "' of " << hidden.library
                    << " is hidden by the one of " << first.library << ", which was loaded first\n";
        }
    }
}

std::shared_ptr<const LibrarySnapshot> TrackedLibraries::snapshot() const {
    auto snapshot = std::make_shared<LibrarySnapshot>();
    // Best first: the library loaded first comes first among those of equal ranking.
    for (const auto& reference : tracker_->GetServiceReferences()) {
        std::shared_ptr<Velloc::builtin::IBuiltinLibrary> library = tracker_->GetService(reference);
        if (!library) {
            continue; // gone meanwhile
        }
        const Checked& checked = check(reference, *library);
        if (!checked.usable) {
            continue;
        }
        for (const Velloc::builtin::BuiltinFcn* builtin : checked.builtins) {
            snapshot->builtins.push_back({checked.name, builtin});
        }
        snapshot->leases.push_back(std::move(library));
    }
    std::stable_sort(snapshot->builtins.begin(), snapshot->builtins.end(),
                     [](const LoadedBuiltin& a, const LoadedBuiltin& b) { return a.builtin->name < b.builtin->name; });
    reportHidden(snapshot->builtins);
    return snapshot;
}

const Velloc::builtin::BuiltinFcn* findBuiltin(const std::vector<LoadedBuiltin>& builtins, std::string_view name) {
    const auto found = std::lower_bound(builtins.begin(), builtins.end(), name,
                                        [](const LoadedBuiltin& b, std::string_view n) { return b.builtin->name < n; });
    return found != builtins.end() && found->builtin->name == name ? found->builtin : nullptr;
}

void invokeBuiltin(const Velloc::builtin::BuiltinFcn& builtin, int nlhs, oxArray** plhs, int nrhs, oxArray** prhs) {
    namespace builtinreg = Velloc::builtin::builtinreg;
    // Without a default implementation invoke has nothing to tell the user but that it
    // has no implementation to run.
    if (builtin.defaultVariant.functionDescriptor.getHostStyleEntry() == nullptr &&
        builtinreg::explain(builtin, nlhs, nrhs, prhs).chosen == nullptr) {
        builtinreg::throwNoMatchingVariant(builtin, nlhs, nrhs, prhs);
    }
    builtin.invoke(nlhs, plhs, nrhs, prhs, Velloc::builtin::BuiltinFcn::NoLxe);
}

} // namespace orvex
