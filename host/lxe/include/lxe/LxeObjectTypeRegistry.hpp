// The engine's record of the C++ class variants registered as engine objects of
// class-object classes: per class and variant id, the variant's flag, its default
// indexing methods and its optimised indexing variants. Records are never removed; a
// lookup returns a snapshot that later registrations do not change. All functions are
// safe to call from several threads.
#pragma once

#include <lxe/LxeFunctionDescriptor.hpp>
#include <lxe/LxeObjectDefaultIndexingMethods.hpp>

#include <matrix/oxArray.hpp>

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Velloc::lxe {

// An indexing variant compiled for particular index types, which the engine may call
// instead of the default methods.
struct OptimizedIndexingVariant {
    // The two entries the module gave, in its order.
    std::array<LxeFunctionDescriptor, 2> entries;
    std::string name;
    // The names the variant is specialised on.
    std::vector<std::string> names;
    // Only paren-assignment variants carry a flag; it is false for the others.
    bool flag = false;
};

struct LxeObjectType {
    oxClassID classId = oxUNKNOWN_CLASS;
    std::size_t variantId = 0;
    // The yes/no attribute the argument types of this variant carry.
    bool flag = false;
    std::optional<LxeObjectDefaultIndexingMethods> defaultIndexing;
    bool defaultIndexingFlag = false;
    std::vector<OptimizedIndexingVariant> parenReferenceVariants;
    std::vector<OptimizedIndexingVariant> parenAssignVariants;
};

// Each registration creates the record when it is missing. They return false, and record
// nothing, for an id that names no class, or names the string class, whose arrays hold
// strings and never engine objects.
bool registerLxeObjectType(oxClassID classId, std::size_t variantId, bool flag);
// Replaces the variant's default indexing methods.
bool registerDefaultIndexingMethods(oxClassID classId, std::size_t variantId, bool flag,
                                    const LxeObjectDefaultIndexingMethods& methods);
bool addParenReferenceVariant(oxClassID classId, std::size_t variantId, OptimizedIndexingVariant variant);
bool addParenAssignVariant(oxClassID classId, std::size_t variantId, OptimizedIndexingVariant variant);

// Null when the variant was never registered for the class.
std::shared_ptr<const LxeObjectType> findLxeObjectType(oxClassID classId, std::size_t variantId);

// Whether arrays of the class hold engine objects: the built-in engine-object class, and
// every class with a registered variant.
bool isLxeObjectClass(oxClassID classId);

} // namespace Velloc::lxe
