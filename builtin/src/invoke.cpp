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

#include <optional>
#include <stdexcept>
#include <string>

namespace Velloc::builtin {

namespace {

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

// Runs the variant's entry, then reports what it collected: warnings first, even when
// the call also failed, then the error.
Parameter runVariant(const BuiltinVariant& variant, const Parameter* parameters) {
    std::vector<std::u16string> warnings;
    std::exception_ptr pendingError;
    bool pending = false;
    detail::CallEnvironment environment(warnings, pendingError);
    // The execution records cost one flag read when their channel is off.
    static const foundation::log::Channel& executions = builtinreg::detail::executionChannel();
    std::optional<builtinreg::detail::LogBuiltinVariantExecution_> trace;
    if (executions.isEnabled()) {
        trace.emplace(&variant);
    }
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

// The same, holding the variant to its promises while it runs: a call into the language
// is judged against it, and a warning it promised not to raise ends the process.
Parameter runVariantChecked(const BuiltinVariant& variant, const Parameter* parameters) {
    const builtinreg::CallsORVEXCheckAsserted active(&variant);
    const builtinreg::detail::AssertIfWarnings assertIfWarnings(variant);
    std::optional<matrix::WarningCapture> capture;
    if (!variant.mayRaiseWarnings) {
        capture.emplace(assertIfWarnings);
    }
    return runVariant(variant, parameters);
}

// The result that goes to the caller: a variant that declares an output must produce it,
// and a host array it made itself must be of the declared type when checks are armed.
// What the framework made (a converted C++ value, an element-wise loop's output) is
// right by construction.
oxArray* outputOf(const BuiltinVariant& variant, int nlhs, const Parameter& result, bool checked) {
    oxArray* output = detail::toOxArray(result);
    if (output == nullptr) {
        builtinreg::detail::assertLhsIsNotNull(nlhs, 0, variant);
    }
    if (checked && !variant.outputArgTypes.empty() && !variant.isElementWise &&
        boost::get<oxArray*>(&result) != nullptr) {
        builtinreg::detail::assertLhsWrongType(variant, output);
    }
    return output;
}

void callVariant(const BuiltinVariant& variant, const VariantSignature& call, int nlhs, oxArray** plhs) {
    ParameterList parameters(call.getNrhs());
    for (std::size_t i = 0; i < call.getNrhs(); ++i) {
        if (!types::skipDuringInvoke(variant.inputArgTypes[i])) {
            parameters.append(detail::toParameter(call, i, variant.inputArgTypes[i]));
        }
    }

    // Checks cost one flag read when diagnostics are not armed.
    const bool checked = fl_diag_terminate();
    const Parameter result =
        checked ? runVariantChecked(variant, parameters.data()) : runVariant(variant, parameters.data());

    if (nlhs == 1) {
        plhs[0] = outputOf(variant, nlhs, result, checked);
    } else if (nlhs == 0 && !variant.outputArgTypes.empty()) {
        oxArray* output = outputOf(variant, nlhs, result, checked);
        if (plhs != nullptr) {
            plhs[0] = output;
        } else {
            matrix::destroyArray(output);
        }
    } else if (oxArray* const* unused = boost::get<oxArray*>(&result)) {
        // Nothing is stored for other counts; an array result must not outlive the call.
        matrix::destroyArray(*unused);
    }
}

const foundation::log::Channel& dispatchChannel() {
    static const foundation::log::Channel& channel = foundation::log::channel("builtin2::dispatch");
    return channel;
}

// One record per call on "builtin2::dispatch": the builtin, the list searched and the
// variant taken ("plus: searchedByInvokeNoLxe -> samplelib::plusDouble [double, double]").
// A disabled channel costs one flag read.
void traceDispatch(const BuiltinFcn& builtin, std::span<const BuiltinVariant> list, const BuiltinVariant* taken) {
    foundation::log::logIf(dispatchChannel(), 1, "invoke", __LINE__, [&] {
        std::string text = builtin.name + ": " + listNameOf(builtin, list) + " -> ";
        if (taken == &builtin.defaultVariant) {
            return text + "default implementation " + taken->cppFunctionName;
        }
        return text + (taken != nullptr ? builtinreg::variantLabel(*taken) : std::string("no variant"));
    });
}

} // namespace

// The first variant of the list that accepts the call, from the cache when the call's
// kind was seen before; null when none does.
const BuiltinVariant* BuiltinFcn::firstAcceptingVariant(std::span<const BuiltinVariant> list,
                                                        const VariantSignature& call) const {
    const auto isList = [&](const VariantArray& candidate) {
        return list.data() == candidate.variants && list.size() == candidate.numVariants;
    };
    // Lists with the same variants share an index; chooseVariants returns one of three.
    const unsigned listIndex = isList(searchedByInvokeNoLxe_) ? 0 : (isList(searchedByInvokeAfterLxe_) ? 1 : 2);
    const std::optional<builtinreg::detail::CallKey> key = builtinreg::detail::DispatchCache::keyOf(listIndex, call);
    if (!key) {
        return findAcceptingVariant(list, call);
    }
    if (const builtinreg::detail::DispatchCache::Lookup seen = dispatchCache_->find(*key); seen.found) {
        return seen.variant;
    }
    const BuiltinVariant* variant = findAcceptingVariant(list, call);
    dispatchCache_->store(*key, variant);
    return variant;
}

void BuiltinFcn::invoke(int nlhs, oxArray** plhs, int nrhs, oxArray** prhs,
                        VariantsToConsider variantsToConsider) const {
    // A caller's mistake in the calling form must not become a wild write.
    if (nlhs < 0 || nrhs < 0 || (nlhs > 0 && plhs == nullptr) || (nrhs > 0 && prhs == nullptr)) {
        throw std::invalid_argument("BuiltinFcn::invoke of " + name + ": " + std::to_string(nlhs) + " outputs into " +
                                    (plhs == nullptr ? "no array" : "an array") + ", " + std::to_string(nrhs) +
                                    " inputs from " + (prhs == nullptr ? "no array" : "an array"));
    }
    const std::span<const BuiltinVariant> list = chooseVariants(nrhs, prhs, variantsToConsider);
    if (!list.empty()) {
        const VariantSignature call(static_cast<std::uint64_t>(nlhs), static_cast<std::uint64_t>(nrhs), prhs);
        if (const BuiltinVariant* variant = firstAcceptingVariant(list, call)) {
            traceDispatch(*this, list, variant);
            callVariant(*variant, call, nlhs, plhs);
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
