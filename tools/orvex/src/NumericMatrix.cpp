#include "NumericMatrix.hpp"

#include "NumericClasses.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

namespace orvex::detail {
namespace {

template <class T>
T saturatingCast(double x) {
    if (std::isnan(x)) return 0;
    // Both bounds are exact or round outwards as doubles, so inside them the rounded
    // value fits T.
    constexpr double lowest = static_cast<double>(std::numeric_limits<T>::lowest());
    constexpr double highest = static_cast<double>(std::numeric_limits<T>::max());
    if (x <= lowest) return std::numeric_limits<T>::lowest();
    if (x >= highest) return std::numeric_limits<T>::max();
    return static_cast<T>(std::round(x));
}

// A double beyond the float range converts to infinity, or to the largest float when it
// rounds to it; the plain conversion would be undefined there.
float toSingle(double x) {
    constexpr double overflowsToInfinity = 0x1.ffffffp127;
    constexpr double largest = std::numeric_limits<float>::max();
    constexpr float infinity = std::numeric_limits<float>::infinity();
    if (x >= overflowsToInfinity) return infinity;
    if (x <= -overflowsToInfinity) return -infinity;
    return static_cast<float>(std::clamp(x, -largest, largest));
}

// The element of class T that stores x.
template <class T>
T toElement(double x) {
    if constexpr (std::is_same_v<T, double>) {
        return x;
    } else if constexpr (std::is_same_v<T, float>) {
        return toSingle(x);
    } else if constexpr (std::is_same_v<T, bool>) {
        return x != 0;
    } else {
        return saturatingCast<T>(x);
    }
}

bool containsNaN(const std::vector<double>& values) {
    return std::any_of(values.begin(), values.end(), [](double x) { return std::isnan(x); });
}

} // namespace

std::optional<std::string> castRefusal(const NumericMatrix& value, oxClassID target) {
    if (value.complex && (target == oxLOGICAL_CLASS || isIntegerClass(target))) {
        return "cannot convert complex values to " + std::string(builtinClassName(target));
    }
    if (target == oxLOGICAL_CLASS && value.classId == oxCHAR_CLASS) return "cannot convert char to logical";
    if (target == oxLOGICAL_CLASS && containsNaN(value.real)) return "cannot convert NaN to logical";
    return std::nullopt;
}

void castTo(NumericMatrix& value, oxClassID target) {
    visitNumericClass(target, [&]<class T>(std::type_identity<T>) {
        const auto convert = [](double x) { return static_cast<double>(toElement<T>(x)); };
        std::transform(value.real.begin(), value.real.end(), value.real.begin(), convert);
        std::transform(value.imag.begin(), value.imag.end(), value.imag.begin(), convert);
    });
    value.classId = target;
}

matrix::ArrayPtr toArray(const NumericMatrix& value) {
    const std::size_t dims[] = {value.rows, value.cols};
    matrix::ArrayPtr array(
        matrix::detail::do_create_uninitnumeric(dims, value.classId, value.complex ? oxCOMPLEX : oxREAL));
    visitNumericClass(value.classId, [&]<class T>(std::type_identity<T>) {
        T* data = matrix::getTypedData<T>(array.get());
        for (std::size_t i = 0; i < value.real.size(); ++i) {
            if (value.complex) {
                data[2 * i] = toElement<T>(value.real[i]);
                data[2 * i + 1] = toElement<T>(value.imag[i]);
            } else {
                data[i] = toElement<T>(value.real[i]);
            }
        }
    });
    return array;
}

} // namespace orvex::detail
