// The host string service over the host's string arrays.
#pragma once

#include <builtin/services/StringSupport.hpp>

namespace builtinservices {

class StringSupportService final : public Velloc::builtin::StringSupport {
public:
    oxClassID getStringClassId() const override;
    std::u16string_view getStringValue(const oxArray* array, const std::size_t* element) const override;
    oxArray* createStringArray(matrix::Dims dims, std::vector<std::u16string> texts) const override;
    oxArray* stringToOxArray(const Velloc::String::String* text, const matrix::Dims* dims) const override;
};

} // namespace builtinservices
