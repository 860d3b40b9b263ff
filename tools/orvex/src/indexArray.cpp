#include <orvex/indexArray.hpp>

#include "NumericClasses.hpp"

#include <cmath>
#include <cstring>
#include <numeric>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace orvex {

namespace {

// 0-based positions along one dimension of the indexed view.
using Positions = std::vector<std::size_t>;

// The most elements an index may select: far beyond a session's needs, well below what
// would exhaust memory.
constexpr std::size_t MAX_SELECTED = std::size_t{1} << 28;

std::string numberText(double value) {
    if (std::isnan(value)) {
        return "NaN";
    }
    std::ostringstream text;
    text << value;
    return text.str();
}

// The extent of dimension position in the view that count subscripts see.
std::size_t extentOf(matrix::Dims dims, std::size_t position, std::size_t count) {
    if (position + 1 < count) {
        return position < dims.size() ? dims[position] : 1;
    }
    std::size_t extent = 1;
    for (std::size_t k = count == 1 ? 0 : position; k < dims.size(); ++k) {
        extent *= dims[k];
    }
    return extent;
}

class SubscriptReader {
public:
    SubscriptReader(std::size_t position, std::size_t count, std::size_t extent)
        : position_(position), count_(count), extent_(extent) {}

    Positions read(const oxArray* subscript) const {
        Positions positions;
        if (subscript == nullptr) {
            positions.resize(extent_);
            std::iota(positions.begin(), positions.end(), std::size_t{0});
            return positions;
        }
        const oxClassID id = matrix::getClassID(subscript);
        if (!detail::holdsElements(id) || id == oxCHAR_CLASS || matrix::isComplex(subscript)) {
            throw IndexError("Index" + where() + " is neither numbers nor a logical mask.");
        }
        detail::visitNumericClass(id, [&](auto type) {
            using T = typename decltype(type)::type;
            const T* data = matrix::getTypedData<T>(subscript);
            const std::size_t n = matrix::getNumberOfElements(subscript);
            for (std::size_t i = 0; i < n; ++i) {
                if constexpr (std::is_same_v<T, bool>) {
                    if (data[i]) positions.push_back(checked(static_cast<double>(i + 1)));
                } else {
                    positions.push_back(checked(static_cast<double>(data[i])));
                }
            }
        });
        return positions;
    }

private:
    std::string where() const { return count_ == 1 ? "" : " in position " + std::to_string(position_ + 1); }

    std::size_t checked(double value) const {
        if (!(value >= 1) || value != std::floor(value)) {
            throw IndexError("Index" + where() + " is " + numberText(value) +
                             "; indices are positive integers or logical masks.");
        }
        if (value > static_cast<double>(extent_)) {
            throw IndexError("Index " + numberText(value) + where() + " exceeds " +
                             (count_ == 1 ? "the " + std::to_string(extent_) + " elements of the array."
                                          : "the array's " + std::to_string(extent_) + " along that dimension."));
        }
        return static_cast<std::size_t>(value) - 1;
    }

    std::size_t position_;
    std::size_t count_;
    std::size_t extent_;
};

bool isVector(matrix::Dims dims) { return dims.size() == 2 && (dims[0] == 1 || dims[1] == 1); }

// The shape of a linear index's result with selected elements.
std::vector<std::size_t> linearShape(const oxArray* array, const oxArray* subscript, std::size_t selected) {
    if (subscript == nullptr) {
        return {selected, 1};
    }
    const matrix::Dims index = matrix::getDimensions(subscript);
    const bool mask = matrix::getClassID(subscript) == oxLOGICAL_CLASS;
    std::vector<std::size_t> shape = mask ? std::vector<std::size_t>{index[0] == 1 && index.size() == 2 ? 1 : selected,
                                                                     index[0] == 1 && index.size() == 2 ? selected : 1}
                                          : std::vector<std::size_t>(index.begin(), index.end());
    const matrix::Dims source = matrix::getDimensions(array);
    if (isVector(source) && !matrix::isScalar(array) && isVector(shape)) {
        return source[0] == 1 ? std::vector<std::size_t>{1, selected} : std::vector<std::size_t>{selected, 1};
    }
    return shape;
}

} // namespace

bool holdsElements(const oxArray* array) {
    return detail::holdsElements(matrix::getClassID(array)) && !matrix::isSparse(array);
}

std::size_t endOf(const oxArray* array, std::size_t position, std::size_t count) {
    return extentOf(matrix::getDimensions(array), position, count);
}

matrix::ArrayPtr indexArray(const oxArray* array, std::span<const oxArray* const> subscripts) {
    if (subscripts.empty()) {
        return matrix::ArrayPtr(matrix::duplicateArray(array));
    }
    const matrix::Dims dims = matrix::getDimensions(array);
    const std::size_t count = subscripts.size();
    std::vector<Positions> selected;
    std::vector<std::size_t> strides;
    std::size_t total = 1;
    std::size_t stride = 1;
    for (std::size_t k = 0; k < count; ++k) {
        const std::size_t extent = extentOf(dims, k, count);
        selected.push_back(SubscriptReader(k, count, extent).read(subscripts[k]));
        strides.push_back(stride);
        stride *= extent;
        if (__builtin_mul_overflow(total, selected.back().size(), &total) || total > MAX_SELECTED) {
            throw IndexError("The index selects more than " + std::to_string(MAX_SELECTED) + " elements.");
        }
    }
    std::vector<std::size_t> shape = count == 1 ? linearShape(array, subscripts[0], total) : std::vector<std::size_t>{};
    for (std::size_t k = 0; count > 1 && k < count; ++k) {
        shape.push_back(selected[k].size());
    }
    while (shape.size() > 2 && shape.back() == 1) {
        shape.pop_back();
    }
    const oxClassID id = matrix::getClassID(array);
    const bool complex = matrix::isComplex(array);
    matrix::ArrayPtr result(matrix::detail::do_create_uninitnumeric(shape, id, complex ? oxCOMPLEX : oxREAL));
    const std::size_t elementBytes =
        detail::visitNumericClass(id, [](auto type) { return sizeof(typename decltype(type)::type); }) *
        (complex ? 2 : 1);
    const auto* from = static_cast<const unsigned char*>(matrix::getData(array));
    auto* to = static_cast<unsigned char*>(matrix::getData(result.get()));
    // An odometer over the selected positions, the first subscript running fastest.
    std::vector<std::size_t> at(count, 0);
    for (std::size_t n = 0; n < total; ++n) {
        std::size_t offset = 0;
        for (std::size_t k = 0; k < count; ++k) {
            offset += selected[k][at[k]] * strides[k];
        }
        std::memcpy(to + n * elementBytes, from + offset * elementBytes, elementBytes);
        for (std::size_t k = 0; k < count && ++at[k] == selected[k].size(); ++k) {
            at[k] = 0;
        }
    }
    return result;
}

} // namespace orvex
