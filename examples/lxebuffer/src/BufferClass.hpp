// The language-side behaviour of buffers: indexing with one-based indices and the
// methods of the class, as the module registers them when it starts.
#pragma once

#include <lxe/LxeObjectDefaultIndexingMethods.hpp>
#include <ocos/COSClass.hpp>

#include <string>

namespace lxebuffer {

// buffer(i) reads elements, buffer(i) = v writes them (growing the buffer), numel(buffer)
// is its size. Indices are double arrays of positive integers.
Velloc::lxe::LxeObjectDefaultIndexingMethods bufferIndexing();

// Adds create (static), append, size and values to the class, with a finder that knows
// their code.
void addBufferMethods(ocos::COSClass& cls);

} // namespace lxebuffer
