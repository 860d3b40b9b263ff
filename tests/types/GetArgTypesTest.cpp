#include "TypeSamples.hpp"

#include <builtin/builtinreg/ArgTypes.hpp>
#include <builtin/builtinreg/ArgTypesOf.hpp>

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

using namespace typesamples;
using Velloc::builtin::builtinreg::ArgTypes;
using Velloc::builtin::builtinreg::getArgTypes;
using Velloc::builtin::builtinreg::getArgTypesOf;

namespace {

// Position 0: two integer scalars; position 1: three strict double arrays.
const ArgType& firstPosition(unsigned long kind) {
    static const ArgType kinds[] = {scalar(oxINT8_CLASS), scalar(oxINT16_CLASS)};
    return kinds[kind];
}
const ArgType& secondPosition(unsigned long kind) {
    static const ArgType kinds[] = {realDouble(Shape::SCALAR, 0), realDouble(Shape::ROW, 1), realDouble(Shape::COLUMN, 1)};
    return kinds[kind];
}
const ArgType& output(std::size_t) {
    static const ArgType type = realDouble(Shape::TWO_D, 2);
    return type;
}

std::string printed(const ArgTypes& argTypes) {
    std::ostringstream os;
    os << argTypes;
    return os.str();
}

// A parameter type with two kinds, returned by value as some traits do.
struct TwoKinds {};

} // namespace

template <>
struct Velloc::builtin::types::TypeTraitsImpl<TwoKinds> {
    static constexpr unsigned long numArgTypes = 2;
    static ArgType getArgType(std::size_t kind) {
        return kind == 0 ? ArgType(FlagInputType(u"first")) : ArgType(OrvexStringType(OrvexStringType::Shape::ANY));
    }
};

TEST(GetArgTypes, ExpandsEveryChoiceWithPositionZeroFastest) {
    const ArgTypes result = getArgTypes(RELAXED, {2, 3}, {&firstPosition, &secondPosition}, &output);
    ASSERT_EQ(result.inputs.size(), 6u);
    const std::vector<std::pair<int, int>> order = {{0, 0}, {1, 0}, {0, 1}, {1, 1}, {0, 2}, {1, 2}};
    for (std::size_t i = 0; i < order.size(); ++i) {
        ArgType second = secondPosition(order[i].second);
        setSignatureTolerance(second, RELAXED);
        EXPECT_EQ(result.inputs[i], (std::vector<ArgType>{firstPosition(order[i].first), second})) << i;
    }
    ASSERT_EQ(result.outputs.size(), 1u);
    EXPECT_EQ(std::get<OxArrayTypes>(result.outputs[0]).getSignatureTolerance(), RELAXED);
}

TEST(GetArgTypes, EdgeCountsGiveOneEmptyOrNoSignatureAndOverflowThrows) {
    const ArgTypes none = getArgTypes(STRICT, {}, {}, nullptr);
    EXPECT_TRUE(none.outputs.empty());
    ASSERT_EQ(none.inputs.size(), 1u);
    EXPECT_TRUE(none.inputs[0].empty());
    EXPECT_TRUE(getArgTypes(STRICT, {2, 0}, {&firstPosition, &secondPosition}, nullptr).inputs.empty());
    const unsigned long huge = 1UL << 40;
    try {
        getArgTypes(STRICT, {huge, huge}, {&firstPosition, &secondPosition}, nullptr);
        ADD_FAILURE() << "no exception";
    } catch (const std::length_error& e) {
        EXPECT_STREQ(e.what(), "vector::reserve");
    }
}

TEST(GetArgTypes, PrintsOutputsThenOneInputSignatureALine) {
    EXPECT_EQ(printed(getArgTypes(STRICT, {}, {}, nullptr)), "outputs: nil\ninputs: [  nil\n]\n");
    EXPECT_EQ(printed(getArgTypes(STRICT, {2}, {&firstPosition}, &output)),
              "outputs: [ oxArray_of<double,ox_2d_array,ox_full,false> ]\n"
              "inputs: [  [ int8 ],\n  [ int16 ]\n]\n");
    EXPECT_EQ(printed(ArgTypes{}), "outputs: nil\ninputs: [\n]\n");
}

TEST(GetArgTypesDeathTest, MismatchedListsTerminate) {
    EXPECT_DEATH(getArgTypes(STRICT, {2, 3}, {&firstPosition}, nullptr),
                 "numArgTypes.size\\(\\) == getArgType.size\\(\\)(.|\n)*getArgTypes");
}

TEST(GetArgTypesOf, DerivesTypesFromTheCxxSignature) {
    const ArgTypes numeric = getArgTypesOf<std::complex<double>(float, const oxArray*, std::uint16_t, bool, char16_t)>(STRICT);
    EXPECT_EQ(numeric.outputs, (std::vector<ArgType>{scalar(oxDOUBLE_CLASS, true)}));
    ASSERT_EQ(numeric.inputs.size(), 1u);
    EXPECT_EQ(texts(numeric.inputs[0]),
              (std::vector<std::string>{"single", "oxArray_of<$a0,$b0,$c0,$d0>", "uint16", "boolean", "oxChar"}));
    EXPECT_EQ(std::get<OxArrayTypes>(numeric.inputs[0][1]).getSignatureTolerance(), STRICT);

    const ArgTypes relaxed = getArgTypesOf<void(oxArray*, const double&)>(RELAXED);
    EXPECT_TRUE(relaxed.outputs.empty());
    EXPECT_EQ(relaxed.inputs, (std::vector<std::vector<ArgType>>{{relaxedOpenArray(), scalar(oxDOUBLE_CLASS)}}));

    const ArgTypes kinds = getArgTypesOf<oxArray*(TwoKinds, std::int64_t, TwoKinds)>(STRICT);
    EXPECT_EQ(texts(kinds.outputs), (std::vector<std::string>{"oxArray_of<$a0,$b0,$c0,$d0>"}));
    ASSERT_EQ(kinds.inputs.size(), 4u);
    EXPECT_EQ(texts(kinds.inputs[1]), (std::vector<std::string>{"orvex_string<$flag_idx0>", "int64",
                                                                 "orvex_string<literal_flag<\"first\">>"}));

    const ArgTypes unknown = getArgTypesOf<int(std::vector<int>)>(STRICT);
    EXPECT_EQ(unknown.inputs, (std::vector<std::vector<ArgType>>{{UnsupportedArgType{}}}));
}
