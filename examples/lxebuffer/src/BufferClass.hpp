// The language-side behaviour of buffers: indexing with one-based indices, the methods
// of the class and the builtins that take buffers, as the module registers them when it
// starts.
#pragma once

#include <builtin/BuiltinFcn.hpp>

#include <lxe/LxeObjectDefaultIndexingMethods.hpp>
#include <ocos/COSClass.hpp>

#include <string>

namespace lxebuffer {

// buffer(i) reads elements, buffer(i) = v writes them (growing the buffer), numel(buffer)
// is its size. Indices are double arrays of positive integers.
Velloc::lxe::LxeObjectDefaultIndexingMethods bufferIndexing();

// Adds create and the constructor Buffer (static), append, size, values, display and
// getProperty to the class, with a finder that knows their code.
void addBufferMethods(ocos::COSClass& cls);

// total(buffer), published as the library "lxebuffer"; made once the class is registered.
const Velloc::builtin::BuiltinFcn& totalBuiltin();

} // namespace lxebuffer
