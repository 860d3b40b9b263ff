#include "BufferClass.hpp"

#include <lxebuffer/Buffer.hpp>
#include <matrix/ResultArrays.hpp>

#include <array>
#include <cmath>
#include <stdexcept>
#include <vector>

namespace lxebuffer {

namespace {

const Buffer& bufferOf(const Velloc::lxe::LxeObject& object) { return dynamic_cast<const Buffer&>(object); }

std::span<const double> doublesIn(const oxArray* array, const char* what) {
    if (array == nullptr || matrix::getClassID(array) != oxDOUBLE_CLASS || matrix::isComplex(array)) {
        throw std::invalid_argument(std::string("buffer ") + what + " must be real double arrays");
    }
    return {matrix::getTypedData<double>(array), matrix::getNumberOfElements(array)};
}

// The zero-based positions a one-index subscript names.
std::vector<std::size_t> positionsOf(Velloc::lxe::IndexArrays indices) {
    if (indices.size() != 1) {
        throw std::invalid_argument("a buffer takes exactly one index");
    }
    std::vector<std::size_t> positions;
    for (const double index : doublesIn(indices[0], "indices")) {
        if (!(index >= 1) || std::floor(index) != index || index > 9.0e15) {
            throw std::invalid_argument("buffer indices must be positive integers");
        }
        positions.push_back(static_cast<std::size_t>(index) - 1);
    }
    return positions;
}

oxArray* parenReference(const Velloc::lxe::LxeObject& object, Velloc::lxe::IndexArrays indices) {
    const Buffer& buffer = bufferOf(object);
    const std::vector<std::size_t> positions = positionsOf(indices);
    // Read first, so that a bad index leaves no array behind.
    std::vector<double> values;
    values.reserve(positions.size());
    for (const std::size_t position : positions) {
        values.push_back(buffer.at(position));
    }
    oxArray* result = matrix::createUninitializedNumericArray(matrix::getDimensions(indices[0]), oxDOUBLE_CLASS);
    std::copy(values.begin(), values.end(), matrix::getTypedData<double>(result));
    return result;
}

void parenAssign(Velloc::lxe::LxeObject& object, Velloc::lxe::IndexArrays indices, const oxArray* value) {
    Buffer& buffer = dynamic_cast<Buffer&>(object);
    const std::vector<std::size_t> positions = positionsOf(indices);
    const std::span<const double> values = doublesIn(value, "values");
    if (values.size() != 1 && values.size() != positions.size()) {
        throw std::invalid_argument("a buffer assignment needs one value or one per index");
    }
    for (std::size_t i = 0; i < positions.size(); ++i) {
        buffer.set(positions[i], values[values.size() == 1 ? 0 : i]);
    }
}

std::size_t numberOfElements(const Velloc::lxe::LxeObject& object) { return bufferOf(object).size(); }

} // namespace

Velloc::lxe::LxeObjectDefaultIndexingMethods bufferIndexing() { return {&parenReference, &parenAssign, &numberOfElements}; }

} // namespace lxebuffer
