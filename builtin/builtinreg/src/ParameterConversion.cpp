#include <builtin/builtinreg/ParameterConversion.hpp>

#include <builtin/services/ServiceHandles.hpp>
#include <builtin/services/findService.hpp>

namespace Velloc::builtin::builtinreg::detail {

namespace {

template <class T>
oxArray* createScalarOf(oxArray** out, T value) {
    *out = matrix::createScalar(value);
    return *out;
}

} // namespace

oxArray* parameterConversionImpl(oxArray** out, double value) { return createScalarOf(out, value); }
oxArray* parameterConversionImpl(oxArray** out, float value) { return createScalarOf(out, value); }
oxArray* parameterConversionImpl(oxArray** out, bool value) { return createScalarOf(out, value); }
oxArray* parameterConversionImpl(oxArray** out, signed char value) { return createScalarOf(out, value); }
oxArray* parameterConversionImpl(oxArray** out, short value) { return createScalarOf(out, value); }
oxArray* parameterConversionImpl(oxArray** out, int value) { return createScalarOf(out, value); }
oxArray* parameterConversionImpl(oxArray** out, long value) { return createScalarOf(out, value); }
oxArray* parameterConversionImpl(oxArray** out, unsigned char value) { return createScalarOf(out, value); }
oxArray* parameterConversionImpl(oxArray** out, unsigned short value) { return createScalarOf(out, value); }
oxArray* parameterConversionImpl(oxArray** out, unsigned int value) { return createScalarOf(out, value); }
oxArray* parameterConversionImpl(oxArray** out, unsigned long value) { return createScalarOf(out, value); }
oxArray* parameterConversionImpl(oxArray** out, char16_t value) { return createScalarOf(out, value); }
// Complex data is interleaved: real then imaginary part in the first element.
oxArray* parameterConversionImpl(oxArray** out, std::complex<float> value) { return createScalarOf(out, value); }
oxArray* parameterConversionImpl(oxArray** out, std::complex<double> value) { return createScalarOf(out, value); }

oxArray* parameterConversionImpl(oxArray** out, Velloc::lxe::LxeObject* object) {
    loadBuiltinServices();
    const auto& service = getOCOSRegWrapper();
    *out = object == nullptr || !service ? nullptr : service->lxeObjectToOxArray(object, nullptr);
    return *out;
}

oxArray* parameterConversionImpl(oxArray** out, Velloc::String::String* text) {
    loadBuiltinServices();
    const auto& service = getStringSupport();
    *out = text == nullptr || !service ? nullptr : service->stringToOxArray(text, nullptr);
    return *out;
}

} // namespace Velloc::builtin::builtinreg::detail
