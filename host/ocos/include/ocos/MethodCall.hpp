// Calling a method of a class-object class, as the host does for obj.method(...) and
// Class.method(...).
#pragma once

#include <ocos/COSClass.hpp>

#include <string_view>

namespace ocos {

// Calls the public method of the class in the host's calling form, with the code its
// class's finder gives for the method's implementation name. An instance method takes
// the object as prhs[0], which must be an array of the class; a static method takes only
// its arguments. A missing or non-public method, a missing object, or a method without
// code throws std::invalid_argument; what the method throws propagates.
void callMethod(const COSClass& cls, std::string_view name, int nlhs, oxArray** plhs, int nrhs, oxArray** prhs);

} // namespace ocos
