#include <builtin/types/ArgType.hpp>

#include <variant>

namespace Velloc::builtin::types {

namespace {

// The cells of the compatibility matrix (a, b) that can say yes; every other pair is
// compatible with nothing. Host-array declarations compare against the array view of
// the other side, except against flags.
template <class A, class B>
bool compatible(const A&, const B&) noexcept {
    return false;
}
bool compatible(const UnsupportedArgType&, const UnsupportedArgType&) noexcept { return true; }
bool compatible(const FlagInputType& a, const FlagInputType& b) noexcept { return a == b; }
bool compatible(const NumericScalarTypes& a, const NumericScalarTypes& b) noexcept {
    return a == b;
}
bool compatible(const OrvexStringType& a, const FlagInputType& b) noexcept {
    return a == OrvexStringType(b);
}
bool compatible(const OrvexStringType& a, const OrvexStringType& b) noexcept { return a == b; }
bool compatible(const LxeObjectPlaceTypes& a, const LxeObjectPlaceTypes& b) noexcept {
    return a == b;
}
bool compatible(const LxeObjectTypes& a, const FlagInputType& b) noexcept {
    return a == LxeObjectTypes(b);
}
bool compatible(const LxeObjectTypes& a, const OrvexStringType& b) noexcept {
    return a == LxeObjectTypes(b);
}
bool compatible(const LxeObjectTypes& a, const LxeObjectTypes& b) noexcept { return a == b; }

template <class B>
bool compatible(const OxArrayTypes& a, const B& b) {
    return a.isCompatible(detail::viewAsOxArray(b));
}
template <class A>
bool compatible(const A& a, const OxArrayTypes& b) {
    return detail::viewAsOxArray(a).isCompatible(b);
}
bool compatible(const OxArrayTypes& a, const OxArrayTypes& b) noexcept {
    return a.isCompatible(b);
}
bool compatible(const OxArrayTypes&, const FlagInputType&) noexcept { return false; }
bool compatible(const FlagInputType&, const OxArrayTypes&) noexcept { return false; }

} // namespace

bool isCompatible(const ArgType& a, const ArgType& b) {
    return std::visit([](const auto& x, const auto& y) { return compatible(x, y); }, a, b);
}

} // namespace Velloc::builtin::types
