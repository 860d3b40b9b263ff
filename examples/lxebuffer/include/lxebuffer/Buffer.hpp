// A growable buffer of doubles that the language sees as objects of a class-object class
// ("lxebuffer.Buffer", as the module's manifest declares). A buffer is a handle: every
// array holding it sees the same values. All members are safe to call from several
// threads.
#pragma once

#include <builtin/lxeobject/CppLxeObjectImpl.hpp>
#include <builtin/lxeobject/LxeObjectID.hpp>

#include <matrix/oxArray.hpp>

#include <boost/intrusive_ptr.hpp>

#include <cstddef>
#include <mutex>
#include <span>
#include <vector>

namespace lxebuffer {

class Buffer final : public Velloc::builtin::lxeobject::CppLxeObjectImpl<Buffer> {
public:
    // Class name and variant id come from the manifest when the module starts.
    static inline Velloc::builtin::builtinreg::LxeObjectId lxeObjectId;

    static boost::intrusive_ptr<Buffer> create(std::span<const double> values = {});

    void append(double value);
    void append(std::span<const double> values);
    // Zero-based; an index past the end throws std::out_of_range.
    double at(std::size_t index) const;
    // Zero-based; an index past the end grows the buffer, filling the gap with zeros.
    void set(std::size_t index, double value);
    std::size_t size() const;
    std::vector<double> values() const;

    // A new 1-by-1 array of the buffer's class holding the buffer; null when the
    // class-object service is missing.
    static oxArray* toOxArray(boost::intrusive_ptr<Buffer> buffer);
    // The buffer an array holds; std::invalid_argument for any other array.
    static Buffer* fromOxArray(const oxArray* array);

private:
    explicit Buffer(std::span<const double> values) : values_(values.begin(), values.end()) {}

    mutable std::mutex mutex_;
    std::vector<double> values_;
};

} // namespace lxebuffer
