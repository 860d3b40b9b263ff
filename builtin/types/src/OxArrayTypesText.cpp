#include <builtin/types/OxArrayTypes.hpp>
#include <builtin/types/SignatureTolerance.hpp>

#include <ostream>
#include <string_view>

namespace Velloc::builtin::types {

namespace {

using Shape = OxArrayTypes::Shape;
using Density = OxArrayTypes::Density;
using Complexity = OxArrayTypes::Complexity;

// Printing never fails: a value outside an enumeration prints as its "Unknown" word.
void writeShape(std::ostream& os, Shape shape, std::uint64_t numDims) {
    switch (shape) {
    case Shape::EMPTY_ROW: os << "EMPTY_ROW"; return;
    case Shape::EMPTY_COL: os << "EMPTY_COL"; return;
    case Shape::EMPTY: os << "EMPTY"; return;
    case Shape::SCALAR: os << "SCALAR"; return;
    case Shape::ROW: os << "ROW"; return;
    case Shape::COLUMN: os << "COLUMN"; return;
    case Shape::VECTOR: os << "VECTOR"; return;
    case Shape::TWO_D: os << "2D"; return;
    case Shape::ND: os << numDims << 'D'; return;
    default: os << "Unknown Shape"; return;
    }
}

std::string_view densityWord(Density density) noexcept {
    switch (density) {
    case Density::FULL: return "FULL";
    case Density::SPARSE: return "SPARSE";
    default: return "Unknown Density";
    }
}

std::string_view complexityWord(Complexity complexity) noexcept {
    switch (complexity) {
    case Complexity::NOT_COMPLEX: return "NOT_COMPLEX";
    case Complexity::COMPLEX: return "COMPLEX";
    default: return "Unknown Complexity";
    }
}

} // namespace

std::ostream& operator<<(std::ostream& os, SignatureTolerance tolerance) {
    switch (tolerance) {
    case SignatureTolerance::STRICT: return os << "STRICT";
    case SignatureTolerance::RELAXED: return os << "RELAXED";
    }
    return os;
}

std::ostream& operator<<(std::ostream& os, const OxArrayTypes& type) {
    os << "OxArrayTypes: " << toString(type.element_) << ' ';
    writeShape(os, type.shape_, type.numDims_);
    return os << ' ' << densityWord(type.density_) << ' ' << complexityWord(type.complexity_)
              << ' ' << type.tolerance_;
}

} // namespace Velloc::builtin::types
