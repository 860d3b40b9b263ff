#include <lxebuffer/Buffer.hpp>

#include <builtin/lxeobject/LxeObjectBridge.hpp>

#include <stdexcept>
#include <string>

namespace lxebuffer {

boost::intrusive_ptr<Buffer> Buffer::create(std::span<const double> values) {
    return boost::intrusive_ptr<Buffer>(new Buffer(values));
}

void Buffer::append(double value) {
    const std::lock_guard lock(mutex_);
    values_.push_back(value);
}

void Buffer::append(std::span<const double> values) {
    const std::lock_guard lock(mutex_);
    values_.insert(values_.end(), values.begin(), values.end());
}

double Buffer::at(std::size_t index) const {
    const std::lock_guard lock(mutex_);
    if (index >= values_.size()) {
        throw std::out_of_range("index " + std::to_string(index + 1) + " is beyond the buffer's " +
                                std::to_string(values_.size()) + " elements");
    }
    return values_[index];
}

void Buffer::set(std::size_t index, double value) {
    const std::lock_guard lock(mutex_);
    if (index >= values_.size()) {
        values_.resize(index + 1, 0.0);
    }
    values_[index] = value;
}

std::size_t Buffer::size() const {
    const std::lock_guard lock(mutex_);
    return values_.size();
}

std::vector<double> Buffer::values() const {
    const std::lock_guard lock(mutex_);
    return values_;
}

oxArray* Buffer::toOxArray(boost::intrusive_ptr<Buffer> buffer) {
    Velloc::builtin::lxeobject::adoptManifestIdentity<Buffer>();
    return Velloc::builtin::lxeobject::toOxArray(std::move(buffer), lxeObjectId.getClassName());
}

Buffer* Buffer::fromOxArray(const oxArray* array) {
    auto* buffer = dynamic_cast<Buffer*>(Velloc::builtin::lxeobject::fromOxArray(array));
    if (buffer == nullptr) {
        throw std::invalid_argument("expected a buffer, not another engine object");
    }
    return buffer;
}

} // namespace lxebuffer
