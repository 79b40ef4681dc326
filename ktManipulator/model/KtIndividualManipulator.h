#pragma once

#include <string>
#include <vector>

#include "ktManipulator/collision/KtLinkCollisionTable.h"
#include "ktManipulator/collision/KtManipulatorSelfCollisionLinkMap.h"
#include "ktManipulator/constraints/KtStateConstraintVector.h"
#include "ktManipulator/constraints/KtStateEqualityConstraintVector.h"
#include "ktManipulator/foundation/geometry/KtSphere.h"
#include "ktManipulator/kinematics/KtGeneralBoundObjectVector.h"
#include "ktManipulator/model/KtManipulatorLink.h"
#include "ktManipulator/model/KtManipulatorReferenceDescription.h"
#include "ktManipulator/propagation/KtStoppingCriterionVector.h"
#include "ktManipulator/state/KtPropagationResultData.h"

class KtAccelerationState;
class KtManipulatorPointEvent;
class KtMassMatrixTool;
class KtPlane;
class KtPositionState;
class KtReArray;
class KtVelocityState;

/// One mechanism: a tree of links. This object is the root of the tree and the base.
///
/// The base has no joint. Its pose is the product of the manipulator's fixed frame and the frame of
/// the position state, in this order, and its index is always `ktBaseIndex`. The other links are
/// numbered in pre-order from 0 at the first child; entry i of a state vector belongs to the link
/// of index i. The manipulator has tables of its links by index and by label.
///
/// A manipulator may reference another one of its system. It then uses the links and tables of that
/// manipulator. `KtManipulatorSystem` resolves the reference.
///
/// Files don't hold the base's actuator, spring, damper, limits, points and frames.
class KT_EXPORT KtIndividualManipulator
    : public KtXmlPersistent<KtIndividualManipulator, KtManipulatorLink> {
 public:
  /// Zero.
  static const KtGeneralMotion m_theZeroAcceleration;

  /// A base without links: fixed, controllable, at the origin, with a bounding sphere of 10 m.
  KtIndividualManipulator();
  /// A copy. It uses its own links until a system resolves its reference.
  KtIndividualManipulator(const KtIndividualManipulator& other);
  /// The same as a copy.
  KtIndividualManipulator& operator=(const KtIndividualManipulator& other);

  bool read(KtXmlReader& reader) override;
  void registerComponents() override;

  // Overridden operations of the link.

  bool setSurfaceProperties(const std::string& surfaceLabel, const KtDataMap& data) override;
  /// The children of this manipulator or of the one that it references.
  const KtXmlVectorType<KtManipulatorLink>& childLinks() const override;
  /// Also maps all links.
  void setChildLinks(const KtXmlVectorType<KtManipulatorLink>& links) override;
  /// Also numbers the new child and all links below it. Call `mapManipulator` after adding the last
  /// child: it sets the manipulator of the links and resolves references. If this manipulator uses
  /// the links of another one, the child is added but not numbered.
  void addChild(const KtManipulatorLink& link) override;
  /// Also maps all links and builds the self-collision map anew.
  void clearChildLinks() override;
  /// Also maps all links and builds the self-collision map anew.
  void addLinkToEndOfChain(const KtManipulatorLink& link) override;
  /// Of all links but the base.
  void truncateValues(const double& precision) override;
  /// `ktBaseIndex`.
  KtU32 linkIndex() const override;
  const KtCoordinateSystemTransformation& dhFrameInSystem(
      KtManipulatorActivePositionState& positionState) const override;
  const KtCoordinateSystemTransformation& primaryFrameInSystem(
      KtManipulatorActivePositionState& positionState) const override;
  const KtGeneralMotion& dhFrameVelocityInSystem(
      KtManipulatorActiveState& activeState) const override;
  const KtGeneralMotion& dhFrameVelocityInLocal(
      KtManipulatorActiveState& activeState) const override;
  const KtGeneralMotion& primaryFrameVelocityInSystem(
      KtManipulatorActiveState& activeState) const override;
  const KtGeneralMotion& dhFrameAccelerationInLocal(
      KtManipulatorActiveState& activeState) const override;
  const KtGeneralForce& dhFrameForceInLocal(const KtManipulatorExternalForce& external,
                                            KtManipulatorActiveState& activeState,
                                            const KtStatedSystemStruct* asker) const override;
  const KtRigidBodyMassProperties& crbi(KtManipulatorActiveState& activeState,
                                        const KtStatedSystemStruct* asker) const override;
  const KtArticulatedBodyDynamics& arbd(const KtManipulatorExternalForce& external,
                                        const KtManipulatorTorque& torque,
                                        KtManipulatorActiveState& activeState,
                                        const KtStatedSystemStruct* asker) const override;
  const KtGeneralMotion& arbiSupplementalDhFrameAccelerationInLocal(
      const KtManipulatorExternalForce& external, const KtManipulatorTorque& torque,
      KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const override;
  /// Looks up the properties of a surface among those of the manipulator.
  bool lookup(const std::string& label, const KtDataMap*& data) const override;

  // Its own.

  /// Makes a manipulator of a link and its subtree. The link is the fixed base at the origin.
  virtual void setFromLink(const KtManipulatorLink& link);
  /// The fixed frame between the position state's frame and the base's DH frame.
  virtual const KtCoordinateSystemTransformation& coordSysXForm() const;
  virtual void setCoordSysXForm(const KtCoordinateSystemTransformation& t);
  /// A sphere around the whole mechanism in any position, in the base's frame.
  virtual const KtSphere& absoluteBoundingSphere() const;
  virtual void setAbsoluteBoundingSphere(const KtSphere& sphere);
  /// Fills the self-collision map with all pairs of links, marks none of them to be tested, and
  /// compiles the map.
  virtual void buildSelfCollisionLinkMap();
  /// Sets the sphere around the mechanism from `upperBoundSubmanipulatorExtentDistance`.
  virtual void fitAbsoluteBoundingSphere();
  /// Whether the base cannot move; true by default.
  virtual bool isFixedBase() const;
  virtual void setIsFixedBase(bool value);
  /// Whether reading a file prepares all links for display; false by default.
  virtual bool optimizeOnLoad() const;
  virtual void setOptimizeOnLoad(bool value);
  /// Whether a controller may move the manipulator; true by default.
  virtual bool isControllable() const;
  virtual void setIsControllable(bool value);
  /// Names the manipulator whose links this one uses.
  virtual const KtManipulatorReferenceDescription& manipulatorReferenceDescription() const;
  /// The system resolves the reference at its next mapping.
  virtual void setManipulatorReferenceDescription(
      const KtManipulatorReferenceDescription& description);
  /// Place of the manipulator in its system.
  virtual KtU32 manipulatorIndex() const;
  /// Number of joints, which is also the number of links without the base.
  virtual KtU32 jointDof() const;
  /// `jointDof()` and the six of the base.
  virtual KtU32 jointAndBaseDof() const;
  /// `jointDof()` for a fixed base, else `jointAndBaseDof()`.
  virtual KtU32 totalDof() const;
  /// The compiled self-collision map; see `mapLinkCollisionCandidates`.
  virtual const KtLinkCollisionTable& linkCollisionTest() const;
  /// The factor of `crbi` as a 6 by 6 matrix; see
  /// `KtRigidBodyMassProperties::spatialCholeskyDecomposition`.
  virtual const KtReArray& crbiSpatialCholeskyDecomposition(
      KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const;
  /// The acceleration of a free base under torques and forces, in its DH axes.
  virtual const KtGeneralMotion& arbiBaseAccelerationInLocal(
      const KtManipulatorExternalForce& external, const KtManipulatorTorque& torque,
      KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const;
  /// Index of the first link of a label; `ktBaseIndex` if only the base has it, `ktUnmappedIndex`
  /// if none.
  virtual KtU32 linkIndexByIdentifier(const std::string& label) const;
  /// The last link of a label, the base included; null if there is none.
  virtual KtManipulatorLink* linkByIdentifier(const std::string& label) const;
  /// The link of an index, this object for `ktBaseIndex`; null if there is none.
  virtual const KtManipulatorLink* linkByIndex(KtU32 index) const;
  /// Gives a link another label; false if there is none of the old one.
  virtual bool changeLinkLabel(const std::string& label, const std::string& newLabel);
  /// Advances positions at constant velocities over a time, s. Joints stop at the limits of their
  /// actuators; their velocities don't change. The base's linear velocity is taken in the axes in
  /// which its translation is given, its angular velocity in those of the outer frame.
  virtual void propagateState(const KtVelocityState& velocity, double dt,
                              KtPositionState& position) const;
  /// The same, and records the last joint that reached a limit.
  virtual void propagateState(const KtVelocityState& velocity, double dt, KtPositionState& position,
                              KtPropagationResultData& result) const;
  /// Advances velocities at constant accelerations over a time, s. Joint rates are limited to the
  /// maximum rates of their actuators.
  virtual void propagateVelocityState(const KtAccelerationState& acceleration, double dt,
                                      KtVelocityState& velocity) const;
  /// Will intersect a line segment with the manipulator. It does nothing yet, nor does
  /// `KtManipulatorLink::intersectLineSegment`.
  virtual void intersectLineSegmentWithManipulator(const KtLineSegment& segment,
                                                   KtManipulatorPointEvent& event,
                                                   KtManipulatorActiveState* activeState,
                                                   KtU32 level) const;
  /// Makes links share equal shapes, except the base and links of a referenced manipulator.
  ///
  /// @return true
  virtual bool findAndConvertToReferences();
  /// Prepares a change of a link's shapes: each link that uses them gets its own copy. Returns
  /// false if no link has the label.
  virtual bool aboutToModifyLink(const std::string& label);
  /// Replaces the subtree of a label by a copy of another one; false if no link has the label.
  virtual bool replaceLinkAndChildren(const std::string& label, const KtManipulatorLink& link);
  /// Replaces the joint model of the label of the link of an index; false without such a link.
  virtual bool replaceLinkKinematics(KtU32 index, const KtLinkKinematics& kinematics);
  /// Replaces the joint model of a link; false without such a link.
  virtual bool replaceLinkKinematics(const std::string& label, const KtLinkKinematics& kinematics);
  /// Replaces the shape of the label of the link of an index; false without such a link.
  virtual bool replaceLinkShape(KtU32 index, const KtShape& shape);
  /// Replaces the shape of a link; false without such a link.
  virtual bool replaceLinkShape(const std::string& label, const KtShape& shape);
  /// Sets the primary frame of the label of the link of an index; false without such a link.
  virtual bool replaceLinkPrimaryFrame(KtU32 index, const KtCoordinateSystemTransformation& frame);
  /// Sets the primary frame of a link, to which the body stays fixed; false without such a link.
  virtual bool replaceLinkPrimaryFrame(const std::string& label,
                                       const KtCoordinateSystemTransformation& frame);
  using KtManipulatorLink::transformPrimaryFrame;
  /// Moves the primary frame of a link but not its body; false without such a link.
  virtual bool transformPrimaryFrame(const std::string& label,
                                     const KtCoordinateSystemTransformation& frame);
  /// Makes all primary frames the identity, while shapes and base mass properties stay where they
  /// are; see `KtManipulatorLink::transformPrimaryFrame` for what follows from the mass. Links that
  /// share shapes go on sharing them where their primary frames were equal and the link that owns
  /// them comes later by label. A link that refers to a label of no link stays as it is.
  ///
  /// @return true
  virtual bool transformAllPrimaryFramesToIdentity();
  /// Moves the base mass properties and the own shapes of a link; false without such a link.
  virtual bool transformLinkComponentsBy(const std::string& label,
                                         const KtCoordinateSystemTransformation& t);
  /// Moves the subtree of a label; false without such a link.
  virtual bool transformLinkSubtreeBy(const std::string& label,
                                      const KtCoordinateSystemTransformation& t);
  /// Resolves the reference of this manipulator by label among the manipulators of a system.
  ///
  /// @return false, with nothing changed, if it has no reference or no manipulator has the label
  virtual bool configureManipulatorReference(
      const KtXmlVectorType<KtIndividualManipulator>& manipulators);
  /// Bodies that ride on frames of closed linkages.
  virtual const KtGeneralBoundObjectVector& generalBoundObjects() const;
  virtual void setGeneralBoundObjects(const KtGeneralBoundObjectVector& objects);
  /// Numbers all links anew and resolves the references among them.
  virtual bool mapManipulator();
  /// The same, into given tables. They stay if this manipulator uses the links of another one.
  ///
  /// @return true if `mapLinks` of all links returned true
  virtual bool mapManipulator(LinkTable& links, LabelTable& labels);
  /// The properties of surfaces by label.
  virtual const KtSurfaceMap& surfaces() const;
  virtual void setSurfaces(const KtSurfaceMap& surfaces);
  using KtManipulatorLink::setSurfaces;
  /// Sets the self-collision map and compiles it.
  virtual void setSelfCollisionLinkMap(const KtManipulatorSelfCollisionLinkMap& map);
  /// Which pairs of links are tested for collision, by label.
  virtual const KtManipulatorSelfCollisionLinkMap& selfCollisionLinkMap() const;
  /// Compiles the self-collision map into `linkCollisionTest()`. Reports labels without a link.
  virtual void mapLinkCollisionCandidates();
  /// Sets the surfaces of a link's shape. Returns false without such a shape, and for the base.
  virtual bool setSurfacesByIDs(KtU32 linkIndex, KtU32 shapeIndex, const KtSurfaceMap& surfaces);
  /// Whether a pair of different links is tested for collision. Indices out of range are reported
  /// and give false.
  virtual bool canCollide(KtU32 link1, KtU32 link2) const;
  /// The centre of mass of all links, in the system.
  virtual KtVector getCenterOfMassInSystem(KtManipulatorActiveState& activeState) const;
  /// Replaces all shapes by capsules around them; see `simplifyLinkShapesWithBoundingVolumes`.
  virtual void simplifyLinkShapesWithCapsules(const KtDataMap& data);
  /// Replaces all shapes by their convex hulls; see `simplifyLinkShapesWithBoundingVolumes`.
  virtual void simplifyLinkShapesWithConvexHulls(const KtDataMap& data);
  /// Replaces every shape by its first bounding volume, with the surface "Bounding".
  ///
  /// @param data           the properties of that surface
  /// @param keepUnbounded  whether a shape without a bounding volume stays; otherwise it goes
  virtual void simplifyLinkShapesWithBoundingVolumes(const KtDataMap& data, bool keepUnbounded);
  /// The zero-moment point: the point of a plane about which the inertial forces have no moment
  /// along the plane, without gravity.
  ///
  /// The result is exact only if the base is at the system's origin or H, the rate of the links'
  /// own angular momenta, is zero: the rate of the composite momentum is transformed to the system
  /// like a motion and not like a force, which adds p x H to the force, where p is the position of
  /// the base.
  ///
  /// @param plane  in the system
  /// @param point  receives the point, in the system; unchanged if no force crosses the plane
  virtual void computeZeroMomentPoint(const KtPlane& plane, KtManipulatorActiveState& activeState,
                                      KtVector& point, const KtStatedSystemStruct* asker) const;
  /// The same with gravity, m/s^2, in system axes.
  virtual void computeZeroMomentPoint(const KtVector& gravity, const KtPlane& plane,
                                      KtManipulatorActiveState& activeState, KtVector& point,
                                      const KtStatedSystemStruct* asker) const;
  /// The kinetic energy, J. The velocity of a free base is taken in base axes, but states hold it
  /// in system axes: for a rotated base, pass a copy of the state with the velocity in base axes.
  /// @param tool  the tool to use; null creates one for the call
  virtual double computeKineticEnergy(KtManipulatorActiveState& activeState, KtMassMatrixTool* tool,
                                      const KtStatedSystemStruct* asker) const;
  /// Constraints on the joint positions.
  virtual const KtStateConstraintVector& stateConstraints() const;
  virtual void setStateConstraints(const KtStateConstraintVector& constraints);
  /// Linear equations that joint motions must satisfy.
  virtual const KtStateEqualityConstraintVector& stateEqualityConstraints() const;
  virtual void setStateEqualityConstraints(const KtStateEqualityConstraintVector& constraints);
  /// The criteria that stop a propagation.
  virtual const KtStoppingCriterionVector& stoppingCriteria() const;
  virtual void setStoppingCriteria(const KtStoppingCriterionVector& criteria);
  /// Collects a, alpha and d of every link whose joint is of the craig convention, by index. A link
  /// with a precursor adds nothing; compare the length to find out whether links are missing.
  ///
  /// @return false if a link is of another kind
  virtual bool getCraigDhParameters(std::vector<double>& parameters) const;
  /// Replaces the bounding volumes of a link by one shape; false without such a link.
  ///
  /// @param data  the properties of its surface; null for a display colour and the contact
  ///              properties of the link's own surface
  virtual bool setBoundingVolume(const std::string& label, const KtShape& shape,
                                 const KtDataMap* data = nullptr);

  void setManipulatorIndex(KtU32 index) noexcept { manipulatorIndex_ = index; }
  /// Exchanges two link indices if the first is less than the second; the base counts as the
  /// largest index.
  ///
  /// @return true
  bool makeIndicesCompatible(KtU32& index1, KtU32& index2) const;
  /// Initialises the actuator state of the active state, if it has fewer entries than there are
  /// joint positions: the actuator of each link sets its entry.
  void initializeActuatorStatesIfShort(KtManipulatorActiveState& activeState) const;
  /// Adds a bounding capsule to each link that uses its own shapes.
  void addCapsuleBoundingVolumeToLinks();
  /// Adds a bounding sphere to each link that uses its own shapes.
  void addSphereBoundingVolumeToLinks();
  /// Adds a bounding box to each link that uses its own shapes and has no box yet.
  void addBoundingBoxToLinks();
  /// Adds the convex hull as a bounding volume to each link that uses its own shapes.
  void addConvexHullToLinks();
  /// Whether two manipulators are equal except for their labels.
  bool equalForReferencing(const KtIndividualManipulator& other) const;
  /// Assigns everything of another manipulator except its links; see
  /// `KtManipulatorLink::copyAllButChildLinksFrom`.
  void copyAllButChildLinksFrom(const KtIndividualManipulator& other);
  /// The links without the base, by index. Loops over many links use it.
  const LinkTable& links() const noexcept { return referenceManipulator_->linkTable_; }
  /// The manipulator whose links this one uses: the referenced one, or this one itself.
  const KtIndividualManipulator* referenceManipulator() const noexcept {
    return referenceManipulator_;
  }

  /// Equality of everything that is written to files.
  bool operator==(const KtIndividualManipulator& other) const;
  static const KtToken& classToken() { return KtManip::KtIndividualManipulatorToken; }

 private:
  bool isReference() const { return manipulatorReferenceDescription_.isManipulatorReferenced(); }
  void addBoundingVolumesToLinks(KtShape::KtShapeValues type);
  bool equalBeyondLink(const KtIndividualManipulator& other) const;
  void copyOwnFrom(const KtIndividualManipulator& other);
  // The link of a label in the label table, found or not; it may be null.
  LabelTable::const_iterator findLink(const std::string& label) const {
    return labelTable_.find(label);
  }

  // Written to files
  KtCoordinateSystemTransformation coordSysXForm_;
  KtSphere absoluteBoundingSphere_{KtVector(), 10.0, 3};
  KtXmlBasicType<bool> isFixedBase_ = true;
  KtXmlBasicType<bool> optimizeOnLoad_ = false;
  KtXmlBasicType<bool> isControllable_ = true;
  KtManipulatorReferenceDescription manipulatorReferenceDescription_;
  KtGeneralBoundObjectVector generalBoundObjects_;
  KtStateConstraintVector stateConstraints_;
  KtStateEqualityConstraintVector stateEqualityConstraints_;
  KtStoppingCriterionVector stoppingCriteria_;
  KtSurfaceMap surfaces_;
  KtManipulatorSelfCollisionLinkMap selfCollisionLinkMap_;
  // Derived from that
  LinkTable linkTable_;
  LabelTable labelTable_;
  KtLinkCollisionTable linkCollisionTable_;
  // Set by the system; not owned
  KtIndividualManipulator* referenceManipulator_ = this;
  KtU32 manipulatorIndex_ = 0;
  // Filled by constant operations
  mutable KtPropagationResultData propagationResult_;
};

extern template class KtXmlVectorType<KtIndividualManipulator>;
