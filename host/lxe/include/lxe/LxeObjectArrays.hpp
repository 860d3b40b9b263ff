// Engine objects inside class-object arrays, and what the engine does with such arrays:
// index them through the default indexing methods of the object's class variant.
#pragma once

#include <lxe/LxeObject.hpp>
#include <lxe/LxeObjectDefaultIndexingMethods.hpp>

#include <matrix/oxArray.hpp>

#include <cstddef>

namespace Velloc::lxe {

// A new 1-by-1 array of the class holding the object, which keeps one reference to it.
// A null object, or a class whose arrays do not hold engine objects (isLxeObjectClass),
// throws std::invalid_argument.
oxArray* createLxeObjectArray(oxClassID classId, ConstLxeObjectPtr object);

// The object a scalar array of an engine-object class holds; null for every other array,
// a null handle included. The object is shared with every array that holds it, so it is
// handed out for change as well as for reading.
LxeObject* getLxeObject(const oxArray* array);

// object(indices...), object(indices...) = value and numel(object), through the default
// indexing methods registered for the object's class and variant. An array that holds no
// engine object, or whose variant has no such method, throws std::invalid_argument; what
// the method throws propagates.
oxArray* parenReference(const oxArray* object, IndexArrays indices);
void parenAssign(const oxArray* object, IndexArrays indices, const oxArray* value);
std::size_t numberOfElements(const oxArray* object);

} // namespace Velloc::lxe
