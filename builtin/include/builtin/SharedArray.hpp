// An array whose copies share one reference-counted block until one of them is changed: a
// vector with copy on write. Variants are copied into several lists and read from many
// threads; what a copy repeats (argument types and their texts) is held once this way, so
// a copy costs one atomic increment. The handle keeps the data pointer and the size itself,
// so reading an element costs what reading a vector's does.
//
// It reads and writes as a std::vector<T>: the same member types, element access,
// iterators, capacity and modifiers (push_back, emplace_back, pop_back, insert, emplace,
// erase, resize, reserve, clear, assign, swap), assignment from and comparison with a
// std::vector, and conversion to one. A modifier first gives the handle a block of its own
// when the block is shared (or too small), so changing one copy never shows in another.
// Two differences: elements are read-only in place (operator[], front(), iterators give
// const references, so that reading a shared block never copies it; change an element by
// erasing and inserting, or by assigning a vector), and a handle is 16 bytes.
//
// Thread safety is a vector's: copies may be made, read and dropped on any threads at
// once, while a handle being changed must not be used by another thread meanwhile.
#pragma once

#include <algorithm>
#include <atomic>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>
#include <type_traits>
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
    using pointer = const T*;
    using const_pointer = const T*;
    using iterator = const T*;
    using const_iterator = const T*;
    using reverse_iterator = std::reverse_iterator<const T*>;
    using const_reverse_iterator = std::reverse_iterator<const T*>;

    SharedArray() noexcept = default;
    // The elements are moved into the block; the vector keeps moved-from elements.
    SharedArray(std::vector<T>&& items) { fill(items.size(), std::make_move_iterator(items.begin())); }
    SharedArray(const std::vector<T>& items) { fill(items.size(), items.begin()); }
    // From a vector of another element type that makes these elements (texts from strings).
    template <class U>
        requires(!std::same_as<U, T> && std::constructible_from<T, const U&>)
    SharedArray(const std::vector<U>& items) {
        fill(items.size(), items.begin());
    }
    SharedArray(std::initializer_list<T> items) { fill(items.size(), items.begin()); }
    template <class It>
        requires std::derived_from<typename std::iterator_traits<It>::iterator_category, std::forward_iterator_tag>
    SharedArray(It first, It last) {
        fill(static_cast<std::size_t>(std::distance(first, last)), first);
    }
    explicit SharedArray(size_type count)
        requires std::default_initializable<T>
    {
        reserve(count);
        while (size_ < count) {
            emplace_back();
        }
    }
    SharedArray(size_type count, const T& value) { fill(count, RepeatIterator{&value, 0}); }

    SharedArray(const SharedArray& other) noexcept : data_(other.data_), size_(other.size_) {
        if (data_ != nullptr) {
            header()->references.fetch_add(1, std::memory_order_relaxed);
        }
    }
    SharedArray(SharedArray&& other) noexcept
        : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)) {}
    // Also assigns vectors and braced lists, which convert first.
    SharedArray& operator=(SharedArray other) noexcept {
        swap(other);
        return *this;
    }
    ~SharedArray() { release(); }

    // A vector of the elements, or of what they convert to (strings from texts).
    template <class U>
        requires std::constructible_from<U, const T&>
    operator std::vector<U>() const {
        return std::vector<U>(begin(), end());
    }

    // Element access, read-only.
    const T& operator[](size_type i) const noexcept { return data_[i]; }
    const T& at(size_type i) const {
        if (i >= size_) {
            throw std::out_of_range("SharedArray::at");
        }
        return data_[i];
    }
    const T& front() const noexcept { return data_[0]; }
    const T& back() const noexcept { return data_[size_ - 1]; }
    const T* data() const noexcept { return data_; }

    const T* begin() const noexcept { return data_; }
    const T* end() const noexcept { return data_ + size_; }
    const T* cbegin() const noexcept { return data_; }
    const T* cend() const noexcept { return data_ + size_; }
    const_reverse_iterator rbegin() const noexcept { return const_reverse_iterator(end()); }
    const_reverse_iterator rend() const noexcept { return const_reverse_iterator(begin()); }
    const_reverse_iterator crbegin() const noexcept { return rbegin(); }
    const_reverse_iterator crend() const noexcept { return rend(); }

    // Capacity. The capacity is the block's, which copies share.
    size_type size() const noexcept { return size_; }
    bool empty() const noexcept { return size_ == 0; }
    static constexpr size_type max_size() noexcept {
        return std::min<size_type>(std::numeric_limits<std::uint32_t>::max(),
                                   (std::numeric_limits<size_type>::max() - sizeof(Header)) / sizeof(T));
    }
    size_type capacity() const noexcept { return data_ != nullptr ? header()->capacity : 0; }
    void reserve(size_type count) {
        if (count > capacity()) {
            rebuild(count, size_, 0, 0, [](T*) {});
        }
    }
    // Only a block this handle holds alone is shrunk; a shared one is left to its copies.
    void shrink_to_fit() {
        if (owned() && capacity() > size_) {
            rebuild(size_, size_, 0, 0, [](T*) {});
        }
    }

    // Modifiers: each changes this handle's elements only.
    void clear() noexcept {
        if (owned()) {
            std::destroy_n(data_, size_);
            size_ = 0;
        } else {
            release();
            data_ = nullptr;
            size_ = 0;
        }
    }
    void push_back(const T& value) { emplace_back(value); }
    void push_back(T&& value) { emplace_back(std::move(value)); }
    template <class... Args>
    const T& emplace_back(Args&&... args) {
        if (owned() && size_ < capacity()) {
            ::new (static_cast<void*>(data_ + size_)) T(std::forward<Args>(args)...);
            ++size_;
        } else {
            rebuild(grownCapacity(size_ + 1), size_, 0, 1,
                    [&](T* at) { ::new (static_cast<void*>(at)) T(std::forward<Args>(args)...); });
        }
        return back();
    }
    void pop_back() {
        if (owned()) {
            --size_;
            std::destroy_at(data_ + size_);
        } else {
            rebuild(size_ - 1, size_ - 1, 1, 0, [](T*) {});
        }
    }
    template <class... Args>
    const T* emplace(const T* position, Args&&... args) {
        const auto at = static_cast<size_type>(position - begin());
        if (at == size_) {
            emplace_back(std::forward<Args>(args)...);
        } else if (owned() && size_ < capacity()) {
            T made(std::forward<Args>(args)...);
            ::new (static_cast<void*>(data_ + size_)) T(std::move(data_[size_ - 1]));
            ++size_;
            std::move_backward(data_ + at, data_ + size_ - 2, data_ + size_ - 1);
            data_[at] = std::move(made);
        } else {
            rebuild(grownCapacity(size_ + 1), at, 0, 1,
                    [&](T* slot) { ::new (static_cast<void*>(slot)) T(std::forward<Args>(args)...); });
        }
        return begin() + at;
    }
    const T* insert(const T* position, const T& value) { return emplace(position, value); }
    const T* insert(const T* position, T&& value) { return emplace(position, std::move(value)); }
    const T* insert(const T* position, size_type count, const T& value) {
        return insertRange(position, count, RepeatIterator{&value, 0});
    }
    template <class It>
        requires std::derived_from<typename std::iterator_traits<It>::iterator_category, std::forward_iterator_tag>
    const T* insert(const T* position, It first, It last) {
        return insertRange(position, static_cast<size_type>(std::distance(first, last)), first);
    }
    const T* insert(const T* position, std::initializer_list<T> items) {
        return insertRange(position, items.size(), items.begin());
    }
    const T* erase(const T* position) { return erase(position, position + 1); }
    const T* erase(const T* first, const T* last) {
        const auto at = static_cast<size_type>(first - begin());
        const auto count = static_cast<size_type>(last - first);
        if (count == 0) {
            return begin() + at;
        }
        if (owned()) {
            std::move(data_ + at + count, data_ + size_, data_ + at);
            std::destroy(data_ + size_ - count, data_ + size_);
            size_ -= count;
        } else {
            rebuild(size_ - count, at, count, 0, [](T*) {});
        }
        return begin() + at;
    }
    void resize(size_type count)
        requires std::default_initializable<T>
    {
        if (count < size_) {
            erase(begin() + count, end());
            return;
        }
        reserve(count);
        while (size_ < count) {
            emplace_back();
        }
    }
    void resize(size_type count, const T& value) {
        if (count < size_) {
            erase(begin() + count, end());
        } else {
            insert(end(), count - size_, value);
        }
    }
    void assign(size_type count, const T& value) { *this = SharedArray(count, value); }
    template <class It>
        requires std::derived_from<typename std::iterator_traits<It>::iterator_category, std::forward_iterator_tag>
    void assign(It first, It last) {
        *this = SharedArray(first, last);
    }
    void assign(std::initializer_list<T> items) { *this = SharedArray(items); }
    void swap(SharedArray& other) noexcept {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
    }
    friend void swap(SharedArray& a, SharedArray& b) noexcept { a.swap(b); }

    friend bool operator==(const SharedArray& a, const SharedArray& b)
        requires std::equality_comparable<T>
    {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }
    // Element by element against a vector, of these elements or of ones they compare with
    // (texts against strings).
    template <class U>
        requires requires(const T& t, const U& u) {
            { t == u } -> std::convertible_to<bool>;
        }
    friend bool operator==(const SharedArray& a, const std::vector<U>& b) {
        return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                          [](const T& t, const U& u) { return static_cast<bool>(t == u); });
    }

private:
    // Before the elements in the same block, aligned for them. 32-bit counts keep it at
    // 8 bytes: a block would need more copies than a process has memory for to overflow.
    struct alignas(std::max(alignof(T), alignof(std::uint64_t))) Header {
        std::atomic<std::uint32_t> references{1};
        std::uint32_t capacity = 0;
    };
    static_assert(alignof(Header) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);

    // count copies of one value, as a forward iterator for fill and insertRange.
    struct RepeatIterator {
        using iterator_category = std::forward_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = const T*;
        using reference = const T&;
        const T* value;
        std::size_t index;
        const T& operator*() const noexcept { return *value; }
        RepeatIterator& operator++() noexcept {
            ++index;
            return *this;
        }
        RepeatIterator operator++(int) noexcept { return {value, index++}; }
        friend bool operator==(const RepeatIterator&, const RepeatIterator&) = default;
    };

    Header* header() const noexcept { return reinterpret_cast<Header*>(data_) - 1; }

    // True when this handle holds the block alone and may change it in place. The acquire
    // pairs with the release of the last other copy, whose reads come before the changes.
    bool owned() const noexcept {
        return data_ != nullptr && header()->references.load(std::memory_order_acquire) == 1;
    }

    size_type grownCapacity(size_type needed) const {
        if (needed > max_size()) {
            throw std::length_error("SharedArray: too many elements");
        }
        return std::max(needed, std::min(max_size(), std::max<size_type>(2 * size_, 4)));
    }

    static T* allocate(size_type capacity) {
        if (capacity > max_size()) {
            throw std::length_error("SharedArray: too many elements");
        }
        void* block = ::operator new(sizeof(Header) + capacity * sizeof(T));
        Header* header = ::new (block) Header;
        header->capacity = static_cast<std::uint32_t>(capacity);
        return reinterpret_cast<T*>(header + 1);
    }

    static void deallocate(T* items) noexcept {
        Header* header = reinterpret_cast<Header*>(items) - 1;
        header->~Header();
        ::operator delete(static_cast<void*>(header));
    }

    template <class It>
    void fill(std::size_t count, It source) {
        if (count == 0) {
            return;
        }
        T* items = allocate(count);
        std::size_t built = 0;
        try {
            for (; built < count; ++built, ++source) {
                ::new (static_cast<void*>(items + built)) T(*source);
            }
        } catch (...) {
            std::destroy_n(items, built);
            deallocate(items);
            throw;
        }
        data_ = items;
        size_ = count;
    }

    // Moves this handle to a new block of the given capacity (at least the new size) that
    // holds, in order: the elements before at, count elements that make constructs one by
    // one in their places, and the elements from at + skip on. The new elements are made
    // first, so they may be made from elements of the old block. The old elements are moved
    // when this handle held the block alone (and moving cannot throw), else copied; the old
    // block is then released. If anything throws, this handle is as it was.
    template <class Make>
    void rebuild(size_type capacity, size_type at, size_type skip, size_type count, Make&& make) {
        const size_type newSize = size_ - skip + count;
        if (newSize == 0) {
            release();
            data_ = nullptr;
            size_ = 0;
            return;
        }
        T* items = allocate(std::max(capacity, newSize));
        const bool move = owned() && std::is_nothrow_move_constructible_v<T>;
        size_type madeNew = 0;
        size_type madePrefix = 0;
        size_type madeSuffix = 0;
        try {
            for (; madeNew < count; ++madeNew) {
                make(items + at + madeNew);
            }
            for (; madePrefix < at; ++madePrefix) {
                relocate(items + madePrefix, data_[madePrefix], move);
            }
            for (size_type from = at + skip; from < size_; ++from, ++madeSuffix) {
                relocate(items + at + count + madeSuffix, data_[from], move);
            }
        } catch (...) {
            std::destroy_n(items + at, madeNew);
            std::destroy_n(items, madePrefix);
            std::destroy_n(items + at + count, madeSuffix);
            deallocate(items);
            throw;
        }
        release();
        data_ = items;
        size_ = newSize;
    }

    static void relocate(T* to, T& from, bool move) {
        if constexpr (std::is_nothrow_move_constructible_v<T>) {
            if (move) {
                ::new (static_cast<void*>(to)) T(std::move(from));
                return;
            }
        }
        ::new (static_cast<void*>(to)) T(std::as_const(from));
    }

    template <class It>
    const T* insertRange(const T* position, size_type count, It first) {
        const auto at = static_cast<size_type>(position - begin());
        if (count > 0) {
            if (count > max_size() - size_) {
                throw std::length_error("SharedArray: too many elements");
            }
            rebuild(owned() ? grownCapacity(size_ + count) : size_ + count, at, 0, count,
                    [&](T* slot) { ::new (static_cast<void*>(slot)) T(*first++); });
        }
        return begin() + at;
    }

    void release() noexcept {
        if (data_ == nullptr || header()->references.fetch_sub(1, std::memory_order_acq_rel) != 1) {
            return;
        }
        std::destroy_n(data_, size_);
        deallocate(data_);
    }

    T* data_ = nullptr;
    std::size_t size_ = 0;
};

} // namespace Velloc::builtin
