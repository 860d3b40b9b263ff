// The indexing a C++ class variant of engine objects provides for the engine's generic
// paths: object(i, ...) as a value and object(i, ...) = value.
#pragma once

#include <lxe/LxeObjectFwd.hpp>

#include <cstddef>
#include <span>

struct oxArray;

namespace Velloc::lxe {

using IndexArrays = std::span<const oxArray* const>;

struct LxeObjectDefaultIndexingMethods {
    // A new array owned by the caller. Bad indices throw.
    using ParenReference = oxArray* (*)(const LxeObject& object, IndexArrays indices);
    // Changes the object in place; engine objects are handles. Bad indices or values throw.
    using ParenAssign = void (*)(LxeObject& object, IndexArrays indices, const oxArray* value);
    // What `end` stands for in an index and what numel answers.
    using NumberOfElements = std::size_t (*)(const LxeObject& object);

    ParenReference parenReference = nullptr;
    ParenAssign parenAssign = nullptr;
    NumberOfElements numberOfElements = nullptr;

    friend bool operator==(const LxeObjectDefaultIndexingMethods&, const LxeObjectDefaultIndexingMethods&) = default;
};

} // namespace Velloc::lxe
