#include <ocos/ClassRegistry.hpp>
#include <ocos/LxeObjectVariants.hpp>
#include <ocos/PackageFunctions.hpp>

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

void first(int, oxArray**, int, oxArray**) {}
void second(int, oxArray**, int, oxArray**) {}

TEST(ClassRegistry, BuiltInClassesHaveFixedIdsAndNewOnesAreNumberedOnce) {
    EXPECT_EQ(ocos::findClass("LxeObject")->getId(), 18);
    EXPECT_EQ(ocos::findClass(static_cast<oxClassID>(19))->getName(), "string");
    EXPECT_EQ(ocos::findClass("ocos_test.Missing"), nullptr);
    EXPECT_EQ(ocos::findClass(static_cast<oxClassID>(17)), nullptr);
    EXPECT_EQ(ocos::findClass(static_cast<oxClassID>(60000)), nullptr);

    ocos::COSClass& added = ocos::registerClass("ocos_test.Point");
    EXPECT_GE(added.getId(), 20);
    EXPECT_EQ(&ocos::registerClass("ocos_test.Point"), &added);
    EXPECT_EQ(ocos::findClass(added.getId()), &added);
    EXPECT_THROW(ocos::registerClass(""), std::invalid_argument);
}

TEST(ClassRegistry, ConcurrentRegistrationGivesOneDistinctIdPerName) {
    constexpr int THREADS = 4;
    constexpr int NAMES = 50;
    std::vector<std::vector<oxClassID>> ids(THREADS);
    std::vector<std::thread> threads;
    for (int t = 0; t < THREADS; ++t) {
        threads.emplace_back([t, &ids] {
            for (int n = 0; n < NAMES; ++n) {
                ids[t].push_back(ocos::registerClass("ocos_test.concurrent" + std::to_string(n)).getId());
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    for (int t = 1; t < THREADS; ++t) {
        EXPECT_EQ(ids[t], ids[0]);
    }
    EXPECT_EQ(std::set<oxClassID>(ids[0].begin(), ids[0].end()).size(), static_cast<std::size_t>(NAMES));
}

TEST(COSClass, MethodsAreAddedInOrderAndReplacedByName) {
    ocos::COSClass& cls = ocos::registerClass("ocos_test.WithMethods");
    cls.addMethod({"size", "impl.size", {}});
    cls.addMethod({"reset", "impl.reset", {ocos::AccessLevel::PRIVATE}});
    cls.addMethod({"size", "impl.size2", {ocos::AccessLevel::PROTECTED}});
    EXPECT_EQ(cls.getMethods(), (std::vector<ocos::COSMethod>{{"size", "impl.size2", {ocos::AccessLevel::PROTECTED}},
                                                              {"reset", "impl.reset", {ocos::AccessLevel::PRIVATE}}}));
    EXPECT_EQ(cls.findMethod("reset")->implementation, "impl.reset");
    EXPECT_FALSE(cls.findMethod("missing").has_value());
    EXPECT_THROW(cls.addMethod({"", "impl", {}}), std::invalid_argument);
}

TEST(PackageFunctionsAndVariants, AreBoundOnceAndOnlyForWhatExists) {
    EXPECT_TRUE(ocos::registerPackageFunction({"ocos_test", "pkg"}, "fcn", &first));
    EXPECT_TRUE(ocos::registerPackageFunction({"ocos_test", "pkg"}, "fcn", &first));
    EXPECT_FALSE(ocos::registerPackageFunction({"ocos_test", "pkg"}, "fcn", &second));
    EXPECT_EQ(ocos::findPackageFunction("ocos_test.pkg.fcn"), &first);
    EXPECT_TRUE(ocos::registerPackageFunction({}, "ocos_test_top", &second));
    EXPECT_EQ(ocos::findPackageFunction("ocos_test_top"), &second);
    EXPECT_THROW(ocos::registerPackageFunction({"ocos_test", ""}, "f", &first), std::invalid_argument);
    EXPECT_THROW(ocos::registerPackageFunction({"ocos_test"}, "null", nullptr), std::invalid_argument);

    const oxClassID id = ocos::registerClass("ocos_test.Buffer").getId();
    EXPECT_TRUE(ocos::recordLxeObjectVariant(id, {3, true}));
    EXPECT_TRUE(ocos::recordLxeObjectVariant(id, {1, false}));
    EXPECT_TRUE(ocos::recordLxeObjectVariant(id, {3, false}));
    EXPECT_EQ(ocos::getLxeObjectVariants(id), (std::vector<ocos::LxeObjectVariant>{{1, false}, {3, false}}));
    EXPECT_FALSE(ocos::recordLxeObjectVariant(static_cast<oxClassID>(65000), {0, false}));
}

} // namespace
