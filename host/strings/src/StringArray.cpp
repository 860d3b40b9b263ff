#include <strings/StringArray.hpp>

#include <ocos/ClassRegistry.hpp>

#include <fl/i18n.hpp>

#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

namespace Velloc::String {

namespace {

using Elements = std::vector<String>;

// Saturates on overflow, so that the array library rejects such dimensions itself.
std::size_t elementCountOf(matrix::Dims dims) noexcept {
    std::size_t count = 1;
    for (const std::size_t extent : dims) {
        if (__builtin_mul_overflow(count, extent, &count)) {
            return static_cast<std::size_t>(-1);
        }
    }
    return count;
}

oxArray* createWithElements(matrix::Dims dims, Elements elements) {
    return matrix::createObject(ocos::STRING_CLASS_ID, dims, std::make_shared<Elements>(std::move(elements)));
}

void checkFilled(matrix::Dims dims, std::size_t count) {
    const std::size_t expected = elementCountOf(dims);
    if (count != expected) {
        throw std::invalid_argument("Velloc::String::createStringArray: " + std::to_string(count) +
                                    " strings do not fill dimensions holding " + std::to_string(expected));
    }
}

} // namespace

bool isStringArray(const oxArray* array) { return matrix::getClassID(array) == ocos::STRING_CLASS_ID; }

oxArray* createStringArray(matrix::Dims dims, std::vector<std::u16string> texts) {
    checkFilled(dims, texts.size());
    Elements elements;
    elements.reserve(texts.size());
    for (std::u16string& text : texts) {
        elements.emplace_back(std::move(text));
    }
    return createWithElements(dims, std::move(elements));
}

oxArray* createFilledStringArray(matrix::Dims dims, const String& text) {
    const std::size_t count = elementCountOf(dims);
    if (count == static_cast<std::size_t>(-1)) {
        throw std::length_error("Velloc::String::createFilledStringArray: the dimensions hold too many elements");
    }
    return createWithElements(dims, Elements(count, text));
}

oxArray* createScalarString(const String& text) {
    static constexpr std::array<std::size_t, 2> SCALAR{1, 1};
    return createWithElements(SCALAR, Elements{text});
}

oxArray* createScalarString(std::u16string_view text) { return createScalarString(String(std::u16string(text))); }

oxArray* createScalarStringFromUtf8(std::string_view text) {
    return createScalarString(String(fl::i18n::utf8_to_ustring(text)));
}

const String& getStringElement(const oxArray* array, std::size_t index) {
    if (!isStringArray(array)) {
        throw std::invalid_argument("Velloc::String::getStringElement: the array is of class " +
                                    std::to_string(matrix::getClassID(array)) + ", not a string array");
    }
    // The array keeps its payload alive, so the element outlives this shared pointer.
    const auto elements = std::static_pointer_cast<const Elements>(matrix::getObjectPayload(array));
    if (elements == nullptr) {
        throw std::invalid_argument("Velloc::String::getStringElement: the string array holds no strings");
    }
    if (index >= elements->size()) {
        throw std::out_of_range("Velloc::String::getStringElement: element " + std::to_string(index) +
                                " of a string array of " + std::to_string(elements->size()));
    }
    return (*elements)[index];
}

} // namespace Velloc::String
