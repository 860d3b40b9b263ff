// Process-wide tables that keep engine-object ids consistent: variant ids handed out per
// class-object class, the classes known to hold engine objects, and the (C++ class,
// variant id) pairs already checked against their manifests. Each table has its own
// mutex, none is held while another is taken, and all live until the process exits.
#pragma once

#include <matrix/oxArray.hpp>

#include <cstddef>
#include <functional>
#include <string>
#include <typeinfo>
#include <utility>

namespace Velloc::builtin::types::detail {

// The next variant id of the class: 0 on the first call for a class, then one more on
// each call.
std::size_t getNextCppClassVariant(oxClassID classId);

// Hooks of the check that a class has the same id in every language instance: this
// library resolves no class by them (getLxeObjectClassID answers oxUNKNOWN_CLASS and
// registerLxeObject records nothing).
oxClassID getLxeObjectClassID(const char* name);
void registerLxeObject(std::pair<oxClassID, std::size_t> classAndVariant);

// When diagnostics are armed and getLxeObjectClassID(name) is not classId, ends the
// process with "The oxClassID of LxeObjects should be consistent across all ovm
// instances."
void assertLxeObjectHasExpectedClassID(oxClassID classId, const std::string& name);

} // namespace Velloc::builtin::types::detail

namespace Velloc::builtin::builtinreg {

bool isAKnownLxeObject(const oxClassID& classId);
// True when the class was not known yet.
bool addAsKnownLxeObject(const oxClassID& classId);

namespace detail {

// Checks, once per (C++ class, variant id), that the variant id compiled into the class is
// the one its manifest declares, which manifestVariantId reads. A mismatch ends the
// process naming both values. What manifestVariantId throws propagates, and the pair
// counts as checked.
void assertLxeVariantIdMatches(std::size_t variantId, const std::function<std::size_t()>& manifestVariantId,
                               const std::type_info& cppClass);

} // namespace detail

} // namespace Velloc::builtin::builtinreg
