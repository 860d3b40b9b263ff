#include <builtin/builtinreg/Reachability.hpp>

#include <builtin/builtinreg/Explain.hpp>
#include <builtin/builtinreg/ObjectReachability.hpp>
#include <builtin/builtinreg/MakeVariant.hpp>
#include <builtin/builtinreg/Rejection.hpp>
#include <builtin/types/ArgType.hpp>

#include <fl/i18n.hpp>

#include <algorithm>
#include <optional>
#include <span>
#include <variant>

namespace Velloc::builtin::builtinreg {

namespace {

using types::ArgType;
using types::ArgTypeDirection;
using types::LxeSupportLevel;
using types::OxArrayTypes;

std::string position(std::size_t index) { return "input " + std::to_string(index + 1); }

// Does the declared input take some host array, the only values interpreted calls pass?
bool takesArrays(const BuiltinVariant& variant, const ArgType& declared) {
    return std::holds_alternative<OxArrayTypes>(declared) ||
           (variant.isElementWise && std::holds_alternative<OxArrayTypes>(types::asElementWiseArrayType(declared)));
}

// What an interpreted call passes where a declaration that takes no array stands: the
// array the language user writes for it.
std::optional<ArgType> interpretedArgumentFor(const ArgType& declared) {
    return std::visit(
        [](const auto& alternative) -> std::optional<ArgType> {
            using T = std::decay_t<decltype(alternative)>;
            if constexpr (std::is_same_v<T, types::UnsupportedArgType>) {
                return std::nullopt;
            } else if constexpr (std::is_same_v<T, types::FlagInputType>) {
                // 'omitnan' at the prompt: a char row.
                return ArgType(OxArrayTypes(oxCHAR_CLASS, OxArrayTypes::Shape::ROW, OxArrayTypes::Density::FULL,
                                            OxArrayTypes::Complexity::NOT_COMPLEX, 1));
            } else if constexpr (std::is_same_v<T, types::NumericScalarTypes>) {
                return ArgType(OxArrayTypes::fromScalar(alternative));
            } else if constexpr (std::is_same_v<T, OxArrayTypes>) {
                return ArgType(alternative);
            } else {
                return ArgType(OxArrayTypes(alternative));
            }
        },
        declared);
}

bool acceptsAt(const BuiltinVariant& variant, std::size_t i, const ArgType& actual) {
    const ArgType& declared = variant.inputArgTypes[i];
    return types::isAcceptable(declared, actual) ||
           (variant.isElementWise && types::isAcceptable(types::asElementWiseArrayType(declared), actual));
}

bool sameCounts(const BuiltinVariant& a, const BuiltinVariant& b) {
    return a.inputArgTypes.size() == b.inputArgTypes.size() && a.outputArgTypes.size() == b.outputArgTypes.size();
}

// Does every call that reaches later also reach earlier? Both take the same counts and
// earlier accepts each of later's declared inputs (element-wise when it runs so).
bool takesEveryCallOf(const BuiltinVariant& earlier, const BuiltinVariant& later) {
    if (!sameCounts(earlier, later) || (later.isElementWise && !earlier.isElementWise)) {
        return false;
    }
    for (std::size_t i = 0; i < earlier.inputArgTypes.size(); ++i) {
        if (!(earlier.inputArgTypes[i] == later.inputArgTypes[i]) &&
            !types::isAcceptable(earlier.inputArgTypes[i], later.inputArgTypes[i])) {
            return false;
        }
    }
    return true;
}

// The variant of the interpreter's list that takes the calls an interpreted caller makes
// where variant stands, if any.
const BuiltinVariant* takerOfInterpretedCalls(std::span<const BuiltinVariant> list, const BuiltinVariant& variant) {
    std::vector<ArgType> call;
    for (const ArgType& declared : variant.inputArgTypes) {
        std::optional<ArgType> actual = interpretedArgumentFor(declared);
        if (!actual) {
            return nullptr;
        }
        call.push_back(std::move(*actual));
    }
    for (const BuiltinVariant& candidate : list) {
        if (&candidate == &variant || !sameCounts(candidate, variant)) {
            continue;
        }
        bool accepts = true;
        for (std::size_t i = 0; i < call.size() && accepts; ++i) {
            accepts = acceptsAt(candidate, i, call[i]);
        }
        if (accepts) {
            return &candidate;
        }
    }
    return nullptr;
}

bool sameInputs(const BuiltinVariant& a, const BuiltinVariant& b) {
    return a.inputArgTypes.size() == b.inputArgTypes.size() &&
           std::equal(a.inputArgTypes.begin(), a.inputArgTypes.end(), b.inputArgTypes.begin());
}

// The boxed copy of original that cleanup removed, if it did.
const BuiltinVariant* removedBoxedCopyOf(const BuiltinFcn& builtin, const BuiltinVariant& original) {
    const auto* registered = dynamic_cast<const RegisteredBuiltin*>(&builtin);
    if (registered == nullptr) {
        return nullptr;
    }
    for (const BuiltinVariant& copy : registered->getLists().getRemovedBoxingVariants()) {
        if (copy.originalVariant && copy.originalVariant->developerFcn == original.developerFcn &&
            sameInputs(*copy.originalVariant, original)) {
            return &copy;
        }
    }
    return nullptr;
}

// Why the engine cannot call a boxed copy, which is why cleanup removed it.
std::string whyTheEngineCannotCall(const BuiltinFcn& builtin, const BuiltinVariant& copy) {
    for (std::size_t i = 0; i < copy.outputArgTypes.size(); ++i) {
        if (types::getLxeSupportLevel(copy.outputArgTypes[i], ArgTypeDirection::OUTPUT) ==
            LxeSupportLevel::NO_SUPPORT) {
            return "its result is " + describeDeclaredType(copy.outputArgTypes[i], ArgTypeDirection::OUTPUT, i);
        }
    }
    for (std::size_t i = 0; i < copy.inputArgTypes.size(); ++i) {
        if (types::getLxeSupportLevel(copy.inputArgTypes[i], ArgTypeDirection::INPUT) == LxeSupportLevel::NO_SUPPORT) {
            return position(i) + " is " + describeDeclaredType(copy.inputArgTypes[i], ArgTypeDirection::INPUT, i);
        }
    }
    if (copy.mayCallIntoOrvex) {
        return "it may call into the language (.mayCallIntoOrvex)";
    }
    if (const auto* registered = dynamic_cast<const RegisteredBuiltin*>(&builtin)) {
        const std::string label = variantLabel(copy);
        for (const CleanupFinding& finding : registered->getCleanupFindings()) {
            if (finding.kind == CleanupFinding::Kind::SHADOWED && finding.variant == label) {
                return "an earlier variant the engine cannot call, " + finding.by + ", takes its calls";
            }
        }
    }
    return "its declaration keeps it from the engine (.lxeSupportLevel)";
}

// The numeric scalar inputs of a variant, as "input 2 (int32)" or "inputs 1 (double) and
// 2 (double)".
std::string numericInputs(const BuiltinVariant& variant) {
    std::vector<std::string> named;
    for (std::size_t i = 0; i < variant.inputArgTypes.size(); ++i) {
        if (const auto* scalar = std::get_if<types::NumericScalarTypes>(&variant.inputArgTypes[i])) {
            named.push_back(std::to_string(i + 1) + " (" + (scalar->isComplex() ? "complex " : "") +
                            languageClassName(scalar->getElement()) + ")");
        }
    }
    std::string text = named.size() == 1 ? "input " : "inputs ";
    for (std::size_t k = 0; k < named.size(); ++k) {
        text += (k == 0 ? "" : k + 1 == named.size() ? " and " : ", ") + named[k];
    }
    return text;
}

// The boxed copy of original in the list, through which interpreted calls reach it.
const BuiltinVariant* boxedCopyInList(std::span<const BuiltinVariant> list, const BuiltinVariant& original) {
    for (const BuiltinVariant& candidate : list) {
        if (candidate.originalVariant && candidate.originalVariant->developerFcn == original.developerFcn &&
            sameInputs(*candidate.originalVariant, original)) {
            return &candidate;
        }
    }
    return nullptr;
}

bool originalInList(std::span<const BuiltinVariant> list, const BuiltinVariant& copy) {
    return std::any_of(list.begin(), list.end(), [&](const BuiltinVariant& candidate) {
        return !candidate.originalVariant && candidate.developerFcn == copy.originalVariant->developerFcn &&
               sameInputs(candidate, *copy.originalVariant);
    });
}

// variant is what the author declared; interpreted is what interpreted calls would reach
// of it (its boxed copy, or itself), whose input blocked takes no array.
UnreachableVariant describeUnreached(const BuiltinFcn& builtin, const BuiltinVariant& variant,
                                     const BuiltinVariant& interpreted, std::size_t blocked) {
    const ArgType& declared = interpreted.inputArgTypes[blocked];
    const std::string label = variantLabel(variant);
    if (const auto* flag = std::get_if<types::FlagInputType>(&declared)) {
        const std::string text = fl::i18n::ustring_to_utf8(flag->getValue());
        return {UnreachableVariant::Kind::FLAG_ONLY, label,
                position(blocked) + " is the flag '" + text +
                    "', which takes only a literal option: compiled callers pass one, while an interpreted call "
                    "passes '" + text + "' as a char row or a string, which a flag does not take",
                "add a variant that takes " + position(blocked) +
                    " as text (std::u16string_view) and checks it, so that interpreted calls reach the same "
                    "option (README, \"Option texts\")",
                {}};
    }
    if (std::holds_alternative<types::NumericScalarTypes>(declared)) {
        if (const BuiltinVariant* copy = removedBoxedCopyOf(builtin, variant)) {
            return {UnreachableVariant::Kind::BOXING_REMOVED, label,
                    "interpreted calls reach a function of numeric scalars through its boxed copy, which takes "
                    "arrays, and cleanup removed that copy because the engine cannot call it: " +
                        whyTheEngineCannotCall(builtin, *copy),
                    "take " + numericInputs(variant) +
                        " as const oxArray* (a 1-by-1 array; matrix::getTypedData reads its element), or add a "
                        "variant that does",
                    {}};
        }
        return {UnreachableVariant::Kind::COMPILED_ONLY, label,
                position(blocked) + " is " + describeDeclaredType(declared, ArgTypeDirection::INPUT, blocked) +
                    " and the variant has no boxed copy that takes arrays",
                "take " + numericInputs(variant) + " as const oxArray*, or add a variant that does", {}};
    }
    return {UnreachableVariant::Kind::COMPILED_ONLY, label,
            position(blocked) + " is " + describeDeclaredType(declared, ArgTypeDirection::INPUT, blocked) +
                ", which interpreted calls never pass: they pass host arrays",
            "take " + position(blocked) + " as const oxArray* (or as text, std::u16string_view), or add a variant "
                                          "that does",
            {}};
}

} // namespace

std::string toString(UnreachableVariant::Kind kind) {
    switch (kind) {
    case UnreachableVariant::Kind::BOXING_REMOVED:
        return "boxing removed";
    case UnreachableVariant::Kind::FLAG_ONLY:
        return "flag only";
    case UnreachableVariant::Kind::COMPILED_ONLY:
        return "compiled callers only";
    case UnreachableVariant::Kind::SHADOWED:
        return "shadowed";
    }
    return "unknown";
}

std::string toString(const UnreachableVariant& finding) {
    return finding.variant + ": no interpreted call reaches it: " + finding.reason + ". Fix: " + finding.fix + ".";
}

std::vector<UnreachableVariant> findUnreachableVariants(const BuiltinFcn& builtin) {
    std::vector<UnreachableVariant> findings;
    // One finding per developer function and kind: a text parameter makes one variant per
    // kind of text, and they share the mistake and the fix.
    struct Merged {
        const void* developerFcn;
        UnreachableVariant::Kind kind;
        std::size_t finding;
        std::size_t more;
    };
    std::vector<Merged> merged;
    const std::span<const BuiltinVariant> list = builtin.getSearchedByInvokeNoLxe();
    for (const BuiltinVariant& variant : list) {
        // A boxed copy speaks for its original, which the author declared.
        if (variant.originalVariant && originalInList(list, variant)) {
            continue;
        }
        const BuiltinVariant* copy = variant.originalVariant ? nullptr : boxedCopyInList(list, variant);
        const BuiltinVariant& interpreted = copy != nullptr ? *copy : variant;
        const auto blocked = std::find_if(interpreted.inputArgTypes.begin(), interpreted.inputArgTypes.end(),
                                          [&](const ArgType& type) { return !takesArrays(interpreted, type); });
        if (blocked != interpreted.inputArgTypes.end()) {
            if (takerOfInterpretedCalls(list, interpreted) != nullptr) {
                continue;
            }
            // An object parameter declared as a class pointer has a twin over the class's
            // arrays, which interpreted calls reach.
            const bool objectInput = std::holds_alternative<types::LxeObjectTypes>(*blocked) ||
                                     std::holds_alternative<types::LxeObjectPlaceTypes>(*blocked);
            if (objectInput && engineObjectInputReason(interpreted, list).empty()) {
                continue;
            }
            UnreachableVariant finding = describeUnreached(
                builtin, variant, interpreted, static_cast<std::size_t>(blocked - interpreted.inputArgTypes.begin()));
            const auto same = std::find_if(merged.begin(), merged.end(), [&](const Merged& entry) {
                return entry.developerFcn == variant.developerFcn && entry.kind == finding.kind;
            });
            if (same != merged.end()) {
                ++same->more;
            } else {
                merged.push_back({variant.developerFcn, finding.kind, findings.size(), 0});
                findings.push_back(std::move(finding));
            }
            continue;
        }
        for (const BuiltinVariant* earlier = list.data(); earlier != &interpreted; ++earlier) {
            if (takesEveryCallOf(*earlier, interpreted)) {
                findings.push_back({UnreachableVariant::Kind::SHADOWED, variantLabel(variant),
                                    "an earlier variant, " + variantLabel(*earlier) + ", takes every call it takes",
                                    "remove one of the two, or give them input types that tell their calls apart",
                                    variantLabel(*earlier)});
                break;
            }
        }
    }
    for (const Merged& entry : merged) {
        if (entry.more > 0) {
            findings[entry.finding].variant += " (and " + std::to_string(entry.more) +
                                               (entry.more == 1 ? " more variant" : " more variants") +
                                               " of the function)";
        }
    }
    return findings;
}

} // namespace Velloc::builtin::builtinreg
