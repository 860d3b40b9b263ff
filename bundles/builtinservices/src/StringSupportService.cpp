#include "StringSupportService.hpp"

#include <ocos/ClassRegistry.hpp>
#include <strings/StringArray.hpp>

#include <stdexcept>
#include <string>

namespace builtinservices {

oxClassID StringSupportService::getStringClassId() const { return ocos::STRING_CLASS_ID; }

std::u16string_view StringSupportService::getStringValue(const oxArray* array, const std::size_t* element) const {
    if (!Velloc::String::isStringArray(array)) {
        throw std::invalid_argument("expected a string array, not an array of class " +
                                    std::to_string(matrix::getClassID(array)));
    }
    if (element != nullptr) {
        return Velloc::String::getStringElement(array, *element).view();
    }
    if (!matrix::isScalar(array)) {
        throw std::invalid_argument("expected one string, not a string array of " +
                                    std::to_string(matrix::getNumberOfElements(array)));
    }
    return Velloc::String::getStringElement(array, 0).view();
}

oxArray* StringSupportService::createStringArray(matrix::Dims dims, std::vector<std::u16string> texts) const {
    return Velloc::String::createStringArray(dims, std::move(texts));
}

oxArray* StringSupportService::stringToOxArray(const Velloc::String::String* text, const matrix::Dims* dims) const {
    if (text == nullptr) {
        throw std::invalid_argument("no string to put in a string array");
    }
    return dims != nullptr ? Velloc::String::createFilledStringArray(*dims, *text) : Velloc::String::createScalarString(*text);
}

} // namespace builtinservices
