// A process with an engine-object register service but no class-object service (the
// builtin-services bundle is not installed): registrations are logged and skipped, and
// conversions degrade as documented.
#include "TestRecords.hpp"

#include <builtin/lxeobject/CppLxeObjectImpl.hpp>
#include <builtin/lxeobject/LxeObjectBridge.hpp>
#include <builtin/lxeobject/LxeObjectIndexing.hpp>
#include <builtin/lxeobject/LxeObjectTypeTraitsImpl.hpp>
#include <builtin/services/ServiceHandles.hpp>

#include <foundation/cppmicroservices/framework.hpp>
#include <foundation/log/Channel.hpp>

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace lxeobject_test {

class Orphan final : public Velloc::builtin::lxeobject::CppLxeObjectImpl<Orphan> {
public:
    static inline Velloc::builtin::builtinreg::LxeObjectId lxeObjectId;
};

} // namespace lxeobject_test

namespace {

using namespace Velloc::builtin;

struct CountingRegister final : ILxeObjectRegister {
    void registerLxeObject(oxClassID, std::size_t) override { ++calls; }
    void registerLxeObject(oxClassID, std::size_t, bool) override { ++calls; }
    void registerLxeObjectDefaultIndexingMethods(oxClassID, std::size_t, bool,
                                                 const Velloc::lxe::LxeObjectDefaultIndexingMethods&) override {
        ++calls;
    }
    void registerParenReferenceVariant(oxClassID, std::size_t, const Velloc::lxe::LxeFunctionDescriptor&,
                                       const Velloc::lxe::LxeFunctionDescriptor&, std::string,
                                       boost::iterator_range<std::string*>) override {
        ++calls;
    }
    void registerParenAssignVariant(oxClassID, std::size_t, const Velloc::lxe::LxeFunctionDescriptor&,
                                    const Velloc::lxe::LxeFunctionDescriptor&, std::string,
                                    boost::iterator_range<std::string*>, bool) override {
        ++calls;
    }
    int calls = 0;
};

// Points the installation root at an empty folder and publishes only the register service,
// before any handle is looked up.
class OnlyTheRegisterService : public testing::Environment {
public:
    void SetUp() override {
        root_ = std::filesystem::path(testing::TempDir()) / ("builtin2-no-wrapper-" + std::to_string(getpid()));
        std::filesystem::create_directories(root_);
        setenv("ORVEX_ROOT", root_.c_str(), 1);
        foundation::cppmicroservices::getFramework()->GetBundleContext().RegisterService<ILxeObjectRegister>(registry);
    }
    void TearDown() override { std::filesystem::remove_all(root_); }

    static inline const std::shared_ptr<CountingRegister> registry = std::make_shared<CountingRegister>();

private:
    std::filesystem::path root_;
};
[[maybe_unused]] testing::Environment* const onlyTheRegisterService =
    testing::AddGlobalTestEnvironment(new OnlyTheRegisterService);

TEST(WithoutClassObjectService, RegistrationsAreLoggedAndSkipped) {
    ASSERT_NE(builtinreg::getLxeObjectRegister(), nullptr);
    ASSERT_EQ(builtinreg::getOCOSRegWrapper(), nullptr);
    const foundation::log::ScopedCapture log("builtinservice::registerLxeObject");
    EXPECT_FALSE(builtinreg::registerLxeObjectHelper("nowrap.Class", 0, true));
    std::string names[1] = {"double"};
    EXPECT_FALSE(builtinreg::registerParenAssignVariant("nowrap.Class", 0, {}, {}, "set", {names, names + 1}, false));
    lxeobject::setOfhFinder("nowrap.Class", {});
    lxeobject::addMethod(nullptr, "m", "m", {}, false, false, false);

    const auto records = log.records();
    ASSERT_EQ(records.size(), 4U);
    EXPECT_EQ(records[0].text, "Unable to register LxeObjects, Details: ocos Reg Service not available.");
    EXPECT_EQ(records[1].text,
              "Unable to register LxeObject optimized ParenAssign indexing method, Details: ocos Reg Service not "
              "available.");
    EXPECT_EQ(OnlyTheRegisterService::registry->calls, 0);
}

TEST(WithoutClassObjectService, LookupsAnswerUnknownAndConversionsDegrade) {
    EXPECT_EQ(builtinreg::getClassIdByName("LxeObject"), oxUNKNOWN_CLASS);
    EXPECT_EQ(builtinreg::getLxeObjectType(static_cast<oxClassID>(18), 0), nullptr);
    EXPECT_EQ(lxeobject::defineClass("nowrap.Class"), nullptr);
    EXPECT_EQ(lxeobject::toOxArray(new lxeobject_test::Orphan(), "nowrap.Class"), nullptr);
    const matrix::ArrayPtr number(matrix::createScalar(1.0));
    try {
        lxeobject::fromOxArray(number.get());
        ADD_FAILURE() << "expected std::runtime_error";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "Cannot get LxeObject runtime provider service");
    }

    // Without a class, a parameter of the class stands for an object of any class.
    types::addLxeObjectRuntimeInfo(
        test_records::record({{typeid(lxeobject_test::Orphan).name(), test_records::fields("nowrap.Orphan", 2)}}));
    EXPECT_EQ(std::get<types::LxeObjectTypes>(types::TypeTraitsImpl<lxeobject_test::Orphan*>::getArgType(0)).toString(),
              "lxe_object<$classid0,2,$bool0,$subType0>");
}

} // namespace
