// A process whose installation root holds no builtin-services bundle: every service
// handle is null and the callers degrade as documented.
#include "TextArrays.hpp"

#include <builtin/services/ModuleHelpers.hpp>
#include <builtin/services/ServiceHandles.hpp>
#include <builtin/services/findService.hpp>
#include <builtin/types/OrvexStringType.hpp>
#include <builtin/types/OxArrayTypes.hpp>

#include <foundation/cppmicroservices/framework.hpp>
#include <foundation/log/Channel.hpp>
#include <ocos/PackageFunctions.hpp>
#include <strings/StringArray.hpp>

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace text_arrays;
using namespace Velloc::builtin;
using Owned = matrix::ArrayPtr;

// Points the installation root at an empty folder, then starts the services while the
// start-up channel is captured, so that its record is seen whatever test runs first.
class EmptyInstallRoot : public testing::Environment {
public:
    void SetUp() override {
        root_ = std::filesystem::path(testing::TempDir()) / ("builtin2-empty-root-" + std::to_string(getpid()));
        std::filesystem::create_directories(root_);
        setenv("ORVEX_ROOT", root_.c_str(), 1);
        const foundation::log::ScopedCapture capture("builtinservice::startBundle");
        builtinreg::loadBuiltinServices();
        startRecords = capture.records();
    }
    void TearDown() override { std::filesystem::remove_all(root_); }

    static inline std::vector<foundation::log::CapturedRecord> startRecords;

private:
    std::filesystem::path root_;
};
[[maybe_unused]] testing::Environment* const emptyInstallRoot = testing::AddGlobalTestEnvironment(new EmptyInstallRoot);

void fcn(int, oxArray**, int, oxArray**) {}

// A string service published late; every call would be counted.
struct LateStrings final : StringSupport {
    oxClassID getStringClassId() const override {
        ++calls;
        return oxUNKNOWN_CLASS;
    }
    std::u16string_view getStringValue(const oxArray*, const std::size_t*) const override {
        ++calls;
        return u"";
    }
    oxArray* createStringArray(matrix::Dims, std::vector<std::u16string>) const override {
        ++calls;
        return nullptr;
    }
    oxArray* stringToOxArray(const Velloc::String::String*, const matrix::Dims*) const override {
        ++calls;
        return nullptr;
    }
    static inline int calls = 0;
};

TEST(WithoutServices, HandlesAreNullAndTheFailedStartIsLogged) {
    EXPECT_EQ(builtinreg::getStringSupport(), nullptr);
    EXPECT_EQ(builtinreg::getOCOSRegWrapper(), nullptr);
    EXPECT_EQ(builtinreg::getLxeObjectRegister(), nullptr);
    EXPECT_EQ(types::OrvexStringType::getOcosClassId(), oxUNKNOWN_CLASS);
    using Array = types::OxArrayTypes;
    const Array engineObject(static_cast<oxClassID>(18), Array::Shape::SCALAR, Array::Density::FULL,
                             Array::Complexity::NOT_COMPLEX, 0);
    EXPECT_EQ(engineObject.getLxeSupportLevel(types::ArgTypeDirection::OUTPUT), types::LxeSupportLevel::NO_SUPPORT);
    ASSERT_EQ(EmptyInstallRoot::startRecords.size(), 1u);
    EXPECT_NE(EmptyInstallRoot::startRecords[0].text.find("Unable to start the builtin services at "), std::string::npos);
}

// Services published after the first use are not taken up: a handle that found nothing
// stays null for the whole process.
TEST(WithoutServices, NoServiceAtFirstUseStaysNoService) {
    EXPECT_EQ(builtinreg::getStringSupport(), nullptr);
    EXPECT_EQ(builtinreg::getOCOSRegWrapper(), nullptr);
    auto context = foundation::cppmicroservices::getFramework()->GetBundleContext();
    auto registration = context.RegisterService<StringSupport>(std::make_shared<LateStrings>());
    ASSERT_NE(builtinreg::findService<StringSupport>(), nullptr);

    EXPECT_EQ(builtinreg::getStringSupport(), nullptr);
    const Owned abc(TypeTraitsImpl<std::u16string>{}(std::u16string(u"abc")));
    EXPECT_EQ(matrix::getClassID(abc.get()), oxCHAR_CLASS) << "text still travels as a char row vector";
    EXPECT_EQ(LateStrings::calls, 0);
    registration.Unregister();
    EXPECT_EQ(builtinreg::getStringSupport(), nullptr);
}

TEST(WithoutServices, PackageFunctionsAreLoggedAndSkipped) {
    const foundation::log::ScopedCapture log("builtinservice::registerpkgfcn");
    EXPECT_FALSE(builtinreg::registerPackageFunctionHelper({"pkg", "sub"}, "fcn", &fcn));
    const auto records = log.records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].text, "Unable to register pkg.sub.fcn because IOCOSRegWrapper cppmicroservice could not be found.");
    EXPECT_EQ(ocos::findPackageFunction("pkg.sub.fcn"), nullptr);
}

TEST(WithoutServices, UpstreamModulesAreSkippedSilently) {
    int visits = 0;
    builtinreg::callUpstreamModules({"N15builtinservices24BuiltinServicesModuleMgrE"},
                                    [&](builtinreg::ILxeObjectModuleMgr*) { ++visits; });
    EXPECT_EQ(visits, 0);
    EXPECT_NO_THROW(builtinreg::callUpstreamModules({"anything"}, {}));
    EXPECT_NO_THROW(builtinreg::callUpstreamModules({"", "anything", ""}, {}));
}

TEST(WithoutServices, TextTravelsAsCharRowVectors) {
    using Text = TypeTraitsImpl<std::u16string>;
    const Owned abc(Text{}(std::u16string(u"abc")));
    EXPECT_EQ(matrix::getClassID(abc.get()), oxCHAR_CLASS);
    EXPECT_EQ(matrix::getDimensions(abc.get())[0], 1u);
    EXPECT_EQ(std::u16string_view(matrix::getTypedData<char16_t>(abc.get()), 3), u"abc");
    const Owned empty(TypeTraitsImpl<std::string>{}(std::string()));
    EXPECT_EQ(matrix::getDimensions(empty.get())[1], 0u);

    EXPECT_EQ(readOwned<std::string>(TypeTraitsImpl<std::string>{}(std::string("\xc3\xa9t\xc3\xa9"))), "\xc3\xa9t\xc3\xa9");
    EXPECT_TRUE(std::holds_alternative<types::UnsupportedArgType>(Text::getArgType(0)));
    EXPECT_FALSE(std::holds_alternative<types::UnsupportedArgType>(Text::getArgType(1)));

    // Without the service a string object cannot be read.
    EXPECT_EQ(rejection(Velloc::String::createScalarString(Velloc::String::String(u"object"))), WRONG_SHAPE);
    EXPECT_EQ(rejection(matrix::createScalar(1.0)), WRONG_SHAPE);
}

} // namespace
