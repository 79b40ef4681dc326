/// @file
/// What every query on a link does with the entry that answers it.
#pragma once

#include <type_traits>

#include "ktManipulator/foundation/core/KtTypes.h"

namespace Kt::detail {

/// The value of an entry, which is computed first where it doesn't hold.
///
/// @tparam Valid    the operation of the entry that tells whether the value holds
/// @tparam Value    the operation that answers it
/// @param  compute  is given the entry; sets the value and the flag
template <auto Valid, auto Value, class Entry, class Compute>
[[gnu::always_inline]] inline decltype(auto) filled(Entry& entry, Compute&& compute) {
  if (!(entry.*Valid)()) compute(entry);
  return (entry.*Value)();
}

/// What `filled` answers for the entry of a link, or of the base for `ktBaseIndex`. An index beyond
/// the end of the cache is reported and gives the dummy.
template <auto Valid, auto Value, class Cache, class Report, class Compute>
[[gnu::always_inline]] inline auto queried(
    Cache& cache, KtU32 index, Report&& report,
    std::type_identity_t<decltype((cache.entry(index).*Value)())> dummy, Compute&& compute)
    -> decltype((cache.entry(index).*Value)()) {
  if (index >= cache.linkCount() && index != ktBaseIndex) {
    report();
    return dummy;
  }
  return filled<Valid, Value>(cache.entry(index), compute);
}

/// What `queried` answers for a link that is not the base, whose own queries answer for that one:
/// its index is beyond the end, too.
template <auto Valid, auto Value, class Cache, class Report, class Compute>
[[gnu::always_inline]] inline auto queriedOutboard(
    Cache& cache, KtU32 index, Report&& report,
    std::type_identity_t<decltype((cache.entry(index).*Value)())> dummy, Compute&& compute)
    -> decltype((cache.entry(index).*Value)()) {
  if (index >= cache.linkCount()) {
    report();
    return dummy;
  }
  return filled<Valid, Value>(cache.entry(index), compute);
}

}  // namespace Kt::detail
