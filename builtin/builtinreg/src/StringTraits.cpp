#include <builtin/builtinreg/StringTraits.hpp>

#include <builtin/services/ServiceHandles.hpp>

#include <fl/i18n.hpp>
#include <foundation/core/SourceLocation.hpp>
#include <foundation/core/diag/terminate.hpp>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Velloc::builtin::types {

namespace {

const char* const WRONG_SHAPE = "only scalar strings or char row vectors are expected.";

using Shape = OxArrayTypes::Shape;
using Density = OxArrayTypes::Density;
using Complexity = OxArrayTypes::Complexity;

std::u16string_view charRowText(const oxArray* array) {
    // Completes opaque dimensions; an array has at least two.
    const matrix::Dims dims = matrix::getDimensions(array);
    if (std::find(dims.begin(), dims.end(), 0) != dims.end()) {
        return {};
    }
    if (dims.size() != 2 || dims[0] != 1 || !matrix::isOrdinaryStorage(array)) {
        throw std::invalid_argument(WRONG_SHAPE);
    }
    const char16_t* data = matrix::getTypedData<char16_t>(array);
    if (data == nullptr) {
        throw std::logic_error("basic_string: construction from null is not valid");
    }
    return {data, dims[1]};
}

// The view points into array, which temporaries keeps alive.
std::u16string_view readText(const oxArray* array, Temporaries& temporaries) {
    Temporaries::value_type owned(array);
    temporaries.push_back(std::move(owned));
    if (matrix::getClassID(array) == oxCHAR_CLASS) {
        return charRowText(array);
    }
    const auto& service = builtinreg::getStringSupport();
    if (!service) {
        throw std::invalid_argument(WRONG_SHAPE);
    }
    return service->getStringValue(array, nullptr);
}

oxArray* charRowOf(std::u16string_view text) {
    const std::array<std::size_t, 2> dims{1, text.size()};
    oxArray* array = matrix::detail::do_create_uninitnumeric(dims, oxCHAR_CLASS, oxREAL);
    std::copy(text.begin(), text.end(), matrix::getTypedData<char16_t>(array));
    return array;
}

oxArray* scalarStringOf(const StringSupport& service, std::u16string text) {
    static constexpr std::array<std::size_t, 2> SCALAR{1, 1};
    std::vector<std::u16string> texts;
    texts.push_back(std::move(text));
    return service.createStringArray(SCALAR, std::move(texts));
}

} // namespace

const ArgType& TypeTraitsImpl<const detail::ScalarOrvexStringPlaceholder*>::getArgType() {
    static const ArgType type = OrvexStringType(OrvexStringType::Shape::SCALAR);
    return type;
}

const detail::ScalarOrvexStringPlaceholder*
TypeTraitsImpl<const detail::ScalarOrvexStringPlaceholder*>::operator()(Velloc::String::String*) const {
    const auto here = foundation::core::SourceLocation::current();
    foundation::core::diag::terminate("ScalarOrvexStringPlaceholder is not a real type and should not actually be used.",
                                      "StringTraits", static_cast<int>(here.line()), here.function_name());
}

ArgType detail::TextArgTypes::getArgType(std::size_t kind) {
    static const ArgType charRow = OxArrayTypes(oxCHAR_CLASS, Shape::ROW, Density::FULL, Complexity::NOT_COMPLEX, 1);
    static const ArgType emptyChar =
        OxArrayTypes(oxCHAR_CLASS, Shape::EMPTY, Density::FULL, Complexity::NOT_COMPLEX, 0);
    switch (kind) {
    case 0:
        if (builtinreg::getStringSupport()) {
            return OxArrayTypes(OrvexStringType::getOcosClassId(), Shape::SCALAR, Density::FULL,
                                Complexity::NOT_COMPLEX, 0);
        }
        return UnsupportedArgType{};
    case 1:
        return charRow;
    case 2:
        return emptyChar;
    default:
        return UnsupportedArgType{};
    }
}

std::u16string_view TypeTraitsImpl<std::u16string_view>::operator()(const oxArray* array,
                                                                    Temporaries& temporaries) const {
    return readText(array, temporaries);
}

std::u16string TypeTraitsImpl<std::u16string>::operator()(const oxArray* array, Temporaries& temporaries) const {
    return std::u16string(readText(array, temporaries));
}

oxArray* TypeTraitsImpl<std::u16string>::operator()(const std::u16string& text) const {
    if (const auto& service = builtinreg::getStringSupport()) {
        return scalarStringOf(*service, text);
    }
    return charRowOf(text);
}

oxArray* TypeTraitsImpl<std::u16string>::operator()(std::u16string&& text) const {
    if (const auto& service = builtinreg::getStringSupport()) {
        return scalarStringOf(*service, std::move(text));
    }
    return charRowOf(text);
}

std::string TypeTraitsImpl<std::string>::operator()(const oxArray* array, Temporaries& temporaries) const {
    return fl::i18n::ustring_to_utf8(readText(array, temporaries));
}

oxArray* TypeTraitsImpl<std::string>::operator()(const std::string& text) const {
    return TypeTraitsImpl<std::u16string>{}(fl::i18n::utf8_to_ustring(text));
}

oxArray* TypeTraitsImpl<std::string>::operator()(std::string&& text) const {
    return TypeTraitsImpl<std::u16string>{}(fl::i18n::utf8_to_ustring(text));
}

} // namespace Velloc::builtin::types
