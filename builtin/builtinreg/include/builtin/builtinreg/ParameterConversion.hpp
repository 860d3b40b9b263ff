// Turning one C++ value into a new host array (results and boxed arguments), and the
// reporters that end the process when a value of the wrong type reaches a typed slot.
#pragma once

#include <builtin/Parameter.hpp>

#include <complex>
#include <typeinfo>

namespace Velloc::builtin::builtinreg::detail {

// Each creates a 1-by-1 array holding the value, stores it in *out and returns it; the
// caller owns it.
oxArray* parameterConversionImpl(oxArray** out, double value);
oxArray* parameterConversionImpl(oxArray** out, float value);
oxArray* parameterConversionImpl(oxArray** out, bool value);
oxArray* parameterConversionImpl(oxArray** out, signed char value);
oxArray* parameterConversionImpl(oxArray** out, short value);
oxArray* parameterConversionImpl(oxArray** out, int value);
oxArray* parameterConversionImpl(oxArray** out, long value);
oxArray* parameterConversionImpl(oxArray** out, unsigned char value);
oxArray* parameterConversionImpl(oxArray** out, unsigned short value);
oxArray* parameterConversionImpl(oxArray** out, unsigned int value);
oxArray* parameterConversionImpl(oxArray** out, unsigned long value);
oxArray* parameterConversionImpl(oxArray** out, char16_t value);
oxArray* parameterConversionImpl(oxArray** out, std::complex<float> value);
oxArray* parameterConversionImpl(oxArray** out, std::complex<double> value);
// Through the class-object and string services; a null value or a missing service
// gives a null array.
oxArray* parameterConversionImpl(oxArray** out, Velloc::lxe::LxeObject* object);
oxArray* parameterConversionImpl(oxArray** out, Velloc::String::String* text);

// The engine object a parameter carries: the object itself, as compiled callers pass it,
// or the class-object array that holds it, as interpreted calls pass it. An array that
// holds none throws std::invalid_argument naming the array's class.
Velloc::lxe::LxeObject* lxeObjectOfParameter(const Parameter& parameter);

} // namespace Velloc::builtin::builtinreg::detail

namespace Velloc::builtin::types::detail {

// The type of the alternative a Parameter holds.
const std::type_info& heldType(const Parameter& parameter);

[[noreturn]] void assertFromParameterType(const std::type_info& expected, const oxArray* array);
[[noreturn]] void assertLxeObjectFromParameterType(const std::type_info& expected, const Parameter& parameter);
// Returns when the Parameter holds expected, or when diagnostic terminations are off.
void assertParameterContainsType(const std::type_info& expected, const Parameter& parameter);

} // namespace Velloc::builtin::types::detail
