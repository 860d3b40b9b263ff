#include "Elements.hpp"

#include <foundation/core/except/Exception.hpp>
#include <matrix/ResultArrays.hpp>

namespace samplelib {

namespace {

template <class T>
Number readNumber(const void* data, std::size_t i) {
    const T value = static_cast<const T*>(data)[i];
    if constexpr (isComplexType<T>) {
        return {static_cast<long double>(value.real()), static_cast<long double>(value.imag())};
    } else {
        return {static_cast<long double>(value), 0};
    }
}

} // namespace

std::string classNameOf(const oxArray* a) {
    static const char* const NAMES[] = {"unknown", "cell",   "struct",          "logical", "char",   "void",  "double",
                                        "single",  "int8",   "uint8",           "int16",   "uint16", "int32", "uint32",
                                        "int64",   "uint64", "function_handle", "opaque"};
    const oxClassID id = matrix::getClassID(a);
    if (id >= 0 && id < oxFIRST_OBJECT_CLASS) {
        return NAMES[id];
    }
    return id == 19 ? "string" : "object";
}

bool holdsNumbers(const oxArray* a) {
    const oxClassID id = matrix::getClassID(a);
    const bool numeric = id == oxLOGICAL_CLASS || id == oxCHAR_CLASS || (id >= oxDOUBLE_CLASS && id <= oxUINT64_CLASS);
    return numeric && !matrix::isSparse(a);
}

void requireNumbers(std::string_view builtin, const oxArray* a) {
    if (!holdsNumbers(a)) {
        throw foundation::core::except::Exception<errors::unsupportedClass>(
            {std::string(builtin), (matrix::isSparse(a) ? "sparse " : "") + classNameOf(a)});
    }
}

matrix::ArrayPtr createArray(std::span<const std::size_t> dims, oxClassID classId, bool complex) {
    return matrix::ArrayPtr(matrix::createUninitializedNumericArray(dims, classId, complex ? oxCOMPLEX : oxREAL));
}

NumberReader::NumberReader(const oxArray* a)
    : data_(matrix::getData(a)),
      read_(visitElements(a, []<class T>(std::type_identity<T>) -> Read { return &readNumber<T>; })) {}

std::size_t numberOfElements(std::span<const std::size_t> dims) {
    std::size_t count = 1;
    for (const std::size_t extent : dims) {
        count *= extent;
    }
    return count;
}

} // namespace samplelib
