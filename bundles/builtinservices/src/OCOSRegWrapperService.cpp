#include "OCOSRegWrapperService.hpp"

#include <lxe/LxeObjectArrays.hpp>
#include <ocos/ClassNames.hpp>
#include <ocos/ClassRegistry.hpp>
#include <ocos/PackageFunctions.hpp>

#include <stdexcept>

namespace builtinservices {

namespace {

oxClassID classIdOrThrow(const char* className) {
    const ocos::COSClass* found = className != nullptr ? ocos::findClass(className) : nullptr;
    if (found == nullptr) {
        throw std::invalid_argument(std::string("there is no class '") + (className != nullptr ? className : "") +
                                    "' to hold the engine object");
    }
    return found->getId();
}

} // namespace

bool OCOSRegWrapperService::registerPackageFunction(const std::vector<std::string>& packageParts,
                                                    const std::string& functionName, Ofh_ORVEX_fn* function) {
    return ocos::registerPackageFunction(packageParts, functionName, function);
}

oxClassID OCOSRegWrapperService::getClassIdByName(const std::string& name) const {
    const ocos::COSClass* found = ocos::findClass(name);
    return found != nullptr ? found->getId() : oxUNKNOWN_CLASS;
}

oxArray* OCOSRegWrapperService::lxeObjectToOxArray(Velloc::lxe::LxeObject* object, const oxArray* like) const {
    if (object == nullptr) {
        return nullptr;
    }
    const oxClassID classId = like != nullptr ? getClassID(like) : classIdOrThrow(object->getOcosClassName());
    return Velloc::lxe::createLxeObjectArray(classId, Velloc::lxe::ConstLxeObjectPtr(object));
}

Velloc::lxe::LxeObject* OCOSRegWrapperService::oxArrayToLxeObject(const oxArray* array, bool strict) const {
    Velloc::lxe::LxeObject* object = Velloc::lxe::getLxeObject(array);
    if (object == nullptr && strict) {
        throw std::invalid_argument(array == nullptr ? std::string("expected an engine object, not a null array")
                                                     : "expected an engine object, not an array of class " +
                                                           ocos::describeClass(getClassID(array)));
    }
    return object;
}

oxArray* OCOSRegWrapperService::lxeObjectToOxArray(boost::intrusive_ptr<const Velloc::lxe::LxeObject>&& object,
                                                   const char* className) const {
    return Velloc::lxe::createLxeObjectArray(classIdOrThrow(className), std::move(object));
}

ocos::COSClass* OCOSRegWrapperService::defineClass(const std::string& name) { return &ocos::registerClass(name); }

std::shared_ptr<const Velloc::lxe::LxeObjectType> OCOSRegWrapperService::getLxeObjectType(oxClassID classId,
                                                                                          std::size_t variantId) const {
    return Velloc::lxe::findLxeObjectType(classId, variantId);
}

void OCOSRegWrapperService::setOfhFinder(std::string className, ocos::OfhFinder finder) {
    ocos::COSClass* cls = ocos::findClass(className);
    if (cls == nullptr) {
        throw std::invalid_argument("cannot set how class '" + className + "' finds its methods: there is no such class");
    }
    cls->setOfhFinder(std::move(finder));
}

void OCOSRegWrapperService::addMethod(ocos::COSClass* cls, const std::string& name, const std::string& implementation,
                                      const ocos::MemberAccess& access, bool isStatic, bool isHidden, bool isSealed) {
    if (cls == nullptr) {
        throw std::invalid_argument("cannot add the method '" + name + "' to a null class");
    }
    cls->addMethod({name, implementation, access, isStatic, isHidden, isSealed});
}

} // namespace builtinservices
