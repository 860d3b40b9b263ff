#include <builtin/types/ArgType.hpp>
#include <builtin/types/OrvexStringType.hpp>
#include <builtin/types/detail/HostClassQueries.hpp>

#include <boost/container_hash/hash.hpp>

#include <cstdint>
#include <string>

namespace Velloc::builtin::types {

oxClassID OrvexStringType::getOcosClassId() {
    static const oxClassID id = detail::queryStringClassId().value_or(oxUNKNOWN_CLASS);
    return id;
}

std::size_t OrvexStringType::hash() const noexcept {
    std::size_t seed = 0;
    boost::hash_combine(seed, static_cast<std::uint64_t>(shape_));
    return seed;
}

LxeSupportLevel OrvexStringType::getLxeSupportLevel(ArgTypeDirection direction) const noexcept {
    if (direction == ArgTypeDirection::INPUT && shape_ == Shape::SCALAR) {
        return LxeSupportLevel::NO_SUPPORT;
    }
    return LxeSupportLevel::EQUIVALENT_SUPPORT;
}

ArgTypeList OrvexStringType::getGreaterPrecedenceTypes() const {
    if (shape_ == Shape::ANY) {
        return {OrvexStringType(Shape::ANY)};
    }
    return {};
}

std::string OrvexStringType::toString(ArgTypeDirection direction, unsigned long index) const {
    if (direction == ArgTypeDirection::OUTPUT) {
        return "orvex_string<nil>";
    }
    if (shape_ == Shape::SCALAR) {
        return "scalar_orvex_string";
    }
    return "orvex_string<$flag_idx" + std::to_string(index) + ">";
}

} // namespace Velloc::builtin::types
