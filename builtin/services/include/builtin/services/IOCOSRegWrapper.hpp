// The service through which the framework reaches the host class-object system.
#pragma once

#include <lxe/LxeObject.hpp>
#include <lxe/LxeObjectTypeRegistry.hpp>
#include <matrix/oxArray.hpp>
#include <ocos/COSClass.hpp>
#include <ocos/MemberAccess.hpp>
#include <ocos/Ofh.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace Velloc::builtin {

// The virtual slots are fixed, since hosts call through them by slot; counted after the destructor:
//   0 (unnamed)              registerPackageFunction
//   1                        getClassIdByName
//   2                        oxArrayToLxeObject(const oxArray*, bool)
//   3                        lxeObjectToOxArray(intrusive_ptr<const LxeObject>&&, const char*)
//   4, 5, 6 (further slots)  lxeObjectToOxArray(LxeObject*, const oxArray*), reserved, reserved
//   7                        getLxeObjectType
//   8 (further slot)         defineClass
//   9, 10                    setOfhFinder, addMethod
// A host calls through these slots, so the order must not change: a new
// operation takes a reserved slot or goes after addMethod. tests/services/SlotOrderTest.cpp
// holds the order.
class IOCOSRegWrapper {
public:
    virtual ~IOCOSRegWrapper();

    // Makes function callable under the package-qualified name (the parts and the
    // function name joined with "."). False when the name is taken by another function.
    virtual bool registerPackageFunction(const std::vector<std::string>& packageParts,
                                         const std::string& functionName, Ofh_ORVEX_fn* function) = 0;

    // The id of the class of that name; oxUNKNOWN_CLASS when there is none.
    virtual oxClassID getClassIdByName(const std::string& name) const = 0;

    // The engine object a class-object array holds; null for any other array.
    Velloc::lxe::LxeObject* oxArrayToLxeObject(const oxArray* array) const { return oxArrayToLxeObject(array, false); }
    // The engine object the array holds. For any other array: null, or, when strict,
    // std::invalid_argument naming the array's class.
    virtual Velloc::lxe::LxeObject* oxArrayToLxeObject(const oxArray* array, bool strict) const = 0;

    // A new array of the named class holding the object, which the array takes over. A
    // null object, or a class that is unknown or does not hold engine objects, throws
    // std::invalid_argument.
    virtual oxArray* lxeObjectToOxArray(boost::intrusive_ptr<const Velloc::lxe::LxeObject>&& object,
                                        const char* className) const = 0;

    // A new class-object array holding the engine object, which it keeps a reference to;
    // like holds an array whose class the result takes, or is null for the object's own
    // class. Null for a null object.
    virtual oxArray* lxeObjectToOxArray(Velloc::lxe::LxeObject* object, const oxArray* like) const = 0;

private:
    // Slots 5 and 6: further slots that this project does not use. They do
    // nothing; an implementation need not override them.
    virtual void reservedSlot5();
    virtual void reservedSlot6();

public:
    // The engine's record of the class variant; null when it was never registered.
    virtual std::shared_ptr<const Velloc::lxe::LxeObjectType> getLxeObjectType(oxClassID classId,
                                                                               std::size_t variantId) const = 0;

    // The class of that name, created when there is none, so that a module can define the
    // class its engine objects belong to before it registers them. An empty name throws
    // std::invalid_argument.
    virtual ocos::COSClass* defineClass(const std::string& name) = 0;

    // Sets how the class named className finds the code of its methods. An unknown class
    // throws std::invalid_argument.
    virtual void setOfhFinder(std::string className, ocos::OfhFinder finder) = 0;
    // Adds the method to the class, or replaces the one of the same name (see
    // ocos::COSMethod for the three flags). A null class throws std::invalid_argument.
    virtual void addMethod(ocos::COSClass* cls, const std::string& name, const std::string& implementation,
                           const ocos::MemberAccess& access, bool isStatic, bool isHidden, bool isSealed) = 0;

    // The class id of the array, class-object classes included.
    oxClassID getClassID(const oxArray* array) const;
};

} // namespace Velloc::builtin
