#include "Broadcasting.hpp"

#include <builtin/builtinreg/Explain.hpp>
#include <builtin/types/NumericScalarTypes.hpp>

#include <foundation/core/except/Exception.hpp>
#include <matrix/ResultArrays.hpp>

#include <algorithm>
#include <array>
#include <variant>

namespace samplelib {

namespace {

// One uninitialised element of a's class and complexity, or null for arrays without
// numeric elements. Only its type is looked at.
matrix::ArrayPtr oneElementLike(const oxArray* a) {
    const oxClassID classId = matrix::getClassID(a);
    if (matrix::isSparse(a) || matrix::getElementSize(classId) == 0) {
        return nullptr;
    }
    return matrix::ArrayPtr(
        matrix::createUninitializedNumericArray({1, 1}, classId, matrix::isComplex(a) ? oxCOMPLEX : oxREAL));
}

} // namespace

std::string sizeText(const oxArray* array) {
    std::string text;
    // Appended piece by piece: GCC 12 reports a false -Wrestrict on prepending a literal to
    // a temporary string once this is inlined.
    for (const std::size_t extent : matrix::getDimensions(array)) {
        if (!text.empty()) {
            text += 'x';
        }
        text += std::to_string(extent);
    }
    return text;
}

std::optional<std::vector<std::size_t>> broadcastDims(const oxArray* a, const oxArray* b) {
    const matrix::Dims dimsA = matrix::getDimensions(a);
    const matrix::Dims dimsB = matrix::getDimensions(b);
    std::vector<std::size_t> dims(std::max(dimsA.size(), dimsB.size()));
    for (std::size_t i = 0; i < dims.size(); ++i) {
        const std::size_t m = i < dimsA.size() ? dimsA[i] : 1;
        const std::size_t n = i < dimsB.size() ? dimsB[i] : 1;
        if (m != n && m != 1 && n != 1) {
            return std::nullopt;
        }
        dims[i] = m == 1 ? n : m;
    }
    return dims;
}

void rejectSizeMismatch(const oxArray* a, const oxArray* b) {
    if (!broadcastDims(a, b)) {
        throw foundation::core::except::Exception<errors::sizeMismatch>({sizeText(a), sizeText(b)});
    }
}

matrix::ArrayPtr emptyResult(const Velloc::builtin::BuiltinFcn& builtin, const oxArray* a, const oxArray* b) {
    const std::optional<std::vector<std::size_t>> dims = broadcastDims(a, b);
    if (!dims || !(matrix::isEmpty(a) || matrix::isEmpty(b))) {
        return nullptr;
    }
    const std::array<matrix::ArrayPtr, 2> elements{oneElementLike(a), oneElementLike(b)};
    if (!elements[0] || !elements[1]) {
        return nullptr;
    }
    oxArray* const arguments[] = {elements[0].get(), elements[1].get()};
    const Velloc::builtin::BuiltinVariant* chosen = Velloc::builtin::builtinreg::explain(builtin, 1, 2, arguments).chosen;
    if (chosen == nullptr || !chosen->isElementWise || chosen->outputArgTypes.size() != 1) {
        return nullptr;
    }
    const auto* element = std::get_if<Velloc::builtin::types::NumericScalarTypes>(&chosen->outputArgTypes[0]);
    if (element == nullptr) {
        return nullptr;
    }
    return matrix::ArrayPtr(
        matrix::createUninitializedNumericArray(*dims, element->getElement(),
                                                element->isComplex() ? oxCOMPLEX : oxREAL));
}

} // namespace samplelib
