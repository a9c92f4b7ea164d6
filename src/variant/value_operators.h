// One stateless operator object for each kind of value: it destroys, copies and moves a value in
// place for code that does not know the kind at compile time.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace rgen::variant_private {

/// Works on raw storage that is large enough for any kind. No virtual destructor: the instances are
/// never deleted.
class IVariantValueOperator {
public:
    virtual void destroy(void* storage) const noexcept = 0;
    /// Constructs a copy of the value in `source` in the empty `destination`.
    virtual void copy(void* destination, const void* source) const = 0;
    /// Moves the value of `source` into the empty `destination`; `source` then contains an empty
    /// value and must still be destroyed.
    virtual void move(void* destination, void* source) const noexcept = 0;

protected:
    constexpr IVariantValueOperator() = default;
    ~IVariantValueOperator() = default;
};

template <typename T>
class VariantValueOperator final : public IVariantValueOperator {
public:
    constexpr VariantValueOperator() = default;
    void destroy(void* storage) const noexcept override;
    void copy(void* destination, const void* source) const override;
    void move(void* destination, void* source) const noexcept override;
};

template <typename T>
inline constexpr VariantValueOperator<T> valueOperatorFor;

extern template class VariantValueOperator<std::string>;
extern template class VariantValueOperator<std::int64_t>;
extern template class VariantValueOperator<std::vector<std::uint8_t>>;
extern template class VariantValueOperator<void*>;

}  // namespace rgen::variant_private
