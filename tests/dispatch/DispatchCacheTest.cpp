// Repeated calls of one builtin must choose exactly what a first call of the same kind
// chooses, whatever kinds of call came before: the remembered choice may only stand in
// for the search where the inputs' keys decide it.
#include <builtin/builtinreg/MakeVariant.hpp>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace Velloc::builtin;
using namespace Velloc::builtin::builtinreg;

double plusDouble(double a, double b) { return a + b; }
float plusSingle(float a, float b) { return a + b; }
// Takes what the element-wise variants refuse, and says so by its result's class.
oxArray* fallback(const oxArray*, const oxArray*) { return matrix::createScalar<std::int8_t>(-1); }

const BuiltinVariantLists& lists() {
    static const BuiltinVariantLists lists{
        makeVariants<&plusDouble>("plus", {.isElementWise = true}),
        makeVariants<&plusSingle>("plus", {.isElementWise = true}),
        makeVariants<&fallback>("plus"),
    };
    return lists;
}

matrix::ArrayPtr doubles(std::vector<std::size_t> dims) {
    matrix::ArrayPtr array(matrix::detail::do_create_uninitnumeric(dims, oxDOUBLE_CLASS, oxREAL));
    std::fill_n(matrix::getTypedData<double>(array.get()), matrix::getNumberOfElements(array.get()), 1.0);
    return array;
}

// The class and dimensions of the result, which tell the variant that ran.
std::string outcome(const BuiltinFcn& builtin, const oxArray* a, const oxArray* b) {
    oxArray* args[] = {const_cast<oxArray*>(a), const_cast<oxArray*>(b)};
    oxArray* result = nullptr;
    builtin.invoke(1, &result, 2, args, BuiltinFcn::NoLxe);
    const matrix::ArrayPtr owned(result);
    std::string text = std::to_string(matrix::getClassID(result));
    for (const std::size_t extent : matrix::getDimensions(result)) {
        text += " " + std::to_string(extent);
    }
    return text;
}

TEST(DispatchCache, EveryOrderOfCallsChoosesWhatAFirstCallChooses) {
    // Pairs whose keys agree but whose broadcasting differs, among pairs the keys decide.
    const matrix::ArrayPtr scalar(matrix::createScalar<double>(2));
    const matrix::ArrayPtr single(matrix::createScalar<float>(2));
    const matrix::ArrayPtr row3 = doubles({1, 3});
    const matrix::ArrayPtr row2 = doubles({1, 2});
    const matrix::ArrayPtr column3 = doubles({3, 1});
    const matrix::ArrayPtr emptyRows = doubles({0, 3});     // refuses a scalar
    const matrix::ArrayPtr emptyPages = doubles({2, 2, 0}); // same key, broadcasts with one
    const matrix::ArrayPtr cube = doubles({2, 2, 2});
    const matrix::ArrayPtr otherCube = doubles({2, 2, 3});
    const std::vector<std::pair<const oxArray*, const oxArray*>> calls{
        {scalar.get(), scalar.get()},       {single.get(), single.get()},     {scalar.get(), single.get()},
        {row3.get(), row3.get()},           {row3.get(), row2.get()},         {row3.get(), column3.get()},
        {scalar.get(), emptyRows.get()},    {scalar.get(), emptyPages.get()}, {emptyRows.get(), emptyRows.get()},
        {cube.get(), cube.get()},           {cube.get(), otherCube.get()},    {cube.get(), scalar.get()},
    };
    std::vector<std::string> alone;
    for (const auto& [a, b] : calls) {
        const RegisteredBuiltin fresh("plus", "tests", "", lists(), noDefaultImplementation("plus"));
        alone.push_back(outcome(fresh, a, b));
    }
    ASSERT_NE(alone[4], alone[3]) << "a 1x3 and a 1x2 do not broadcast";
    ASSERT_NE(alone[6], alone[7]) << "an empty of the same key broadcasts differently";
    ASSERT_NE(alone[10], alone[9]);

    // Forwards, backwards and interleaved, each call twice, on one builtin per order.
    const std::size_t n = calls.size();
    for (const auto order : {+[](std::size_t i, std::size_t) { return i; },
                             +[](std::size_t i, std::size_t count) { return count - 1 - i; },
                             +[](std::size_t i, std::size_t count) { return (i * 5) % count; }}) {
        const RegisteredBuiltin shared("plus", "tests", "", lists(), noDefaultImplementation("plus"));
        for (int pass = 0; pass < 2; ++pass) {
            for (std::size_t i = 0; i < n; ++i) {
                const std::size_t k = order(i, n);
                EXPECT_EQ(outcome(shared, calls[k].first, calls[k].second), alone[k]) << "call " << k;
            }
        }
    }
}

} // namespace
