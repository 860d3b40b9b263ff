#include <builtin/types/OxArrayTypes.hpp>

#include <string>

namespace Velloc::builtin::types {

namespace {

using Shape = OxArrayTypes::Shape;
using Density = OxArrayTypes::Density;
using Complexity = OxArrayTypes::Complexity;

// Classes that the expression language cannot name get the fully open form.
bool hasOpenExpression(oxClassID element) noexcept {
    return element <= oxUNKNOWN_CLASS || element == oxOPAQUE_CLASS ||
           element > oxFIRST_OBJECT_CLASS;
}

std::string elementText(oxClassID element) {
    const std::string_view name = numericClassName(element);
    return name.empty() ? std::string("oxArray") : std::string(name);
}

std::string ndShapeText(std::uint64_t numDims, bool relaxed, const std::string& shapeVar) {
    if (relaxed) {
        if (numDims == 3) {
            return shapeVar + ":B2IsShape3d";
        }
        if (numDims == 4) {
            return shapeVar + ":B2IsShape4d";
        }
        if (numDims == OxArrayTypes::ANY_NUM_DIMS) {
            return shapeVar;
        }
    }
    return "ox_nd_array<" + std::to_string(numDims) + ">";
}

std::string shapeText(const OxArrayTypes& type, const std::string& index) {
    const bool relaxed = type.getSignatureTolerance() == SignatureTolerance::RELAXED;
    const std::string shapeVar = "$Shape" + index;
    const auto [shape, numDims] = type.getShape();
    switch (shape) {
    case Shape::UNKNOWN: return relaxed ? shapeVar : std::string();
    case Shape::EMPTY_ROW: return "ox_empty<vector<row>, false>";
    case Shape::EMPTY_COL: return "ox_empty<vector<column>, false>";
    case Shape::EMPTY: return "ox_empty<" + shapeVar + ", $IsZeroByZero" + index + ">";
    case Shape::SCALAR: return "ox_scalar";
    case Shape::ROW: return relaxed ? shapeVar + ":B2IsShapeRowVector" : "vector<row>";
    case Shape::COLUMN: return relaxed ? shapeVar + ":B2IsShapeColumnVector" : "vector<column>";
    case Shape::VECTOR: return shapeVar + ":B2IsShapeAnyVector";
    case Shape::TWO_D:
        if (!relaxed) {
            return "ox_2d_array";
        }
        return type.getDensity() == Density::SPARSE ? shapeVar : shapeVar + ":B2IsShape2d";
    case Shape::ND: return ndShapeText(numDims, relaxed, shapeVar);
    default: return {};
    }
}

std::string attributeText(const OxArrayTypes& type, const std::string& index) {
    if (type.getElement() == oxCELL_CLASS) {
        return "ox_cell";
    }
    if (type.getElement() == oxSTRUCT_CLASS) {
        return "ox_struct";
    }
    switch (type.getDensity()) {
    case Density::FULL: return "ox_full";
    case Density::SPARSE: return "ox_sparse";
    default: return "$Attribute" + index;
    }
}

std::string complexityText(Complexity complexity, const std::string& index) {
    switch (complexity) {
    case Complexity::NOT_COMPLEX: return "false";
    case Complexity::COMPLEX: return "true";
    default: return "$Complexity" + index;
    }
}

// An output has no argument to bind its placeholders to. A numeric scalar result is
// returned as a full array, so an open storage attribute (the first placeholder, when
// present) is closed; an open complexity stays open, as a result may be real or complex.
void closeScalarOutputAttribute(std::string& text) {
    const std::size_t placeholder = text.find('$');
    if (placeholder == std::string::npos || text.compare(placeholder, 10, "$Attribute") != 0) {
        return;
    }
    const std::size_t end = text.find(',', placeholder);
    text.replace(placeholder, end - placeholder, "ox_full");
}

} // namespace

std::string OxArrayTypes::toString(ArgTypeDirection direction, unsigned long index) const {
    const std::string indexText = std::to_string(index);
    if (hasOpenExpression(element_)) {
        return "oxArray_of<$a" + indexText + ",$b" + indexText + ",$c" + indexText + ",$d" +
               indexText + ">";
    }
    std::string text = "oxArray_of<" + elementText(element_) + "," +
                       shapeText(*this, indexText) + "," + attributeText(*this, indexText) +
                       "," + complexityText(complexity_, indexText) + ">";
    if (direction == ArgTypeDirection::OUTPUT && shape_ == Shape::SCALAR &&
        isNumericScalarClass(element_)) {
        closeScalarOutputAttribute(text);
    }
    return text;
}

} // namespace Velloc::builtin::types
