#include <builtin/builtinreg/BuiltinVariantLists.hpp>

#include <builtin/builtinreg/Explain.hpp>
#include <builtin/builtinreg/VariantListHelpers.hpp>
#include <builtin/LogSeverity.hpp>

#include "CleanupSteps.hpp"

#include <foundation/log/Channel.hpp>

#include <algorithm>
#include <iterator>
#include <sstream>

namespace Velloc::builtin::builtinreg {

namespace {

using types::LxeSupportLevel;

foundation::log::Channel& cleanupChannel() {
    static foundation::log::Channel& channel = foundation::log::channel("builtin2::cleanupVariants");
    return channel;
}

// What the cleanup removed or demoted, one line each: kept apart from the stage-by-stage
// lists, so that either can be followed without the other.
foundation::log::Channel& findingsChannel() {
    static foundation::log::Channel& channel = foundation::log::channel("builtin2::cleanupFindings");
    return channel;
}

foundation::log::Channel& listsChannel() {
    static foundation::log::Channel& channel = foundation::log::channel("builtin2::BuiltinVariantLists");
    return channel;
}

void logList(foundation::log::Channel& channel, const char* heading, const std::vector<BuiltinVariant>& list) {
    foundation::log::logIf(channel, LOG_DEBUG, "BuiltinVariantLists", __LINE__, [&] {
        std::ostringstream text;
        text << heading;
        for (const BuiltinVariant& variant : list) {
            text << variant << '\n';
        }
        return text.str();
    });
}

void removeFound(std::vector<BuiltinVariant>& variants, std::vector<CleanupFinding>& findings,
                 CleanupFinding::Kind kind, bool (*isRemoved)(const BuiltinVariant&)) {
    for (const BuiltinVariant& variant : variants) {
        if (isRemoved(variant)) {
            findings.push_back({kind, variantLabel(variant), {}});
        }
    }
    std::erase_if(variants, isRemoved);
}

bool isUnsupportedBoxingVariant(const BuiltinVariant& variant) {
    return variant.originalVariant && variant.lxeSupportLevel == LxeSupportLevel::NO_SUPPORT;
}

bool acceptsComplexScalar(const BuiltinVariant& variant) {
    static const types::ArgType complexDouble =
        types::NumericScalarTypes(oxDOUBLE_CLASS, types::NumericScalarTypes::Complexity::COMPLEX);
    static const types::ArgType complexSingle =
        types::NumericScalarTypes(oxSINGLE_CLASS, types::NumericScalarTypes::Complexity::COMPLEX);
    return std::any_of(variant.inputArgTypes.begin(), variant.inputArgTypes.end(), [](const types::ArgType& type) {
        return types::isAcceptable(type, complexDouble) || types::isAcceptable(type, complexSingle);
    });
}

// Copies of every source's variants, source after source, in storage reserved once.
template <class Sources>
std::vector<BuiltinVariant> concatenated(const Sources& sources) {
    std::size_t total = 0;
    for (const auto& source : sources) {
        total += source.size();
    }
    std::vector<BuiltinVariant> combined;
    combined.reserve(total);
    for (const auto& source : sources) {
        combined.insert(combined.end(), source.begin(), source.end());
    }
    return combined;
}

} // namespace

std::string toString(CleanupFinding::Kind kind) {
    switch (kind) {
    case CleanupFinding::Kind::UNSUPPORTED:
        return "unsupported";
    case CleanupFinding::Kind::UNREACHABLE:
        return "unreachable";
    case CleanupFinding::Kind::SHADOWED:
        return "shadowed";
    case CleanupFinding::Kind::UNSUPPORTED_BOXING:
        return "unsupported boxing";
    }
    return "unknown";
}

std::string toString(const CleanupFinding& finding) {
    return toString(finding.kind) + ": " + finding.variant + (finding.by.empty() ? "" : " by " + finding.by);
}

BuiltinVariantLists::BuiltinVariantLists(std::vector<BuiltinVariant>&& variants) {
    std::vector<BuiltinVariant> list(std::move(variants));
    detail::sortVariants(list);
    logList(cleanupChannel(), "before cleanup:\n", list);
    removeFound(list, findings_, CleanupFinding::Kind::UNSUPPORTED, detail::isUnsupportedBuiltinVariant);
    logList(cleanupChannel(), "removed unsupported:\n", list);
    detail::removeUnreachableVariants(list, findings_);
    logList(cleanupChannel(), "removed unreachable:\n", list);
    detail::demoteShadowedVariants(list, findings_);
    // Nothing is removed by demotion; the heading is the one readers of the log know.
    logList(cleanupChannel(), "removed shadowed:\n", list);
    std::copy_if(list.begin(), list.end(), std::back_inserter(removedBoxing_), isUnsupportedBoxingVariant);
    removeFound(list, findings_, CleanupFinding::Kind::UNSUPPORTED_BOXING, isUnsupportedBoxingVariant);
    logList(cleanupChannel(), "removed unsupported boxing variants:\n", list);
    foundation::log::logIf(findingsChannel(), LOG_INFO, "BuiltinVariantLists", __LINE__, [&] {
        std::string text = "findings:\n";
        for (const CleanupFinding& finding : findings_) {
            text += toString(finding) + '\n';
        }
        return text;
    });
    list.shrink_to_fit();
    all = std::move(list);

    // Sized up front: the lists hold variants by value, and growing them moves every one.
    std::size_t noSupport = 0;
    std::size_t lxeOnly = 0;
    for (const BuiltinVariant& variant : all) {
        noSupport += variant.lxeSupportLevel == LxeSupportLevel::NO_SUPPORT ? 1 : 0;
        lxeOnly += variant.lxeSupportLevel == LxeSupportLevel::LXE_ONLY ? 1 : 0;
    }
    searchedByLxe.reserve(all.size() - noSupport);
    searchedByInvokeAfterLxe.reserve(noSupport);
    searchedByInvokeAfterLxeComplexScalarRhs.reserve(noSupport);
    searchedByInvokeNoLxe.reserve(all.size() - lxeOnly);
    for (const BuiltinVariant& variant : all) {
        switch (variant.lxeSupportLevel) {
        case LxeSupportLevel::LXE_ONLY:
            searchedByLxe.push_back(variant);
            break;
        case LxeSupportLevel::NO_SUPPORT:
            searchedByInvokeAfterLxe.push_back(variant);
            searchedByInvokeAfterLxeComplexScalarRhs.push_back(variant);
            searchedByInvokeNoLxe.push_back(variant);
            break;
        case LxeSupportLevel::EQUIVALENT_SUPPORT:
        case LxeSupportLevel::NO_SUPPORT_SCALAR_COMPLEX:
            if (acceptsComplexScalar(variant)) {
                BuiltinVariant copy(variant);
                copy.lxeSupportLevel = LxeSupportLevel::NO_SUPPORT_SCALAR_COMPLEX;
                searchedByInvokeAfterLxeComplexScalarRhs.push_back(std::move(copy));
            }
            searchedByLxe.push_back(variant);
            searchedByInvokeNoLxe.push_back(variant);
            break;
        }
    }
    logList(listsChannel(), "all:\n", all);
    logList(listsChannel(), "searchedByLxe:\n", searchedByLxe);
    logList(listsChannel(), "searchedByInvokeAfterLxe:\n", searchedByInvokeAfterLxe);
    logList(listsChannel(), "searchedByInvokeAfterLxeComplexScalarRhs:\n", searchedByInvokeAfterLxeComplexScalarRhs);
    logList(listsChannel(), "searchedByInvokeNoLxe:\n", searchedByInvokeNoLxe);
}

BuiltinVariantLists::BuiltinVariantLists(const std::initializer_list<std::vector<BuiltinVariant>>& variantLists)
    : BuiltinVariantLists(concatenated(variantLists)) {}

std::vector<BuiltinVariant> BuiltinVariantLists::concatenateVariantSpans(
    std::initializer_list<std::span<const BuiltinVariant>> spans) {
    return concatenated(spans);
}

std::span<const BuiltinVariant> BuiltinVariantLists::makeSpan(const std::vector<BuiltinVariant>& variants) {
    return {variants.data(), variants.size()};
}

} // namespace Velloc::builtin::builtinreg
