#include "VariantSamples.hpp"

#include <builtin/Parameter.hpp>

#include <lxe/LxeFunctionDescriptor.hpp>

#include <array>
#include <memory>

namespace samples {

namespace types = Velloc::builtin::types;
using B = BuiltinVariant;

namespace {

Velloc::builtin::Parameter neverCalled(const Velloc::lxe::LxeFunctionDescriptor&,
                                       Velloc::lxe::ILxeBuiltinEnvironment&, bool&,
                                       const Velloc::builtin::Parameter*) {
    return {};
}

} // namespace

ArgType scalar(oxClassID id, bool complex) {
    return types::NumericScalarTypes(id, complex ? types::NumericScalarTypes::Complexity::COMPLEX
                                                 : types::NumericScalarTypes::Complexity::NOT_COMPLEX);
}

ArgType anyArray() {
    types::OxArrayTypes open = types::OxArrayTypes::fullyOpen();
    open.setSignatureTolerance(types::SignatureTolerance::RELAXED);
    return open;
}

ArgType doubleArrayAnyShape() {
    return types::asElementWiseArrayType(scalar(oxDOUBLE_CLASS));
}

BuiltinVariant variant(std::vector<ArgType> inputs, std::vector<ArgType> outputs, Behaviour behaviour,
                       std::string name) {
    const auto convention = behaviour.warns || behaviour.throws ? Velloc::lxe::CanThrow : Velloc::lxe::Plain;
    return BuiltinVariant(nullptr, Velloc::lxe::LxeFunctionDescriptor(&neverCalled, nullptr, convention),
                          std::move(inputs), std::move(outputs), B::CallsIntoOrvex{behaviour.callsIntoOrvex},
                          B::HasWarnings{behaviour.warns}, B::HasExceptions{behaviour.throws},
                          B::HasSideEffects{behaviour.sideEffects}, name, "f", "", B::IsElementWise{behaviour.elementWise});
}

BuiltinVariant boxingOf(const BuiltinVariant& original, std::vector<ArgType> inputs) {
    BuiltinVariant boxed = original;
    boxed.originalVariant = std::make_shared<const BuiltinVariant>(original);
    boxed.inputArgTypes = std::move(inputs);
    boxed.inputTypes = Velloc::builtin::builtinreg::detail::typeTexts(boxed.inputArgTypes, types::ArgTypeDirection::INPUT);
    boxed.lxeSupportLevel = Velloc::builtin::builtinreg::detail::supportLevelOfTypes(LxeSupportLevel::EQUIVALENT_SUPPORT, boxed);
    return boxed;
}

void Call::add(oxArray* array) {
    owned.emplace_back(array);
    handles.push_back(array);
}

oxArray* doubles(std::size_t rows, std::size_t cols) {
    const std::array<std::size_t, 2> dims{rows, cols};
    oxArray* array = matrix::detail::do_create_uninitnumeric(dims, oxDOUBLE_CLASS, oxREAL);
    for (std::size_t i = 0; i < rows * cols; ++i) {
        matrix::getTypedData<double>(array)[i] = static_cast<double>(i);
    }
    return array;
}

} // namespace samples
