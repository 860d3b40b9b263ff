// The execution engine's objects: C++ objects the engine hands to builtins as values of
// a class-object class. An object is shared by reference count (boost::intrusive_ptr);
// every class-object array holding it keeps one reference, so an object behaves as a
// handle: changes made through one array are seen through every other.
#pragma once

#include <lxe/LxeObjectFwd.hpp>

#include <boost/intrusive_ptr.hpp>

#include <atomic>
#include <cstddef>

namespace Velloc::lxe {

class LxeObject {
public:
    virtual ~LxeObject();

    // The name of the class-object class the object belongs to; never null.
    virtual const char* getOcosClassName() const noexcept = 0;
    // Which of the C++ classes exposed under that class this object is: it selects the
    // indexing methods the engine applies to the object.
    virtual std::size_t getCppClassVariantId() const noexcept = 0;

    std::size_t getReferenceCount() const noexcept { return references_.load(std::memory_order_relaxed); }

    friend void intrusive_ptr_add_ref(const LxeObject* object) noexcept {
        object->references_.fetch_add(1, std::memory_order_relaxed);
    }
    friend void intrusive_ptr_release(const LxeObject* object) noexcept {
        if (object->references_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            delete object;
        }
    }

protected:
    LxeObject() noexcept = default;
    // A copy is a new object: it starts without references.
    LxeObject(const LxeObject&) noexcept {}
    LxeObject& operator=(const LxeObject&) noexcept { return *this; }

private:
    mutable std::atomic<std::size_t> references_{0};
};

using LxeObjectPtr = boost::intrusive_ptr<LxeObject>;
using ConstLxeObjectPtr = boost::intrusive_ptr<const LxeObject>;

} // namespace Velloc::lxe
