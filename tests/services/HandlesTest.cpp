// The service handles hold what they found at their first use for the whole process
// (strings, class objects, engine-object registration): a service withdrawn later goes on serving through the
// handle, one published later is not taken up, and stopping and starting the bundle that
// made the service leaves the handle's service callable (the handle keeps the object, the
// framework keeps the bundle's library loaded).
//
// The first use happens in the global environment, the same for every case whether the
// cases run in one process or each in its own: a recording string service of high ranking
// is published before it, so that the string handle takes that one, while the other two
// handles take the builtin-services bundle's own.
#include "TextArrays.hpp"

#include <builtin/services/ModuleHelpers.hpp>
#include <builtin/services/ServiceHandles.hpp>
#include <builtin/services/findService.hpp>

#include <foundation/cppmicroservices/framework.hpp>
#include <ocos/ClassRegistry.hpp>
#include <ocos/PackageFunctions.hpp>
#include <strings/StringArray.hpp>

#include <cppmicroservices/Constants.h>
#include <cppmicroservices/LDAPProp.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace text_arrays;
using namespace Velloc::builtin;
using Owned = matrix::ArrayPtr;

cppmicroservices::BundleContext frameworkContext() {
    return foundation::cppmicroservices::getFramework()->GetBundleContext();
}

cppmicroservices::Bundle builtinServicesBundle() {
    for (const auto& bundle : frameworkContext().GetBundles()) {
        if (bundle.GetSymbolicName() == "builtinservices") {
            return bundle;
        }
    }
    return {};
}

// A string service that counts its calls and forwards them to the bundle's own.
class CountingStrings final : public StringSupport {
public:
    explicit CountingStrings(std::shared_ptr<StringSupport> real) : real_(std::move(real)) {}

    oxClassID getStringClassId() const override {
        calls.fetch_add(1);
        return real_->getStringClassId();
    }
    std::u16string_view getStringValue(const oxArray* array, const std::size_t* element) const override {
        calls.fetch_add(1);
        return real_->getStringValue(array, element);
    }
    oxArray* createStringArray(matrix::Dims dims, std::vector<std::u16string> texts) const override {
        calls.fetch_add(1);
        return real_->createStringArray(dims, std::move(texts));
    }
    oxArray* stringToOxArray(const Velloc::String::String* text, const matrix::Dims* dims) const override {
        calls.fetch_add(1);
        return real_->stringToOxArray(text, dims);
    }

    mutable std::atomic<int> calls{0};

private:
    std::shared_ptr<StringSupport> real_;
};

const std::string WHICH = "handles_test.which";

// Publishes the first counting string service, then makes the first use of every handle.
class FirstUse : public testing::Environment {
public:
    void SetUp() override {
        unsetenv("ORVEX_ROOT");
        builtinreg::loadBuiltinServices();
        const auto real = builtinreg::findService<StringSupport>();
        ASSERT_NE(real, nullptr) << "the builtin-services bundle did not start";
        first = std::make_shared<CountingStrings>(real);
        firstRegistration = frameworkContext().RegisterService<StringSupport>(
            first, {{cppmicroservices::Constants::SERVICE_RANKING, 100}, {WHICH, std::string("first")}});

        strings = builtinreg::getStringSupport().get();
        classObjects = builtinreg::getOCOSRegWrapper().get();
        lxeObjectRegister = builtinreg::getLxeObjectRegister().get();
    }

    static inline std::shared_ptr<CountingStrings> first;
    static inline cppmicroservices::ServiceRegistration<StringSupport> firstRegistration;
    static inline bool firstWithdrawn = false;
    static inline const StringSupport* strings = nullptr;
    static inline const IOCOSRegWrapper* classObjects = nullptr;
    static inline const ILxeObjectRegister* lxeObjectRegister = nullptr;
};
[[maybe_unused]] testing::Environment* const firstUse = testing::AddGlobalTestEnvironment(new FirstUse);

void fcn(int, oxArray**, int, oxArray**) {}

void expectTheFirstHandles() {
    EXPECT_EQ(builtinreg::getStringSupport().get(), FirstUse::strings);
    EXPECT_EQ(builtinreg::getOCOSRegWrapper().get(), FirstUse::classObjects);
    EXPECT_EQ(builtinreg::getLxeObjectRegister().get(), FirstUse::lxeObjectRegister);
}

TEST(ServiceHandles, TheBestServiceAtFirstUseIsTaken) {
    EXPECT_EQ(FirstUse::strings, FirstUse::first.get());
    EXPECT_NE(FirstUse::classObjects, nullptr);
    EXPECT_NE(FirstUse::lxeObjectRegister, nullptr);
    expectTheFirstHandles();
}

// The first string service is withdrawn and another published in its place, with a higher
// ranking still: the handle keeps the first, and text goes on through it.
TEST(ServiceHandles, TheFirstServiceServesTheWholeProcessAfterItIsWithdrawnAndAnotherPublished) {
    auto context = frameworkContext();
    const auto real = builtinreg::findService<StringSupport>(
        cppmicroservices::LDAPFilter(!cppmicroservices::LDAPProp(WHICH)));
    ASSERT_NE(real, nullptr);
    const auto second = std::make_shared<CountingStrings>(real);
    if (!FirstUse::firstWithdrawn) {
        FirstUse::firstRegistration.Unregister();
        FirstUse::firstWithdrawn = true;
    }
    auto secondRegistration = context.RegisterService<StringSupport>(
        second, {{cppmicroservices::Constants::SERVICE_RANKING, 200}, {WHICH, std::string("second")}});
    ASSERT_EQ(builtinreg::findService<StringSupport>().get(), second.get());

    expectTheFirstHandles();
    const int before = FirstUse::first->calls.load();
    const Owned abc(TypeTraitsImpl<std::u16string>{}(std::u16string(u"abc")));
    EXPECT_EQ(matrix::getClassID(abc.get()), ocos::STRING_CLASS_ID) << "written as a scalar string";
    EXPECT_EQ(readOwned<std::u16string>(TypeTraitsImpl<std::u16string>{}(std::u16string(u"d\u00e9f"))), u"d\u00e9f");
    EXPECT_GT(FirstUse::first->calls.load(), before);
    EXPECT_EQ(second->calls.load(), 0);
    secondRegistration.Unregister();
    expectTheFirstHandles();
}

// The bundle that made the services stops (withdrawing them) and starts again (publishing
// new ones): the handles keep the first services, which still run, since the handle keeps
// each object and the bundle's library stays loaded.
TEST(ServiceHandles, StoppingAndRestartingTheBundleLeavesTheFirstServicesCallable) {
    cppmicroservices::Bundle bundle = builtinServicesBundle();
    ASSERT_TRUE(bundle);
    const Velloc::String::String text(u"t\u00e9xt");

    bundle.Stop();
    EXPECT_EQ(builtinreg::findService<IOCOSRegWrapper>(), nullptr) << "the bundle's services are withdrawn";
    expectTheFirstHandles();
    {
        const auto& classObjects = builtinreg::getOCOSRegWrapper();
        ASSERT_NE(classObjects, nullptr);
        EXPECT_EQ(classObjects->getClassIdByName("string"), ocos::STRING_CLASS_ID);
        EXPECT_TRUE(builtinreg::registerPackageFunctionHelper({"handles_test", "stopped"}, "fcn", &fcn));
        EXPECT_EQ(ocos::findPackageFunction("handles_test.stopped.fcn"), &fcn);
        const Owned array(builtinreg::getStringSupport()->stringToOxArray(&text, nullptr));
        EXPECT_EQ(Velloc::String::getStringElement(array.get(), 0), text);
        EXPECT_EQ(readOwned<std::u16string>(TypeTraitsImpl<std::u16string>{}(std::u16string(u"xyz"))), u"xyz");
    }

    bundle.Start();
    const auto republished = builtinreg::findService<IOCOSRegWrapper>();
    ASSERT_NE(republished, nullptr);
    EXPECT_NE(republished.get(), FirstUse::classObjects) << "the bundle published a new service";
    expectTheFirstHandles();
    EXPECT_TRUE(builtinreg::registerPackageFunctionHelper({"handles_test", "restarted"}, "fcn", &fcn));
    EXPECT_EQ(ocos::findPackageFunction("handles_test.restarted.fcn"), &fcn);
    const Owned array(builtinreg::getStringSupport()->stringToOxArray(&text, nullptr));
    EXPECT_EQ(Velloc::String::getStringElement(array.get(), 0), text);
}

} // namespace
