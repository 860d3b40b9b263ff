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
using builtinreg::detail::Route;
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

const foundation::log::Channel& executionChannel = builtinreg::detail::executionChannel();

// Runs the variant between the execution records, which cost one flag read when their
// channel is off.
template <class Run>
auto traced(const BuiltinVariant& variant, const Run& run) {
    if (executionChannel.isEnabled()) [[unlikely]] {
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
    const matrix::WarningCapture capture =
        matrix::WarningCapture::calling<&builtinreg::detail::AssertIfWarnings::onWarning>(variant);
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

// Whether the direct entry takes these inputs as they are. An input without a key (a null
// handle, or an array the host rejects) takes the generic entry, which passes it on as it
// is, so that the direct entries test no pointer.
bool takesAsTheyAre(const DirectEntry& entry, int nrhs, const types::InputKey* keys) noexcept {
    for (int i = 0; i < nrhs; ++i) {
        if (entry.requiredKeys[i] == DirectEntry::ANY_ARRAY ? !keys[i].isSupported()
                                                            : entry.requiredKeys[i] != keys[i].bits()) {
            return false;
        }
    }
    return true;
}

// Whether the direct entry's element-wise loop takes inputs of these keys: full arrays of
// the classes its scalars declare, broadcast as their keys decide (every one that is not
// 1-by-1 of the same dimensions).
bool takesElementWise(const BuiltinVariant& variant, const DirectEntry& entry, int nrhs,
                      const types::InputKey* keys) noexcept {
    if (entry.callElementWise == nullptr || !variant.isElementWise || nrhs < 1 || nrhs > 2) {
        return false;
    }
    for (int i = 0; i < nrhs; ++i) {
        if (types::InputKey::elementBits(keys[i].bits()) != types::InputKey::elementBits(entry.requiredKeys[i])) {
            return false;
        }
    }
    return true;
}

// How to call the variant on these inputs, at most MAX_INPUTS; broadcastKeyed says whether
// their keys decide broadcasting.
Route routeOf(const BuiltinVariant& variant, int nrhs, oxArray* const* prhs, bool broadcastKeyed) noexcept {
    const DirectEntry* entry = variant.directEntry;
    if (entry == nullptr) {
        return Route::GENERIC;
    }
    types::InputKey keys[DirectEntry::MAX_INPUTS];
    for (int i = 0; i < nrhs; ++i) {
        keys[i] = types::InputKey::of(prhs[i]);
    }
    if (takesAsTheyAre(*entry, nrhs, keys)) {
        return Route::DIRECT;
    }
    return broadcastKeyed && takesElementWise(variant, *entry, nrhs, keys) ? Route::ELEMENT_WISE : Route::GENERIC;
}

// The element-wise loop runs on one thread; larger inputs go to the generic entry, whose
// loops share the work. Its functions take one or two inputs.
bool smallEnoughForElementWise(int nrhs, oxArray* const* prhs) noexcept {
    return prhs[0]->numberOfElements <= DirectEntry::MAX_ELEMENT_WISE &&
           prhs[nrhs - 1]->numberOfElements <= DirectEntry::MAX_ELEMENT_WISE;
}

using DirectCall = oxArray* (*)(oxArray* const*);

// The direct call when checks are armed, out of line so that it does not weigh on the
// unchecked call's frame.
[[gnu::noinline]] oxArray* callChecked(const BuiltinVariant& variant, DirectCall call, oxArray* const* prhs) {
    return checkedIfArmed(variant, true, [call, prhs] { return call(prhs); });
}

// The direct call when checks are disarmed and executions traced.
[[gnu::noinline]] oxArray* callTraced(const BuiltinVariant& variant, DirectCall call, oxArray* const* prhs) {
    return runBetweenExecutionRecords(variant, [call, prhs] { return call(prhs); });
}

// The same call as through the generic entry, without parameters or a call environment:
// a function with a direct entry has one output, neither warns nor throws through the
// environment, and lets its exceptions escape. Inline: it is the whole of a scalar call.
[[gnu::always_inline]] inline void callDirectEntry(const BuiltinVariant& variant, DirectCall call,
                                                   bool returnsArray, int nlhs, oxArray** plhs,
                                                   oxArray* const* prhs) {
    const bool checked = fl_diag_terminate();
    oxArray* output;
    if (checked) [[unlikely]] {
        output = callChecked(variant, call, prhs);
    } else if (executionChannel.isEnabled()) [[unlikely]] {
        output = callTraced(variant, call, prhs);
    } else {
        output = call(prhs);
    }
    // A value made into an array is never null nor of another type than declared.
    if (nlhs == 1 && !returnsArray) [[likely]] {
        plhs[0] = output;
        return;
    }
    if (deliversResult(variant, nlhs)) {
        deliver(variant, nlhs, plhs, output, returnsArray, checked);
    } else {
        matrix::destroyArray(output);
    }
}

// Looked up once when the library loads, so that a call reads the channel's flag without
// a test of a function-local static's guard.
const foundation::log::Channel& dispatchChannel = foundation::log::channel("builtin2::dispatch");

// One record per call on "builtin2::dispatch": the builtin, the list searched and the
// variant taken ("plus: searchedByInvokeNoLxe -> samplelib::plusDouble [double, double]").
// A disabled channel costs one flag read.
[[gnu::noinline]] void traceDispatch(const BuiltinFcn& builtin, std::span<const BuiltinVariant> list, const BuiltinVariant* taken) {
    foundation::log::logIf(dispatchChannel, 1, "invoke", __LINE__, [&] {
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

// The search for a call the cache has not seen yet, whose result it keeps.
// The key by value, so that a hit keeps it in registers.
[[gnu::noinline]] DispatchCache::Lookup searchAndStore(DispatchCache& cache, builtinreg::detail::CallKey key,
                                                       std::span<const BuiltinVariant> list, int nlhs, int nrhs,
                                                       oxArray* const* prhs) {
    const BuiltinVariant* variant = searchList(list, nlhs, nrhs, prhs);
    const Route route = variant != nullptr ? routeOf(*variant, nrhs, prhs, true) : Route::GENERIC;
    cache.store(key, variant, route);
    return DispatchCache::Lookup(variant, route);
}

// The variant chosen for a call on the list searched: traced when the dispatch channel is
// on, then called the way its route says.
[[gnu::always_inline]] inline void callChosen(const BuiltinFcn& builtin, std::span<const BuiltinVariant> list,
                                              const BuiltinVariant& variant, Route route, int nlhs, oxArray** plhs,
                                              int nrhs, oxArray** prhs) {
    if (dispatchChannel.isEnabled()) [[unlikely]] {
        traceDispatch(builtin, list, &variant);
    }
    if (route == Route::DIRECT) [[likely]] {
        callDirectEntry(variant, variant.directEntry->call, variant.directEntry->returnsArray, nlhs, plhs, prhs);
    } else if (route == Route::ELEMENT_WISE && smallEnoughForElementWise(nrhs, prhs)) {
        callDirectEntry(variant, variant.directEntry->callElementWise, false, nlhs, plhs, prhs);
    } else {
        callGenericEntry(variant, nlhs, plhs, nrhs, prhs);
    }
}

// The calling form's mistakes, out of line so that their message does not weigh on every
// call's frame.
[[noreturn, gnu::noinline]] void throwBadCallingForm(const std::string& name, int nlhs, oxArray** plhs, int nrhs,
                                                     oxArray** prhs) {
    throw std::invalid_argument("BuiltinFcn::invoke of " + name + ": " + std::to_string(nlhs) + " outputs into " +
                                (plhs == nullptr ? "no array" : "an array") + ", " + std::to_string(nrhs) +
                                " inputs from " + (prhs == nullptr ? "no array" : "an array"));
}

} // namespace

// Lists with the same variants share an index; chooseVariants returns one of three.
inline unsigned BuiltinFcn::listIndexOf(std::span<const BuiltinVariant> list) const noexcept {
    const auto isList = [&](const VariantArray& candidate) {
        return list.data() == candidate.variants && list.size() == candidate.numVariants;
    };
    return isList(searchedByInvokeNoLxe_) ? 0 : (isList(searchedByInvokeAfterLxe_) ? 1 : 2);
}

// The call an interpreter makes most: one output, the list for calls without engine
// objects, a kind of call whose accepting variant the dispatch cache holds, called the way
// its route says. Its frame is small: any other call goes to invokeSearching, which decides
// the same way.
void BuiltinFcn::invoke(int nlhs, oxArray** plhs, int nrhs, oxArray** prhs,
                        VariantsToConsider variantsToConsider) const {
    if (nlhs == 1 && plhs != nullptr && prhs != nullptr && variantsToConsider == NoLxe &&
        static_cast<unsigned>(nrhs) <= DispatchCache::MAX_INPUTS) [[likely]] {
        builtinreg::detail::CallKey key;
        if (DispatchCache::keyOf(0, 1, static_cast<std::uint64_t>(nrhs), prhs, key)) [[likely]] {
            const DispatchCache::Lookup seen = dispatchCache_->find(key);
            if (const BuiltinVariant* const variant = seen.variant(); variant != nullptr) [[likely]] {
                callChosen(*this, searchedByInvokeNoLxe_.span(), *variant, seen.route(), nlhs, plhs, nrhs, prhs);
                return;
            }
        }
    }
    invokeSearching(nlhs, plhs, nrhs, prhs, variantsToConsider);
}

void BuiltinFcn::invokeSearching(int nlhs, oxArray** plhs, int nrhs, oxArray** prhs,
                                 VariantsToConsider variantsToConsider) const {
    // A caller's mistake in the calling form must not become a wild write.
    // The common form (both arrays given, neither count negative) is tested first.
    if (plhs == nullptr || prhs == nullptr || (nlhs | nrhs) < 0) [[unlikely]] {
        if (nlhs < 0 || nrhs < 0 || (nlhs > 0 && plhs == nullptr) || (nrhs > 0 && prhs == nullptr)) {
            throwBadCallingForm(name, nlhs, plhs, nrhs, prhs);
        }
    }
    std::span<const BuiltinVariant> list = searchedByInvokeNoLxe_.span();
    unsigned listIndex = 0;
    if (variantsToConsider != NoLxe) [[unlikely]] {
        list = chooseVariants(nrhs, prhs, variantsToConsider);
        listIndex = listIndexOf(list);
    }
    if (!list.empty()) [[likely]] {
        const BuiltinVariant* variant = nullptr;
        Route route = Route::GENERIC;
        if (static_cast<std::size_t>(nrhs) <= DispatchCache::MAX_INPUTS && nlhs <= 0xff) [[likely]] {
            builtinreg::detail::CallKey key;
            if (DispatchCache::keyOf(listIndex, static_cast<std::uint64_t>(nlhs), static_cast<std::uint64_t>(nrhs),
                                     prhs, key)) [[likely]] {
                DispatchCache::Lookup seen = dispatchCache_->find(key);
                if (!seen.found()) [[unlikely]] {
                    seen = searchAndStore(*dispatchCache_, key, list, nlhs, nrhs, prhs);
                }
                variant = seen.variant();
                route = seen.route();
            } else {
                variant = searchList(list, nlhs, nrhs, prhs);
                route = variant != nullptr ? routeOf(*variant, nrhs, prhs, false) : Route::GENERIC;
            }
        } else {
            variant = searchList(list, nlhs, nrhs, prhs);
        }
        if (variant != nullptr) [[likely]] {
            callChosen(*this, list, *variant, route, nlhs, plhs, nrhs, prhs);
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
