// The virtual slots of the three service interfaces (IOCOSRegWrapper, StringSupport,
// ILxeObjectRegister) in their fixed order: a host calls the services through these
// slots, so their order is part of the contract. Each case checks it twice: the slot the compiler gave each named
// operation, read from its pointer to member, and a call through the virtual table of a
// recording implementation by slot index, which must land in the operation of that slot.
//
// Slots are counted after the destructor. In the Itanium C++ ABI
// (GCC and Clang on Linux) the destructor takes two entries of the table (the complete and
// the deleting destructor), and every further virtual function one entry, in the order of
// declaration.
#include <builtin/services/ILxeObjectRegister.hpp>
#include <builtin/services/IOCOSRegWrapper.hpp>
#include <builtin/services/StringSupport.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#if !defined(__GXX_ABI_VERSION)
#error "this test reads virtual tables as the Itanium C++ ABI lays them out"
#endif

namespace {

using namespace Velloc::builtin;

constexpr std::size_t DESTRUCTOR_ENTRIES = 2;

// The slot (after the destructor) of a virtual member function, from the Itanium form of
// its pointer to member: ptr holds the byte offset into the table, tagged with 1 (ARM
// tags adj instead, and leaves ptr as the offset).
template <class Member>
std::ptrdiff_t slotOf(Member member) {
    struct ItaniumMemberPointer {
        std::uintptr_t ptr;
        std::ptrdiff_t adj;
    };
    static_assert(sizeof(Member) == sizeof(ItaniumMemberPointer));
    ItaniumMemberPointer raw{};
    std::memcpy(&raw, &member, sizeof raw);
#if defined(__arm__) || defined(__aarch64__)
    if ((raw.adj & 1) == 0) {
        return -1; // not virtual
    }
    const std::uintptr_t offset = raw.ptr;
#else
    if ((raw.ptr & 1) == 0) {
        return -1; // not virtual
    }
    const std::uintptr_t offset = raw.ptr - 1;
#endif
    return static_cast<std::ptrdiff_t>(offset / sizeof(void*)) - static_cast<std::ptrdiff_t>(DESTRUCTOR_ENTRIES);
}

// Calls slot (after the destructor) of object's virtual table as a function of the given
// signature. A member function takes the object as its first parameter, after the address
// of a returned class object where there is one, as a free function with the object as its
// first parameter does.
template <class Result, class Object, class... Parameters, class... Arguments>
Result callSlot(Object* object, std::size_t slot, Arguments&&... arguments) {
    using Entry = Result (*)(Object*, Parameters...);
    void* const* table = *reinterpret_cast<void* const* const*>(object);
    const auto entry = reinterpret_cast<Entry>(table[DESTRUCTOR_ENTRIES + slot]);
    return entry(object, std::forward<Arguments>(arguments)...);
}

// Every operation records its name and the one argument that tells the calls apart.
struct Recording {
    std::vector<std::string> calls;
    void record(std::string call) { calls.push_back(std::move(call)); }
};

class RecordingClassObjects final : public IOCOSRegWrapper, public Recording {
public:
    using IOCOSRegWrapper::oxArrayToLxeObject;

    bool registerPackageFunction(const std::vector<std::string>& packageParts, const std::string& functionName,
                                 Ofh_ORVEX_fn*) override {
        record("registerPackageFunction " + packageParts.at(0) + "." + functionName);
        return true;
    }
    oxClassID getClassIdByName(const std::string& name) const override {
        self().record("getClassIdByName " + name);
        return static_cast<oxClassID>(42);
    }
    Velloc::lxe::LxeObject* oxArrayToLxeObject(const oxArray*, bool strict) const override {
        self().record(std::string("oxArrayToLxeObject ") + (strict ? "strict" : "lenient"));
        return nullptr;
    }
    oxArray* lxeObjectToOxArray(boost::intrusive_ptr<const Velloc::lxe::LxeObject>&& object,
                                const char* className) const override {
        self().record(std::string("lxeObjectToOxArray(owned) ") + className + (object ? " object" : " null"));
        return nullptr;
    }
    oxArray* lxeObjectToOxArray(Velloc::lxe::LxeObject* object, const oxArray*) const override {
        self().record(std::string("lxeObjectToOxArray(borrowed) ") + (object != nullptr ? "object" : "null"));
        return nullptr;
    }
    std::shared_ptr<const Velloc::lxe::LxeObjectType> getLxeObjectType(oxClassID classId,
                                                                       std::size_t variantId) const override {
        self().record("getLxeObjectType " + std::to_string(classId) + " " + std::to_string(variantId));
        return nullptr;
    }
    ocos::COSClass* defineClass(const std::string& name) override {
        record("defineClass " + name);
        return nullptr;
    }
    void setOfhFinder(std::string className, ocos::OfhFinder finder) override {
        record("setOfhFinder " + className + (finder ? " finder" : " none"));
    }
    void addMethod(ocos::COSClass*, const std::string& name, const std::string& implementation,
                   const ocos::MemberAccess&, bool isStatic, bool isHidden, bool isSealed) override {
        record("addMethod " + name + " " + implementation + " " + std::to_string(isStatic) +
               std::to_string(isHidden) + std::to_string(isSealed));
    }

private:
    void reservedSlot5() override { record("reserved 5"); }
    void reservedSlot6() override { record("reserved 6"); }

    Recording& self() const { return const_cast<RecordingClassObjects&>(*this); }
};

class RecordingStrings final : public StringSupport, public Recording {
public:
    oxClassID getStringClassId() const override {
        self().record("getStringClassId");
        return static_cast<oxClassID>(19);
    }
    std::u16string_view getStringValue(const oxArray*, const std::size_t* element) const override {
        self().record("getStringValue " + (element != nullptr ? std::to_string(*element) : std::string("null")));
        return u"value";
    }
    oxArray* createStringArray(matrix::Dims dims, std::vector<std::u16string> texts) const override {
        self().record("createStringArray " + std::to_string(dims.size()) + " " + std::to_string(texts.size()));
        return nullptr;
    }
    oxArray* stringToOxArray(const Velloc::String::String*, const matrix::Dims* dims) const override {
        self().record(std::string("stringToOxArray ") + (dims != nullptr ? "dims" : "null"));
        return nullptr;
    }

private:
    Recording& self() const { return const_cast<RecordingStrings&>(*this); }
};

class RecordingRegister final : public ILxeObjectRegister, public Recording {
public:
    void registerLxeObject(oxClassID classId, std::size_t variantId) override {
        record("registerLxeObject " + std::to_string(classId) + " " + std::to_string(variantId));
    }
    void registerLxeObject(oxClassID classId, std::size_t variantId, bool flag) override {
        record("registerLxeObject " + std::to_string(classId) + " " + std::to_string(variantId) + " " +
               std::to_string(flag));
    }
    void registerLxeObjectDefaultIndexingMethods(oxClassID classId, std::size_t, bool,
                                                 const Velloc::lxe::LxeObjectDefaultIndexingMethods&) override {
        record("registerLxeObjectDefaultIndexingMethods " + std::to_string(classId));
    }
    void registerParenReferenceVariant(oxClassID classId, std::size_t, const Velloc::lxe::LxeFunctionDescriptor&,
                                       const Velloc::lxe::LxeFunctionDescriptor&, std::string name,
                                       boost::iterator_range<std::string*> names) override {
        record("registerParenReferenceVariant " + std::to_string(classId) + " " + name + " " +
               std::to_string(names.size()));
    }
    void registerParenAssignVariant(oxClassID classId, std::size_t, const Velloc::lxe::LxeFunctionDescriptor&,
                                    const Velloc::lxe::LxeFunctionDescriptor&, std::string name,
                                    boost::iterator_range<std::string*> names, bool flag) override {
        record("registerParenAssignVariant " + std::to_string(classId) + " " + name + " " +
               std::to_string(names.size()) + " " + std::to_string(flag));
    }
};

TEST(ServiceSlots, ClassObjectServiceNamedOperationsSitInThePartsSlots) {
    using W = IOCOSRegWrapper;
    EXPECT_EQ(slotOf(&W::registerPackageFunction), 0);
    EXPECT_EQ(slotOf(&W::getClassIdByName), 1);
    EXPECT_EQ(slotOf(static_cast<Velloc::lxe::LxeObject* (W::*)(const oxArray*, bool) const>(&W::oxArrayToLxeObject)),
              2);
    EXPECT_EQ(slotOf(static_cast<oxArray* (W::*)(boost::intrusive_ptr<const Velloc::lxe::LxeObject>&&, const char*)
                                     const>(&W::lxeObjectToOxArray)),
              3);
    EXPECT_EQ(slotOf(static_cast<oxArray* (W::*)(Velloc::lxe::LxeObject*, const oxArray*) const>(
                  &W::lxeObjectToOxArray)),
              4);
    EXPECT_EQ(slotOf(&W::getLxeObjectType), 7);
    EXPECT_EQ(slotOf(&W::defineClass), 8);
    EXPECT_EQ(slotOf(&W::setOfhFinder), 9);
    EXPECT_EQ(slotOf(&W::addMethod), 10);
    // The two helpers are not virtual.
    EXPECT_EQ(slotOf(static_cast<Velloc::lxe::LxeObject* (W::*)(const oxArray*) const>(&W::oxArrayToLxeObject)), -1);
    EXPECT_EQ(slotOf(&W::getClassID), -1);
}

TEST(ServiceSlots, ClassObjectServiceCallsByIndexReachThePartsOperations) {
    RecordingClassObjects recording;
    IOCOSRegWrapper* service = &recording;
    using W = IOCOSRegWrapper;
    using Owned = boost::intrusive_ptr<const Velloc::lxe::LxeObject>;
    const std::vector<std::string> parts{"pkg"};

    EXPECT_TRUE((callSlot<bool, W, const std::vector<std::string>&, const std::string&, Ofh_ORVEX_fn*>(
        service, 0, parts, std::string("fcn"), nullptr)));
    EXPECT_EQ((callSlot<oxClassID, const W, const std::string&>(service, 1, std::string("Point"))), 42);
    EXPECT_EQ((callSlot<Velloc::lxe::LxeObject*, const W, const oxArray*, bool>(service, 2, nullptr, true)), nullptr);
    Owned none;
    EXPECT_EQ((callSlot<oxArray*, const W, Owned&&, const char*>(service, 3, std::move(none), "Point")), nullptr);
    EXPECT_EQ((callSlot<oxArray*, const W, Velloc::lxe::LxeObject*, const oxArray*>(service, 4, nullptr, nullptr)),
              nullptr);
    callSlot<void, W>(service, 5);
    callSlot<void, W>(service, 6);
    EXPECT_EQ((callSlot<std::shared_ptr<const Velloc::lxe::LxeObjectType>, const W, oxClassID, std::size_t>(
                  service, 7, static_cast<oxClassID>(20), std::size_t{3})),
              nullptr);
    EXPECT_EQ((callSlot<ocos::COSClass*, W, const std::string&>(service, 8, std::string("Point"))), nullptr);
    callSlot<void, W, std::string, ocos::OfhFinder>(service, 9, std::string("Point"), ocos::OfhFinder{});
    callSlot<void, W, ocos::COSClass*, const std::string&, const std::string&, const ocos::MemberAccess&, bool, bool,
             bool>(service, 10, nullptr, std::string("m"), std::string("impl"), ocos::MemberAccess{}, true, false,
                   true);

    EXPECT_EQ(recording.calls, (std::vector<std::string>{
                                   "registerPackageFunction pkg.fcn",
                                   "getClassIdByName Point",
                                   "oxArrayToLxeObject strict",
                                   "lxeObjectToOxArray(owned) Point null",
                                   "lxeObjectToOxArray(borrowed) null",
                                   "reserved 5",
                                   "reserved 6",
                                   "getLxeObjectType 20 3",
                                   "defineClass Point",
                                   "setOfhFinder Point none",
                                   "addMethod m impl 101",
                               }));
}

// An implementation that does not override the reserved slots inherits ones that do
// nothing.
TEST(ServiceSlots, ClassObjectServiceReservedSlotsDoNothingByDefault) {
    class Plain final : public IOCOSRegWrapper {
    public:
        bool registerPackageFunction(const std::vector<std::string>&, const std::string&, Ofh_ORVEX_fn*) override {
            return false;
        }
        oxClassID getClassIdByName(const std::string&) const override { return oxUNKNOWN_CLASS; }
        Velloc::lxe::LxeObject* oxArrayToLxeObject(const oxArray*, bool) const override { return nullptr; }
        oxArray* lxeObjectToOxArray(boost::intrusive_ptr<const Velloc::lxe::LxeObject>&&, const char*) const override {
            return nullptr;
        }
        oxArray* lxeObjectToOxArray(Velloc::lxe::LxeObject*, const oxArray*) const override { return nullptr; }
        std::shared_ptr<const Velloc::lxe::LxeObjectType> getLxeObjectType(oxClassID, std::size_t) const override {
            return nullptr;
        }
        ocos::COSClass* defineClass(const std::string&) override { return nullptr; }
        void setOfhFinder(std::string, ocos::OfhFinder) override {}
        void addMethod(ocos::COSClass*, const std::string&, const std::string&, const ocos::MemberAccess&, bool, bool,
                       bool) override {}
    };
    Plain plain;
    IOCOSRegWrapper* service = &plain;
    callSlot<void, IOCOSRegWrapper>(service, 5);
    callSlot<void, IOCOSRegWrapper>(service, 6);
    EXPECT_EQ((callSlot<oxClassID, const IOCOSRegWrapper, const std::string&>(service, 1, std::string("x"))),
              oxUNKNOWN_CLASS);
}

TEST(ServiceSlots, StringServiceOperationsSitInThePartsSlots) {
    using S = StringSupport;
    EXPECT_EQ(slotOf(&S::getStringClassId), 0);
    EXPECT_EQ(slotOf(&S::getStringValue), 1);
    EXPECT_EQ(slotOf(&S::createStringArray), 2);
    EXPECT_EQ(slotOf(&S::stringToOxArray), 3);

    RecordingStrings recording;
    const S* service = &recording;
    const std::size_t element = 2;
    const std::size_t sizes[] = {1, 1};
    EXPECT_EQ((callSlot<oxClassID, const S>(service, 0)), 19);
    EXPECT_EQ((callSlot<std::u16string_view, const S, const oxArray*, const std::size_t*>(service, 1, nullptr,
                                                                                            &element)),
              u"value");
    EXPECT_EQ((callSlot<oxArray*, const S, matrix::Dims, std::vector<std::u16string>>(
                  service, 2, matrix::Dims(sizes), std::vector<std::u16string>{u"a", u"b", u"c"})),
              nullptr);
    EXPECT_EQ((callSlot<oxArray*, const S, const Velloc::String::String*, const matrix::Dims*>(service, 3, nullptr,
                                                                                                 nullptr)),
              nullptr);
    EXPECT_EQ(recording.calls, (std::vector<std::string>{"getStringClassId", "getStringValue 2",
                                                         "createStringArray 2 3", "stringToOxArray null"}));
}

TEST(ServiceSlots, RegisterServiceOperationsSitInThePartsSlots) {
    using R = ILxeObjectRegister;
    EXPECT_EQ(slotOf(static_cast<void (R::*)(oxClassID, std::size_t)>(&R::registerLxeObject)), 0);
    EXPECT_EQ(slotOf(static_cast<void (R::*)(oxClassID, std::size_t, bool)>(&R::registerLxeObject)), 1);
    EXPECT_EQ(slotOf(&R::registerLxeObjectDefaultIndexingMethods), 2);
    EXPECT_EQ(slotOf(&R::registerParenReferenceVariant), 3);
    EXPECT_EQ(slotOf(&R::registerParenAssignVariant), 4);

    RecordingRegister recording;
    R* service = &recording;
    const auto classId = static_cast<oxClassID>(21);
    const Velloc::lxe::LxeFunctionDescriptor descriptor;
    std::string names[2] = {"double", "double"};
    const boost::iterator_range<std::string*> range(names, names + 2);
    callSlot<void, R, oxClassID, std::size_t>(service, 0, classId, std::size_t{4});
    callSlot<void, R, oxClassID, std::size_t, bool>(service, 1, classId, std::size_t{5}, true);
    callSlot<void, R, oxClassID, std::size_t, bool, const Velloc::lxe::LxeObjectDefaultIndexingMethods&>(
        service, 2, classId, std::size_t{6}, false, Velloc::lxe::LxeObjectDefaultIndexingMethods{});
    callSlot<void, R, oxClassID, std::size_t, const Velloc::lxe::LxeFunctionDescriptor&,
             const Velloc::lxe::LxeFunctionDescriptor&, std::string, boost::iterator_range<std::string*>>(
        service, 3, classId, std::size_t{7}, descriptor, descriptor, std::string("get"), range);
    callSlot<void, R, oxClassID, std::size_t, const Velloc::lxe::LxeFunctionDescriptor&,
             const Velloc::lxe::LxeFunctionDescriptor&, std::string, boost::iterator_range<std::string*>, bool>(
        service, 4, classId, std::size_t{8}, descriptor, descriptor, std::string("set"), range, true);
    EXPECT_EQ(recording.calls, (std::vector<std::string>{
                                   "registerLxeObject 21 4",
                                   "registerLxeObject 21 5 1",
                                   "registerLxeObjectDefaultIndexingMethods 21",
                                   "registerParenReferenceVariant 21 get 2",
                                   "registerParenAssignVariant 21 set 2 1",
                               }));
}

} // namespace
