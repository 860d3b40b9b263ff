// Methods through which a class-object class tells the language how to treat its
// objects, found by name among its public methods.
#pragma once

#include <ocos/COSClass.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace ocos {

// The constructor: a static method named as the last part of the class name, so that
// Counter(5) makes an object of the class "counter.Counter".
std::string constructorName(std::string_view className);
// display(object): the char row that shows the object.
inline constexpr std::string_view DISPLAY_METHOD = "display";
// getProperty(object, name): the value of object.name, the name given as a char row.
inline constexpr std::string_view PROPERTY_METHOD = "getProperty";

// The public method of that name with the given kind (static or not); none otherwise.
std::optional<COSMethod> findSpecialMethod(const COSClass& cls, std::string_view name, bool isStatic);

} // namespace ocos
