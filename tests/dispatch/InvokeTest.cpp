#include <builtin/builtinreg/MakeVariant.hpp>

#include <fl/i18n.hpp>
#include <foundation/core/except/Exception.hpp>
#include <lxe/LanguageCalls.hpp>

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <string_view>

namespace {

using namespace Velloc::builtin;
using namespace Velloc::builtin::builtinreg;

double plusDouble(double a, double b) { return a + b; }
std::complex<double> conjugate(std::complex<double> z) { return std::conj(z); }
oxArray* identity(const oxArray* a) { return matrix::addReference(const_cast<oxArray*>(a)); }
std::u16string shout(std::u16string_view text) { return std::u16string(text) + u"!"; }

namespace errors {
struct failed {
    static constexpr std::string_view component = "test";
    static constexpr std::string_view key = "failed";
    static constexpr std::string_view text = "failed after {0} warnings";
};
} // namespace errors

double warnTwiceThenFail(CallContext& context, double) {
    context.warning("first");
    context.warning(u"second");
    throw foundation::core::except::Exception<errors::failed>({2L});
}

double undeclaredThrow(const oxArray*) { throw std::runtime_error("escaped"); }

int defaultCalls = 0;
void countingDefault(int, oxArray** plhs, int, oxArray**, const BuiltinVariant&) {
    ++defaultCalls;
    if (plhs != nullptr) {
        plhs[0] = matrix::createScalar<double>(-1.0);
    }
}

struct Args {
    std::vector<matrix::ArrayPtr> owned;
    std::vector<oxArray*> handles;
    Args& add(oxArray* a) {
        owned.emplace_back(a);
        handles.push_back(a);
        return *this;
    }
};

oxArray* row(std::initializer_list<double> values) {
    const std::array<std::size_t, 2> dims{1, values.size()};
    oxArray* a = matrix::detail::do_create_uninitnumeric(dims, oxDOUBLE_CLASS, oxREAL);
    std::copy(values.begin(), values.end(), matrix::getTypedData<double>(a));
    return a;
}

oxArray* column(std::initializer_list<double> values) {
    const std::array<std::size_t, 2> dims{values.size(), 1};
    oxArray* a = matrix::detail::do_create_uninitnumeric(dims, oxDOUBLE_CLASS, oxREAL);
    std::copy(values.begin(), values.end(), matrix::getTypedData<double>(a));
    return a;
}

// Collects warnings for the test's lifetime.
struct WarningLog {
    std::vector<std::string> messages;
    matrix::WarningHandler previous;
    WarningLog() {
        previous = matrix::setWarningHandler(
            [this](const fl::ustring& m) { messages.push_back(fl::i18n::ustring_to_utf8(m)); });
    }
    ~WarningLog() { matrix::setWarningHandler(previous); }
};

const BuiltinVariantLists& plusLists() {
    static const BuiltinVariantLists lists{makeVariants<&plusDouble>("plus", {.isElementWise = true})};
    return lists;
}

TEST(Invoke, CallsTheAcceptingVariantAndConvertsTheResult) {
    const RegisteredBuiltin plus("plus", "tests", "", plusLists(), noDefaultImplementation("plus"));
    Args args;
    args.add(matrix::createScalar<double>(2)).add(matrix::createScalar<double>(3));
    oxArray* result = nullptr;
    plus.invoke(1, &result, 2, args.handles.data(), BuiltinFcn::NoLxe);
    matrix::ArrayPtr owned(result);
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(matrix::getClassID(result), oxDOUBLE_CLASS);
    EXPECT_EQ(*matrix::getTypedData<double>(result), 5.0);

    // Without a requested output the result is stored when there is room, and destroyed
    // at once when there is none (the leak checker watches the second call).
    oxArray* stored = nullptr;
    plus.invoke(0, &stored, 2, args.handles.data(), BuiltinFcn::NoLxe);
    matrix::ArrayPtr storedOwner(stored);
    EXPECT_NE(stored, nullptr);
    plus.invoke(0, nullptr, 2, args.handles.data(), BuiltinFcn::NoLxe);
    EXPECT_EQ(matrix::getReferenceCount(args.handles[0]), 1U) << "input references are given back";
}

// The language of the next test: "reassign" gives the variable that held the input a new
// value, dropping the caller's reference to the old one, as the interpreter does when a
// callee's call back into the language assigns to it.
oxArray* languageVariable = nullptr;

void reassigningLanguage(std::string_view name, int, oxArray** plhs, int, oxArray**) {
    ASSERT_EQ(name, "reassign");
    matrix::destroyArray(languageVariable);
    languageVariable = matrix::createScalar<double>(0);
    plhs[0] = matrix::createScalar<double>(1);
}

// Calls back into the language, then reads its input.
double sumAfterCallingBack(CallContext& context, const oxArray* input) {
    matrix::destroyArray(context.callOrvex("reassign", {}));
    const double* data = matrix::getTypedData<double>(input);
    double sum = 0;
    for (std::size_t i = 0; i < matrix::getNumberOfElements(input); ++i) sum += data[i];
    return sum;
}

// The same without a call context: a plain function, which invoke may call straight.
double sumAfterCallingBackDirectly(const oxArray* input) {
    oxArray* result = nullptr;
    Velloc::lxe::callLanguageFunction("reassign", 1, &result, 0, nullptr);
    matrix::destroyArray(result);
    const double* data = matrix::getTypedData<double>(input);
    double sum = 0;
    for (std::size_t i = 0; i < matrix::getNumberOfElements(input); ++i) sum += data[i];
    return sum;
}

// A call holds its inputs as one more reference would: when the callee's call back into the
// language drops the caller's reference (the variable is reassigned), the input lives until
// the call returns, and goes then (the leak checker would report it otherwise).
TEST(Invoke, AnInputOutlivesTheCallersReferenceDroppedByACallBackIntoTheLanguage) {
    static const BuiltinVariantLists withContext{
        makeVariants<&sumAfterCallingBack>("sumAfter", {.mayCallIntoOrvex = true})};
    static const BuiltinVariantLists plain{
        makeVariants<&sumAfterCallingBackDirectly>("sumAfter", {.mayCallIntoOrvex = true})};
    const RegisteredBuiltin first("sumAfter", "tests", "", withContext, noDefaultImplementation("sumAfter"));
    const RegisteredBuiltin second("sumAfter", "tests", "", plain, noDefaultImplementation("sumAfter"));
    const Velloc::lxe::LanguageFunctionCaller previous = Velloc::lxe::setLanguageFunctionCaller(&reassigningLanguage);
    for (const RegisteredBuiltin* sumAfter : {&first, &second}) {
        for (oxArray* value : {row({1, 2, 3}), matrix::createScalar<double>(6)}) {
            languageVariable = value;
            oxArray* input = languageVariable;
            oxArray* result = nullptr;
            sumAfter->invoke(1, &result, 1, &input, BuiltinFcn::NoLxe);
            const matrix::ArrayPtr owned(result);
            EXPECT_EQ(*matrix::getTypedData<double>(result), 6.0);
            EXPECT_NE(languageVariable, value);
            matrix::destroyArray(languageVariable);
        }
    }
    Velloc::lxe::setLanguageFunctionCaller(previous);
}

TEST(Invoke, RefusesAMalformedCallingForm) {
    const RegisteredBuiltin plus("plus", "tests", "", plusLists(), noDefaultImplementation("plus"));
    Args args;
    args.add(matrix::createScalar<double>(2)).add(matrix::createScalar<double>(3));
    oxArray* result = nullptr;
    EXPECT_THROW(plus.invoke(1, nullptr, 2, args.handles.data(), BuiltinFcn::NoLxe), std::invalid_argument);
    EXPECT_THROW(plus.invoke(1, &result, 2, nullptr, BuiltinFcn::NoLxe), std::invalid_argument);
    EXPECT_THROW(plus.invoke(-1, &result, 2, args.handles.data(), BuiltinFcn::NoLxe), std::invalid_argument);
    EXPECT_EQ(result, nullptr);
}

TEST(Invoke, ElementWiseVariantsBroadcast) {
    const RegisteredBuiltin plus("plus", "tests", "", plusLists(), noDefaultImplementation("plus"));
    Args args;
    args.add(row({1, 2, 3})).add(column({10, 20}));
    oxArray* result = nullptr;
    plus.invoke(1, &result, 2, args.handles.data(), BuiltinFcn::NoLxe);
    matrix::ArrayPtr owned(result);
    const matrix::Dims dims = matrix::getDimensions(result);
    ASSERT_EQ(std::vector<std::size_t>(dims.begin(), dims.end()), (std::vector<std::size_t>{2, 3}));
    const double* data = matrix::getTypedData<double>(result);
    EXPECT_EQ(std::vector<double>(data, data + 6), (std::vector<double>{11, 21, 12, 22, 13, 23}));
}

TEST(Invoke, WarningsReachTheHostInOrderBeforeTheError) {
    static const BuiltinVariantLists lists{makeVariants<&warnTwiceThenFail>("f", {.mayThrowErrors = true})};
    const RegisteredBuiltin f("f", "tests", "", lists, noDefaultImplementation("f"));
    // f's own variant is the one compiled callers use; invoke reaches g's element-wise form.
    static const BuiltinVariantLists elementWise{
        makeVariants<&warnTwiceThenFail>("f", {.mayThrowErrors = true, .isElementWise = true})};
    const RegisteredBuiltin g("g", "tests", "", elementWise, noDefaultImplementation("g"));
    WarningLog log;
    Args args;
    args.add(matrix::createScalar<double>(1));
    oxArray* result = nullptr;
    try {
        g.invoke(1, &result, 1, args.handles.data(), BuiltinFcn::NoLxe);
        FAIL() << "the pending error was not rethrown";
    } catch (const foundation::core::except::IdentifiedException& error) {
        EXPECT_EQ(error.getId().key, "failed");
        EXPECT_EQ(error.message(), "failed after 2 warnings");
    }
    EXPECT_EQ(log.messages, (std::vector<std::string>{"first", "second"}));
    EXPECT_EQ(result, nullptr);
    EXPECT_EQ(f.getAllVariants()[0].functionDescriptor.getCallingConvention(), Velloc::lxe::CanThrow);
}

TEST(Invoke, UndeclaredExceptionsEscapeAndInputsAreReleased) {
    static const BuiltinVariantLists lists{makeVariants<&undeclaredThrow>("f")};
    const RegisteredBuiltin f("f", "tests", "", lists, noDefaultImplementation("f"));
    Args args;
    args.add(row({1, 2}));
    oxArray* result = nullptr;
    EXPECT_THROW(f.invoke(1, &result, 1, args.handles.data(), BuiltinFcn::NoLxe), std::runtime_error);
    EXPECT_EQ(matrix::getReferenceCount(args.handles[0]), 1U);
}

TEST(Invoke, UnacceptedCallsGoToTheDefaultImplementationOrFail) {
    const RegisteredBuiltin withDefault("plus", "tests", "", plusLists(),
                                        defaultImplementation<&countingDefault>("plus"));
    const RegisteredBuiltin without("plus", "tests", "", plusLists(), noDefaultImplementation("plus"));
    Args args;
    args.add(matrix::createScalar<float>(1)).add(matrix::createScalar<double>(1));
    oxArray* result = nullptr;
    defaultCalls = 0;
    withDefault.invoke(1, &result, 2, args.handles.data(), BuiltinFcn::NoLxe);
    matrix::ArrayPtr owned(result);
    EXPECT_EQ(defaultCalls, 1);
    try {
        without.invoke(1, &result, 2, args.handles.data(), BuiltinFcn::NoLxe);
        FAIL();
    } catch (const std::logic_error& error) {
        EXPECT_STREQ(error.what(), "builtin function implementation is nullptr");
    }
    // An empty list goes straight to the default implementation.
    static const BuiltinVariantLists none(std::vector<BuiltinVariant>{});
    const RegisteredBuiltin empty("empty", "tests", "", none, defaultImplementation<&countingDefault>("empty"));
    empty.invoke(0, nullptr, 0, nullptr, BuiltinFcn::AfterLxe);
    EXPECT_EQ(defaultCalls, 2);
}

TEST(Invoke, AfterTheEngineOnlyComplexScalarsReachTheComplexList) {
    // An open-array variant that the engine covers, except for complex scalars.
    static const BuiltinVariantLists lists{makeVariants<&identity>("id")};
    const RegisteredBuiltin id("id", "tests", "", lists, defaultImplementation<&countingDefault>("id"));
    ASSERT_TRUE(id.getSearchedByInvokeAfterLxe().empty());
    ASSERT_EQ(id.getSearchedByInvokeAfterLxeComplexScalar().size(), 1U);

    defaultCalls = 0;
    Args real;
    real.add(matrix::createScalar<double>(1));
    oxArray* result = nullptr;
    id.invoke(1, &result, 1, real.handles.data(), BuiltinFcn::AfterLxe);
    matrix::destroyArray(result);
    EXPECT_EQ(defaultCalls, 1) << "a real scalar is the engine's";

    Args complex;
    complex.add(matrix::createScalar<std::complex<double>>({1, 2}));
    id.invoke(1, &result, 1, complex.handles.data(), BuiltinFcn::AfterLxe);
    matrix::ArrayPtr owned(result);
    EXPECT_EQ(result, complex.handles[0]);
    EXPECT_EQ(defaultCalls, 1);
}

TEST(Invoke, TextTravelsBothWays) {
    static const BuiltinVariantLists lists{makeVariants<&shout>("shout")};
    const RegisteredBuiltin f("shout", "tests", "", lists, noDefaultImplementation("shout"));
    Args args;
    args.add(matrix::createCharRow(u"hey"));
    oxArray* result = nullptr;
    f.invoke(1, &result, 1, args.handles.data(), BuiltinFcn::NoLxe);
    matrix::ArrayPtr owned(result);
    ASSERT_NE(result, nullptr);
    oxArray* again = nullptr;
    std::array<oxArray*, 1> input{result};
    f.invoke(1, &again, 1, input.data(), BuiltinFcn::NoLxe);
    matrix::ArrayPtr ownedAgain(again);
    Velloc::builtin::types::Temporaries keep;
    EXPECT_EQ(Velloc::builtin::types::TypeTraitsImpl<std::u16string>{}(matrix::addReference(again), keep),
              u"hey!!");
}

TEST(MakeVariant, NamesAndConventionsFollowTheDeclaration) {
    const auto variants = makeVariants<&conjugate>("conj", {.isElementWise = true});
    ASSERT_EQ(variants.size(), 1U);
    EXPECT_EQ(variants[0].cppFunctionName, "conjugate");
    EXPECT_EQ(variants[0].orvexFunctionName, "conj");
    EXPECT_EQ(variants[0].functionDescriptor.getCallingConvention(), Velloc::lxe::Plain);
    EXPECT_EQ(makeVariants<&warnTwiceThenFail>("w")[0].mayRaiseWarnings, true) << "a CallContext means warnings";
    // Written in place, {.isElementWise = true} does not compile for shout (the compile_rules
    // tests); options kept in a variable are checked when the declaration runs.
    const VariantOptions elementWise{.isElementWise = true};
    EXPECT_THROW(makeVariants<&shout>("shout", elementWise), std::invalid_argument);
    EXPECT_EQ(makeVariants<&shout>("shout").size(), 3U) << "one variant per kind of text argument";
}

TEST(FindArityRun, CallsWithoutOutputsTakeVariantsWithNoneOrOne) {
    std::vector<BuiltinVariant> list;
    for (auto& v : makeVariants<&identity>("a")) list.push_back(v);
    for (auto& v : makeVariants<&plusDouble>("b", {.isElementWise = true})) list.push_back(v);
    detail::sortVariants(list);
    EXPECT_EQ(findArityRun(list, 0, 1).size(), 1U);
    EXPECT_EQ(findArityRun(list, 1, 2).size(), 1U);
    EXPECT_EQ(findArityRun(list, 2, 2).size(), 0U);
    EXPECT_EQ(findArityRun(list, 1, 3).size(), 0U);
}

} // namespace
