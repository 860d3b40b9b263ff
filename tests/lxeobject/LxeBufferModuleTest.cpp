// The example module end to end: its manifest declares the buffer class, starting its
// bundle registers it, and buffers are then created, indexed, grown and asked through
// the engine and through their methods.
#include "LxeBufferModule.hpp"

#include <lxebuffer/Buffer.hpp>

#include <builtin/lxeobject/LxeObjectBridge.hpp>
#include <builtin/lxeobject/LxeObjectManifest.hpp>
#include <builtin/lxeobject/LxeObjectRuntimeInfo.hpp>

#include <lxe/LxeObjectArrays.hpp>
#include <ocos/ClassRegistry.hpp>
#include <ocos/MethodCall.hpp>

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <vector>

namespace {

using namespace Velloc::builtin;
using lxebuffer::Buffer;
using Owned = matrix::ArrayPtr;

Owned doubles(std::vector<double> values) {
    const std::array<std::size_t, 2> row{1, values.size()};
    Owned array(matrix::detail::do_create_uninitnumeric(row, oxDOUBLE_CLASS, oxREAL));
    std::copy(values.begin(), values.end(), matrix::getTypedData<double>(array.get()));
    return array;
}

std::vector<double> valuesOf(const oxArray* array) {
    const double* data = matrix::getTypedData<double>(array);
    return {data, data + matrix::getNumberOfElements(array)};
}

// Calls a method of the buffer class with the given arguments; its one result, if any.
Owned call(const char* method, std::vector<oxArray*> arguments) {
    oxArray* result = nullptr;
    ocos::callMethod(*ocos::findClass("lxebuffer.Buffer"), method, 1, &result, static_cast<int>(arguments.size()),
                     arguments.data());
    return Owned(result);
}

TEST(LxeBufferModule, ItsManifestDeclaresTheClassAndStartingRegistersIt) {
    startLxeBufferModule();
    EXPECT_EQ(types::getLxeObjectRuntimeInfo(typeid(Buffer).name()), (types::LxeObjectRuntimeInfo{"lxebuffer.Buffer", 0}));
    const oxClassID id = builtinreg::getClassIdByName("lxebuffer.Buffer");
    ASSERT_NE(id, oxUNKNOWN_CLASS);
    EXPECT_TRUE(builtinreg::isAKnownLxeObject(id));
    const auto type = builtinreg::getLxeObjectType(id, 0);
    ASSERT_NE(type, nullptr);
    EXPECT_TRUE(type->defaultIndexing.has_value());
    EXPECT_STREQ(Buffer::lxeObjectId.getClassName(), "lxebuffer.Buffer");
    EXPECT_EQ(Buffer::lxeObjectId.getVariantId(), 0U);
    EXPECT_EQ(lxeobject::lxeObjectRecordBundle(typeid(Buffer).name()), "lxebuffer");
    // The module started again registers the same again, which is no conflict.
    EXPECT_TRUE(lxeobject::registerLxeObjectClass<Buffer>(false));
}

TEST(LxeBufferModule, BuffersAreIndexedAndGrownThroughTheEngine) {
    startLxeBufferModule();
    const Owned initial = doubles({1, 2, 3});
    const Owned buffer = call("create", {initial.get()});
    ASSERT_EQ(matrix::getClassID(buffer.get()), builtinreg::getClassIdByName("lxebuffer.Buffer"));

    const Owned picks = doubles({3, 1});
    const std::array<const oxArray*, 1> pickIndex{picks.get()};
    EXPECT_EQ(valuesOf(Owned(Velloc::lxe::parenReference(buffer.get(), pickIndex)).get()), (std::vector<double>{3, 1}));

    const Owned five = doubles({5});
    const Owned nine = doubles({9});
    const std::array<const oxArray*, 1> fifth{five.get()};
    Velloc::lxe::parenAssign(buffer.get(), fifth, nine.get());
    EXPECT_EQ(Velloc::lxe::numberOfElements(buffer.get()), 5U);
    EXPECT_EQ(valuesOf(call("values", {buffer.get()}).get()), (std::vector<double>{1, 2, 3, 0, 9}));

    const Owned more = doubles({7, 8});
    call("append", {buffer.get(), more.get()});
    EXPECT_EQ(valuesOf(call("size", {buffer.get()}).get()), (std::vector<double>{7}));

    const Owned zero = doubles({0});
    const Owned half = doubles({1.5});
    const Owned past = doubles({8});
    for (const oxArray* bad : {zero.get(), half.get()}) {
        const std::array<const oxArray*, 1> index{bad};
        EXPECT_THROW(Velloc::lxe::parenReference(buffer.get(), index), std::invalid_argument);
    }
    const std::array<const oxArray*, 1> pastEnd{past.get()};
    EXPECT_THROW(Velloc::lxe::parenReference(buffer.get(), pastEnd), std::out_of_range);
    // Two indices take one value or two, not three.
    EXPECT_THROW(Velloc::lxe::parenAssign(buffer.get(), pickIndex, initial.get()), std::invalid_argument);
    EXPECT_THROW(call("append", {initial.get(), more.get()}), std::invalid_argument);
    EXPECT_EQ(valuesOf(call("size", {buffer.get()}).get()), (std::vector<double>{7}));
}

TEST(LxeBufferModule, TheCppInterfaceAndTheLanguageShareOneBuffer) {
    startLxeBufferModule();
    const auto buffer = Buffer::create(std::vector<double>{4, 5});
    const Owned array(Buffer::toOxArray(buffer));
    EXPECT_EQ(Buffer::fromOxArray(array.get()), buffer.get());
    call("append", {array.get(), doubles({6}).get()});
    EXPECT_EQ(buffer->values(), (std::vector<double>{4, 5, 6}));
    buffer->set(0, 40);
    EXPECT_EQ(valuesOf(call("values", {array.get()}).get()), (std::vector<double>{40, 5, 6}));
    EXPECT_THROW(Buffer::fromOxArray(doubles({1}).get()), std::invalid_argument);
}

} // namespace
