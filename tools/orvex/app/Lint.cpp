#include "Lint.hpp"

#include <builtin/builtinreg/Explain.hpp>
#include <builtin/builtinreg/MakeVariant.hpp>
#include <builtin/builtinreg/Reachability.hpp>

#include <boost/json.hpp>

#include <algorithm>
#include <ostream>

namespace orvex {

using Velloc::builtin::builtinreg::CleanupFinding;
using Velloc::builtin::builtinreg::UnreachableVariant;

namespace {

struct Finding {
    std::string kind;
    std::string variant;
    std::string by;
    std::string reason;
    std::string fix;
};

// One line: "shadowed: VARIANT by EARLIER" or "KIND: VARIANT: REASON. Fix: FIX."
std::string lineOf(const Finding& finding) {
    if (finding.reason.empty()) {
        return finding.kind + ": " + finding.variant + (finding.by.empty() ? "" : " by " + finding.by);
    }
    return finding.kind + ": " + finding.variant + ": " + finding.reason + ". Fix: " + finding.fix + ".";
}

std::vector<Finding> findingsOf(const Velloc::builtin::BuiltinFcn& builtin) {
    std::vector<Finding> findings;
    for (const UnreachableVariant& unreachable : Velloc::builtin::builtinreg::findUnreachableVariants(builtin)) {
        if (unreachable.kind == UnreachableVariant::Kind::SHADOWED) {
            findings.push_back({"shadowed", unreachable.variant, unreachable.by, {}, {}});
        } else {
            findings.push_back({toString(unreachable.kind), unreachable.variant, {}, unreachable.reason, unreachable.fix});
        }
    }
    // What cleanup did is kept by builtins made with the registration templates. A boxed
    // copy it removed matters only where its original lost the interpreter's calls, which
    // the reachability findings above say with the reason.
    if (const auto* registered = dynamic_cast<const Velloc::builtin::builtinreg::RegisteredBuiltin*>(&builtin)) {
        std::vector<Finding> cleanup;
        for (const CleanupFinding& finding : registered->getCleanupFindings()) {
            if (finding.kind != CleanupFinding::Kind::UNSUPPORTED_BOXING) {
                cleanup.push_back({toString(finding.kind), finding.variant, finding.by, {}, {}});
            }
        }
        findings.insert(findings.begin(), cleanup.begin(), cleanup.end());
    }
    return findings;
}

} // namespace

int lintBuiltins(const std::vector<LoadedBuiltin>& builtins, const std::vector<std::string>& libraries, bool json,
                 std::ostream& out) {
    boost::json::array report;
    std::size_t count = 0;
    for (const LoadedBuiltin& loaded : builtins) {
        if (!libraries.empty() && std::find(libraries.begin(), libraries.end(), loaded.library) == libraries.end()) {
            continue;
        }
        for (const Finding& finding : findingsOf(*loaded.builtin)) {
            ++count;
            if (json) {
                report.push_back({{"library", loaded.library},
                                  {"builtin", loaded.builtin->name},
                                  {"kind", finding.kind},
                                  {"variant", finding.variant},
                                  {"by", finding.by},
                                  {"reason", finding.reason},
                                  {"fix", finding.fix}});
            } else {
                out << loaded.library << ": " << loaded.builtin->name << ": " << lineOf(finding) << '\n';
            }
        }
    }
    if (json) {
        out << boost::json::serialize(report) << '\n';
    } else {
        out << count << (count == 1 ? " finding\n" : " findings\n");
    }
    return count == 0 ? 0 : 1;
}

} // namespace orvex
