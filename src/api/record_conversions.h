// Conversions between the records that cross the boundary and the library's own values.
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

/// Handles and unknown types are left out. Null items are an empty set, whatever the count.
NamedVariants toNamedVariants(const RgenCVariantSet& set);

/// The same by name; of two entries of one name the later wins.
VariantMap toVariantMap(const RgenCVariantSet& set);

/// Of two keys alike the later wins. Null arrays are an empty set, null texts empty texts.
PropertyMap toPropertyMap(const RgenCAnsiStringPairSet& set);

InputParams toInputParams(const RgenCInputParams& input);

/// Fills the result record of a generation. An empty result, or an empty byte vector, leaves the
/// record untouched; so does a null record.
void fillResult(const Variant& result, RgenCVariant* record);

/// Create `set` with one entry for each element, in the map's own order. False, and the set
/// untouched, for an empty map or when memory is exhausted anywhere: a host never sees half a set.
bool fillVariantSet(const VariantMap& values, RgenCVariantSet& set);
bool fillPairSet(const PropertyMap& properties, RgenCAnsiStringPairSet& set);

}  // namespace rgen
