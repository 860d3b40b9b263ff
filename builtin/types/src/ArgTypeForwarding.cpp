#include <builtin/types/ArgType.hpp>

#include <type_traits>
#include <variant>

namespace Velloc::builtin::types {

namespace {
template <class Alternative, class Value>
constexpr bool holds = std::is_same_v<std::remove_cvref_t<Value>, Alternative>;
} // namespace

bool skipDuringInvoke(const ArgType& type) {
    return std::visit([](const auto& x) { return holds<FlagInputType, decltype(x)>; }, type);
}

LxeSupportLevel getLxeSupportLevel(const ArgType& type, ArgTypeDirection direction) {
    return std::visit([&](const auto& x) { return x.getLxeSupportLevel(direction); }, type);
}

ArgType& setSignatureTolerance(ArgType& type, SignatureTolerance tolerance) {
    std::visit(
        [&](auto& x) {
            if constexpr (holds<OxArrayTypes, decltype(x)>) {
                x.setSignatureTolerance(tolerance);
            }
        },
        type);
    return type;
}

ArgType asElementWiseArrayType(const ArgType& type) {
    return std::visit(
        [&](const auto& x) -> ArgType {
            OxArrayTypes view = detail::viewAsOxArray(x);
            if (!view.asScalar()) {
                return type;
            }
            view.setShape(OxArrayTypes::Shape::UNKNOWN, OxArrayTypes::ANY_NUM_DIMS);
            view.setSignatureTolerance(SignatureTolerance::RELAXED);
            return view;
        },
        type);
}

bool isAcceptableElementWise(const ArgType& declared, const ArgType& actual) {
    return std::visit(
        [&](const auto& x) {
            OxArrayTypes view = detail::viewAsOxArray(x);
            if (!view.asScalar()) {
                return isAcceptable(declared, actual);
            }
            view.setShape(OxArrayTypes::Shape::UNKNOWN, OxArrayTypes::ANY_NUM_DIMS);
            view.setSignatureTolerance(SignatureTolerance::RELAXED);
            return std::visit([&](const auto& a) { return detail::accepts(view, a); }, actual);
        },
        declared);
}

ArgTypeList getGreaterPrecedenceTypes(const ArgType& type) {
    return std::visit(
        [](const auto& x) -> ArgTypeList {
            if constexpr (requires { x.getGreaterPrecedenceTypes(); }) {
                return x.getGreaterPrecedenceTypes();
            } else {
                return {};
            }
        },
        type);
}

} // namespace Velloc::builtin::types
