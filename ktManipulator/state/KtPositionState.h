#pragma once

#include <istream>
#include <ostream>

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// Where one manipulator stands: its base in the system, and its joints.
///
/// A plain value that knows no manipulator and fits one by its size alone.
class KT_EXPORT KtPositionState : public KtXmlPersistent<KtPositionState, KtXmlCompoundType> {
 public:
  /// One real for each link but the root, by `linkIndex`.
  using JointVector = KtXmlVectorType<KtXmlBasicType<double>>;

  void registerComponents() override;

  /// The joint positions, rad or m. Empty by default.
  virtual const JointVector& jointPositions() const { return jointPositions_; }
  virtual JointVector& jointPositions() { return jointPositions_; }
  virtual void setJointPositions(const JointVector& positions) { jointPositions_ = positions; }
  /// The base's frame in the system. The identity by default.
  virtual const KtCoordinateSystemTransformation& coordSysXForm() const { return coordSysXForm_; }
  virtual KtCoordinateSystemTransformation& coordSysXForm() { return coordSysXForm_; }
  virtual void setCoordSysXForm(const KtCoordinateSystemTransformation& frame) {
    coordSysXForm_ = frame;
  }
  /// Whether there are as many joints, and no number differs by more than the tolerance.
  virtual bool approxEq(const KtPositionState& other, double tolerance) const;
  /// Reads the base's frame in its own binary form, the count of joints (4 bytes), and the joint
  /// positions (8 bytes each), in the byte order of the machine.
  ///
  /// @return false, and nothing changes, if the stream ends before; memory is asked for only as
  ///         numbers arrive, so that a wrong count does no harm
  virtual bool readBin(std::istream& stream);
  /// Writes what `readBin` reads.
  ///
  /// @return whether the base's frame could be written, without which nothing else is; what
  ///         happened to the rest the stream itself tells
  virtual bool writeBin(std::ostream& stream) const;
  /// Sets this to the interpolation between state 1 (f = 0) and state 2 (f = 1), beyond them for
  /// an f outside of [0, 1]. Joints blend linearly, the base's frame by its `interpolation`. This
  /// state may be either of the two.
  ///
  /// @return false, with a message, if the two have different numbers of joints; the smaller
  ///         number is interpolated then
  virtual bool linearInterpolation(const KtPositionState& state1, const KtPositionState& state2,
                                   const double& f);

  bool operator==(const KtPositionState&) const = default;
  static const KtToken& classToken() { return KtManip::KtPositionStateToken; }

 private:
  JointVector jointPositions_;
  KtCoordinateSystemTransformation coordSysXForm_;
};

extern template class KtXmlVectorType<KtPositionState>;
