// The defining libraries the tool loads: bundles started through the module framework,
// each publishing its builtins as an IBuiltinLibrary service. Libraries may come and go
// while the tool runs; a snapshot of them keeps the ones it holds alive.
#pragma once

#include <builtin/BuiltinFcn.hpp>
#include <builtin/services/IBuiltinLibrary.hpp>

#include <cppmicroservices/ServiceTracker.h>

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orvex {

struct LoadedBuiltin {
    std::string library;
    const Velloc::builtin::BuiltinFcn* builtin;
};

// The builtins of the libraries tracked at one moment, sorted by name. Holding it keeps
// those libraries' objects alive, so a call that found its builtin here finishes even
// when the library's bundle stops meanwhile.
struct LibrarySnapshot {
    std::vector<LoadedBuiltin> builtins;
    std::vector<std::shared_ptr<Velloc::builtin::IBuiltinLibrary>> leases;
};

// Every IBuiltinLibrary service of the module framework, followed as bundles start and stop.
class TrackedLibraries {
public:
    // Starts every bundle under directory and tracks the libraries they publish, and those
    // published later.
    explicit TrackedLibraries(const std::filesystem::path& directory);

    // The libraries tracked now. Takes no lock any call holds while it runs.
    std::shared_ptr<const LibrarySnapshot> snapshot() const;
    // Changes each time a library comes or goes, so a holder knows when to take a new snapshot.
    int generation() const { return tracker_->GetTrackingCount(); }

private:
    std::unique_ptr<cppmicroservices::ServiceTracker<Velloc::builtin::IBuiltinLibrary>> tracker_;
};

// The builtin of that name in a list sorted by name, as loadBuiltins returns it; null
// when there is none.
const Velloc::builtin::BuiltinFcn* findBuiltin(const std::vector<LoadedBuiltin>& builtins, std::string_view name);

// Calls the builtin as the language does, without the engine. A call that no variant
// takes and that no default implementation catches gets the report of every variant
// and why it refused, as an identified error.
void invokeBuiltin(const Velloc::builtin::BuiltinFcn& builtin, int nlhs, oxArray** plhs, int nrhs, oxArray** prhs);

// The default directory of bundles: "modules" under the installation root.
std::filesystem::path defaultBundleDirectory();

} // namespace orvex
