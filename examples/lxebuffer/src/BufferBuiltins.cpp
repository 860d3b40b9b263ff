// Builtins beside the class, in the same bundle: they take buffers as typed parameters
// (const Buffer*), which compiled callers pass as objects and interpreted calls as
// arrays of the buffer class; any other argument gets the no-match report.
#include "BufferClass.hpp"

#include <lxebuffer/Buffer.hpp>

#include <builtin/builtinreg/MakeVariant.hpp>

#include <numeric>
#include <vector>

namespace lxebuffer {

namespace {

using namespace Velloc::builtin::builtinreg;

// total(buffer): the sum of its elements.
double total(const Buffer* buffer) {
    const std::vector<double> values = buffer->values();
    return std::accumulate(values.begin(), values.end(), 0.0);
}

// The lists are made when first asked for, after the class is registered.
const BuiltinVariantLists& totalLists() {
    static const BuiltinVariantLists lists{makeVariants<&total>("total")};
    return lists;
}

} // namespace

const Velloc::builtin::BuiltinFcn& totalBuiltin() {
    static const RegisteredBuiltin builtin("total", "lxebuffer", "the sum of a buffer's elements", totalLists(),
                                           noDefaultImplementation("total"));
    return builtin;
}

} // namespace lxebuffer
