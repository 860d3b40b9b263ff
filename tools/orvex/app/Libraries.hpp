// The defining libraries the tool loads: bundles started through the module framework,
// each publishing its builtins as an IBuiltinLibrary service. Libraries may come and go
// while the tool runs; a snapshot of them keeps the ones it holds alive.
//
// One bad bundle or library never takes the others down. What goes wrong is reported on
// the report stream (standard error), one line each, starting "orvex: ", and the rest
// load and work:
// - a bundle that fails to install or start (a manifest naming a missing library, an
//   activator that throws) is named with its path and the reason, and skipped;
// - a bundle without an activator ("activator" not true in its manifest) is mentioned:
//   it starts, but registers nothing;
// - a library whose registration throws (its builtins are made when the tool first asks
//   for them) is named with its bundle and the reason, and left out;
// - every variant of a library that no interpreted call reaches is named with the reason
//   and the fix (builtinreg/Reachability.hpp), unless the command lists them itself;
// - a builtin hidden by one of the same name in a library loaded before is named.
#pragma once

#include <builtin/BuiltinFcn.hpp>
#include <builtin/services/IBuiltinLibrary.hpp>

#include <cppmicroservices/ServiceTracker.h>

#include <filesystem>
#include <iosfwd>
#include <map>
#include <memory>
#include <mutex>
#include <set>
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

// Where the tool finds bundles: the default folder, <root>/modules, unless left out, and
// each folder given, in order.
struct BundleFolders {
    bool withDefault = true;
    std::vector<std::filesystem::path> extra;

    std::vector<std::filesystem::path> all() const;
};

// Installs and starts each bundle at path (a bundle's directory, or a folder of them),
// one at a time: a bundle that fails is reported on report with its path and the reason
// and skipped. Returns how many bundles started. A path that is no directory throws
// std::invalid_argument.
std::size_t loadBundles(const std::filesystem::path& path, std::ostream& report);

// The bundles loadBundles started that are active and publish no IBuiltinLibrary: each
// as "NAME (PATH)".
std::vector<std::string> bundlesWithoutBuiltins();

// Every IBuiltinLibrary service of the module framework, followed as bundles start and stop.
class TrackedLibraries {
public:
    // Starts every bundle in folders (reporting those that fail on report) and tracks the
    // libraries they publish, and those published later. report must outlive this object.
    // With reportUnreachable false, the variants no interpreted call reaches are left to
    // the command, which lists them.
    TrackedLibraries(const BundleFolders& folders, std::ostream& report, bool reportUnreachable = true);
    // The libraries of one folder, reported on standard error.
    explicit TrackedLibraries(const std::filesystem::path& directory);

    // The libraries tracked now, without those whose registration failed. Takes no lock
    // any call holds while it runs.
    std::shared_ptr<const LibrarySnapshot> snapshot() const;
    // Changes each time a library comes or goes, so a holder knows when to take a new snapshot.
    int generation() const { return tracker_->GetTrackingCount(); }

private:
    // What the tool learned of one library service the first time it saw it.
    struct Checked {
        bool usable = false;
        std::string name;
        std::vector<const Velloc::builtin::BuiltinFcn*> builtins;
    };

    const Checked& check(const cppmicroservices::ServiceReference<Velloc::builtin::IBuiltinLibrary>& reference,
                         Velloc::builtin::IBuiltinLibrary& library) const;
    void reportHidden(const std::vector<LoadedBuiltin>& builtins) const;

    std::unique_ptr<cppmicroservices::ServiceTracker<Velloc::builtin::IBuiltinLibrary>> tracker_;
    std::ostream& report_;
    bool reportUnreachable_;
    mutable std::mutex mutex_;
    // By service id, which the framework never reuses.
    mutable std::map<long, Checked> checked_;
    mutable std::set<std::string> hiddenReported_;
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
