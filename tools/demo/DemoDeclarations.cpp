#include "DemoDeclarations.hpp"

namespace demo {
namespace {

using namespace Velloc::builtin::types;
using Shape = OxArrayTypes::Shape;
using Density = OxArrayTypes::Density;
using Complexity = OxArrayTypes::Complexity;

ArgType relaxed(oxClassID element, Shape shape, Density density, Complexity complexity,
                std::uint64_t numDims) {
    ArgType type = OxArrayTypes(element, shape, density, complexity, numDims);
    setSignatureTolerance(type, SignatureTolerance::RELAXED);
    return type;
}

} // namespace

std::vector<NamedDeclaration> makeDemoDeclarations() {
    return {
        {"A double", NumericScalarTypes(oxDOUBLE_CLASS, NumericScalarTypes::Complexity::NOT_COMPLEX)},
        {"B strict double scalar",
         OxArrayTypes(oxDOUBLE_CLASS, Shape::SCALAR, Density::FULL, Complexity::NOT_COMPLEX, 0)},
        {"C relaxed real double row",
         relaxed(oxDOUBLE_CLASS, Shape::ROW, Density::FULL, Complexity::NOT_COMPLEX, 1)},
        {"D relaxed double 2-D, any complexity",
         relaxed(oxDOUBLE_CLASS, Shape::TWO_D, Density::UNKNOWN, Complexity::UNKNOWN, 2)},
        {"E relaxed char row",
         relaxed(oxCHAR_CLASS, Shape::ROW, Density::FULL, Complexity::NOT_COMPLEX, 1)},
        {"F relaxed up to 3-D of any class",
         relaxed(oxUNKNOWN_CLASS, Shape::ND, Density::UNKNOWN, Complexity::UNKNOWN, 3)},
        {"G relaxed anything", relaxed(oxUNKNOWN_CLASS, Shape::UNKNOWN, Density::UNKNOWN,
                                       Complexity::UNKNOWN, OxArrayTypes::ANY_NUM_DIMS)},
    };
}

} // namespace demo
