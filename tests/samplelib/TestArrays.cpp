#include "TestArrays.hpp"

#include <stdexcept>

namespace testarrays {

namespace {

template <class T>
void fill(oxArray* array, bool complex, const std::function<Value(std::size_t)>& value) {
    const std::size_t count = matrix::getNumberOfElements(array);
    if (complex) {
        auto* data = static_cast<std::complex<T>*>(matrix::getData(array));
        for (std::size_t k = 0; k < count; ++k) {
            data[k] = {static_cast<T>(value(k).real()), static_cast<T>(value(k).imag())};
        }
    } else {
        T* data = matrix::getTypedData<T>(array);
        for (std::size_t k = 0; k < count; ++k) data[k] = static_cast<T>(value(k).real());
    }
}

template <class T>
Value read(const oxArray* array, std::size_t k) {
    if (matrix::isComplex(array)) {
        const std::complex<T> z = static_cast<const std::complex<T>*>(matrix::getData(array))[k];
        return {static_cast<long double>(z.real()), static_cast<long double>(z.imag())};
    }
    return {static_cast<long double>(matrix::getTypedData<T>(array)[k]), 0};
}

} // namespace

std::size_t countOf(const Shape& shape) {
    std::size_t count = 1;
    for (const std::size_t extent : shape) count *= extent;
    return count;
}

std::string shapeText(const Shape& shape) {
    std::string text;
    for (const std::size_t extent : shape) {
        text += (text.empty() ? "" : "x") + std::to_string(extent);
    }
    return text;
}

Shape normalised(const Shape& shape) {
    Shape result = shape;
    while (result.size() > 2 && result.back() == 1) result.pop_back();
    return result;
}

Shape dimsOf(const oxArray* array) {
    const matrix::Dims dims = matrix::getDimensions(array);
    return normalised(Shape(dims.begin(), dims.end()));
}

matrix::ArrayPtr makeArray(const ClassCase& type, const Shape& shape, const std::function<Value(std::size_t)>& value) {
    matrix::ArrayPtr array(matrix::detail::do_create_uninitnumeric(shape, type.id, type.complex ? oxCOMPLEX : oxREAL));
    switch (type.id) {
    case oxDOUBLE_CLASS: fill<double>(array.get(), type.complex, value); break;
    case oxSINGLE_CLASS: fill<float>(array.get(), type.complex, value); break;
    case oxINT8_CLASS: fill<std::int8_t>(array.get(), false, value); break;
    case oxUINT8_CLASS: fill<std::uint8_t>(array.get(), false, value); break;
    case oxINT16_CLASS: fill<std::int16_t>(array.get(), false, value); break;
    case oxUINT16_CLASS: fill<std::uint16_t>(array.get(), false, value); break;
    case oxINT32_CLASS: fill<std::int32_t>(array.get(), false, value); break;
    case oxUINT32_CLASS: fill<std::uint32_t>(array.get(), false, value); break;
    case oxINT64_CLASS: fill<std::int64_t>(array.get(), false, value); break;
    case oxUINT64_CLASS: fill<std::uint64_t>(array.get(), false, value); break;
    case oxLOGICAL_CLASS: {
        bool* data = matrix::getTypedData<bool>(array.get());
        for (std::size_t k = 0; k < countOf(shape); ++k) data[k] = value(k).real() != 0;
        break;
    }
    case oxCHAR_CLASS: fill<char16_t>(array.get(), false, value); break;
    default: throw std::invalid_argument("makeArray: class");
    }
    return array;
}

Value elementOf(const oxArray* array, std::size_t k) {
    switch (matrix::getClassID(array)) {
    case oxDOUBLE_CLASS: return read<double>(array, k);
    case oxSINGLE_CLASS: return read<float>(array, k);
    case oxINT8_CLASS: return read<std::int8_t>(array, k);
    case oxUINT8_CLASS: return read<std::uint8_t>(array, k);
    case oxINT16_CLASS: return read<std::int16_t>(array, k);
    case oxUINT16_CLASS: return read<std::uint16_t>(array, k);
    case oxINT32_CLASS: return read<std::int32_t>(array, k);
    case oxUINT32_CLASS: return read<std::uint32_t>(array, k);
    case oxINT64_CLASS: return read<std::int64_t>(array, k);
    case oxUINT64_CLASS: return read<std::uint64_t>(array, k);
    case oxLOGICAL_CLASS: return {matrix::getTypedData<bool>(array)[k] ? 1.0L : 0.0L, 0};
    case oxCHAR_CLASS: return read<char16_t>(array, k);
    default: throw std::invalid_argument("elementOf: class");
    }
}

std::size_t sourceOf(std::size_t i, const Shape& out, const Shape& operand) {
    std::size_t index = 0;
    std::size_t stride = 1;
    for (std::size_t d = 0; d < out.size(); ++d) {
        const std::size_t subscript = i % out[d];
        i /= out[d];
        const std::size_t extent = d < operand.size() ? operand[d] : 1;
        index += (extent == 1 ? 0 : subscript) * stride;
        stride *= extent;
    }
    return index;
}

} // namespace testarrays
