// Calls a careless host makes: null handles among the arguments, the wrong number or
// classes of arguments, text that is not a row, text that is not valid, empty arrays and
// arrays too large to describe. Each ends in the builtin's own refusal, the call's
// arguments keep their references, and nothing leaks.
#include <builtin/builtinreg/Explain.hpp>
#include <builtin/builtinreg/MakeVariant.hpp>

#include <fl/i18n.hpp>
#include <foundation/core/except/Exception.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace Velloc::builtin;
using namespace Velloc::builtin::builtinreg;
using testing::HasSubstr;

double plusDouble(double a, double b) { return a + b; }
std::u16string shout(std::u16string_view text) { return std::u16string(text) + u"!"; }
std::string echo(const std::string& text) { return text; }
double count(const oxArray* a) { return static_cast<double>(matrix::getNumberOfElements(a)); }

const BuiltinFcn& plusBuiltin();
void plusDefault(int nlhs, oxArray**, int nrhs, oxArray** prhs, const BuiltinVariant&) {
    throwNoMatchingVariant(plusBuiltin(), nlhs, nrhs, prhs);
}
const BuiltinFcn& plusBuiltin() {
    static const BuiltinVariantLists lists{makeVariants<&plusDouble>("plus", {.isElementWise = true})};
    static const RegisteredBuiltin builtin("plus", "badinput", "", lists, defaultImplementation<&plusDefault>("plus"));
    return builtin;
}

const BuiltinFcn& textBuiltin() {
    static const BuiltinVariantLists lists{makeVariants<&shout>("shout"), makeVariants<&echo>("echo")};
    static const RegisteredBuiltin builtin("text", "badinput", "", lists, noDefaultImplementation("text"));
    return builtin;
}

const BuiltinFcn& countBuiltin() {
    static const BuiltinVariantLists lists{makeVariants<&count>("count")};
    static const RegisteredBuiltin builtin("count", "badinput", "", lists, noDefaultImplementation("count"));
    return builtin;
}

// The arguments of one call, released after it; references are checked on the way out.
class Arguments {
public:
    Arguments(std::initializer_list<oxArray*> arrays) : handles_(arrays) {}
    ~Arguments() {
        for (oxArray* a : handles_) {
            if (a != nullptr) {
                EXPECT_EQ(matrix::getReferenceCount(a), 1U) << "an argument kept a reference";
                matrix::destroyArray(a);
            }
        }
    }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;
    int count() const { return static_cast<int>(handles_.size()); }
    oxArray** data() { return handles_.data(); }

private:
    std::vector<oxArray*> handles_;
};

oxArray* numeric(std::vector<std::size_t> dims, oxClassID id = oxDOUBLE_CLASS) {
    oxArray* a = matrix::detail::do_create_uninitnumeric(dims, id, oxREAL);
    std::fill_n(static_cast<unsigned char*>(matrix::getData(a)),
                matrix::getNumberOfElements(a) * matrix::getElementSize(id), 0);
    return a;
}

// The message of the no-match error that the call raises.
std::string noMatchMessage(const BuiltinFcn& builtin, int nlhs, Arguments& args) {
    oxArray* result = nullptr;
    try {
        builtin.invoke(nlhs, &result, args.count(), args.data(), BuiltinFcn::NoLxe);
    } catch (const foundation::core::except::IdentifiedException& error) {
        EXPECT_EQ(error.getId().key, "noMatchingVariant");
        EXPECT_EQ(result, nullptr);
        return error.message();
    }
    matrix::destroyArray(result);
    ADD_FAILURE() << "the call was accepted";
    return {};
}

TEST(BadCalls, NullHandlesAmongTheArgumentsAreNamedNotRead) {
    Arguments args{nullptr, matrix::createScalar(1.0)};
    EXPECT_THAT(noMatchMessage(plusBuiltin(), 1, args), HasSubstr("plus(a null array, "));
    const Explanation explanation = explain(plusBuiltin(), 1, args.count(), args.data());
    EXPECT_EQ(explanation.chosen, nullptr);
    EXPECT_EQ(explanation.argumentTypes.front(), "a null array");

    // An open declaration takes the null handle as it is; the host's query refuses it.
    Arguments single{nullptr};
    oxArray* result = nullptr;
    try {
        countBuiltin().invoke(1, &result, 1, single.data(), BuiltinFcn::NoLxe);
        ADD_FAILURE() << "a null handle was counted";
    } catch (const std::logic_error& error) {
        EXPECT_STREQ(error.what(), "matrix::getNumberOfElements: null oxArray handle");
    }
    EXPECT_EQ(result, nullptr);
}

TEST(BadCalls, WrongArityAndClassesEndInTheNoMatchReport) {
    Arguments three{matrix::createScalar(1.0), matrix::createScalar(2.0), matrix::createScalar(3.0)};
    EXPECT_THAT(noMatchMessage(plusBuiltin(), 1, three), HasSubstr("takes 2 inputs, the call passes 3"));
    Arguments none{};
    EXPECT_THAT(noMatchMessage(plusBuiltin(), 1, none), HasSubstr("plus() with 1 output"));
    Arguments pair{matrix::createScalar(1.0), matrix::createScalar(2.0)};
    EXPECT_THAT(noMatchMessage(plusBuiltin(), 2, pair), HasSubstr("with 2 outputs"));

    Arguments classes{matrix::createScalar<std::int8_t>(1), matrix::createCharRow(u"ab")};
    EXPECT_THAT(noMatchMessage(plusBuiltin(), 1, classes), HasSubstr("int8"));
    Arguments cells{matrix::createCell(std::array<std::size_t, 2>{1, 1}), matrix::createFunctionHandle("sin")};
    noMatchMessage(plusBuiltin(), 1, cells);
}

TEST(BadCalls, TextMustBeAValidRowOrScalarString) {
    oxArray* result = nullptr;
    const std::u16string sixUnits = u"abcdef";
    Arguments matrixChars{matrix::createCharArray(std::array<std::size_t, 2>{2, 3}, sixUnits)};
    EXPECT_THROW(textBuiltin().invoke(1, &result, 1, matrixChars.data(), BuiltinFcn::NoLxe), std::logic_error);
    Arguments cube{matrix::createCharArray(std::array<std::size_t, 3>{1, 2, 3}, sixUnits)};
    EXPECT_THROW(textBuiltin().invoke(1, &result, 1, cube.data(), BuiltinFcn::NoLxe), std::logic_error);
    EXPECT_EQ(result, nullptr);

    // A lone surrogate passes as UTF-16 text but cannot become UTF-8.
    static const BuiltinVariantLists utf8Only{makeVariants<&echo>("echo")};
    const RegisteredBuiltin echoBuiltin("echo", "badinput", "", utf8Only, noDefaultImplementation("echo"));
    Arguments lone{matrix::createCharRow(u"lone \xD800 surrogate")};
    EXPECT_THROW(echoBuiltin.invoke(1, &result, 1, lone.data(), BuiltinFcn::NoLxe), fl::i18n::conversion_error);
    EXPECT_EQ(result, nullptr);
    static const BuiltinVariantLists utf16{makeVariants<&shout>("shout")};
    const RegisteredBuiltin shoutBuiltin("shout", "badinput", "", utf16, noDefaultImplementation("shout"));
    shoutBuiltin.invoke(1, &result, 1, lone.data(), BuiltinFcn::NoLxe);
    matrix::destroyArray(result);
}

TEST(BadCalls, EmptyMismatchedAndUndescribableArraysAreRefused) {
    // Element-wise variants have nothing to run on in an empty array.
    Arguments empty{numeric({0, 3}), numeric({1, 3})};
    noMatchMessage(plusBuiltin(), 1, empty);
    Arguments mismatched{numeric({2, 3}), numeric({3, 2})};
    noMatchMessage(plusBuiltin(), 1, mismatched);

    // Arrays the host itself rejects have no type a declaration of a class accepts; an
    // open declaration takes every array as it is.
    const std::size_t huge = std::size_t{1} << 40;
    Arguments hugeSparse{matrix::createSparseDouble(huge, huge, false), matrix::createScalar(1.0)};
    noMatchMessage(plusBuiltin(), 1, hugeSparse);
    Arguments hugeObject{matrix::createObject(static_cast<oxClassID>(20), std::array<std::size_t, 2>{huge, huge}, nullptr),
                         matrix::createScalar(1.0)};
    EXPECT_THAT(noMatchMessage(plusBuiltin(), 1, hugeObject), HasSubstr("plus(a value of no supported type, "));
    Arguments manyDims{matrix::createOpaque(std::vector<std::size_t>(40, 2)), matrix::createScalar(1.0)};
    noMatchMessage(plusBuiltin(), 1, manyDims);
    oxArray* result = nullptr;
    countBuiltin().invoke(1, &result, 1, hugeSparse.data(), BuiltinFcn::NoLxe);
    const matrix::ArrayPtr counted(result);
    EXPECT_EQ(*matrix::getTypedData<double>(counted.get()), static_cast<double>(std::size_t{0} - 1));
}

TEST(BadCalls, DiagnosticsRefuseAMalformedCallingForm) {
    Arguments pair{matrix::createScalar(1.0), matrix::createScalar(2.0)};
    EXPECT_THROW(explain(plusBuiltin(), 1, -1, pair.data()), std::invalid_argument);
    EXPECT_THROW(explain(plusBuiltin(), -1, 2, pair.data()), std::invalid_argument);
    EXPECT_THROW(explain(plusBuiltin(), 1, 2, nullptr), std::invalid_argument);
    EXPECT_THROW(describeNoMatch(plusBuiltin(), 1, -2, pair.data()), std::invalid_argument);
    EXPECT_THROW(throwNoMatchingVariant(plusBuiltin(), 1, 3, nullptr), std::invalid_argument);
    EXPECT_NO_THROW(explain(plusBuiltin(), 0, 0, nullptr));
}

} // namespace
