// The service that takes the registrations of execution-engine object classes.
#pragma once

#include <lxe/LxeFunctionDescriptor.hpp>
#include <lxe/LxeObjectDefaultIndexingMethods.hpp>
#include <matrix/oxArray.hpp>

#include <boost/range/iterator_range.hpp>

#include <cstddef>
#include <string>

namespace Velloc::builtin {

class ILxeObjectRegister {
public:
    virtual ~ILxeObjectRegister();

    // Registers the C++ class variant variantId as an engine object of the class; flag is
    // the yes/no attribute the variant's argument types carry (false when not given).
    virtual void registerLxeObject(oxClassID classId, std::size_t variantId) = 0;
    virtual void registerLxeObject(oxClassID classId, std::size_t variantId, bool flag) = 0;

    // The methods through which the engine indexes objects of the variant.
    virtual void registerLxeObjectDefaultIndexingMethods(oxClassID classId, std::size_t variantId, bool flag,
                                                         const Velloc::lxe::LxeObjectDefaultIndexingMethods& methods) = 0;
    // Indexing variants compiled for particular index types, which the engine may call
    // instead of the default methods.
    virtual void registerParenReferenceVariant(oxClassID classId, std::size_t variantId,
                                               const Velloc::lxe::LxeFunctionDescriptor& first,
                                               const Velloc::lxe::LxeFunctionDescriptor& second, std::string name,
                                               boost::iterator_range<std::string*> names) = 0;
    virtual void registerParenAssignVariant(oxClassID classId, std::size_t variantId,
                                            const Velloc::lxe::LxeFunctionDescriptor& first,
                                            const Velloc::lxe::LxeFunctionDescriptor& second, std::string name,
                                            boost::iterator_range<std::string*> names, bool flag) = 0;
};

} // namespace Velloc::builtin
