#include <orvex/formatArray.hpp>

#include "NumericClasses.hpp"
#include "formatNumber.hpp"

#include <fl/i18n.hpp>
#include <ocos/ClassRegistry.hpp>
#include <strings/StringArray.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>

namespace orvex {
namespace {

// Beyond this many elements a result prints as a summary: the tool shows results on
// one line, and a listing that long would no longer be read.
constexpr std::size_t MAX_LISTED_ELEMENTS = 256;

std::string dimensionsText(matrix::Dims dims) {
    std::string text;
    for (const std::size_t extent : dims) {
        if (!text.empty()) text += 'x';
        text += std::to_string(extent);
    }
    return text;
}

std::string className(const oxArray* a) {
    const oxClassID id = matrix::getClassID(a);
    if (id < oxFIRST_OBJECT_CLASS) return std::string(detail::builtinClassName(id));
    if (const ocos::COSClass* objectClass = ocos::findClass(id)) return objectClass->getName();
    return "class " + std::to_string(id);
}

// The type text is appended to "<" rather than "<" prepended to it: building in order
// copies less, and keeps GCC 12's false -Wrestrict report on prepending away.
std::string summary(const oxArray* a) {
    std::string text = "<";
    text += formatType(a);
    return text + ">";
}

std::string structSummary(const oxArray* a) {
    std::string text = "<";
    text += formatType(a);
    const char* separator = " with fields ";
    for (const std::string& field : matrix::getFieldNames(a)) {
        text += separator + field;
        separator = ", ";
    }
    return text + ">";
}

// UTF-8 of host text; an unpaired surrogate, which has no UTF-8 form, shows as U+FFFD.
std::string utf8Of(std::u16string text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool high = text[i] >= 0xd800 && text[i] < 0xdc00;
        const bool low = text[i] >= 0xdc00 && text[i] < 0xe000;
        if (high && i + 1 < text.size() && text[i + 1] >= 0xdc00 && text[i + 1] < 0xe000) {
            ++i;
        } else if (high || low) {
            text[i] = u'\ufffd';
        }
    }
    return fl::i18n::to_string(text);
}

// Quoted as the literal language writes it, the quote doubled inside.
std::string quoted(std::string_view text, char quote) {
    std::string result(1, quote);
    for (const char c : text) {
        result += c;
        if (c == quote) result += quote;
    }
    return result + quote;
}

// "[a b; c d]" over the column-major elements.
template <class ElementText>
std::string listRows(std::size_t rows, std::size_t cols, ElementText elementText) {
    std::string text = "[";
    for (std::size_t row = 0; row < rows; ++row) {
        if (row > 0) text += "; ";
        for (std::size_t col = 0; col < cols; ++col) {
            if (col > 0) text += ' ';
            text += elementText(row + col * rows);
        }
    }
    return text + "]";
}

std::string charText(const oxArray* a, std::size_t rows, std::size_t cols) {
    const char16_t* data = matrix::getTypedData<char16_t>(a);
    const auto rowText = [&](std::size_t row) {
        std::u16string units;
        for (std::size_t col = 0; col < cols; ++col) units += data[row + col * rows];
        return quoted(utf8Of(std::move(units)), '\'');
    };
    if (rows == 1) return rowText(0);
    std::string text = "[";
    for (std::size_t row = 0; row < rows; ++row) {
        if (row > 0) text += "; ";
        text += rowText(row);
    }
    return text + "]";
}

std::string stringText(const oxArray* a, std::size_t rows, std::size_t cols) {
    const auto elementText = [&](std::size_t i) {
        return quoted(utf8Of(Velloc::String::getStringElement(a, i).text()), '"');
    };
    return rows * cols == 1 ? elementText(0) : listRows(rows, cols, elementText);
}

// Double and logical values read back as written; other classes wrap them in their cast.
std::string numericText(const oxArray* a, std::size_t rows, std::size_t cols) {
    const oxClassID id = matrix::getClassID(a);
    const bool complex = matrix::isComplex(a);
    return detail::visitNumericClass(id, [&]<class T>(std::type_identity<T>) {
        if constexpr (std::is_same_v<T, char16_t>) {
            return charText(a, rows, cols);
        } else {
            const T* data = matrix::getTypedData<T>(a);
            const auto elementText = [&](std::size_t i, bool spaced) {
                return complex ? detail::formatComplex(data[2 * i], data[2 * i + 1], spaced)
                               : detail::formatElement(data[i]);
            };
            const auto listedText = [&](std::size_t i) { return elementText(i, false); };
            std::string text = rows * cols == 1 ? elementText(0, true) : listRows(rows, cols, listedText);
            if (id == oxDOUBLE_CLASS || id == oxLOGICAL_CLASS) return text;
            return std::string(detail::builtinClassName(id)) + "(" + text + ")";
        }
    });
}

} // namespace

std::string formatArray(const oxArray* a) {
    if (a == nullptr) return "<no value>";
    const oxClassID id = matrix::getClassID(a);
    if (matrix::isSparse(a)) return summary(a);
    if (id == oxFUNCTION_CLASS && matrix::isScalar(a)) return "@" + matrix::getFunctionName(a);
    if (id == oxSTRUCT_CLASS) return structSummary(a);
    const bool isString = Velloc::String::isStringArray(a);
    if (!detail::holdsElements(id) && !isString) return summary(a);
    if (matrix::isEmpty(a)) return "[] (" + formatType(a) + ")";
    if (!matrix::isTwoDimensional(a) || matrix::getNumberOfElements(a) > MAX_LISTED_ELEMENTS) return summary(a);
    const matrix::Dims dims = matrix::getDimensions(a);
    return isString ? stringText(a, dims[0], dims[1]) : numericText(a, dims[0], dims[1]);
}

std::string formatType(const oxArray* a) {
    if (a == nullptr) return "<no value>";
    std::string text = dimensionsText(matrix::getDimensions(a)) + " ";
    if (matrix::isSparse(a)) text += "sparse ";
    if (matrix::isComplex(a)) text += "complex ";
    return text + className(a);
}

} // namespace orvex
