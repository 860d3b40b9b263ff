// A deliberately broken defining library: each builtin below breaks one promise its
// declaration makes, and the framework's compiled paths catch it. Fatal paths are
// checked for message, file, line and function; armed-only checks also disarmed.
#include <builtin/builtinreg/Boxing.hpp>
#include <builtin/builtinreg/InlineCWrappers.hpp>
#include <builtin/builtinreg/MakeVariant.hpp>
#include <builtin/builtinreg/OutputChecks.hpp>

#include <fl/i18n.hpp>
#include <foundation/core/diag/terminate.hpp>
#include <foundation/log/Channel.hpp>
#include <foundation/usm/usm.hpp>
#include <lxe/LanguageCalls.hpp>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace Velloc::builtin;
using namespace Velloc::builtin::builtinreg;

double twice(double x) { return 2 * x; }
double choose(double n, double k) {
    if (k < 0) {
        throw std::domain_error("k < 0");
    }
    return n * k;
}
oxArray* quietlyCallsTwice(CallContext& context, const oxArray* a) {
    return context.callOrvex("twice", {const_cast<oxArray*>(a)});
}
double quietlyWarns(CallContext& context, double x) {
    context.warning("not supposed to");
    return x;
}
double warnsToTheHost(double x) {
    matrix::handleWarning(u"straight to the host");
    return x;
}
oxArray* textInsteadOfNumber(const oxArray*) { return matrix::createCharRow(u"oops"); }
oxArray* nothing(const oxArray*) { return nullptr; }
void leavesSecondOutput(int nlhs, oxArray** plhs, int, oxArray**, const BuiltinVariant&) {
    plhs[0] = matrix::createScalar<double>(1);
    if (nlhs > 2) {
        plhs[2] = matrix::createScalar<double>(3);
    }
}
void writesPastOutputs(int nlhs, oxArray** plhs, int, oxArray**, const BuiltinVariant&) {
    plhs[nlhs] = matrix::createScalar<double>(1);
}

// A builtin of one developer function, with the lists it spans.
struct TestBuiltin {
    TestBuiltin(const char* name, std::vector<BuiltinVariant> variants)
        : lists(std::move(variants)), builtin(name, "broken", "", lists, noDefaultImplementation(name)) {}
    BuiltinVariantLists lists;
    RegisteredBuiltin builtin;
};

const BuiltinFcn& twiceBuiltin() {
    static const TestBuiltin twiceOf("twice", makeVariants<&twice>("twice"));
    return twiceOf.builtin;
}

// The language of this test knows one function.
void callByName(std::string_view name, int nlhs, oxArray** plhs, int nrhs, oxArray** prhs) {
    ASSERT_EQ(name, "twice");
    twiceBuiltin().invoke(nlhs, plhs, nrhs, prhs, BuiltinFcn::NoLxe);
}

matrix::ArrayPtr call(const BuiltinFcn& builtin, std::initializer_list<oxArray*> arguments) {
    std::vector<matrix::ArrayPtr> owned(arguments.begin(), arguments.end());
    std::vector<oxArray*> handles(arguments);
    oxArray* result = nullptr;
    builtin.invoke(1, &result, static_cast<int>(handles.size()), handles.data(), BuiltinFcn::NoLxe);
    return matrix::ArrayPtr(result);
}

double valueOf(const matrix::ArrayPtr& a) { return *matrix::getTypedData<double>(a.get()); }

// Runs in a language instance with a language to call, checks armed or not.
class Promises : public ::testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        wasArmed_ = foundation::core::diag::terminationsArmed();
        foundation::core::diag::setTerminationsArmed(GetParam());
        previousCaller_ = Velloc::lxe::setLanguageFunctionCaller(&callByName);
    }
    void TearDown() override {
        Velloc::lxe::setLanguageFunctionCaller(previousCaller_);
        foundation::core::diag::setTerminationsArmed(wasArmed_);
    }

    foundation::usm::OvmInstance instance_;
    foundation::usm::CurrentOvm current_{instance_};

private:
    bool wasArmed_ = false;
    Velloc::lxe::LanguageFunctionCaller previousCaller_ = nullptr;
};

bool armed() { return foundation::core::diag::terminationsArmed(); }

const char* const FATAL_AT = "\n  file: [A-Za-z]+\n  line: [0-9]+\n  function: ";

TEST_P(Promises, CallingTheLanguageIsCheckedAgainstTheDeclaration) {
    const TestBuiltin declared("declared", makeVariants<&quietlyCallsTwice>("declared", {.mayCallIntoOrvex = true}));
    EXPECT_EQ(valueOf(call(declared.builtin, {matrix::createScalar<double>(4)})), 8.0);

    const TestBuiltin undeclaredOf("undeclared",
                                   makeVariants<&quietlyCallsTwice>("undeclared", {.mayRaiseWarnings = false}));
    const BuiltinFcn& undeclared = undeclaredOf.builtin;
    if (!armed()) {
        EXPECT_EQ(valueOf(call(undeclared, {matrix::createScalar<double>(4)})), 8.0);
        return;
    }
    EXPECT_DEATH(call(undeclared, {matrix::createScalar<double>(4)}),
                 std::string("is marked as not calling into orvex, but does.Need to change builtin doxygen") +
                     ".*file: CallsORVEXCheck\n  line: [0-9]+\n  function: void "
                     "\\{anonymous\\}::vlDoesNotCallORVEXAssertion\\(");
}

// A plain function is called without a call environment; its warnings are still held to
// its promise.
TEST_P(Promises, APlainFunctionsWarningsAreCheckedToo) {
    const TestBuiltin plain("plain", makeVariants<&warnsToTheHost>("plain", {.isElementWise = true}));
    if (!armed()) {
        std::vector<std::string> seen;
        const matrix::WarningHandler previous = matrix::setWarningHandler(
            [&](const fl::ustring& message) { seen.push_back(fl::i18n::ustring_to_utf8(message)); });
        EXPECT_EQ(valueOf(call(plain.builtin, {matrix::createScalar<double>(4)})), 4.0);
        matrix::setWarningHandler(previous);
        EXPECT_EQ(seen, std::vector<std::string>{"straight to the host"});
        return;
    }
    EXPECT_DEATH(call(plain.builtin, {matrix::createScalar<double>(4)}),
                 std::string("builtin: \"plain\" function: \"[^\"]*warnsToTheHost\" claims no warnings but generated "
                             "this warning:\nstraight to the host") +
                     FATAL_AT + "bool Velloc::builtin::builtinreg::detail::AssertIfWarnings::operator\\(\\)");
}

TEST_P(Promises, WarningsAreCheckedAgainstTheDeclaration) {
    const TestBuiltin quiet("quiet",
                            makeVariants<&quietlyWarns>("quiet", {.mayRaiseWarnings = false, .isElementWise = true}));
    const BuiltinFcn& warns = quiet.builtin;
    if (!armed()) {
        std::vector<std::string> seen;
        const matrix::WarningHandler previous = matrix::setWarningHandler(
            [&](const fl::ustring& message) { seen.push_back(fl::i18n::ustring_to_utf8(message)); });
        EXPECT_EQ(valueOf(call(warns, {matrix::createScalar<double>(4)})), 4.0);
        matrix::setWarningHandler(previous);
        EXPECT_EQ(seen, std::vector<std::string>{"not supposed to"}) << "a broken promise still warns";
        return;
    }
    EXPECT_DEATH(call(warns, {matrix::createScalar<double>(4)}),
                 std::string("builtin: \"quiet\" function: \"quietlyWarns\" claims no warnings but generated this "
                             "warning:\nnot supposed to") +
                     FATAL_AT + "bool Velloc::builtin::builtinreg::detail::AssertIfWarnings::operator\\(\\)");
}

TEST_P(Promises, ResultsMustBeProducedAndOfTheDeclaredType) {
    const TestBuiltin nothingOf("nothing", makeVariants<&nothing>("nothing"));
    EXPECT_DEATH(call(nothingOf.builtin, {matrix::createScalar<double>(1)}),
                 std::string("ORVEX Builtin: \"nothing\" of dominant class \"\" implemented by \"nothing\" did not "
                             "populate plhs\\[0\\] but nlhs is 1") +
                     FATAL_AT + "void Velloc::builtin::builtinreg::detail::assertLhsIsNotNull");

    std::vector<BuiltinVariant> declaredDouble = makeVariants<&textInsteadOfNumber>("text");
    declaredDouble[0].outputArgTypes = {types::OxArrayTypes(oxDOUBLE_CLASS, types::OxArrayTypes::Shape::UNKNOWN,
                                                            types::OxArrayTypes::Density::FULL,
                                                            types::OxArrayTypes::Complexity::NOT_COMPLEX,
                                                            types::OxArrayTypes::ANY_NUM_DIMS)};
    const TestBuiltin textOf("text", std::move(declaredDouble));
    const BuiltinFcn& text = textOf.builtin;
    if (!armed()) {
        EXPECT_EQ(matrix::getClassID(call(text, {matrix::createScalar<double>(1)}).get()), oxCHAR_CLASS);
        return;
    }
    EXPECT_DEATH(call(text, {matrix::createScalar<double>(1)}),
                 std::string("incorrect type returned from builtin: \"textInsteadOfNumber\"\nExpected: ") +
                     ".*file: getFunctionDescriptor\n  line: [0-9]+\n  function: void "
                     "Velloc::builtin::builtinreg::detail::assertLhsWrongType");
}

TEST_P(Promises, DefaultImplementationsAnswerForTheirOutputs) {
    static const BuiltinVariantLists none(std::vector<BuiltinVariant>{});
    const RegisteredBuiltin partial("partial", "broken", "", none,
                                    defaultImplementation<&leavesSecondOutput>("partial"));
    oxArray* outputs[3] = {};
    try {
        partial.invoke(3, outputs, 0, nullptr, BuiltinFcn::NoLxe);
        FAIL() << "unassigned outputs went unnoticed";
    } catch (const UnassignedOutputsError& error) {
        EXPECT_NE(error.message().find("\"partial\""), std::string::npos);
    }
    EXPECT_EQ(outputs[0], nullptr) << "the caller never sees part of the outputs; the checker sees no leak";
    EXPECT_EQ(outputs[2], nullptr);

    partial.invoke(1, outputs, 0, nullptr, BuiltinFcn::NoLxe);
    matrix::ArrayPtr first(outputs[0]);
    EXPECT_EQ(valueOf(first), 1.0);
    partial.invoke(0, nullptr, 0, nullptr, BuiltinFcn::NoLxe); // a result nobody asked for is freed

    const RegisteredBuiltin stray("stray", "broken", "", none, defaultImplementation<&writesPastOutputs>("stray"));
    EXPECT_DEATH(stray.invoke(2, outputs, 0, nullptr, BuiltinFcn::NoLxe),
                 std::string("ORVEX Builtin: \"stray\" of dominant class \"\" implemented by \"writesPastOutputs\" "
                             "wrote to plhs\\[2\\] but nlhs is 2") +
                     "\n  file: getDefaultImplementationVariant\n  line: [0-9]+\n  function: void "
                     "Velloc::builtin::builtinreg::detail::assertLhsOverflow");
}

INSTANTIATE_TEST_SUITE_P(ArmedAndDisarmed, Promises, ::testing::Bool(),
                         [](const auto& info) { return info.param ? "Armed" : "Disarmed"; });

TEST(BoxedVariants, ScalarFunctionsTakeOneByOneArrays) {
    foundation::log::ScopedCapture boxingLog("builtin2::Boxing");
    const std::vector<BuiltinVariant> variants = makeVariants<&choose>("choose");
    ASSERT_EQ(variants.size(), 2U) << "the original for compiled callers and its boxed copy";
    EXPECT_EQ(variants[0].originalVariant, nullptr);
    ASSERT_NE(variants[1].originalVariant, nullptr);
    EXPECT_EQ(variants[1].originalVariant->inputTypes, variants[0].inputTypes);
    EXPECT_EQ(variants[1].cppFunctionName, "choose");
    ASSERT_EQ(boxingLog.records().size(), 1U);
    EXPECT_EQ(boxingLog.records()[0].text.rfind("Developer inputs: \"double\", \"double\"\nBoxed inputs: \"oxArray*\", "
                                                "\"oxArray*\"\nArgTypes: \"",
                                                0),
              0U);
    EXPECT_TRUE(makeVariants<&choose>("choose", {.isElementWise = true}).size() == 1U)
        << "element-wise variants take arrays already";

    const TestBuiltin chooserOf("choose", makeVariants<&choose>("choose"));
    const BuiltinFcn& chooser = chooserOf.builtin;
    EXPECT_EQ(valueOf(call(chooser, {matrix::createScalar<double>(5), matrix::createScalar<double>(2)})), 10.0);
    try {
        const std::vector<std::size_t> row{1, 3};
        call(chooser, {matrix::createScalar<double>(5),
                       matrix::detail::do_create_uninitnumeric(row, oxDOUBLE_CLASS, oxREAL)});
        FAIL() << "a 1x3 array was unboxed";
    } catch (const NotScalarError& error) {
        EXPECT_EQ(error.message(), "Expected a scalar argument, but it has 3 elements.");
    }
}

// Compiled code calls a function that may warn or throw through its adapter.
TEST(CanThrowAdapter, CompiledCallersGetWarningsAndErrorsThroughTheEnvironment) {
    struct Environment final : Velloc::lxe::ILxeBuiltinEnvironment, Velloc::lxe::ILxeBuiltinAccessors {
        std::vector<std::u16string> warnings;
        std::exception_ptr error;
        void AddWarningMessage(const std::u16string& message) override { warnings.push_back(message); }
        Velloc::lxe::ILxeBuiltinAccessors* GetLxeBuiltinAccessors() override { return this; }
        void SetInternalPendingException() override { error = std::current_exception(); }
    } environment;
    const std::vector<BuiltinVariant> variants = makeVariants<&quietlyWarns>("warns");
    const auto thunk = detail::getExportedInlineCWrapperFcn(nullptr, 1, 1);
    const Parameter argument(-3.0);
    bool errorFlag = false;
    const detail::InlineCResult result =
        thunk(&variants[0].functionDescriptor, &environment, &errorFlag, &argument);
    EXPECT_TRUE(errorFlag);
    EXPECT_EQ(detail::readInlineCResult<double>(result), -3.0);
    EXPECT_EQ(environment.warnings, std::vector<std::u16string>{u"not supposed to"});

    const std::vector<BuiltinVariant> throwing = makeVariants<&choose>("choose", {.mayThrowErrors = true});
    EXPECT_NE(throwing[0].functionDescriptor.getCallee(), reinterpret_cast<void*>(&choose));
    const Parameter pair[2] = {Parameter(2.0), Parameter(3.0)};
    errorFlag = true;
    EXPECT_EQ(detail::readInlineCResult<double>(
                  detail::getExportedInlineCWrapperFcn(nullptr, 1, 1, 1)(&throwing[0].functionDescriptor,
                                                                         &environment, &errorFlag, pair)),
              6.0);
    EXPECT_FALSE(errorFlag);
    const Parameter negative[2] = {Parameter(2.0), Parameter(-1.0)};
    detail::getExportedInlineCWrapperFcn(nullptr, 1, 1, 1)(&throwing[0].functionDescriptor, &environment, &errorFlag,
                                                           negative);
    EXPECT_TRUE(errorFlag);
    EXPECT_THROW(std::rethrow_exception(environment.error), std::domain_error);
}

} // namespace
