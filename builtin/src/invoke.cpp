#include <builtin/BuiltinFcn.hpp>

#include "CallConversion.hpp"
#include "CallEnvironment.hpp"

#include <builtin/builtinreg/BehaviourChecks.hpp>
#include <builtin/builtinreg/Explain.hpp>
#include <builtin/builtinreg/OutputChecks.hpp>
#include <builtin/detail/DispatchCache.hpp>

#include <foundation/core/diag/terminate.hpp>
#include <foundation/log/Channel.hpp>

#include <boost/container/small_vector.hpp>

#include <stdexcept>
#include <string>

namespace Velloc::builtin {

namespace {

using builtinreg::detail::DispatchCache;
using Parameters = boost::container::small_vector<Parameter, 8>;

// Gives back the references that input conversion took, however the call ends.
class ParameterList {
public:
    explicit ParameterList(std::size_t capacity) { parameters_.reserve(capacity); }
    ParameterList(const ParameterList&) = delete;
    ParameterList& operator=(const ParameterList&) = delete;
    ~ParameterList() {
        for (const Parameter& parameter : parameters_) {
            detail::releaseParameter(parameter);
        }
    }

    void append(Parameter parameter) { parameters_.push_back(parameter); }
    const Parameter* data() const noexcept { return parameters_.data(); }

private:
    Parameters parameters_;
};

const BuiltinVariant* findAcceptingVariant(std::span<const BuiltinVariant> list, const VariantSignature& call) {
    for (const BuiltinVariant& variant : findArityRun(list, call.getNlhs(), call.getNrhs())) {
        if (variant == call) {
            return &variant;
        }
    }
    return nullptr;
}

template <class Run>
[[gnu::noinline]] auto runBetweenExecutionRecords(const BuiltinVariant& variant, const Run& run) {
    const builtinreg::detail::LogBuiltinVariantExecution_ trace(&variant);
    return run();
}

// Runs the variant between the execution records, which cost one flag read when their
// channel is off.
template <class Run>
auto traced(const BuiltinVariant& variant, const Run& run) {
    static const foundation::log::Channel& executions = builtinreg::detail::executionChannel();
    if (executions.isEnabled()) [[unlikely]] {
        return runBetweenExecutionRecords(variant, run);
    }
    return run();
}

// When checks are armed, holds the variant to its promises while it runs: a call into
// the language is judged against it, and a warning it promised not to raise ends the
// process. Disarmed they cost the one flag read that says so.
template <class Run>
auto checkedIfArmed(const BuiltinVariant& variant, bool checked, const Run& run) {
    if (!checked) [[likely]] {
        return traced(variant, run);
    }
    const builtinreg::CallsORVEXCheckAsserted active(&variant);
    if (variant.mayRaiseWarnings) {
        return traced(variant, run);
    }
    const builtinreg::detail::AssertIfWarnings assertIfWarnings(variant);
    const matrix::WarningCapture capture(assertIfWarnings);
    return traced(variant, run);
}

// Runs the variant's generic entry, then reports what it collected: warnings first, even
// when the call also failed, then the error.
Parameter runGenericEntry(const BuiltinVariant& variant, const Parameter* parameters) {
    std::vector<std::u16string> warnings;
    std::exception_ptr pendingError;
    bool pending = false;
    detail::CallEnvironment environment(warnings, pendingError);
    Parameter result = variant.functionDescriptor.getGenericEntry()(variant.functionDescriptor, environment, pending,
                                                                    parameters);
    if (pending) {
        for (const std::u16string& warning : warnings) {
            matrix::handleWarning(warning);
        }
        if (pendingError) {
            std::rethrow_exception(pendingError);
        }
    }
    return result;
}

// Whether the caller gets a result: one asked for, or none asked for from a variant
// that has one, which then goes to plhs[0] if there is room or is destroyed.
bool deliversResult(const BuiltinVariant& variant, int nlhs) {
    return nlhs == 1 || (nlhs == 0 && !variant.outputArgTypes.empty());
}

// A variant that declares an output must produce it, and a host array it made itself
// must be of the declared type when checks are armed. What the framework made (a
// converted C++ value, an element-wise loop's output) is right by construction.
void deliver(const BuiltinVariant& variant, int nlhs, oxArray** plhs, oxArray* output, bool returnedArray,
             bool checked) {
    if (output == nullptr) {
        builtinreg::detail::assertLhsIsNotNull(nlhs, 0, variant);
    }
    if (checked && returnedArray && !variant.outputArgTypes.empty() && !variant.isElementWise) {
        builtinreg::detail::assertLhsWrongType(variant, output);
    }
    if (plhs != nullptr) {
        plhs[0] = output;
    } else {
        matrix::destroyArray(output);
    }
}

// Out of line: its parameters would make every call's frame large.
[[gnu::noinline]] void callGenericEntry(const BuiltinVariant& variant, int nlhs, oxArray** plhs, int nrhs,
                                        oxArray* const* prhs) {
    const VariantSignature call(static_cast<std::uint64_t>(nlhs), static_cast<std::uint64_t>(nrhs), prhs);
    ParameterList parameters(call.getNrhs());
    for (std::size_t i = 0; i < call.getNrhs(); ++i) {
        if (!types::skipDuringInvoke(variant.inputArgTypes[i])) {
            parameters.append(detail::toParameter(call, i, variant.inputArgTypes[i]));
        }
    }
    const bool checked = fl_diag_terminate();
    const Parameter result =
        checkedIfArmed(variant, checked, [&] { return runGenericEntry(variant, parameters.data()); });
    oxArray* const* returned = boost::get<oxArray*>(&result);
    if (deliversResult(variant, nlhs)) {
        deliver(variant, nlhs, plhs, detail::toOxArray(result), returned != nullptr, checked);
    } else if (returned != nullptr) {
        // Nothing is stored for other counts; an array result must not outlive the call.
        matrix::destroyArray(*returned);
    }
}

// Whether the direct entry takes these inputs as they are.
inline bool takesAsTheyAre(const DirectEntry& entry, int nrhs, const types::InputKey* keys) noexcept {
    for (int i = 0; i < nrhs; ++i) {
        if (entry.requiredKeys[i] != DirectEntry::ANY_ARRAY && entry.requiredKeys[i] != keys[i].bits()) {
            return false;
        }
    }
    return true;
}

// The same call as through the generic entry, without parameters or a call environment:
// a function with a direct entry has one output, neither warns nor throws through the
// environment, and lets its exceptions escape.
void callDirectEntry(const BuiltinVariant& variant, const DirectEntry& entry, int nlhs, oxArray** plhs,
                     oxArray* const* prhs) {
    const bool checked = fl_diag_terminate();
    oxArray* output = checkedIfArmed(variant, checked, [&] { return entry.call(prhs); });
    if (deliversResult(variant, nlhs)) {
        deliver(variant, nlhs, plhs, output, entry.returnsArray, checked);
    } else {
        matrix::destroyArray(output);
    }
}

const foundation::log::Channel& dispatchChannel() {
    static const foundation::log::Channel& channel = foundation::log::channel("builtin2::dispatch");
    return channel;
}

// One record per call on "builtin2::dispatch": the builtin, the list searched and the
// variant taken ("plus: searchedByInvokeNoLxe -> samplelib::plusDouble [double, double]").
// A disabled channel costs one flag read.
[[gnu::noinline]] void traceDispatch(const BuiltinFcn& builtin, std::span<const BuiltinVariant> list, const BuiltinVariant* taken) {
    foundation::log::logIf(dispatchChannel(), 1, "invoke", __LINE__, [&] {
        std::string text = builtin.name + ": " + listNameOf(builtin, list) + " -> ";
        if (taken == &builtin.defaultVariant) {
            return text + "default implementation " + taken->cppFunctionName;
        }
        return text + (taken != nullptr ? builtinreg::variantLabel(*taken) : std::string("no variant"));
    });
}

// The search of the list, for a call the dispatch cache does not serve.
[[gnu::noinline]] const BuiltinVariant* searchList(std::span<const BuiltinVariant> list, int nlhs, int nrhs,
                                                   oxArray* const* prhs) {
    return findAcceptingVariant(list, VariantSignature(static_cast<std::uint64_t>(nlhs),
                                                       static_cast<std::uint64_t>(nrhs), prhs));
}

// Calls the variant: through its direct entry when it has one that takes these inputs as
// they are, otherwise through its generic entry.
void callVariant(const BuiltinVariant& variant, int nlhs, oxArray** plhs, int nrhs, oxArray** prhs,
                 const types::InputKey* keys) {
    if (const DirectEntry* entry = variant.directEntry;
        entry != nullptr && keys != nullptr && takesAsTheyAre(*entry, nrhs, keys)) {
        callDirectEntry(variant, *entry, nlhs, plhs, prhs);
        return;
    }
    callGenericEntry(variant, nlhs, plhs, nrhs, prhs);
}

} // namespace

// Lists with the same variants share an index; chooseVariants returns one of three.
inline unsigned BuiltinFcn::listIndexOf(std::span<const BuiltinVariant> list) const noexcept {
    const auto isList = [&](const VariantArray& candidate) {
        return list.data() == candidate.variants && list.size() == candidate.numVariants;
    };
    return isList(searchedByInvokeNoLxe_) ? 0 : (isList(searchedByInvokeAfterLxe_) ? 1 : 2);
}

void BuiltinFcn::invoke(int nlhs, oxArray** plhs, int nrhs, oxArray** prhs,
                        VariantsToConsider variantsToConsider) const {
    // A caller's mistake in the calling form must not become a wild write.
    if (nlhs < 0 || nrhs < 0 || (nlhs > 0 && plhs == nullptr) || (nrhs > 0 && prhs == nullptr)) {
        throw std::invalid_argument("BuiltinFcn::invoke of " + name + ": " + std::to_string(nlhs) + " outputs into " +
                                    (plhs == nullptr ? "no array" : "an array") + ", " + std::to_string(nrhs) +
                                    " inputs from " + (prhs == nullptr ? "no array" : "an array"));
    }
    const std::span<const BuiltinVariant> list =
        variantsToConsider == NoLxe ? searchedByInvokeNoLxe_.span() : chooseVariants(nrhs, prhs, variantsToConsider);
    if (!list.empty()) {
        const BuiltinVariant* variant = nullptr;
        types::InputKey keys[DispatchCache::MAX_INPUTS];
        builtinreg::detail::CallKey key;
        const bool keyed = static_cast<std::size_t>(nrhs) <= DispatchCache::MAX_INPUTS;
        if (keyed) {
            for (int i = 0; i < nrhs; ++i) {
                keys[i] = types::InputKey::of(prhs[i]);
            }
        }
        if (keyed && DispatchCache::keyOf(listIndexOf(list), static_cast<std::uint64_t>(nlhs),
                                          static_cast<std::uint64_t>(nrhs), prhs, keys, key)) {
            if (const DispatchCache::Lookup seen = dispatchCache_->find(key); seen.found) {
                variant = seen.variant;
            } else {
                variant = searchList(list, nlhs, nrhs, prhs);
                dispatchCache_->store(key, variant);
            }
        } else {
            variant = searchList(list, nlhs, nrhs, prhs);
        }
        if (variant != nullptr) {
            if (dispatchChannel().isEnabled()) [[unlikely]] {
                traceDispatch(*this, list, variant);
            }
            callVariant(*variant, nlhs, plhs, nrhs, prhs, keyed ? keys : nullptr);
            return;
        }
    }
    if (const lxe::HostStyleEntry entry = defaultVariant.functionDescriptor.getHostStyleEntry()) {
        traceDispatch(*this, list, &defaultVariant);
        entry(nlhs, plhs, nrhs, prhs, defaultVariant);
        return;
    }
    traceDispatch(*this, list, nullptr);
    throw std::logic_error("builtin function implementation is nullptr");
}

} // namespace Velloc::builtin
