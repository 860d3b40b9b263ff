// The service that takes the registrations of execution-engine object classes.
#pragma once

#include <matrix/oxArray.hpp>

#include <cstddef>

namespace Velloc::builtin {

class ILxeObjectRegister {
public:
    virtual ~ILxeObjectRegister();

    // Registers the C++ class variant variantId as an engine object of the class.
    virtual void registerLxeObject(oxClassID classId, std::size_t variantId) = 0;
    virtual void registerLxeObject(oxClassID classId, std::size_t variantId, bool flag) = 0;
};

} // namespace Velloc::builtin
