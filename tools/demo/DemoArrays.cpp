#include "DemoArrays.hpp"

#include <complex>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <numeric>

namespace demo {
namespace {

// A double array of the given dimensions holding 1, 2, 3, ...
oxArray* doubleArray(std::initializer_list<std::size_t> dims) {
    const std::vector<std::size_t> d(dims);
    oxArray* a = matrix::detail::do_create_uninitnumeric(d, oxDOUBLE_CLASS, oxREAL);
    double* data = matrix::getTypedData<double>(a);
    std::iota(data, data + matrix::getNumberOfElements(a), 1.0);
    return a;
}

oxArray* logicalRow(std::size_t n) {
    const std::size_t dims[] = {1, n};
    oxArray* a = matrix::detail::do_create_uninitnumeric(dims, oxLOGICAL_CLASS, oxREAL);
    bool* data = matrix::getTypedData<bool>(a);
    for (std::size_t i = 0; i < n; ++i) data[i] = i % 2 == 0;
    return a;
}

} // namespace

std::vector<NamedArray> makeDemoArrays() {
    const std::size_t twoByTwo[] = {2, 2};
    const std::size_t scalarDims[] = {1, 1};
    const std::size_t charMatrix[] = {2, 3};

    std::vector<NamedArray> arrays;
    auto add = [&](std::string description, oxArray* a) {
        arrays.push_back({std::move(description), matrix::ArrayPtr(a)});
    };
    add("2.5", matrix::createScalar(2.5));
    add("single(2)", matrix::createScalar(2.0f));
    add("int8(5)", matrix::createScalar<signed char>(5));
    add("uint64(7)", matrix::createScalar<unsigned long>(7));
    add("3+4i", matrix::createScalar(std::complex<double>(3, 4)));
    add("[1 2 3]", doubleArray({1, 3}));
    add("[1;2;3]", doubleArray({3, 1}));
    add("[1 2; 3 4]", doubleArray({2, 2}));
    add("ones(2,3,4)", doubleArray({2, 3, 4}));
    add("zeros(1,0)", doubleArray({1, 0}));
    add("zeros(0,1)", doubleArray({0, 1}));
    add("zeros(0,0)", doubleArray({0, 0}));
    add("true", matrix::createScalar(true));
    add("[true false true]", logicalRow(3));
    add("'hello'", matrix::createCharRow(u"hello"));
    add("['abc';'def']", matrix::createCharArray(charMatrix, u"adbecf"));
    add("sparse(3,3)", matrix::createSparseDouble(3, 3, false));
    add("sparse complex", matrix::createSparseDouble(3, 3, true));
    add("{1, 2; 3, 4}", matrix::createCell(twoByTwo));
    add("struct('a', 1)", matrix::createStruct(scalarDims, {"a"}));
    add("@sin", matrix::createFunctionHandle("sin"));
    add("object of class 42", matrix::createObject(static_cast<oxClassID>(42), scalarDims,
                                                   std::make_shared<int>(0)));
    add("opaque", matrix::createOpaque(scalarDims));
    add("null handle", nullptr);
    return arrays;
}

} // namespace demo
