#pragma once

#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/shape/KtShapeContainer.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"

class KtIndividualManipulator;
class KtManipulatorActiveState;

/// A body that moves with a manipulator without being one of its links: a part of a closed linkage
/// that a tree of links can't express.
class KT_EXPORT KtBaseGeneralBoundObject : public KtXmlCompoundType {
 public:
  void registerComponents() override;

  /// The shape, in the primary frame; null if there is none.
  virtual const KtShape* shape() const { return shapeContainer_.topElement(); }
  /// Replaces the shape by a copy of another.
  virtual void setShape(const KtShape& shape) { shapeContainer_.setTopElement(shape); }
  /// The frame of the shape in the frame that the object rides on.
  virtual const KtCoordinateSystemTransformation& primaryFrame() const { return primaryFrame_; }
  virtual void setPrimaryFrame(const KtCoordinateSystemTransformation& frame) {
    primaryFrame_ = frame;
  }
  /// The primary frame in the system.
  ///
  /// @param activeState  of the manipulator; may be filled further
  /// @param manipulator  the one that the object moves with
  /// @return a reference that holds until the next call on this object. A manipulator or state that
  ///         doesn't fit is reported and gives the answer of the call before, at first the
  ///         identity.
  virtual const KtCoordinateSystemTransformation& locationInSystem(
      KtManipulatorActiveState& activeState, const KtIndividualManipulator& manipulator) const = 0;

  bool operator==(const KtBaseGeneralBoundObject&) const = default;

 private:
  KtShapeContainer shapeContainer_;
  KtCoordinateSystemTransformation primaryFrame_;
};
