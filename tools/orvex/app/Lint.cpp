#include "Lint.hpp"

#include <builtin/builtinreg/Explain.hpp>
#include <builtin/builtinreg/MakeVariant.hpp>

#include <boost/json.hpp>

#include <algorithm>
#include <ostream>
#include <span>

namespace orvex {

using Velloc::builtin::BuiltinVariant;
using Velloc::builtin::builtinreg::CleanupFinding;

namespace {

// Does every call that reaches later also reach earlier? Both take the same counts and
// earlier accepts each of later's declared inputs (element-wise when it runs so).
bool takesEveryCallOf(const BuiltinVariant& earlier, const BuiltinVariant& later) {
    if (earlier.inputArgTypes.size() != later.inputArgTypes.size() ||
        earlier.outputArgTypes.size() != later.outputArgTypes.size() ||
        (later.isElementWise && !earlier.isElementWise)) {
        return false;
    }
    for (std::size_t i = 0; i < earlier.inputArgTypes.size(); ++i) {
        if (!(earlier.inputArgTypes[i] == later.inputArgTypes[i]) &&
            !Velloc::builtin::types::isAcceptable(earlier.inputArgTypes[i], later.inputArgTypes[i])) {
            return false;
        }
    }
    return true;
}

// Variants of the interpreter's list that no call reaches, because an earlier one takes
// all their calls.
std::vector<CleanupFinding> shadowedForInvoke(const Velloc::builtin::BuiltinFcn& builtin) {
    std::vector<CleanupFinding> findings;
    const std::span<const BuiltinVariant> list = builtin.getSearchedByInvokeNoLxe();
    for (std::size_t w = 0; w < list.size(); ++w) {
        for (std::size_t v = 0; v < w; ++v) {
            if (takesEveryCallOf(list[v], list[w])) {
                findings.push_back({CleanupFinding::Kind::SHADOWED, Velloc::builtin::builtinreg::variantLabel(list[w]),
                                    Velloc::builtin::builtinreg::variantLabel(list[v])});
                break;
            }
        }
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
        std::vector<CleanupFinding> findings = shadowedForInvoke(*loaded.builtin);
        // What cleanup did is kept by builtins made with the registration templates.
        if (const auto* registered =
                dynamic_cast<const Velloc::builtin::builtinreg::RegisteredBuiltin*>(loaded.builtin)) {
            findings.insert(findings.begin(), registered->getCleanupFindings().begin(),
                            registered->getCleanupFindings().end());
        }
        for (const CleanupFinding& finding : findings) {
            ++count;
            if (json) {
                report.push_back({{"library", loaded.library},
                                  {"builtin", loaded.builtin->name},
                                  {"kind", toString(finding.kind)},
                                  {"variant", finding.variant},
                                  {"by", finding.by}});
            } else {
                out << loaded.library << ": " << loaded.builtin->name << ": " << toString(finding) << '\n';
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
