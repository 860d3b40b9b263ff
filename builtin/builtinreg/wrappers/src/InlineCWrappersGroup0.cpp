// Group 0 of the three-argument-index thunks (see InlineCThunk.hpp).
#include "ThreeIndexGroup.hpp"

template const Velloc::builtin::builtinreg::detail::ThreeIndexGroup&
Velloc::builtin::builtinreg::detail::threeIndexGroup<0>() noexcept;
