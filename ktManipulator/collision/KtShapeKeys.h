/// @file
/// The keys by which links and shapes are found: plain values with an order.
#pragma once

#include <compare>
#include <cstddef>
#include <functional>

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/core/KtTypes.h"

/// Names one link of a system; `ktBaseIndex` as link index means the manipulator's root link.
struct KT_EXPORT KtLinkKey {
  /// Position of the manipulator in its system.
  KtU32 manipulatorIndex = ktUnmappedIndex;
  /// Index of the link in its manipulator.
  KtU32 linkIndex = ktUnmappedIndex;

  /// No link.
  constexpr KtLinkKey() noexcept = default;
  /// From the two indices.
  constexpr KtLinkKey(KtU32 manipulator, KtU32 link) noexcept
      : manipulatorIndex(manipulator), linkIndex(link) {}

  /// A hash value. Neighbouring links get values far apart, also in sums of two of them.
  constexpr KtU32 guesstimate() const noexcept {
    // The finaliser of MurmurHash3 (A. Appleby, 2011) over both indices.
    KtU32 h = manipulatorIndex * 0x9E3779B1U + linkIndex;
    h = (h ^ (h >> 16)) * 0x85EBCA6BU;
    h = (h ^ (h >> 13)) * 0xC2B2AE35U;
    return h ^ (h >> 16);
  }

  /// Order by manipulator, then by link.
  constexpr auto operator<=>(const KtLinkKey&) const noexcept = default;
};

/// A pair of links. (a, b) and (b, a) are two keys.
struct KT_EXPORT KtLinkProximityKey {
  /// The first link.
  KtLinkKey first;
  /// The second link.
  KtLinkKey second;

  /// No pair.
  constexpr KtLinkProximityKey() noexcept = default;
  /// From the two links.
  constexpr KtLinkProximityKey(const KtLinkKey& one, const KtLinkKey& other) noexcept
      : first(one), second(other) {}

  /// Order by the first link, then by the second.
  constexpr auto operator<=>(const KtLinkProximityKey&) const noexcept = default;
};

/// Hash value of a pair of links: the sum of those of the two.
constexpr std::size_t hash_value(const KtLinkProximityKey& key) noexcept {
  return key.first.guesstimate() + key.second.guesstimate();
}

/// Names one shape of a system by manipulator, link and number within the link.
struct KT_EXPORT KtShapeKey {
  /// Position of the manipulator in its system.
  KtU32 manipulatorIndex = ktUnmappedIndex;
  /// Index of the link in its manipulator.
  KtU32 linkIndex = ktUnmappedIndex;
  /// Number of the shape in its link.
  KtU32 shapeIndex = ktUnmappedIndex;

  /// No shape.
  constexpr KtShapeKey() noexcept = default;
  /// From the three indices.
  constexpr KtShapeKey(KtU32 manipulator, KtU32 link, KtU32 shape) noexcept
      : manipulatorIndex(manipulator), linkIndex(link), shapeIndex(shape) {}

  /// The link that the shape belongs to.
  constexpr KtLinkKey linkKey() const noexcept { return {manipulatorIndex, linkIndex}; }
  /// Order by manipulator, link and shape.
  constexpr auto operator<=>(const KtShapeKey&) const noexcept = default;
};

/// A pair of shapes. (a, b) and (b, a) are two keys.
struct KT_EXPORT KtShapeProximityKey {
  /// The first shape.
  KtShapeKey first;
  /// The second shape.
  KtShapeKey second;

  /// No pair.
  constexpr KtShapeProximityKey() noexcept = default;
  /// From the two shapes.
  constexpr KtShapeProximityKey(const KtShapeKey& one, const KtShapeKey& other) noexcept
      : first(one), second(other) {}

  /// Order by the first shape, then by the second.
  constexpr auto operator<=>(const KtShapeProximityKey&) const noexcept = default;
};

/// Hash value of a pair of shapes.
constexpr std::size_t hash_value(const KtShapeProximityKey& key) noexcept {
  return (key.first.linkKey().guesstimate() + key.first.shapeIndex * 0x9E3779B1U) *
             std::size_t{31} +
         key.second.linkKey().guesstimate() + key.second.shapeIndex * 0x85EBCA6BU;
}

/// The key by which a program that displays or edits a system names a shape. As an interval's key
/// it names a link alone, and the shape index stays unmapped.
class KT_EXPORT KtShapeStateCacheKey {
 public:
  /// No shape: all three indices are `ktUnmappedIndex`.
  constexpr KtShapeStateCacheKey() noexcept = default;
  /// From the indices of manipulator, link and, where one is meant, shape.
  constexpr KtShapeStateCacheKey(KtU32 manipulatorIndex, KtU32 linkIndex,
                                 KtU32 shapeIndex = ktUnmappedIndex) noexcept
      : key_{manipulatorIndex, linkIndex, shapeIndex} {}

  /// Position of the manipulator in its system.
  constexpr KtU32 manipulatorIndex() const noexcept { return key_.manipulatorIndex; }
  /// Index of the link in its manipulator; `ktBaseIndex` for the root.
  constexpr KtU32 linkIndex() const noexcept { return key_.linkIndex; }
  /// Number of the shape in its link.
  constexpr KtU32 shapeIndex() const noexcept { return key_.shapeIndex; }
  constexpr void setManipulatorIndex(KtU32 index) noexcept { key_.manipulatorIndex = index; }
  constexpr void setLinkIndex(KtU32 index) noexcept { key_.linkIndex = index; }
  constexpr void setShapeIndex(KtU32 index) noexcept { key_.shapeIndex = index; }

  /// The shared key that stands for no shape.
  static const KtShapeStateCacheKey& nullObject() noexcept {
    static constexpr KtShapeStateCacheKey theNullObject;
    return theNullObject;
  }
  /// Order by manipulator, link and shape.
  constexpr auto operator<=>(const KtShapeStateCacheKey&) const noexcept = default;

 private:
  KtShapeKey key_;
};

/// Hash of a pair of links.
template <>
struct std::hash<KtLinkProximityKey> {
  /// The hash value.
  std::size_t operator()(const KtLinkProximityKey& key) const noexcept { return hash_value(key); }
};
/// Hash of a pair of shapes.
template <>
struct std::hash<KtShapeProximityKey> {
  /// The hash value.
  std::size_t operator()(const KtShapeProximityKey& key) const noexcept { return hash_value(key); }
};
