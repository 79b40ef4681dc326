#pragma once

#include <map>
#include <string>
#include <typeinfo>
#include <vector>

#include "ktManipulator/actuation/KtDamperProperties.h"
#include "ktManipulator/actuation/KtJointActuator.h"
#include "ktManipulator/actuation/KtJointActuatorContainer.h"
#include "ktManipulator/actuation/KtOldJointActuator.h"
#include "ktManipulator/actuation/KtSpringProperties.h"
#include "ktManipulator/constraints/KtMultivariableJointStateConstraint.h"
#include "ktManipulator/constraints/KtStateConstraintContainer.h"
#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/containers/KtXmlMapType.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/core/KtOnDemand.h"
#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/foundation/geometry/KtXmlVector.h"
#include "ktManipulator/foundation/shape/KtPolyPhysicalExtent.h"
#include "ktManipulator/foundation/shape/KtShapeContainer.h"
#include "ktManipulator/foundation/shape/algorithms/KtAxisAlignedBoundingBox.h"
#include "ktManipulator/foundation/shape/algorithms/KtShapeQueryData.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"
#include "ktManipulator/inertia/KtArticulatedBodyDynamics.h"
#include "ktManipulator/inertia/KtRigidBodyMassProperties.h"
#include "ktManipulator/kinematics/KtDenavitHartenberg.h"
#include "ktManipulator/kinematics/KtLinkKinematicsContainer.h"
#include "ktManipulator/model/KtLinkReferenceDescription.h"
#include "ktManipulator/state/KtStatedSystemStruct.h"

class KtIndividualManipulator;
class KtLinkPointEvent;
class KtLinkPositionState;
class KtManipulatorActivePositionState;
class KtManipulatorActiveState;
class KtManipulatorExternalForce;
class KtManipulatorTorque;

// These declarations must precede every use of the templates. Otherwise the compiler instantiates
// them with hidden visibility, and the library doesn't export them.
extern template class KtXmlVectorType<KtCoordinateSystemTransformation>;
extern template class KtXmlMapType<KtXmlBasicType<std::string>, KtXmlVector>;
extern template class KtXmlMapType<KtXmlBasicType<std::string>, KtCoordinateSystemTransformation>;

/// One rigid body of a mechanism, and the joint that connects it to its parent.
///
/// Links form a tree by value: a link contains its children, so that a copy of a link is a copy of
/// the whole subtree below it. `KtIndividualManipulator` is the root of such a tree.
///
/// A link has two frames. The DH frame is where the joint's transformation ends. The primary frame
/// is fixed to the DH frame; shapes, mass properties, named points and named frames refer to it.
/// Results named `InLocal` are in the axes of the DH frame and about its origin; results named
/// `InSystem` are in system axes. Units are m, kg, s and rad.
///
/// A link may use the shapes of another link of its manipulator, named in its reference
/// description. The manipulator resolves the reference when it maps its links. Mass, kinematics,
/// actuator, spring, damper, points and frames are never shared.
///
/// Queries of frames, motions, forces and inertias cache their results in the active state and
/// return references into it. A reference is valid until a setter of the active state is called or
/// the number of links changes. If the active state has no entry for the link, the query reports it
/// and returns one of the static dummy values below.
///
/// Labels are unique within a manipulator by convention. If two links have the same label, looking
/// it up finds the later one in pre-order; both can be found by index.
///
/// Cached inertias, forces and articulated dynamics belong to the external forces, torques and
/// asker of the first query. A later query with other ones returns the cached result, so call
/// `invalidateAll` on the active state before you change any of these.
///
/// Constant operations write to scratch members and to the active state, so only one thread at a
/// time may use a link.
///
/// A link moves in memory when its parent's list of children grows, which invalidates pointers.
class KT_EXPORT KtManipulatorLink : public KtXmlPersistent<KtManipulatorLink, KtXmlCompoundType> {
 public:
  /// The links of a manipulator by index.
  using LinkTable = std::vector<const KtManipulatorLink*>;
  /// The links of a manipulator by label.
  using LabelTable = std::map<std::string, KtManipulatorLink*>;
  /// Named points, in the primary frame.
  using PointMap = KtXmlMapType<KtXmlBasicType<std::string>, KtXmlVector>;
  /// Named frames.
  using FrameMap = KtXmlMapType<KtXmlBasicType<std::string>, KtCoordinateSystemTransformation>;
  /// Masses that a link carries, by name.
  using MassMap = KtXmlMapType<KtXmlBasicType<std::string>, KtRigidBodyMassProperties>;

  // The values that failing queries return.

  /// The identity.
  static const KtCoordinateSystemTransformation m_theDummyTransformation;
  /// Zero.
  static const KtGeneralMotion m_theDummyGeneralVelocity;
  /// Zero.
  static const KtGeneralMotion m_theDummyGeneralAcceleration;
  /// Zero.
  static const KtGeneralForce m_theDummyGeneralForce;
  /// The least valid mass properties.
  static const KtRigidBodyMassProperties m_theDummyCrbi;
  /// No inertia and no bias.
  static const KtArticulatedBodyDynamics m_theDummyArbd;
  /// The empty extent.
  static const KtPolyPhysicalExtent m_theDummyPhysicalExtent;
  /// Zero.
  static const KtGeneralMotion m_theDummySpatialMomentum;
  /// Zero.
  static const KtGeneralMotion m_theDummySpatialMomentumRate;

  /// A free-standing link without a joint model, a shape, a mass or children.
  KtManipulatorLink();
  /// A copy of the whole subtree. It keeps the parent and index of the other until it is added or
  /// mapped, belongs to no manipulator, and uses its own shapes until references are resolved.
  KtManipulatorLink(const KtManipulatorLink& other);
  /// The same as a copy; an assignment to itself changes nothing.
  KtManipulatorLink& operator=(const KtManipulatorLink& other);

  /// Reads the link and its subtree; see `KtXmlObject::read`. An actuator in the old form is
  /// converted to the present form.
  bool read(KtXmlReader& reader) override;
  void registerComponents() override;

  /// Name of the link.
  virtual const std::string& label() const;
  /// Sets what `label()` answers and nothing else; see `KtIndividualManipulator::changeLinkLabel`.
  virtual void setLabel(const std::string& label);
  /// Appends a text to the labels of this link and all below it.
  virtual void appendToAllLabels(const std::string& suffix);
  /// Sets the surfaces of a shape of the link whose shapes this link uses.
  ///
  /// @return false if there is no such shape
  virtual bool setSurfacesByShapeID(const KtU32& shapeIndex, const KtSurfaceMap& surfaces);
  /// Calls `setSurfacesByShapeID` on the links of a label in this subtree until one returns true.
  virtual bool setSurfaces(const std::string& label, const KtU32& shapeIndex,
                           const KtSurfaceMap& surfaces);
  /// The holder of the joint model that leads from the parent's DH frame to this link's.
  virtual const KtLinkKinematicsContainer& linkKinematicsContainer() const;
  /// Sets the joint model and computes the mass in the DH frame anew.
  virtual void setLinkKinematicsContainer(const KtLinkKinematicsContainer& container);
  /// Replaces the joint model by a copy of another. The mass in the DH frame stays as it is; see
  /// `updateDHMassProperties`.
  virtual void setLinkKinematics(const KtLinkKinematics& kinematics);
  /// The children, in the order of all walks.
  virtual const KtXmlVectorType<KtManipulatorLink>& childLinks() const;
  virtual void setChildLinks(const KtXmlVectorType<KtManipulatorLink>& links);
  /// Appends a copy of a link to the children.
  virtual void addChild(const KtManipulatorLink& link);
  /// Removes all children.
  virtual void clearChildLinks();
  /// Appends a copy of a link to the last link of the path of first children.
  virtual void addLinkToEndOfChain(const KtManipulatorLink& link);
  /// The extent of the shape that this link uses. A link without a shape reports it and returns
  /// `m_theDummyPhysicalExtent`.
  virtual const KtBasePhysicalExtent& physicalExtent() const;
  /// The shapes that this link uses: its own, or those of the link it references.
  virtual const KtShapeContainer& shapeContainer() const;
  /// The link's own shapes.
  virtual const KtShapeContainer& memberShapeContainer() const;
  /// Sets the own shapes and numbers them.
  virtual void setShapeContainer(const KtShapeContainer& container);
  /// Makes a copy of a shape the own one, and numbers it.
  virtual void setShape(const KtShape& shape);
  /// Makes this a free-standing body of a shape: no joint model, default actuator and mass, and the
  /// label "shape". The shape is numbered by the next `mapShapes`.
  virtual void setFromShape(const KtShape& shape);
  /// `setFromShape` with the container's shape, if it has one.
  virtual void setFromShapeContainer(const KtShapeContainer& container);
  /// The primary frame in the DH frame; the identity without a joint model.
  virtual const KtCoordinateSystemTransformation& primaryFrame() const;
  /// Sets the primary frame, to which shapes and masses stay fixed, and updates the mass in the DH
  /// frame. A link without a joint model reports every frame but the identity.
  virtual void setPrimaryFrame(const KtCoordinateSystemTransformation& frame);
  /// The joint's actuator.
  virtual const KtJointActuator& jointActuator() const;
  /// Copies the actuator, binds the copy to this link and sets the constraints of its limits.
  virtual void setJointActuator(const KtJointActuator& actuator);
  /// Truncates the coordinates of this link's shapes to a precision, but not those of its children;
  /// see `KtBasePhysicalExtent::truncateValues`.
  virtual void truncateValues(const double& precision);
  /// The link's mass properties in the primary frame: its own mass, all masses it carries and, if
  /// an asker is given, the root links of the manipulators that are attached to the link.
  ///
  /// @return a reference that is valid until the next call on this link
  virtual const KtRigidBodyMassProperties& massProperties(
      const KtStatedSystemStruct* asker = nullptr) const;
  /// Sets the mass properties of the link itself, and removes the masses it carries.
  virtual void setMassProperties(const KtRigidBodyMassProperties& properties);
  /// The mass properties of the link itself, in the primary frame.
  virtual const KtRigidBodyMassProperties& baseMassProperties() const;
  /// The masses that the link carries stay as they are.
  virtual void setBaseMassProperties(const KtRigidBodyMassProperties& properties);
  /// The masses that the link carries, by name, in the primary frame.
  virtual const MassMap& massPropertiesMap() const;
  virtual void setMassPropertiesMap(const MassMap& map);
  /// Removes all masses that the link carries.
  virtual void clearMassPropertiesMap();
  /// Adds a mass that the link carries, or replaces the one of that name.
  virtual void addMassProperties(const std::string& name,
                                 const KtRigidBodyMassProperties& properties);
  /// Removes a mass that the link carries; false if there is none of that name.
  virtual bool deleteMassProperties(const std::string& name);
  /// The joint's spring.
  virtual const KtSpringProperties& springProperties() const;
  virtual void setSpringProperties(const KtSpringProperties& properties);
  /// The joint's damper.
  virtual const KtDamperProperties& damperProperties() const;
  virtual void setDamperProperties(const KtDamperProperties& properties);
  /// Whose shapes this link uses.
  virtual const KtLinkReferenceDescription& linkReferenceDescription() const;
  /// The reference is resolved at the next mapping.
  virtual void setLinkReferenceDescription(const KtLinkReferenceDescription& description);
  /// The torque of spring and damper at the joint; 0, with a message, without a manipulator.
  virtual double totalLocalTorque(KtManipulatorActiveState& activeState) const;
  /// `massProperties` in the DH frame.
  virtual const KtRigidBodyMassProperties& massPropertiesInDHFrame(
      const KtStatedSystemStruct* asker = nullptr) const;
  /// Recomputes the mass properties in the DH frame from the total ones and the primary frame.
  virtual void updateDHMassProperties();
  /// Moves the link's own mass properties and shapes. The caller must update what is derived from
  /// the mass; see `updateMassProperties`.
  virtual void transformComponentsBy(KtCoordinateSystemTransformation t);
  /// The link that holds this one, or null.
  virtual KtManipulatorLink* parentLink() const;
  virtual void setParentLink(KtManipulatorLink* link);
  /// Position of this link in its manipulator's table, by which state vectors are indexed;
  /// `ktUnmappedIndex` for a link that was never mapped.
  virtual KtU32 linkIndex() const;
  /// Number of links in this subtree, this one counted.
  virtual KtU32 subtreeLinkCount() const;
  /// The property "ktCollisionAvoidanceMetric" of the shape's own surface; 1 if the surface doesn't
  /// have it.
  virtual double lookupCollisionAvoidanceMetric() const;
  /// Numbers and registers this subtree in pre-order. If two links have the same label, the table
  /// of labels has the later one.
  ///
  /// @param links   receives the links, each at its index
  /// @param labels  receives the links by label
  /// @return        true if all overrides returned true
  virtual bool mapLinks(LinkTable& links, LabelTable& labels);
  /// The DH frame in the system.
  virtual const KtCoordinateSystemTransformation& dhFrameInSystem(
      KtManipulatorActivePositionState& positionState) const;
  /// The primary frame in the system.
  virtual const KtCoordinateSystemTransformation& primaryFrameInSystem(
      KtManipulatorActivePositionState& positionState) const;
  /// Velocity of the DH frame's origin and angular velocity, in system axes.
  virtual const KtGeneralMotion& dhFrameVelocityInSystem(
      KtManipulatorActiveState& activeState) const;
  /// The same in DH axes.
  virtual const KtGeneralMotion& dhFrameVelocityInLocal(
      KtManipulatorActiveState& activeState) const;
  /// Velocity of the primary frame's origin and angular velocity, in system axes.
  virtual const KtGeneralMotion& primaryFrameVelocityInSystem(
      KtManipulatorActiveState& activeState) const;
  /// Acceleration of the DH frame's origin and angular acceleration, in DH axes.
  virtual const KtGeneralMotion& dhFrameAccelerationInLocal(
      KtManipulatorActiveState& activeState) const;
  /// The force that the inboard side exerts on this subtree, at the DH frame's origin in DH axes.
  virtual const KtGeneralForce& dhFrameForceInLocal(const KtManipulatorExternalForce& external,
                                                    KtManipulatorActiveState& activeState,
                                                    const KtStatedSystemStruct* asker) const;
  /// The inertia of this subtree as one rigid body, in the DH frame.
  virtual const KtRigidBodyMassProperties& crbi(KtManipulatorActiveState& activeState,
                                                const KtStatedSystemStruct* asker) const;
  /// The articulated dynamics of this subtree, in the DH frame.
  virtual const KtArticulatedBodyDynamics& arbd(const KtManipulatorExternalForce& external,
                                                const KtManipulatorTorque& torque,
                                                KtManipulatorActiveState& activeState,
                                                const KtStatedSystemStruct* asker) const;
  /// Adds the articulated dynamics of this subtree, seen through its joint, to the parent's.
  virtual void addArbdToParent(KtArticulatedBodyDynamics& parent,
                               const KtManipulatorExternalForce& external,
                               const KtManipulatorTorque& torque,
                               KtManipulatorActiveState& activeState,
                               const KtStatedSystemStruct* asker) const;
  /// The part of the DH frame's acceleration that torques and forces cause, in DH axes.
  virtual const KtGeneralMotion& arbiSupplementalDhFrameAccelerationInLocal(
      const KtManipulatorExternalForce& external, const KtManipulatorTorque& torque,
      KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const;
  /// The joint's acceleration under torques and forces.
  virtual double arbiJointAcceleration(const KtManipulatorExternalForce& external,
                                       const KtManipulatorTorque& torque,
                                       KtManipulatorActiveState& activeState,
                                       const KtStatedSystemStruct* asker) const;
  /// Appends the links of this subtree that have no children, in pre-order.
  virtual void collectLeafLinks(LinkTable& links) const;
  /// Prepares the link for display. Derived classes may override it; here it does nothing.
  virtual void optimizeForRendering();
  /// Looks up the properties of a surface: in the shape that this link uses, then in the
  /// manipulator. False for a link without a shape.
  ///
  /// @param data  receives the properties, or null
  virtual bool lookup(const std::string& label, const KtDataMap*& data) const;
  /// `optimizeForRendering` on this link and all below it.
  virtual void recursiveOptimizeForRendering();
  /// The result of the last distance query on this link, at which the next query starts.
  virtual KtShapeQueryData& queryData() const;
  /// The manipulator of this link, or null if it was not mapped by one.
  virtual const KtIndividualManipulator* manipulator() const;
  /// Records the manipulator that owns this link; mapping calls it.
  virtual void setManipulatorPointer(const KtIndividualManipulator* manipulator) const;
  /// An upper bound for the distance of this link's DH frame from the parent's, over the joint's
  /// range, m; see `KtLinkKinematics::upperBoundDhFrameDistance`.
  virtual double upperBoundExtentDistance() const;
  /// An upper bound for the distance of any point of this subtree's shapes from this link's DH
  /// frame, over the ranges of all joints, m.
  virtual double upperBoundSubmanipulatorExtentDistance() const;
  /// Appends a box in system axes around each shape that this link uses, and its number.
  virtual void axisAlignedBoundingBoxVectorInSystem(KtManipulatorActivePositionState& positionState,
                                                    std::vector<KtAxisAlignedBoundingBox>& boxes,
                                                    std::vector<KtU32>& identifiers) const;
  /// Labels this subtree with a prefix and consecutive numbers, in pre-order.
  ///
  /// @param counter  the first number; receives the number after the last one
  virtual void relabelSubtree(const std::string& prefix, KtU32& counter);
  /// Removes the bounding volumes of the own shapes.
  virtual void deleteBoundingVolumes();
  /// Number of shapes that this link uses, bounding volumes counted; see
  /// `KtShape::numberOfShapes`.
  virtual KtU32 numberOfShapes() const;
  /// The shape of a number; null if there is none.
  virtual const KtShape* shapeByIndex(const KtU32& index) const;
  /// The shape of an identifier; null if there is none.
  virtual const KtShape* shapeByIdentifier(const std::string& identifier) const;
  /// Numbers the own shapes, unless another link's are used.
  ///
  /// @return true
  virtual bool mapShapes();
  /// Sets what `numShapes()` answers for a link that uses its own shapes.
  virtual void setNumShapes(KtU32 count);
  /// Number of shapes that this link uses, as `mapShapes` counted them.
  virtual KtU32 numShapes() const;
  /// Number of shapes that the link's physical representation consists of, without bounding
  /// volumes: the members of a union, otherwise 1, and 0 without a shape.
  virtual KtU32 numShapesInPhysicalRepresentation() const;
  /// Scales shapes, own mass (at constant density), primary frame, joint model and actuator. The
  /// total mass stays until `updateMassProperties`; the mass in the DH frame is that old total.
  virtual void scaleIndividualLinkBy(double factor);
  /// `scaleIndividualLinkBy` on this link and all below it.
  virtual void scaleBy(double factor);
  /// Moves this subtree: its joint's transformation becomes t times what it was.
  virtual void transformLinkTreeBy(const KtCoordinateSystemTransformation& t);
  /// Moves the primary frame, while shapes and base mass properties stay where they are. The total
  /// mass and that in the DH frame follow at the next `updateMassProperties` and
  /// `updateDHMassProperties`.
  ///
  /// @param frame  the new primary frame, in the DH frame
  /// @return       true
  virtual bool transformPrimaryFrame(const KtCoordinateSystemTransformation& frame);
  /// Will intersect a line segment with the shapes of this link. It does nothing yet.
  ///
  /// @param segment      in system axes
  /// @param event        will receive the nearest intersection; unchanged for now
  /// @param activeState  the position; null finds nothing
  /// @param level        the bounding-volume level of the shapes to intersect
  virtual void intersectLineSegment(const KtLineSegment& segment, KtLinkPointEvent& event,
                                    KtManipulatorActiveState* activeState, KtU32 level) const;
  /// Resolves the references of this subtree to the shapes of other links by label. If no link has
  /// the label, this is reported and the link uses its own shapes.
  ///
  /// @return true
  virtual bool setLinkReferences(const LabelTable& labels);
  /// Makes each link of this subtree except a base use the shapes of the first link of lower index
  /// that has equal ones and can be found by its label. The link's own shapes are removed.
  ///
  /// @return true if any link was changed
  virtual bool useReferencesWherePossible(const LinkTable& links);
  /// Gives this link own copies of the shapes that it uses by reference.
  ///
  /// @return true
  virtual bool removeLinkReferences();
  /// Sets the mass properties to those of the capsule around the shape at a density of 2700 kg/m^3.
  /// A link without a shape reports it and gets default mass properties.
  virtual void estimateMassProperties();
  /// Shape n of the physical representation: member n of a union of shapes, otherwise the shape
  /// itself for any n. Null if there is no shape or no such member, and for a union of
  /// extents.
  virtual const KtShape* getNthNonBoundingShape(KtU32 n) const;
  /// Appends the own shapes that represent the link at a level of precision; see
  /// `KtShape::boundingVolumes`.
  virtual void boundingVolumes(KtShape::ShapeVector& volumes, const KtU32& level) const;
  /// `deleteBoundingVolumes` on this link and all below it.
  virtual void deleteAllBoundingVolumes();
  /// Sets a joint limit of the link of a label in this subtree.
  ///
  /// @param lower  whether it is the lower one
  /// @return       false if there is no such link
  virtual bool setJointLimit(const std::string& label, bool lower, double value);
  /// Copies the properties of another link to the link of a label in this subtree, except label,
  /// children and `isConstrained()`.
  ///
  /// @param withShape  whether the shapes are copied, too
  /// @return           false if there is no such link
  virtual bool replaceLinkProperties(const std::string& label, const KtManipulatorLink& source,
                                     bool withShape);
  /// Sets the mass properties of every link of a label in this subtree.
  ///
  /// @return always false; programs rely on it
  virtual bool replaceMassProperties(const std::string& label,
                                     const KtRigidBodyMassProperties& properties);
  /// Sets surface properties of the own shapes; see `KtShape::setSurfaceProperties`.
  ///
  /// @return true if any shape accepted them
  virtual bool setSurfaceProperties(const std::string& surfaceLabel, const KtDataMap& data);
  /// A segment that shows the force on this link, in DH axes; see `KtExternalForceDescription`.
  virtual const KtLineSegment& forceVectorInLocal(
      const KtManipulatorActiveState& activeState) const;
  /// Velocity of the centre of mass and angular velocity, in DH axes.
  virtual const KtGeneralMotion& comVelocityInLocal(KtManipulatorActiveState& activeState,
                                                    const KtStatedSystemStruct* asker) const;
  /// Acceleration of the centre of mass and angular acceleration, in DH axes.
  virtual const KtGeneralMotion& comAccelerationInLocal(KtManipulatorActiveState& activeState,
                                                        const KtStatedSystemStruct* asker) const;
  /// Linear momentum, and angular momentum about the centre of mass, of this link in DH axes.
  virtual const KtGeneralMotion& spatialMomentumInLocal(KtManipulatorActiveState& activeState,
                                                        const KtStatedSystemStruct* asker) const;
  /// The same of this subtree.
  virtual const KtGeneralMotion& compositeSpatialMomentumInLocal(
      KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const;
  /// The rate of `spatialMomentumInLocal`.
  virtual const KtGeneralMotion& spatialMomentumRateInLocal(
      KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const;
  /// The rate of `compositeSpatialMomentumInLocal`.
  virtual const KtGeneralMotion& compositeSpatialMomentumRateInLocal(
      KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const;
  /// The moment of the inertial forces of this subtree about a point of the system, in system axes.
  /// The inertial force of a link is its mass times the acceleration of its centre of mass. The
  /// rates of the links' own angular momenta are not included.
  ///
  /// @param moment  receives the moment; must not be the same object as the point
  virtual void computeMomentFromLinearAcceleration(const KtVector& point,
                                                   KtManipulatorActiveState& activeState,
                                                   KtVector& moment,
                                                   const KtStatedSystemStruct* asker) const;
  /// The constraint that is at least 0 below the joint's upper limit: the one that was set, or by
  /// default the actuator's limit minus the joint's position, which the first call creates.
  virtual const KtBaseStateConstraint& upperLimitConstraint() const;
  /// Stores a copy of the constraint.
  virtual void setUpperLimitConstraint(const KtBaseStateConstraint& constraint);
  /// The constraint that is at least 0 above the joint's lower limit; see `upperLimitConstraint`.
  virtual const KtBaseStateConstraint& lowerLimitConstraint() const;
  /// Stores a copy of the constraint.
  virtual void setLowerLimitConstraint(const KtBaseStateConstraint& constraint);
  /// The named points, in the primary frame.
  virtual const PointMap& namedPoints() const;
  virtual void setNamedPoints(const PointMap& points);
  /// Looks up a named point. Returns false, and leaves the argument unchanged, if there is none.
  virtual bool lookupNamedPoint(const std::string& name, KtVector& point) const;
  /// Adds a named point. If the name exists, this is reported and the old point stays.
  virtual void addNamedPoint(const std::string& name, const KtVector& point);
  /// The named frames, in the primary frame.
  virtual const FrameMap& namedFrames() const;
  virtual void setNamedFrames(const FrameMap& frames);
  /// Looks up a named frame. Returns false, and leaves the argument unchanged, if there is none.
  virtual bool lookupNamedFrame(const std::string& name,
                                KtCoordinateSystemTransformation& frame) const;
  /// Adds a named frame. If the name exists, this is reported and the old frame stays.
  virtual void addNamedFrame(const std::string& name,
                             const KtCoordinateSystemTransformation& frame);
  /// Whether the joint is marked as constrained.
  virtual bool isConstrained() const;
  virtual void setIsConstrained(bool value);
  /// Updates the limit constraints after a change of the actuator's limits. For a link without a
  /// place in a state vector (a root, or a link that was never mapped) they are constants.
  virtual void updateDefaultLimitConstraints();
  /// Recomputes the total mass properties from the link's own mass and the masses it carries.
  virtual void updateMassProperties();

  /// Whether two links are equal except for their own labels; the labels of the children are
  /// compared. Parent, index and manipulator are not compared.
  bool equalForReferencing(const KtManipulatorLink& other) const;
  /// Assigns everything of another link except its children. If the other link is this link itself,
  /// the call only removes the children.
  void copyAllButChildLinksFrom(const KtManipulatorLink& other);
  /// Copies this link's label, damper, actuator, joint model, mass, spring and shapes to another
  /// link. The shapes are copied even if this link uses those of another one.
  void copyLinkProperties(KtManipulatorLink& target) const;
  /// Adds a bounding volume of a kind to the own shapes; see `KtShapeContainer::addBoundingVolume`.
  bool addBoundingVolume(KtShape::KtShapeValues type);
  /// Sets the actuator of every link of a label in this subtree; always returns false.
  bool replaceJointActuator(const std::string& label, const KtJointActuator& actuator);

  /// How the joint moves, if the class of its model is exactly `KtDenavitHartenberg`; otherwise
  /// null. Loops over many links use it to avoid virtual calls.
  const Kt::detail::JointMotion* jointMotion() const noexcept {
    const KtLinkKinematics* model = linkKinematicsContainer_.topElement();
    // A derived class may override how the joint moves.
    return model != nullptr && typeid(*model) == typeid(KtDenavitHartenberg)
               ? static_cast<const KtDenavitHartenberg*>(model)->jointMotion()
               : nullptr;
  }
  /// How the joint moves at the positions at a rate of 1, as its model computes it; without the
  /// centripetal part.
  Kt::detail::JointMotion askedUnitMotion(
      const KtManipulatorActivePositionState& positionState) const;

  /// The same as `linkIndex()`, `parentLink()` and `jointActuator()`, without virtual calls.
  KtU32 mappedIndex() const noexcept { return linkIndex_; }
  /// See there.
  const KtManipulatorLink* inboardLink() const noexcept { return parentLink_; }
  /// See there.
  const KtJointActuator& actuator() const noexcept { return jointActuator_; }
  /// The link's entry of a state, with its joint transform valid. If the state is too short,
  /// `dhFrameInSystem` reports it, and the result is a shared entry with the identity.
  const KtLinkPositionState& placedJoint(KtManipulatorActivePositionState& positionState) const;

  /// Equality of everything that is written to files.
  bool operator==(const KtManipulatorLink& other) const;
  static const KtToken& classToken() { return KtManip::KtManipulatorLinkToken; }

 protected:
  /// The link whose shapes this one uses; never null.
  KtManipulatorLink* referenceLink() const noexcept { return referenceLink_; }
  void setReferenceLink(KtManipulatorLink* link) noexcept { referenceLink_ = link; }
  /// Sets the index.
  void setLinkIndex(KtU32 index) noexcept { linkIndex_ = index; }
  /// The own children, to be changed.
  KtXmlVectorType<KtManipulatorLink>& ownChildLinks() noexcept { return childLinks_; }
  /// The own children.
  const KtXmlVectorType<KtManipulatorLink>& ownChildLinks() const noexcept { return childLinks_; }
  /// Sets the parent pointer of the children to this link.
  void adoptChildren();
  /// Registers the label, the joint model and the children.
  void registerTreeComponents();
  /// Registers the base mass properties.
  void registerMassComponent();
  /// Registers the own shapes.
  void registerShapeComponent();
  /// Registers the masses that the link carries.
  void registerMassMapComponent();

 private:
  // Scratch memory of constant operations, and values to which they return references.
  struct Scratch {
    KtShapeQueryData queryData;
    // For a link without a parent: the last result, at which the next query starts
    KtCoordinateSystemTransformation frame;
    KtGeneralMotion velocity;
    // For the attached manipulators
    std::vector<KtU32> dependents;
    KtXmlVectorType<KtCoordinateSystemTransformation> offsets;
    KtRigidBodyMassProperties massProperties;
    KtRigidBodyMassProperties massPropertiesInDHFrame;
  };
  // The default limit constraints, created on first use because each is as long as the state.
  struct LimitConstraint {
    KtMultivariableJointStateConstraint constraint;
    bool made = false;
  };

  Scratch& scratch() const;
  void copyOwnFrom(const KtManipulatorLink& other);
  void rebind();
  void forgetShapeTables();
  void makeLimitConstraint(LimitConstraint& limit, double constant, double coefficient) const;
  const KtBaseStateConstraint& limitConstraint(const KtStateConstraintContainer& container,
                                               LimitConstraint& limit, double constant,
                                               double coefficient) const;
  bool attachments(const KtStatedSystemStruct* asker) const;
  // The result of `massPropertiesInDHFrame`, mostly without a virtual call. Only a base can have a
  // derived class that overrides this query: other links are stored by value in lists.
  const KtRigidBodyMassProperties& knownMass(const KtStatedSystemStruct* asker) const {
    return asker == nullptr && linkIndex_ != ktBaseIndex ? massPropertiesInDHFrame_
                                                         : massPropertiesInDHFrame(asker);
  }
  const KtCoordinateSystemTransformation& jointTransform(
      const KtManipulatorActivePositionState& positionState) const;
  const KtGeneralMotion& knownVelocity(KtManipulatorActiveState& activeState) const;
  const KtGeneralMotion& knownAcceleration(KtManipulatorActiveState& activeState) const;
  void getInboardSupplement(const KtManipulatorExternalForce& external,
                            const KtManipulatorTorque& torque,
                            KtManipulatorActiveState& activeState,
                            const KtStatedSystemStruct* asker, KtVector& linear,
                            KtVector& angular) const;
  const KtShape* topShape() const { return shapeContainer().topElement(); }

  // Written to files
  KtXmlBasicType<std::string> label_;
  KtLinkKinematicsContainer linkKinematicsContainer_;
  KtXmlVectorType<KtManipulatorLink> childLinks_;
  KtShapeContainer memberShapeContainer_;
  KtJointActuator jointActuator_;
  KtOldJointActuator oldJointActuator_;                 // read only
  KtJointActuatorContainer oldJointActuatorContainer_;  // read only
  KtRigidBodyMassProperties baseMassProperties_ = KtRigidBodyMassProperties::nullObject();
  KtSpringProperties springProperties_;
  KtDamperProperties damperProperties_;
  KtLinkReferenceDescription linkReferenceDescription_;
  KtStateConstraintContainer upperLimitContainer_;
  KtStateConstraintContainer lowerLimitContainer_;
  PointMap namedPoints_;
  FrameMap namedFrames_;
  KtXmlBasicType<bool> isConstrained_;
  MassMap massPropertiesMap_;
  // Derived from that
  KtRigidBodyMassProperties massPropertiesInDHFrame_ = KtRigidBodyMassProperties::nullObject();
  KtRigidBodyMassProperties totalMassProperties_ = KtRigidBodyMassProperties::nullObject();
  KtU32 numShapes_ = 0;
  KtShape::ShapeTable shapeTable_;
  KtShape::ShapeVector shapeVector_;
  // Where the link stands; not owned
  KtManipulatorLink* parentLink_ = nullptr;
  KtManipulatorLink* referenceLink_ = this;
  mutable const KtIndividualManipulator* manipulator_ = nullptr;
  KtU32 linkIndex_ = ktUnmappedIndex;
  // Filled by constant operations
  mutable KtOnDemand<LimitConstraint> defaultUpperLimit_;
  mutable KtOnDemand<LimitConstraint> defaultLowerLimit_;
  mutable KtOnDemand<Scratch> scratch_;
};

extern template class KtXmlVectorType<KtManipulatorLink>;
