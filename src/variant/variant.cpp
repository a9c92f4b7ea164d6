// Variant and VariantValue: the operator of a kind copies and moves it, so no switch is needed.
//
// SPDX-License-Identifier: MIT
#include "variant/variant.h"

#include <utility>

#include "variant/hinted_convertors.h"

namespace rgen {

using hvariant_private::convertorFor;
using variant_private::IVariantValueOperator;
using variant_private::valueOperatorFor;

VariantValue::VariantValue(const VariantValue& other) {
    *this = other;
}

VariantValue::VariantValue(VariantValue&& other) noexcept {
    *this = std::move(other);
}

VariantValue& VariantValue::operator=(const VariantValue& other) {
    if (this == &other) return *this;
    reset();
    if (!other.hasValue) return *this;
    other.valueOperator->copy(storage.bytes, other.storage.bytes);
    setContent(other.kind, other.valueOperator);
    return *this;
}

VariantValue& VariantValue::operator=(VariantValue&& other) noexcept {
    if (this == &other) return *this;
    reset();
    if (!other.hasValue) return *this;
    other.valueOperator->move(storage.bytes, other.storage.bytes);
    setContent(other.kind, other.valueOperator);
    return *this;
}

VariantValue::~VariantValue() {
    reset();
}

void VariantValue::setContent(VariantKind newKind, const IVariantValueOperator* newOperator) {
    kind = newKind;
    valueOperator = newOperator;
    hasValue = true;
}

template <typename T>
VariantValue& VariantValue::hold(T value, VariantKind newKind) {
    reset();
    valueOperatorFor<T>.move(storage.bytes, &value);
    setContent(newKind, &valueOperatorFor<T>);
    return *this;
}

VariantValue& VariantValue::operator=(std::string text) {
    return hold(std::move(text), VariantKind::String);
}

VariantValue& VariantValue::operator=(ByteVector bytes) {
    return hold(std::move(bytes), VariantKind::ByteArray);
}

VariantValue& VariantValue::operator=(std::int64_t number) {
    return hold(number, VariantKind::Int64);
}

VariantValue& VariantValue::operator=(void* handle) {
    return hold(handle, VariantKind::Handle);
}

void VariantValue::reset() noexcept {
    if (!hasValue) return;
    valueOperator->destroy(storage.bytes);
    storage = VariantStorage();
    hasValue = false;
    valueOperator = nullptr;
}

template <typename T>
void Variant::construct(T newValue, VariantHint wantedHint) {
    if (!isKnownHint(wantedHint)) return;
    value = std::move(newValue);
    hint = wantedHint;
    convertor = &convertorFor<T>;
}

Variant::Variant(std::string text, VariantHint wantedHint) {
    construct(std::move(text), wantedHint);
}

Variant::Variant(ByteVector bytes, VariantHint wantedHint) {
    construct(std::move(bytes), wantedHint);
}

Variant::Variant(std::int64_t number, VariantHint wantedHint) {
    construct(number, wantedHint);
}

Variant& Variant::operator=(const Variant& other) {
    if (this == &other) return *this;
    value = other.value;
    // On purpose: hint and convertor are copied even if the source is empty.
    hint = other.hint;
    convertor = other.convertor;
    return *this;
}

Variant& Variant::operator=(Variant&& other) noexcept {
    if (this == &other) return *this;
    value = std::move(other.value);
    hint = other.hint;
    convertor = other.convertor;
    return *this;
}

}  // namespace rgen
