// Creation of arrays that hold numeric, logical or char data.
#include "ArrayHeader.hpp"
#include "ClassTraits.hpp"

#include <cstring>

namespace matrix {
namespace detail {
namespace {

std::uint32_t complexityFlags(oxComplexity complexity) { return complexity == oxCOMPLEX ? flag::COMPLEX : 0; }

} // namespace

oxArray* do_create_uninitnumeric(Dims dims, oxClassID classId, oxComplexity complexity) {
    if (!holdsNumericData(classId)) {
        throw ClassIdError("matrix: class " + std::to_string(classId) + " holds no numeric data");
    }
    if (complexity != oxREAL && complexity != oxCOMPLEX) {
        throw ClassIdError("matrix: complexity " + std::to_string(complexity) + " is neither real nor complex");
    }
    if (complexity == oxCOMPLEX && !mayBeComplex(classId)) {
        throw ClassIdError("matrix: class " + std::to_string(classId) + " cannot be complex");
    }
    const std::size_t elementBytes = realElementSize(classId) * (complexity == oxCOMPLEX ? 2 : 1);
    // Small results of two dimensions, the commonest, skip the general path's loops.
    if (dims.size() == 2 && dims[0] <= INLINE_DATA_BYTES && dims[1] <= INLINE_DATA_BYTES &&
        dims[0] * dims[1] * elementBytes <= INLINE_DATA_BYTES) {
        return allocateInlineMatrix(classId, complexityFlags(complexity), dims[0], dims[1]);
    }
    std::size_t elements = 0;
    std::size_t bytes = 0;
    if (!multiplyDimensions(dims, elements) || __builtin_mul_overflow(elements, elementBytes, &bytes)) {
        throw overflowError(dims);
    }
    return allocateArray(dims, classId, complexityFlags(complexity), bytes);
}

} // namespace detail

template <class T>
oxArray* createScalar(T value) {
    using Class = detail::ScalarClass<T>;
    static_assert(sizeof(T) <= detail::INLINE_DATA_BYTES);
    oxArray* array = detail::allocateScalar(Class::classId, detail::complexityFlags(Class::complexity));
    std::memcpy(array->data, &value, sizeof(T));
    return array;
}

template oxArray* createScalar(bool);
template oxArray* createScalar(char16_t);
template oxArray* createScalar(double);
template oxArray* createScalar(float);
template oxArray* createScalar(signed char);
template oxArray* createScalar(unsigned char);
template oxArray* createScalar(short);
template oxArray* createScalar(unsigned short);
template oxArray* createScalar(int);
template oxArray* createScalar(unsigned int);
template oxArray* createScalar(long);
template oxArray* createScalar(unsigned long);
template oxArray* createScalar(long long);
template oxArray* createScalar(unsigned long long);
template oxArray* createScalar(std::complex<float>);
template oxArray* createScalar(std::complex<double>);

oxArray* createCharArray(Dims dims, std::u16string_view codeUnits) {
    oxArray* array = detail::do_create_uninitnumeric(dims, oxCHAR_CLASS, oxREAL);
    if (array->numberOfElements != codeUnits.size()) {
        const std::string shape = detail::dimensionsText(dims);
        detail::freeArray(array);
        throw std::invalid_argument("matrix::createCharArray: " + std::to_string(codeUnits.size()) +
                                    " code units do not fill a " + shape + " char array");
    }
    std::memcpy(array->data, codeUnits.data(), codeUnits.size() * sizeof(char16_t));
    return array;
}

oxArray* createCharRow(std::u16string_view text) {
    const std::size_t dims[] = {1, text.size()};
    return createCharArray(dims, text);
}

oxArray* createWithOpaqueDimensions(Dims dims, oxClassID classId, oxComplexity complexity) {
    auto extras = std::make_unique<detail::ArrayExtras>();
    oxArray* array = detail::do_create_uninitnumeric(dims, classId, complexity);
    // Keep the real dimensions aside; the header shows an empty 0x0 until completion.
    array->extras = extras.release();
    array->extras->pendingDimensions.assign(array->dimensions, array->dimensions + array->numberOfDimensions);
    array->numberOfDimensions = 2;
    array->dimensions[0] = 0;
    array->dimensions[1] = 0;
    array->numberOfElements = 0;
    array->glance.store(0, std::memory_order_relaxed);
    array->flags.fetch_or(detail::flag::OPAQUE_DIMENSIONS, std::memory_order_relaxed);
    return array;
}

} // namespace matrix
