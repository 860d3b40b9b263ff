// Applies a scalar unary function to every element of an array: out[i] = f(a[i]), over
// the same kind of functor and kernel as the binary loops (see MflBinaryLoops.hpp).
#pragma once

#include <builtin/builtinreg/MflBinaryLoops.hpp>

#include <cstddef>

namespace Velloc::builtin::builtinreg::detail::mfl_unary {

// Serial on the calling thread when serial is true, otherwise a parallel_for whose
// chunks have at least grain elements.
template <class F, class R, class A>
void unaryOpLoop(const A* a, R* out, std::size_t n, bool serial, std::size_t grain, const F& f) {
    f.withKernel([&](const auto& kernel) {
        mfl_binary::runChunks(n, serial, grain, [&](std::size_t begin, std::size_t end) noexcept {
            auto k = kernel;
            forEachIndex(begin, end, [&](std::size_t i) { out[i] = k(a[i]); });
            k.finish();
        });
    });
}

} // namespace Velloc::builtin::builtinreg::detail::mfl_unary
