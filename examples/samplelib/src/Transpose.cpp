// transpose and ctranspose: the operators .' and ', which turn the rows of a matrix into
// its columns; ctranspose also conjugates complex elements. Every class that holds
// numbers, and cell arrays, transpose element by element; a 1-by-1 value of any other
// class (a string, a struct, an object) is its own transpose. N-d arrays have none.
#include "Elements.hpp"
#include "SampleBuiltins.hpp"

#include <builtin/builtinreg/MakeVariant.hpp>

#include <foundation/core/except/Exception.hpp>

#include <complex>

namespace samplelib {

namespace {

using namespace Velloc::builtin::builtinreg;

namespace errors {
struct transposeNd {
    static constexpr std::string_view component = "samplelib";
    static constexpr std::string_view key = "transposeNd";
    static constexpr std::string_view text = "Transpose of an N-d array is not defined: it has {0} dimensions.";
};
} // namespace errors

template <bool Conjugate>
oxArray* transposed(const oxArray* a) {
    constexpr const char* name = Conjugate ? "ctranspose" : "transpose";
    if (!matrix::isTwoDimensional(a)) {
        throw foundation::core::except::Exception<errors::transposeNd>(
            {static_cast<long>(matrix::getNumberOfDimensions(a))});
    }
    const matrix::Dims dims = matrix::getDimensions(a);
    const std::size_t rows = dims[0];
    const std::size_t cols = dims[1];
    const std::size_t flipped[2] = {cols, rows};
    // Element (i, j) of a is element (j, i) of the result.
    const auto forEachElement = [&](auto move) {
        for (std::size_t j = 0; j < cols; ++j) {
            for (std::size_t i = 0; i < rows; ++i) {
                move(i + j * rows, j + i * cols);
            }
        }
    };
    if (holdsNumbers(a)) {
        return visitElements(a, [&]<class T>(std::type_identity<T>) {
            matrix::ArrayPtr out = createArrayOf<T>(flipped);
            const T* from = matrix::getTypedData<T>(a);
            T* to = matrix::getTypedData<T>(out.get());
            forEachElement([&](std::size_t source, std::size_t target) {
                if constexpr (Conjugate && isComplexType<T>) {
                    to[target] = std::conj(from[source]);
                } else {
                    to[target] = from[source];
                }
            });
            return out.release();
        });
    }
    if (matrix::getClassID(a) == oxCELL_CLASS) {
        matrix::ArrayPtr out(matrix::createCell(flipped));
        forEachElement([&](std::size_t source, std::size_t target) {
            if (const oxArray* element = matrix::getCell(a, source)) {
                matrix::setCell(out.get(), target, matrix::addReference(const_cast<oxArray*>(element)));
            }
        });
        return out.release();
    }
    if (matrix::isScalar(a)) {
        return matrix::addReference(const_cast<oxArray*>(a));
    }
    requireNumbers(name, a);
    return nullptr;
}

const BuiltinVariantLists& transposeLists() {
    static const BuiltinVariantLists lists{makeVariants<&transposed<false>>("transpose", {.mayThrowErrors = true})};
    return lists;
}

const BuiltinVariantLists& ctransposeLists() {
    static const BuiltinVariantLists lists{makeVariants<&transposed<true>>("ctranspose", {.mayThrowErrors = true})};
    return lists;
}

} // namespace

const BuiltinFcn& transposeBuiltin() {
    static const RegisteredBuiltin builtin("transpose", LIBRARY, "a.': rows become columns", transposeLists(),
                                           noDefaultImplementation("transpose"));
    return builtin;
}

const BuiltinFcn& ctransposeBuiltin() {
    static const RegisteredBuiltin builtin("ctranspose", LIBRARY,
                                           "a': rows become columns, complex elements conjugated", ctransposeLists(),
                                           noDefaultImplementation("ctranspose"));
    return builtin;
}

} // namespace samplelib
