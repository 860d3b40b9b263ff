// The process-wide table of class-object classes. Two classes are built in with fixed
// ids; every other class gets the next free id from FIRST_REGISTERED_CLASS_ID up. All
// functions are safe to call from several threads.
#pragma once

#include <ocos/COSClass.hpp>

#include <matrix/oxArray.hpp>

#include <string>
#include <string_view>

namespace ocos {

// The class of objects the execution engine supports as values.
inline constexpr oxClassID LXE_OBJECT_CLASS_ID = static_cast<oxClassID>(18);
inline constexpr std::string_view LXE_OBJECT_CLASS_NAME = "LxeObject";
// The host string class.
inline constexpr oxClassID STRING_CLASS_ID = static_cast<oxClassID>(19);
inline constexpr std::string_view STRING_CLASS_NAME = "string";
inline constexpr oxClassID FIRST_REGISTERED_CLASS_ID = static_cast<oxClassID>(20);

// The class of that name, created with the next free id if there is none yet, so that
// modules started more than once see the same class. An empty name throws
// std::invalid_argument; running out of class ids throws std::length_error.
COSClass& registerClass(const std::string& name);

// Null when no class has that name or id.
COSClass* findClass(std::string_view name);
COSClass* findClass(oxClassID id);

} // namespace ocos
