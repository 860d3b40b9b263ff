// An immutable array whose copies share one reference-counted block. Variants are copied
// into several lists and read from many threads; what a copy repeats (argument types and
// their texts) is held once this way, so a copy costs one atomic increment. The handle
// keeps the data pointer and the size itself, so reading an element costs what reading a
// vector's does.
#pragma once

#include <algorithm>
#include <atomic>
#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <new>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Velloc::builtin {

template <class T>
class SharedArray {
public:
    using value_type = T;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using reference = const T&;
    using const_reference = const T&;
    using iterator = const T*;
    using const_iterator = const T*;

    SharedArray() noexcept = default;
    // The elements are moved into the block; the vector keeps moved-from elements.
    SharedArray(std::vector<T>&& items) { fill(items.size(), std::make_move_iterator(items.begin())); }
    SharedArray(const std::vector<T>& items) { fill(items.size(), items.begin()); }
    SharedArray(std::initializer_list<T> items) { fill(items.size(), items.begin()); }
    template <class It>
        requires std::derived_from<typename std::iterator_traits<It>::iterator_category, std::forward_iterator_tag>
    SharedArray(It first, It last) {
        fill(static_cast<std::size_t>(std::distance(first, last)), first);
    }

    SharedArray(const SharedArray& other) noexcept : data_(other.data_), size_(other.size_) {
        if (data_ != nullptr) {
            header()->references.fetch_add(1, std::memory_order_relaxed);
        }
    }
    SharedArray(SharedArray&& other) noexcept
        : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)) {}
    SharedArray& operator=(SharedArray other) noexcept {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
        return *this;
    }
    ~SharedArray() { release(); }

    std::size_t size() const noexcept { return size_; }
    bool empty() const noexcept { return size_ == 0; }
    const T* data() const noexcept { return data_; }
    const T* begin() const noexcept { return data_; }
    const T* end() const noexcept { return data_ + size_; }
    const T* cbegin() const noexcept { return data_; }
    const T* cend() const noexcept { return data_ + size_; }
    const T& operator[](std::size_t i) const noexcept { return data_[i]; }
    const T& at(std::size_t i) const {
        if (i >= size_) {
            throw std::out_of_range("SharedArray::at");
        }
        return data_[i];
    }

    friend bool operator==(const SharedArray& a, const SharedArray& b)
        requires std::equality_comparable<T>
    {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }

private:
    // Aligned for the elements that follow it in the same block.
    struct alignas(std::max(alignof(T), alignof(std::atomic<std::size_t>))) Header {
        std::atomic<std::size_t> references{1};
    };
    static_assert(alignof(Header) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);

    Header* header() const noexcept { return reinterpret_cast<Header*>(data_) - 1; }

    template <class It>
    void fill(std::size_t count, It source) {
        if (count == 0) {
            return;
        }
        void* block = ::operator new(sizeof(Header) + count * sizeof(T));
        Header* header = ::new (block) Header;
        T* items = reinterpret_cast<T*>(header + 1);
        std::size_t built = 0;
        try {
            for (; built < count; ++built, ++source) {
                ::new (static_cast<void*>(items + built)) T(*source);
            }
        } catch (...) {
            std::destroy_n(items, built);
            header->~Header();
            ::operator delete(block);
            throw;
        }
        data_ = items;
        size_ = count;
    }

    void release() noexcept {
        if (data_ == nullptr || header()->references.fetch_sub(1, std::memory_order_acq_rel) != 1) {
            return;
        }
        Header* last = header();
        std::destroy_n(data_, size_);
        last->~Header();
        ::operator delete(static_cast<void*>(last));
    }

    T* data_ = nullptr;
    std::size_t size_ = 0;
};

} // namespace Velloc::builtin
