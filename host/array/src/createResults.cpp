// The public creation functions for builtin results (matrix/ResultArrays.hpp).
#include "ArrayHeader.hpp"
#include "ClassTraits.hpp"

#include <matrix/ResultArrays.hpp>

#include <fl/i18n.hpp>

#include <cstring>
#include <string>

namespace matrix {

namespace {

oxArray* numericArray(const char* function, Dims dims, oxClassID classId, oxComplexity complexity) {
    if (!detail::holdsNumericData(classId)) {
        throw ClassIdError(std::string("matrix::") + function + ": class " + std::to_string(classId) +
                           " holds no numbers (double, single, an integer class, logical or char)");
    }
    if (complexity == oxCOMPLEX && !detail::mayBeComplex(classId)) {
        throw ClassIdError(std::string("matrix::") + function + ": class " + std::to_string(classId) +
                           " cannot be complex");
    }
    return detail::do_create_uninitnumeric(dims, classId, complexity);
}

oxArray* zeroed(oxArray* array) {
    if (const std::size_t bytes = detail::dataBytes(*array); bytes != 0) {
        std::memset(getData(array), 0, bytes);
    }
    return array;
}

Dims dimsOf(std::initializer_list<std::size_t> dims) { return {dims.begin(), dims.size()}; }

} // namespace

oxArray* createNumericArray(Dims dims, oxClassID classId, oxComplexity complexity) {
    return zeroed(numericArray("createNumericArray", dims, classId, complexity));
}

oxArray* createNumericArray(std::initializer_list<std::size_t> dims, oxClassID classId, oxComplexity complexity) {
    return createNumericArray(dimsOf(dims), classId, complexity);
}

oxArray* createUninitializedNumericArray(Dims dims, oxClassID classId, oxComplexity complexity) {
    return numericArray("createUninitializedNumericArray", dims, classId, complexity);
}

oxArray* createUninitializedNumericArray(std::initializer_list<std::size_t> dims, oxClassID classId,
                                         oxComplexity complexity) {
    return createUninitializedNumericArray(dimsOf(dims), classId, complexity);
}

oxArray* createLogicalArray(Dims dims) { return zeroed(detail::do_create_uninitnumeric(dims, oxLOGICAL_CLASS, oxREAL)); }

oxArray* createLogicalArray(std::initializer_list<std::size_t> dims) { return createLogicalArray(dimsOf(dims)); }

oxArray* createCharRowFromUtf8(std::string_view text) { return createCharRow(fl::i18n::utf8_to_ustring(text)); }

} // namespace matrix
