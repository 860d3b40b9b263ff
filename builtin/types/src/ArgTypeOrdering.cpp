#include <builtin/types/ArgType.hpp>

#include <boost/container_hash/hash.hpp>

#include <type_traits>
#include <variant>

namespace Velloc::builtin::types {

namespace {

template <class T>
bool lessWithin(const T& a, const T& b) noexcept {
    return a < b;
}
// The string type's own operator< is its compatibility test and not a strict order;
// sorting needs one, so strings order by shape here.
bool lessWithin(const OrvexStringType& a, const OrvexStringType& b) noexcept {
    return a.getShape() < b.getShape();
}

} // namespace

bool operator<(const ArgType& a, const ArgType& b) {
    return std::visit(
        [&](const auto& x, const auto& y) {
            if constexpr (std::is_same_v<decltype(x), decltype(y)>) {
                return lessWithin(x, y);
            } else {
                return a.index() < b.index();
            }
        },
        a, b);
}

bool operator==(const ArgType& a, const ArgType& b) { return !(a < b) && !(b < a); }

std::size_t hash(const ArgType& type) {
    return std::visit(
        [&](const auto& x) {
            std::size_t seed = type.index();
            boost::hash_combine(seed, x.hash());
            return seed;
        },
        type);
}

} // namespace Velloc::builtin::types
