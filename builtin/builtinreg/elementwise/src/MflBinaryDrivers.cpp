#include <builtin/builtinreg/MflBinaryDrivers.hpp>
#include <builtin/builtinreg/MflBinaryLoops.hpp>

namespace Velloc::builtin::builtinreg::detail {

namespace {

template <class... T>
constexpr BinaryDriverTable<ElementTypes>::type makeBinaryDrivers(TypeList<T...>) {
    return {&mfl_binary::binaryOpDispatch<MflFunctor<T, T, T>, T, T, T>...};
}

} // namespace

const BinaryDriverTable<ElementTypes>::type mflBinaryDrivers = makeBinaryDrivers(ElementTypes{});

} // namespace Velloc::builtin::builtinreg::detail
