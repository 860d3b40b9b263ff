// Developer functions that take and return engine objects of their own classes: the two
// forms a class pointer declares, which caller reaches which, what dispatch refuses and how
// the refusal names the classes.
#include "TestRecords.hpp"

#include <builtin/builtinreg/Explain.hpp>
#include <builtin/builtinreg/MakeVariant.hpp>
#include <builtin/builtinreg/ObjectReachability.hpp>
#include <builtin/lxeobject/CppLxeObjectImpl.hpp>
#include <builtin/lxeobject/LxeObjectBridge.hpp>

#include <gtest/gtest.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>

namespace paramtest {

class Counter : public Velloc::builtin::lxeobject::CppLxeObjectImpl<Counter> {
public:
    static inline Velloc::builtin::builtinreg::LxeObjectId lxeObjectId;
    explicit Counter(double start) : value(start) {}
    double value;
};

// A second C++ class under Counter's class, as variant 1.
class LegacyCounter final : public Velloc::builtin::lxeobject::CppLxeObjectImpl<LegacyCounter> {
public:
    static inline Velloc::builtin::builtinreg::LxeObjectId lxeObjectId;
};

class Other final : public Velloc::builtin::lxeobject::CppLxeObjectImpl<Other> {
public:
    static inline Velloc::builtin::builtinreg::LxeObjectId lxeObjectId;
};

// Declared in a record, never defined as a class.
class Undefined final : public Velloc::builtin::lxeobject::CppLxeObjectImpl<Undefined> {
public:
    static inline Velloc::builtin::builtinreg::LxeObjectId lxeObjectId;
};

double counterValue(const Counter* counter) { return counter->value; }
double increment(Counter* counter, double by) { return counter->value += by; }
Counter* makeCounter(double start) { return new Counter(start); }
double classIdOf(const Velloc::lxe::LxeObject* object) {
    return static_cast<double>(Velloc::builtin::builtinreg::getClassIdByName(object->getOcosClassName()));
}
double undefinedValue(const Undefined*) { return 0; }

} // namespace paramtest

namespace {

using namespace Velloc::builtin;
using paramtest::Counter;
using Owned = matrix::ArrayPtr;
using testing::HasSubstr;

void defineClasses() {
    static const bool defined = [] {
        types::addLxeObjectRuntimeInfo(test_records::record({
            {typeid(Counter).name(), test_records::fields("paramtest.Counter", 0)},
            {typeid(paramtest::LegacyCounter).name(), test_records::fields("paramtest.Counter", 1)},
            {typeid(paramtest::Other).name(), test_records::fields("paramtest.Other", 0)},
            {typeid(paramtest::Undefined).name(), test_records::fields("paramtest.Undefined", 0)},
        }));
        lxeobject::defineClass("paramtest.Counter");
        lxeobject::defineClass("paramtest.Other");
        lxeobject::registerLxeObjectClass<Counter>(false);
        lxeobject::registerLxeObjectClass<paramtest::LegacyCounter>(false);
        lxeobject::registerLxeObjectClass<paramtest::Other>(false);
        return true;
    }();
    (void)defined;
}

template <auto Fcn>
const builtinreg::BuiltinVariantLists& listsOf() {
    defineClasses();
    static const builtinreg::BuiltinVariantLists lists{builtinreg::makeVariants<Fcn>("f")};
    return lists;
}

template <auto Fcn>
const BuiltinFcn& builtinOf() {
    static const builtinreg::RegisteredBuiltin builtin("f", "paramtest", "", listsOf<Fcn>(),
                                                       builtinreg::noDefaultImplementation("f"));
    return builtin;
}

// Calls the builtin as the interpreter does, with one output.
Owned interpreted(const BuiltinFcn& builtin, std::vector<oxArray*> arguments) {
    oxArray* result = nullptr;
    builtin.invoke(1, &result, static_cast<int>(arguments.size()), arguments.data(), BuiltinFcn::NoLxe);
    return Owned(result);
}

double valueOf(const Owned& array) { return *matrix::getTypedData<double>(array.get()); }

Owned arrayOf(Velloc::lxe::LxeObject* object) {
    return Owned(lxeobject::toOxArray(boost::intrusive_ptr<const Velloc::lxe::LxeObject>(object),
                                      object->getOcosClassName()));
}

std::vector<std::string> inputTexts(std::span<const BuiltinVariant> list) {
    std::vector<std::string> texts;
    for (const BuiltinVariant& variant : list) {
        texts.push_back(variant.inputTypes[0]);
    }
    return texts;
}

TEST(ObjectParameters, AClassPointerTakesTheObjectFromCompiledCallersAndItsArrayFromTheInterpreter) {
    const builtinreg::BuiltinVariantLists& lists = listsOf<&paramtest::counterValue>();
    const std::string id = std::to_string(builtinreg::getClassIdByName("paramtest.Counter"));
    EXPECT_THAT(inputTexts(lists.searchedByLxe), testing::ElementsAre("lxe_object<" + id + ",0, false,$subType0>"));
    ASSERT_EQ(lists.searchedByInvokeAfterLxe.size(), 1U);
    EXPECT_EQ(std::get<types::OxArrayTypes>(lists.searchedByInvokeAfterLxe[0].inputArgTypes[0]).getElement(),
              builtinreg::getClassIdByName("paramtest.Counter"));

    // The engine passes the object itself to the object form.
    Counter counter(7);
    const Parameter object(static_cast<Velloc::lxe::LxeObject*>(&counter));
    bool pending = false;
    const BuiltinVariant& compiled = lists.searchedByLxe[0];
    const Parameter result = compiled.functionDescriptor.getGenericEntry()(
        compiled.functionDescriptor, builtinreg::detail::discardingEnvironment(), pending, &object);
    EXPECT_EQ(boost::get<double>(result), 7.0);

    // The interpreter passes the array that holds it; the object is shared, not copied.
    auto* shared = new Counter(3);
    const Owned array = arrayOf(shared);
    EXPECT_EQ(valueOf(interpreted(builtinOf<&paramtest::counterValue>(), {array.get()})), 3.0);
    const Owned two(matrix::createScalar(2.0));
    EXPECT_EQ(valueOf(interpreted(builtinOf<&paramtest::increment>(), {array.get(), two.get()})), 5.0);
    EXPECT_EQ(shared->value, 5.0);
}

TEST(ObjectParameters, DispatchRefusesOtherObjectsAndArraysNamingTheClasses) {
    const BuiltinFcn& builtin = builtinOf<&paramtest::counterValue>();
    const Owned other = arrayOf(new paramtest::Other);
    const Owned number(matrix::createScalar(1.0));
    for (oxArray* argument : {other.get(), number.get()}) {
        EXPECT_THROW(interpreted(builtin, {argument}), std::logic_error);
    }
    std::array<oxArray*, 1> arguments{other.get()};
    EXPECT_THAT(builtinreg::describeNoMatch(builtin, 1, 1, arguments.data()),
                HasSubstr("input 1 is an object of class 'paramtest.Other', the variant takes an object of class "
                          "'paramtest.Counter'"));
    arguments[0] = number.get();
    EXPECT_THAT(builtinreg::describeNoMatch(builtin, 1, 1, arguments.data()),
                HasSubstr("input 1 is a double scalar (oxArray_of<double,ox_scalar,ox_full,false>), the variant "
                          "takes an object of class 'paramtest.Counter'"));

    // Another C++ class of the same class passes dispatch and is refused by the conversion.
    const Owned legacy = arrayOf(new paramtest::LegacyCounter);
    try {
        interpreted(builtin, {legacy.get()});
        ADD_FAILURE() << "expected std::invalid_argument";
    } catch (const std::invalid_argument& error) {
        EXPECT_THAT(error.what(), HasSubstr("expected an object of C++ class paramtest::Counter (class "
                                            "'paramtest.Counter' variant 0), not one of C++ class "
                                            "paramtest::LegacyCounter (class 'paramtest.Counter' variant 1)"));
    }
}

TEST(ObjectParameters, AResultBecomesAnArrayOfItsClassOwningTheObject) {
    const Owned five(matrix::createScalar(5.0));
    const Owned made = interpreted(builtinOf<&paramtest::makeCounter>(), {five.get()});
    ASSERT_EQ(matrix::getClassID(made.get()), builtinreg::getClassIdByName("paramtest.Counter"));
    const auto* counter = dynamic_cast<const Counter*>(lxeobject::fromOxArray(made.get()));
    ASSERT_NE(counter, nullptr);
    EXPECT_EQ(counter->value, 5.0);
    EXPECT_EQ(counter->getReferenceCount(), 1U);
    EXPECT_EQ(valueOf(interpreted(builtinOf<&paramtest::counterValue>(), {made.get()})), 5.0);
}

TEST(ObjectParameters, AnyEngineObjectIsKeptAndTheArrayOfAnotherClassIsNamed) {
    const BuiltinFcn& builtin = builtinOf<&paramtest::classIdOf>();
    EXPECT_EQ(builtin.getAllVariants().size(), 2U);
    const Owned other = arrayOf(new paramtest::Other);
    EXPECT_EQ(valueOf(interpreted(builtin, {other.get()})),
              static_cast<double>(builtinreg::getClassIdByName("paramtest.Other")));
    const Owned number(matrix::createScalar(1.0));
    try {
        interpreted(builtin, {number.get()});
        ADD_FAILURE() << "expected std::invalid_argument";
    } catch (const std::invalid_argument& error) {
        EXPECT_STREQ(error.what(), "expected an engine object, not an array of class double");
    }
}

TEST(ObjectParameters, AVariantOfAnUndefinedClassIsRefusedWhenMade) {
    defineClasses();
    try {
        builtinreg::makeVariants<&paramtest::undefinedValue>("f");
        ADD_FAILURE() << "expected std::logic_error";
    } catch (const std::logic_error& error) {
        EXPECT_THAT(error.what(), HasSubstr("paramtest::Undefined* stands for objects of class "
                                           "'paramtest.Undefined', which is not defined"));
    }
}

TEST(ObjectParameters, OnlyAnObjectInputWithoutArrayTwinIsReportedUnreachable) {
    const builtinreg::BuiltinVariantLists& lists = listsOf<&paramtest::counterValue>();
    for (const BuiltinVariant& variant : lists.all) {
        EXPECT_EQ(builtinreg::engineObjectInputReason(variant, lists.all), "");
    }
    const BuiltinVariant& objectForm = lists.searchedByLxe[0];
    const std::string reason = builtinreg::engineObjectInputReason(objectForm, {&objectForm, 1});
    EXPECT_THAT(reason, HasSubstr("input 1 takes an object of class 'paramtest.Counter'"));
    EXPECT_THAT(reason, HasSubstr("const oxArray*"));
}

} // namespace
