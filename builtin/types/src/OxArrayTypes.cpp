#include <builtin/types/OxArrayTypes.hpp>

#include <builtin/types/FlagInputType.hpp>
#include <builtin/types/LxeObjectPlaceTypes.hpp>
#include <builtin/types/LxeObjectTypes.hpp>
#include <builtin/types/OrvexStringType.hpp>
#include <builtin/types/detail/HostClassQueries.hpp>

#include <boost/container_hash/hash.hpp>

#include <cstdint>
#include <optional>
#include <stdexcept>

namespace Velloc::builtin::types {

namespace {

using Shape = OxArrayTypes::Shape;
using Density = OxArrayTypes::Density;
using Complexity = OxArrayTypes::Complexity;

// Three-way comparison of a field in which zero means "any": any sorts after every
// specific value, so that specific declarations are tried first.
template <class Field>
int compareOpenLast(Field a, Field b) noexcept {
    const auto x = static_cast<std::int64_t>(a);
    const auto y = static_cast<std::int64_t>(b);
    if (x == y) {
        return 0;
    }
    if (x == 0 || y == 0) {
        return x == 0 ? 1 : -1;
    }
    return x < y ? -1 : 1;
}

template <class Field>
void combineHash(std::size_t& seed, Field value) noexcept {
    // Signed values enter sign-extended to 64 bits.
    boost::hash_combine(seed, static_cast<std::uint64_t>(value));
}

// Asked once per process; without the service no object output is engine-supported.
const std::optional<oxClassID>& engineObjectClassId() {
    static const std::optional<oxClassID> id = detail::queryEngineObjectClassId();
    return id;
}

OxArrayTypes openArrayOfClass(oxClassID element) noexcept {
    return {element, Shape::UNKNOWN, Density::UNKNOWN, Complexity::UNKNOWN,
            OxArrayTypes::ANY_NUM_DIMS};
}

} // namespace

OxArrayTypes::OxArrayTypes(const LxeObjectPlaceTypes& object)
    : OxArrayTypes(openArrayOfClass(object.getOcosClassId())) {}

OxArrayTypes::OxArrayTypes(const LxeObjectTypes& object)
    : OxArrayTypes(openArrayOfClass(object.getOcosClassId())) {}

OxArrayTypes::OxArrayTypes(const OrvexStringType& string)
    : OxArrayTypes(openArrayOfClass(OrvexStringType::getOcosClassId())) {
    if (string.getShape() == OrvexStringType::Shape::SCALAR) {
        setShape(Shape::SCALAR, 0);
        density_ = Density::FULL;
        complexity_ = Complexity::NOT_COMPLEX;
    }
}

OxArrayTypes::OxArrayTypes(const FlagInputType& flag) : OxArrayTypes(OrvexStringType(flag)) {}

void OxArrayTypes::setShape(Shape shape) {
    const auto numDims = numericDimension(shape);
    if (!numDims) {
        throw std::invalid_argument("cannot convert Shape to numeric dimension");
    }
    setShape(shape, *numDims);
}

std::size_t OxArrayTypes::hash() const noexcept {
    std::size_t seed = 0;
    combineHash(seed, element_);
    combineHash(seed, shape_);
    combineHash(seed, density_);
    combineHash(seed, complexity_);
    combineHash(seed, numDims_);
    combineHash(seed, tolerance_);
    return seed;
}

LxeSupportLevel OxArrayTypes::getLxeSupportLevel(ArgTypeDirection direction) const {
    if (!isObjectClass(element_)) {
        // A numeric scalar input must be declared unboxed for the engine to call it.
        const bool boxedScalarInput = shape_ == Shape::SCALAR &&
                                      direction == ArgTypeDirection::INPUT &&
                                      isNumericScalarClass(element_);
        return boxedScalarInput ? LxeSupportLevel::NO_SUPPORT
                                : LxeSupportLevel::EQUIVALENT_SUPPORT;
    }
    if (direction == ArgTypeDirection::INPUT) {
        return LxeSupportLevel::NO_SUPPORT;
    }
    return engineObjectClassId() == element_ ? LxeSupportLevel::EQUIVALENT_SUPPORT
                                             : LxeSupportLevel::NO_SUPPORT;
}

bool operator<(const OxArrayTypes& a, const OxArrayTypes& b) noexcept {
    if (a.tolerance_ != b.tolerance_) {
        return a.tolerance_ < b.tolerance_;
    }
    for (const int order : {compareOpenLast(a.element_, b.element_),
                            compareOpenLast(a.density_, b.density_),
                            compareOpenLast(a.complexity_, b.complexity_)}) {
        if (order != 0) {
            return order < 0;
        }
    }
    if (a.numDims_ != b.numDims_) {
        return a.numDims_ < b.numDims_;
    }
    return compareOpenLast(a.shape_, b.shape_) < 0;
}

} // namespace Velloc::builtin::types
