// Arrays of every class that holds numbers, for the tests of the sample's comparisons,
// logical operators, transposes and reductions, and a reader of their elements written
// here, apart from the library's: the expectations the tests compute do not share code
// with what they test.
#pragma once

#include <matrix/oxArray.hpp>

#include <complex>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace testarrays {

using Shape = std::vector<std::size_t>;
using Value = std::complex<long double>;

struct ClassCase {
    const char* name;
    oxClassID id;
    bool complex;
    bool isInteger() const { return id >= oxINT8_CLASS && id <= oxUINT64_CLASS; }
    bool isFloating() const { return id == oxDOUBLE_CLASS || id == oxSINGLE_CLASS; }
    bool isSigned() const {
        return id == oxINT8_CLASS || id == oxINT16_CLASS || id == oxINT32_CLASS || id == oxINT64_CLASS || isFloating();
    }
};

// The twelve numeric classes, then logical and char.
inline const std::vector<ClassCase> CLASSES{
    {"double", oxDOUBLE_CLASS, false},       {"single", oxSINGLE_CLASS, false},
    {"int8", oxINT8_CLASS, false},           {"uint8", oxUINT8_CLASS, false},
    {"int16", oxINT16_CLASS, false},         {"uint16", oxUINT16_CLASS, false},
    {"int32", oxINT32_CLASS, false},         {"uint32", oxUINT32_CLASS, false},
    {"int64", oxINT64_CLASS, false},         {"uint64", oxUINT64_CLASS, false},
    {"complexDouble", oxDOUBLE_CLASS, true}, {"complexSingle", oxSINGLE_CLASS, true},
    {"logical", oxLOGICAL_CLASS, false},     {"char", oxCHAR_CLASS, false},
};

inline const ClassCase& classNamed(const std::string& name) {
    for (const ClassCase& c : CLASSES) {
        if (name == c.name) return c;
    }
    throw std::invalid_argument(name);
}

std::size_t countOf(const Shape& shape);
std::string shapeText(const Shape& shape);

// Trailing singleton dimensions beyond the second say nothing about an array's size.
Shape normalised(const Shape& shape);
Shape dimsOf(const oxArray* array);

// An array of the class and shape whose element k is value(k), converted to the class as
// a C++ cast converts (the values chosen fit every class they are used with).
matrix::ArrayPtr makeArray(const ClassCase& type, const Shape& shape, const std::function<Value(std::size_t)>& value);

// Element k of any numeric, logical or char array, by a switch over the class.
Value elementOf(const oxArray* array, std::size_t k);

// The column-major index into an operand of extents `operand` of the element broadcast
// onto element i of an array of extents `out`.
std::size_t sourceOf(std::size_t i, const Shape& out, const Shape& operand);

} // namespace testarrays
