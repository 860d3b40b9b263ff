// Classification of host arrays built through the array library from arbitrary class
// ids, dimensions, complexity and flags. Creation either succeeds or raises one of the
// library's documented errors; classification never throws, and a descriptor it gives
// agrees with the array's class, dimensions, complexity and sparsity.
#include "Check.hpp"

#include <builtin/types/ArgTypeOfOxArray.hpp>
#include <matrix/oxArray.hpp>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace {

using Velloc::builtin::types::ArgType;
using Velloc::builtin::types::OxArrayTypes;
using Shape = OxArrayTypes::Shape;

// Arrays that store their elements are kept small enough to allocate at once; those that
// store none take any dimensions, however large.
constexpr std::size_t MAX_STORED_BYTES = std::size_t{1} << 20;
constexpr std::size_t MAX_STORED_ELEMENTS = 4096;

using fuzz::check;

std::vector<std::size_t> dimensionsFrom(FuzzedDataProvider& input) {
    std::vector<std::size_t> dims(input.ConsumeIntegralInRange<std::size_t>(0, 36));
    for (std::size_t& extent : dims) {
        extent = input.ConsumeBool() ? input.ConsumeIntegralInRange<std::size_t>(0, 4)
                                     : input.ConsumeIntegral<std::size_t>();
    }
    return dims;
}

// The element count, or nothing when it overflows.
bool countElements(const std::vector<std::size_t>& dims, std::size_t& count) {
    count = 1;
    for (const std::size_t extent : dims) {
        if (__builtin_mul_overflow(count, extent, &count)) return false;
    }
    return true;
}

// Whether creating an array that stores `elementBytes` per element would allocate more
// than the fuzzer allows; an overflowing count is left to the library to refuse.
bool tooLargeToStore(const std::vector<std::size_t>& dims, std::size_t elementBytes, std::size_t maxElements) {
    std::size_t count = 0;
    std::size_t bytes = 0;
    if (!countElements(dims, count) || __builtin_mul_overflow(count, elementBytes, &bytes)) return false;
    return count > maxElements || bytes > MAX_STORED_BYTES;
}

oxArray* createArray(FuzzedDataProvider& input) {
    const auto classId = static_cast<oxClassID>(input.ConsumeBool() ? input.ConsumeIntegralInRange(-2, 40)
                                                                     : input.ConsumeIntegral<std::int32_t>());
    const auto complexity = static_cast<oxComplexity>(input.ConsumeIntegralInRange(-1, 2));
    const std::vector<std::size_t> dims = dimensionsFrom(input);
    switch (input.ConsumeIntegralInRange(0, 8)) {
    case 0:
    case 1: {
        const std::size_t elementBytes = matrix::getElementSize(classId) * (complexity == oxCOMPLEX ? 2 : 1);
        if (tooLargeToStore(dims, elementBytes, std::numeric_limits<std::size_t>::max())) return nullptr;
        return input.ConsumeBool() ? matrix::detail::do_create_uninitnumeric(dims, classId, complexity)
                                   : matrix::createWithOpaqueDimensions(dims, classId, complexity);
    }
    case 2: return matrix::createSparseDouble(input.ConsumeIntegral<std::size_t>(), input.ConsumeIntegral<std::size_t>(),
                                              input.ConsumeBool());
    case 3:
        if (tooLargeToStore(dims, sizeof(void*), MAX_STORED_ELEMENTS)) return nullptr;
        return matrix::createCell(dims);
    case 4:
        if (tooLargeToStore(dims, sizeof(void*), MAX_STORED_ELEMENTS)) return nullptr;
        return matrix::createStruct(dims, {input.ConsumeRandomLengthString(8)});
    case 5: return matrix::createObject(classId, dims, nullptr);
    case 6: return matrix::createOpaque(dims);
    case 7: {
        if (tooLargeToStore(dims, sizeof(char16_t), MAX_STORED_ELEMENTS)) return nullptr;
        // Units for every element, or one too many; none when the count overflows.
        std::size_t count = 0;
        const bool counted = countElements(dims, count) && count <= MAX_STORED_ELEMENTS;
        const std::u16string units(counted ? count + (input.ConsumeBool() ? 0 : 1) : 0, u'x');
        return matrix::createCharArray(dims, units);
    }
    default: return matrix::createFunctionHandle(input.ConsumeRandomLengthString(8));
    }
}

// Flags and copies a host may hand over instead of the array it made.
matrix::ArrayPtr variantOf(FuzzedDataProvider& input, matrix::ArrayPtr array) {
    matrix::setTemporary(array.get(), input.ConsumeBool());
    if (input.ConsumeBool()) matrix::setForeignStorage(array.get(), true);
    switch (input.ConsumeIntegralInRange(0, 2)) {
    case 0: return array;
    case 1: return matrix::ArrayPtr(matrix::duplicateArray(array.get()));
    default:
        try {
            return matrix::ArrayPtr(matrix::createSharedDataCopy(array.get()));
        } catch (const std::invalid_argument&) {
            return array;
        }
    }
}

void checkDescriptor(const oxArray* array, const OxArrayTypes& type) {
    check(type.getElement() == matrix::getClassID(array));
    check((type.getComplexity() == OxArrayTypes::Complexity::COMPLEX) == matrix::isComplex(array));
    check((type.getDensity() == OxArrayTypes::Density::SPARSE) == matrix::isSparse(array));
    const auto [shape, numDims] = type.getShape();
    const std::size_t elements = matrix::getNumberOfElements(array);
    switch (shape) {
    case Shape::SCALAR: check(elements == 1 && matrix::isScalar(array)); break;
    case Shape::EMPTY_ROW:
    case Shape::EMPTY_COL:
    case Shape::EMPTY: check(elements == 0 && matrix::isEmpty(array)); break;
    case Shape::ND: check(numDims == matrix::getNumberOfDimensions(array) && numDims > 2); break;
    default: check(shape != Shape::UNKNOWN && elements > 1 && matrix::isTwoDimensional(array)); break;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    matrix::ArrayPtr array;
    try {
        array.reset(createArray(input));
    } catch (const matrix::ShapeError&) {
        return 0;
    } catch (const matrix::ClassIdError&) {
        return 0;
    } catch (const std::invalid_argument&) {
        return 0;
    }
    if (!array) return 0;
    array = variantOf(input, std::move(array));

    const ArgType type = Velloc::builtin::types::getArgTypeOfOxArray(array.get());
    if (const auto* descriptor = std::get_if<OxArrayTypes>(&type)) {
        checkDescriptor(array.get(), *descriptor);
    } else {
        check(std::holds_alternative<Velloc::builtin::types::UnsupportedArgType>(type));
    }
    check(Velloc::builtin::types::getArgTypeOfOxArray(array.get()) == type);
    return 0;
}
