// The four value operators. A handle is a plain number here: destroying it does not close it.
//
// SPDX-License-Identifier: MIT
#include "variant/value_operators.h"

#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace rgen::variant_private {

template <typename T>
void VariantValueOperator<T>::destroy(void* storage) const noexcept {
    std::destroy_at(std::launder(static_cast<T*>(storage)));
}

template <typename T>
void VariantValueOperator<T>::copy(void* destination, const void* source) const {
    ::new (destination) T(*std::launder(static_cast<const T*>(source)));
}

template <typename T>
void VariantValueOperator<T>::move(void* destination, void* source) const noexcept {
    T& value = *std::launder(static_cast<T*>(source));
    ::new (destination) T(std::move(value));
    if constexpr (std::is_class_v<T>) value.clear();
}

template class VariantValueOperator<std::string>;
template class VariantValueOperator<std::int64_t>;
template class VariantValueOperator<std::vector<std::uint8_t>>;
template class VariantValueOperator<void*>;

}  // namespace rgen::variant_private
