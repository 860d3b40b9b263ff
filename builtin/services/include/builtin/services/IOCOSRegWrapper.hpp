// The service through which the framework reaches the host class-object system.
#pragma once

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

    // The class id of the array, class-object classes included.
    oxClassID getClassID(const oxArray* array) const;
};

} // namespace Velloc::builtin
