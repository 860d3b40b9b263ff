// Engine-object classes registered through the builtin-services bundle: found again with
// their indexing, their objects carried in arrays, their methods called.
#include "TestRecords.hpp"

#include <builtin/lxeobject/CppLxeObjectImpl.hpp>
#include <builtin/lxeobject/LxeObjectBridge.hpp>
#include <builtin/lxeobject/LxeObjectIndexing.hpp>
#include <builtin/lxeobject/LxeObjectTypeTraitsImpl.hpp>
#include <builtin/services/ServiceHandles.hpp>

#include <foundation/log/Channel.hpp>
#include <lxe/LxeObjectArrays.hpp>
#include <ocos/ClassRegistry.hpp>
#include <ocos/LxeObjectVariants.hpp>
#include <ocos/MethodCall.hpp>

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <string>

namespace lxeobject_test {

class Point final : public Velloc::builtin::lxeobject::CppLxeObjectImpl<Point> {
public:
    static inline Velloc::builtin::builtinreg::LxeObjectId lxeObjectId;

    explicit Point(bool* destroyed = nullptr) : destroyed_(destroyed) {}
    ~Point() override {
        if (destroyed_ != nullptr) {
            *destroyed_ = true;
        }
    }

private:
    bool* destroyed_;
};

} // namespace lxeobject_test

namespace {

using namespace Velloc::builtin;
using lxeobject_test::Point;
using Owned = matrix::ArrayPtr;

oxArray* pointReference(const Velloc::lxe::LxeObject&, Velloc::lxe::IndexArrays indices) {
    return matrix::createScalar(static_cast<double>(indices.size()));
}
std::size_t pointSize(const Velloc::lxe::LxeObject&) { return 2; }
const Velloc::lxe::LxeObjectDefaultIndexingMethods POINT_INDEXING{&pointReference, nullptr, &pointSize};

// Declares, defines and registers the point class once; returns its id.
oxClassID pointClass() {
    static const oxClassID id = [] {
        types::addLxeObjectRuntimeInfo(
            test_records::record({{typeid(Point).name(), test_records::fields("regtest.Point", 1)}}));
        const ocos::COSClass* cls = lxeobject::defineClass("regtest.Point");
        lxeobject::registerLxeObjectClass<Point>(true);
        lxeobject::registerLxeObjectDefaultIndexingMethods<Point>(false, POINT_INDEXING);
        return cls->getId();
    }();
    return id;
}

TEST(LxeObjectRegistration, AClassVariantIsFoundAgainWithItsIndexing) {
    const oxClassID id = pointClass();
    EXPECT_TRUE(builtinreg::isAKnownLxeObject(id));
    EXPECT_EQ(builtinreg::getClassIdByName("regtest.Point"), id);
    EXPECT_EQ(ocos::getLxeObjectVariants(id), (std::vector<ocos::LxeObjectVariant>{{1, true}}));

    const Velloc::lxe::LxeFunctionDescriptor first(nullptr, nullptr, Velloc::lxe::Plain);
    const Velloc::lxe::LxeFunctionDescriptor second(nullptr, nullptr, Velloc::lxe::CanThrow);
    std::array<std::string, 2> names{"double", "int32"};
    EXPECT_TRUE(builtinreg::registerParenReferenceVariant("regtest.Point", 1, first, second, "pointAt",
                                                          {names.data(), names.data() + names.size()}));
    EXPECT_TRUE(builtinreg::registerParenAssignVariant("regtest.Point", 1, first, second, "pointSet",
                                                       {names.data(), names.data() + 1}, true));

    const auto type = builtinreg::getLxeObjectType(id, 1);
    ASSERT_NE(type, nullptr);
    EXPECT_TRUE(type->flag);
    EXPECT_EQ(type->defaultIndexing, POINT_INDEXING);
    ASSERT_EQ(type->parenReferenceVariants.size(), 1U);
    EXPECT_EQ(type->parenReferenceVariants[0].name, "pointAt");
    EXPECT_EQ(type->parenReferenceVariants[0].names, (std::vector<std::string>{"double", "int32"}));
    EXPECT_EQ(type->parenReferenceVariants[0].entries[1].getCallingConvention(), Velloc::lxe::CanThrow);
    ASSERT_EQ(type->parenAssignVariants.size(), 1U);
    EXPECT_TRUE(type->parenAssignVariants[0].flag);
    EXPECT_EQ(builtinreg::getLxeObjectType(id, 7), nullptr);
}

TEST(LxeObjectRegistration, APointerParameterStandsForTheClassVariant) {
    const std::string expected = "lxe_object<" + std::to_string(pointClass()) + ",1, true,$subType0>";
    EXPECT_EQ(std::get<types::LxeObjectTypes>(types::TypeTraitsImpl<Point*>::getArgType(0)).toString(), expected);
    EXPECT_EQ(std::get<types::LxeObjectTypes>(types::TypeTraitsImpl<const Point*>::getArgType(0)).toString(), expected);
    // The form in which interpreted calls pass it: a 1-by-1 array of the class.
    EXPECT_EQ(std::get<types::OxArrayTypes>(types::TypeTraitsImpl<Point*>::getArgType(1)),
              types::OxArrayTypes(pointClass(), types::OxArrayTypes::Shape::SCALAR, types::OxArrayTypes::Density::FULL,
                                  types::OxArrayTypes::Complexity::NOT_COMPLEX, 0));
}

TEST(LxeObjectBridge, ArraysShareTheObjectAndReleaseItWhenDestroyed) {
    const oxClassID id = pointClass();
    bool destroyed = false;
    boost::intrusive_ptr<Point> point(new Point(&destroyed));
    Owned own(lxeobject::toOxArray(point, "regtest.Point"));
    ASSERT_NE(own, nullptr);
    EXPECT_EQ(matrix::getClassID(own.get()), id);
    EXPECT_EQ(lxeobject::fromOxArray(own.get()), point.get());

    const auto& service = *builtinreg::getOCOSRegWrapper();
    Owned byOwnClass(service.lxeObjectToOxArray(point.get(), nullptr));
    EXPECT_EQ(matrix::getClassID(byOwnClass.get()), id);
    EXPECT_EQ(service.oxArrayToLxeObject(byOwnClass.get()), point.get());
    EXPECT_EQ(point->getReferenceCount(), 3U);

    point.reset();
    own.reset();
    EXPECT_FALSE(destroyed);
    byOwnClass.reset();
    EXPECT_TRUE(destroyed);
}

TEST(LxeObjectBridge, OnlyObjectArraysAndObjectClassesConvert) {
    pointClass();
    const Owned number(matrix::createScalar(1.0));
    EXPECT_THROW(lxeobject::fromOxArray(number.get()), std::invalid_argument);
    EXPECT_EQ(builtinreg::getOCOSRegWrapper()->oxArrayToLxeObject(number.get()), nullptr);
    EXPECT_THROW(lxeobject::toOxArray(new Point(), "regtest.NoSuchClass"), std::invalid_argument);
    EXPECT_THROW(lxeobject::toOxArray(new Point(), "string"), std::invalid_argument);
    EXPECT_THROW(lxeobject::toOxArray(nullptr, "regtest.Point"), std::invalid_argument);
}

TEST(LxeObjectBridge, TheEngineIndexesThroughTheRegisteredMethods) {
    pointClass();
    const Owned point(lxeobject::toOxArray(new Point(), "regtest.Point"));
    const Owned index(matrix::createScalar(1.0));
    const std::array<const oxArray*, 2> indices{index.get(), index.get()};
    const Owned element(Velloc::lxe::parenReference(point.get(), indices));
    EXPECT_EQ(*matrix::getTypedData<double>(element.get()), 2.0);
    EXPECT_EQ(Velloc::lxe::numberOfElements(point.get()), 2U);
    EXPECT_THROW(Velloc::lxe::parenAssign(point.get(), indices, index.get()), std::invalid_argument);
    EXPECT_THROW(Velloc::lxe::parenReference(index.get(), indices), std::invalid_argument);
}

TEST(LxeObjectRegistration, AnUnknownClassIsLoggedAndSkipped) {
    const foundation::log::ScopedCapture log("builtinservice::registerLxeObject");
    EXPECT_FALSE(builtinreg::registerLxeObjectHelper("regtest.Missing", 0));
    EXPECT_FALSE(builtinreg::registerLxeObjectDefaultIndexingMethodsHelper("regtest.Missing", 0, false, {}));
    const auto records = log.records();
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].text, "Unable to register LxeObjects, Details: unknown class 'regtest.Missing'");
    EXPECT_EQ(records[1].text,
              "Unable to register LxeObject default indexing methods, Details: unknown class 'regtest.Missing'");
    EXPECT_EQ(lxeobject::getGuid("cls", "impl"), "cls-impl#");
}

void twice(int, oxArray** plhs, int, oxArray** prhs) {
    plhs[0] = matrix::createScalar(2 * *matrix::getTypedData<double>(prhs[0]));
}

TEST(LxeObjectMethods, AreAddedToTheClassAndCalledThroughItsFinder) {
    ocos::COSClass* cls = lxeobject::defineClass("regtest.Calc");
    ASSERT_NE(cls, nullptr);
    lxeobject::setOfhFinder("regtest.Calc", [](const std::string& className, const std::string& implementation) {
        return lxeobject::getGuid(className, implementation) == "regtest.Calc-twiceImpl#" ? &twice : nullptr;
    });
    lxeobject::addMethod(cls, "twice", "twiceImpl", {}, true, false, true);
    lxeobject::addMethod(cls, "secret", "twiceImpl", {ocos::AccessLevel::PRIVATE}, true, true, false);
    lxeobject::addMethod(cls, "lost", "noCode", {}, true, false, false);

    const Owned three(matrix::createScalar(3.0));
    std::array<oxArray*, 1> in{three.get()};
    std::array<oxArray*, 1> out{nullptr};
    ocos::callMethod(*cls, "twice", 1, out.data(), 1, in.data());
    const Owned six(out[0]);
    EXPECT_EQ(*matrix::getTypedData<double>(six.get()), 6.0);

    EXPECT_THROW(lxeobject::addMethod(cls, "twice", "other", {}, true, false, false), std::logic_error);
    EXPECT_THROW(ocos::callMethod(*cls, "secret", 1, out.data(), 1, in.data()), std::invalid_argument);
    EXPECT_THROW(ocos::callMethod(*cls, "lost", 1, out.data(), 1, in.data()), std::invalid_argument);
    EXPECT_THROW(ocos::callMethod(*cls, "missing", 1, out.data(), 1, in.data()), std::invalid_argument);
    EXPECT_THROW(lxeobject::setOfhFinder("regtest.NoSuchClass", {}), std::invalid_argument);
}

} // namespace
