// A class variant registered twice: the same registration again is allowed, a different
// one is refused naming both, and the first stays in force. A class name given in code is
// checked against the manifest's.
#include "TestRecords.hpp"

#include <builtin/lxeobject/CppLxeObjectImpl.hpp>
#include <builtin/lxeobject/LxeObjectBridge.hpp>

#include <foundation/log/Channel.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace conflict {

class Alpha final : public Velloc::builtin::lxeobject::CppLxeObjectImpl<Alpha> {
public:
    static inline Velloc::builtin::builtinreg::LxeObjectId lxeObjectId;
};

// Declared under Alpha's class and variant id.
class Beta final : public Velloc::builtin::lxeobject::CppLxeObjectImpl<Beta> {
public:
    static inline Velloc::builtin::builtinreg::LxeObjectId lxeObjectId;
};

class Named final : public Velloc::builtin::lxeobject::CppLxeObjectImpl<Named> {
public:
    static inline Velloc::builtin::builtinreg::LxeObjectId lxeObjectId{0, [] { return "Named"; }};
};

} // namespace conflict

namespace {

using namespace Velloc::builtin;
using testing::HasSubstr;

oxArray* noReference(const Velloc::lxe::LxeObject&, Velloc::lxe::IndexArrays) { return nullptr; }
std::size_t one(const Velloc::lxe::LxeObject&) { return 1; }
std::size_t two(const Velloc::lxe::LxeObject&) { return 2; }
const Velloc::lxe::LxeObjectDefaultIndexingMethods FIRST{&noReference, nullptr, &one};
const Velloc::lxe::LxeObjectDefaultIndexingMethods SECOND{&noReference, nullptr, &two};

oxClassID sharedClass() {
    static const oxClassID id = [] {
        types::addLxeObjectRuntimeInfo(test_records::record({
            {typeid(conflict::Alpha).name(), test_records::fields("conflict.Shared", 0)},
            {typeid(conflict::Beta).name(), test_records::fields("conflict.Shared", 0)},
            {typeid(conflict::Named).name(), test_records::fields("conflict.Named", 0)},
        }));
        return lxeobject::defineClass("conflict.Shared")->getId();
    }();
    return id;
}

template <class Register>
std::string errorOf(Register&& registration) {
    try {
        registration();
    } catch (const builtinreg::LxeObjectRegistrationError& error) {
        return error.what();
    }
    return "no error";
}

TEST(LxeObjectRegistrationConflicts, TwoCppClassesUnderOneClassAndVariantAreRefused) {
    const oxClassID id = sharedClass();
    EXPECT_TRUE(lxeobject::registerLxeObjectClass<conflict::Alpha>(false));
    EXPECT_TRUE(lxeobject::registerLxeObjectClass<conflict::Alpha>(false));
    EXPECT_EQ(errorOf([] { lxeobject::registerLxeObjectClass<conflict::Beta>(false); }),
              "Unable to register LxeObjects: class 'conflict.Shared' variant 0 is registered for C++ class "
              "conflict::Alpha; C++ class conflict::Beta cannot be registered under the same class and variant "
              "id.");
    EXPECT_THAT(errorOf([] { lxeobject::registerLxeObjectDefaultIndexingMethods<conflict::Beta>(false, FIRST); }),
                HasSubstr("C++ class conflict::Beta cannot be registered"));

    const foundation::log::ScopedCapture log("builtinservice::registerLxeObject");
    EXPECT_FALSE(builtinreg::registerLxeObjectHelper("conflict.Shared", 0, true));
    ASSERT_EQ(log.records().size(), 1U);
    EXPECT_EQ(log.records()[0].text,
              "Unable to register LxeObjects, Details: class 'conflict.Shared' variant 0 is registered for C++ "
              "class conflict::Alpha with flag false; the registration by class name with flag true is refused.");
    EXPECT_FALSE(builtinreg::getLxeObjectType(id, 0)->flag);
}

TEST(LxeObjectRegistrationConflicts, OtherIndexingIsRefusedAndTheFirstStays) {
    const oxClassID id = sharedClass();
    lxeobject::registerLxeObjectClass<conflict::Alpha>(false);
    EXPECT_TRUE(lxeobject::registerLxeObjectDefaultIndexingMethods<conflict::Alpha>(false, FIRST));
    EXPECT_TRUE(builtinreg::registerLxeObjectDefaultIndexingMethodsHelper("conflict.Shared", 0, false, FIRST));
    EXPECT_EQ(errorOf([] { lxeobject::registerLxeObjectDefaultIndexingMethods<conflict::Alpha>(false, SECOND); }),
              "Unable to register LxeObject default indexing methods: the default indexing methods of class "
              "'conflict.Shared' variant 0 are registered for C++ class conflict::Alpha; other methods, "
              "registered for C++ class conflict::Alpha, are refused.");

    const foundation::log::ScopedCapture log("builtinservice::registerLxeObject");
    EXPECT_FALSE(builtinreg::registerLxeObjectDefaultIndexingMethodsHelper("conflict.Shared", 0, true, FIRST));
    ASSERT_EQ(log.records().size(), 1U);
    EXPECT_THAT(log.records()[0].text, HasSubstr("other methods, registered by class name, are refused."));
    EXPECT_EQ(builtinreg::getLxeObjectType(id, 0)->defaultIndexing, FIRST);
}

TEST(LxeObjectRegistrationConflicts, AClassNameInCodeMustBeTheManifests) {
    sharedClass();
    EXPECT_EQ(errorOf([] { lxeobject::adoptManifestIdentity<conflict::Named>(); }),
              "C++ class conflict::Named names its class 'Named' in its LxeObjectId, but its lxe_objects record "
              "declares 'conflict.Named' under \"" +
                  std::string(typeid(conflict::Named).name()) +
                  "\": the two must agree (or leave the name to the manifest with a default LxeObjectId).");
}

} // namespace
