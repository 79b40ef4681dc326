#pragma once

#include "ktManipulator/foundation/containers/KtBaseExpressionTreeContainer.h"
#include "ktManipulator/foundation/shape/KtShape.h"
#include "ktManipulator/foundation/shape/KtShapePointEvent.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// The holder of a link's shape, or of none. It accepts every kind of shape of the library.
class KT_EXPORT KtShapeContainer
    : public KtXmlPersistent<KtShapeContainer, KtBaseExpressionTreeContainer<KtShape>> {
 public:
  void registerComponentCreators() override;

  /// Scales the shape and the volumes around it; see `KtShape::scaleBy`.
  virtual void scaleBy(double factor);
  /// Moves the shape and the volumes around it; see `KtShape::transformBy`.
  virtual void transformBy(const KtCoordinateSystemTransformation& t);
  /// Adds a volume of a kind around the shape; see `KtShape::addBoundingVolume`. An empty holder
  /// stays as it is and gives false.
  virtual bool addBoundingVolume(KtShape::KtShapeValues type);
  /// Removes all volumes around the shape and around the members of a union.
  virtual void deleteBoundingVolumes();
  /// Finds the first point of a line segment that belongs to the shape.
  ///
  /// @param segment  the line segment, in the primary frame of the link
  /// @param event    receives the distance, and that something was met. It stays as it is if there
  ///                 is nothing; a hit replaces what it held before, whichever is nearer.
  /// @param level    of the shape to be met; see `KtShape::intersectLineSegment`
  /// @return         the numbered shape that was met, or null
  virtual const KtShape* intersectLineSegment(const KtLineSegment& segment,
                                              KtShapePointEvent& event, const KtU32& level) const;

  bool operator==(const KtShapeContainer&) const = default;
  static const KtToken& classToken();
};

extern template class KtBaseExpressionTreeContainer<KtShape>;
