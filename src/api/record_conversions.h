// Conversions between the records of the interface and the library's own values.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "generate/input_params.h"
#include "store/base/guid.h"
#include "store/xml/property_document.h"
#include "strata_repgenlib/rgen.h"
#include "variant/variant.h"

namespace rgen {

Guid toGuid(const RgenGuid& guid);

/// Handles and unknown types are skipped. Null items are an empty set, whatever the count.
NamedVariants toNamedVariants(const RgenCVariantSet& set);

/// The same by name; of two entries with the same name the later is used.
VariantMap toVariantMap(const RgenCVariantSet& set);

/// Of two equal keys the later is used. Null arrays are an empty set, null texts empty texts.
PropertyMap toPropertyMap(const RgenCAnsiStringPairSet& set);

InputParams toInputParams(const RgenCInputParams& input);

/// Fills the result record of a generation. For an empty result, or an empty byte vector, the
/// record is unchanged; a null record is ignored.
void fillResult(const Variant& result, RgenCVariant* record);

/// Create `set` with one entry for each element, in the map's own order. For an empty map, or if
/// memory is exhausted, they return false and leave the set unchanged: a set is always complete.
bool fillVariantSet(const VariantMap& values, RgenCVariantSet& set);
bool fillPairSet(const PropertyMap& properties, RgenCAnsiStringPairSet& set);

}  // namespace rgen
