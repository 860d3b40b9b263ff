#include <builtin/builtinreg/HostStyleEntry.hpp>

#include <builtin/builtinreg/BehaviourChecks.hpp>
#include <builtin/builtinreg/OutputChecks.hpp>

#include <fl/i18n.hpp>
#include <foundation/core/diag/terminate.hpp>

#include <boost/container/small_vector.hpp>

#include <algorithm>
#include <optional>

namespace Velloc::builtin::builtinreg::detail {

namespace {

// Slots past the outputs that are watched for stray writes.
constexpr std::size_t WATCHED_SLOTS = 4;

} // namespace

void checkedHostStyleEntry(int nlhs, oxArray** plhs, int nrhs, oxArray** prhs, const BuiltinVariant& variant) {
    const auto developer = reinterpret_cast<lxe::HostStyleEntry>(variant.developerFcn);
    // The host's form always has room for one output, even when none is asked for.
    const std::size_t slots = static_cast<std::size_t>(std::max(nlhs, 1));
    boost::container::small_vector<oxArray*, 8> outputs(slots + WATCHED_SLOTS, nullptr);
    {
        std::optional<CallsORVEXCheckAsserted> active;
        if (fl_diag_terminate()) {
            active.emplace(&variant);
        }
        const LogBuiltinVariantExecution_ trace(&variant);
        try {
            developer(nlhs, outputs.data(), nrhs, prhs, variant);
        } catch (...) {
            for (oxArray* output : outputs) {
                matrix::destroyArray(output);
            }
            throw;
        }
    }
    for (std::size_t i = slots; i < outputs.size(); ++i) {
        if (outputs[i] != nullptr) {
            assertLhsOverflow(nlhs, static_cast<std::int64_t>(i), variant);
        }
    }
    throwIfUnassignedOutputs(fl::i18n::utf8_to_ustring(variant.orvexFunctionName), nlhs, outputs.data());
    if (plhs == nullptr) {
        matrix::destroyArray(outputs[0]); // a result nobody asked for
        return;
    }
    std::copy_n(outputs.begin(), slots, plhs);
}

} // namespace Velloc::builtin::builtinreg::detail
