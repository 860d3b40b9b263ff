// The record every inline-C wrapper returns: the index of the result's type in the
// wrapper type list, then the value in one 64-bit slot.
//
// A value of at most 8 bytes is stored bit for bit in the low-order bytes of the slot,
// the rest zero; a void result has the no-value tag and a zero slot. complex<double> is
// 16 bytes: the slot holds the address of a per-thread copy of it instead, which stays
// valid until the next complex<double> result on the same thread. That keeps the record
// two registers wide, so it is returned without memory traffic.
#pragma once

#include <builtin/builtinreg/InlineCTypeList.hpp>

#include <complex>
#include <cstdint>
#include <cstring>

namespace Velloc::builtin::builtinreg::detail {

struct InlineCResult {
    std::int32_t tag;
    std::uint64_t value;
};

static_assert(sizeof(InlineCResult) == 16);

// The per-thread place that complex<double> results are copied to.
std::complex<double>* complexDoubleResultStorage() noexcept;

template <class T>
inline InlineCResult packInlineCResult(const T& value) noexcept {
    static_assert(WRAPPER_TYPE_INDEX<T> < NO_VALUE_INDEX, "not a type of the inline-C wrapper list");
    InlineCResult record{static_cast<std::int32_t>(WRAPPER_TYPE_INDEX<T>), 0};
    if constexpr (std::is_same_v<T, std::complex<double>>) {
        std::complex<double>* storage = complexDoubleResultStorage();
        *storage = value;
        record.value = reinterpret_cast<std::uintptr_t>(storage);
    } else {
        static_assert(sizeof(T) <= sizeof(record.value));
        std::memcpy(&record.value, &value, sizeof(T));
    }
    return record;
}

// The value of a record whose tag is the index of T.
template <class T>
inline T readInlineCResult(const InlineCResult& record) noexcept {
    static_assert(WRAPPER_TYPE_INDEX<T> < NO_VALUE_INDEX, "not a type of the inline-C wrapper list");
    if constexpr (std::is_same_v<T, std::complex<double>>) {
        return *reinterpret_cast<const std::complex<double>*>(static_cast<std::uintptr_t>(record.value));
    } else {
        T value{};
        std::memcpy(static_cast<void*>(&value), &record.value, sizeof(T));
        return value;
    }
}

} // namespace Velloc::builtin::builtinreg::detail
