// The service through which the framework reaches the host class-object system.
#pragma once

#include <lxe/LxeObjectFwd.hpp>
#include <matrix/oxArray.hpp>
#include <ocos/Ofh.hpp>

#include <string>
#include <vector>

namespace Velloc::builtin {

class IOCOSRegWrapper {
public:
    virtual ~IOCOSRegWrapper();

    // Makes function callable under the package-qualified name (the parts and the
    // function name joined with "."). False when the name is taken by another function.
    virtual bool registerPackageFunction(const std::vector<std::string>& packageParts,
                                         const std::string& functionName, Ofh_ORVEX_fn* function) = 0;

    // The id of the class of that name; oxUNKNOWN_CLASS when there is none.
    virtual oxClassID getClassIdByName(const std::string& name) const = 0;
    // A new class-object array holding the engine object; like holds an array whose class
    // the result takes, or is null for the object's own class.
    virtual oxArray* lxeObjectToOxArray(Velloc::lxe::LxeObject* object, const oxArray* like) const = 0;
    // The engine object a class-object array holds; null for any other array.
    virtual Velloc::lxe::LxeObject* oxArrayToLxeObject(const oxArray* array) const = 0;

    // The class id of the array, class-object classes included.
    oxClassID getClassID(const oxArray* array) const;
};

} // namespace Velloc::builtin
