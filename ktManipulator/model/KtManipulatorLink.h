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

// Ahead of every use: one that doesn't see these would make its own instances, which are hidden,
// and with them those that the library is to export.
extern template class KtXmlVectorType<KtCoordinateSystemTransformation>;
extern template class KtXmlMapType<KtXmlBasicType<std::string>, KtXmlVector>;
extern template class KtXmlMapType<KtXmlBasicType<std::string>, KtCoordinateSystemTransformation>;

/// One rigid body of a mechanism together with the joint that joins it to its parent.
///
/// Links form a tree by value: a link holds its children inside itself, so that a copy of a link is
/// a copy of the whole subtree below it. `KtIndividualManipulator` is the root of such a tree.
///
/// Two frames belong to a link: the DH frame, in which the joint's transformation ends, and the
/// primary frame, fixed to it, in which shapes, mass properties, named points and named frames are
/// given. What is named `InLocal` stands in the DH frame's axes, about its origin; what is named
/// `InSystem` stands in the axes of the system. Units are m, kg, s and rad.
///
/// A link may use the shapes of another link of its manipulator instead of its own, which its
/// reference description says; the manipulator resolves the reference when it maps its links.
/// Mass, kinematics, actuator, spring, damper, points and frames are never shared.
///
/// Queries of frames, motions, forces and inertias keep their answers in the active state, and
/// answer references into it, which hold until that state is set anew or has another number of
/// links. A link that lies outside of the state's lists is reported, and answered by one of the
/// shared values below. An answer that is kept is given again for other external forces, torques
/// or askers: whoever changes these makes the active state invalid first.
///
/// Labels are unique within a manipulator by convention; where two links have the same, the label
/// leads to the later one in pre-order and the index to either.
///
/// An active state that has no entry for the link is reported, and the answer is a dummy. What a
/// state holds of inertias, forces and articulated dynamics was computed for the forces, torques
/// and asker of the first query: a caller who has others calls `invalidateAll` on the state before.
///
/// Constant operations fill scratch members and caches of the active state: a link belongs to one
/// thread at a time. Links that hold children move in memory when their parent's list of children
/// grows: pointers to links hold until then.
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

  // What queries answer when they fail.

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
  /// A copy of the whole subtree. It keeps the other's parent and index until it is added or mapped
  /// anew, belongs to no manipulator, and uses its own shapes until references are resolved.
  KtManipulatorLink(const KtManipulatorLink& other);
  /// The same as a copy; an assignment to itself changes nothing.
  KtManipulatorLink& operator=(const KtManipulatorLink& other);

  /// Reads the link and its subtree; see `KtXmlObject::read`. Actuators in the form of older files
  /// take the place of the new form's.
  bool read(KtXmlReader& reader) override;
  void registerComponents() override;

  /// Name of the link.
  virtual const std::string& label() const;
  /// Sets what `label()` answers and nothing else; see `KtIndividualManipulator::changeLinkLabel`.
  virtual void setLabel(const std::string& label);
  /// Appends a text to the labels of this link and all below it.
  virtual void appendToAllLabels(const std::string& suffix);
  /// Gives a shape, of the link whose shapes this one uses, a map of surfaces.
  ///
  /// @return false if there is no such shape
  virtual bool setSurfacesByShapeID(const KtU32& shapeIndex, const KtSurfaceMap& surfaces);
  /// `setSurfacesByShapeID` on the first link of a label in this subtree that answers true.
  virtual bool setSurfaces(const std::string& label, const KtU32& shapeIndex,
                           const KtSurfaceMap& surfaces);
  /// The holder of the joint model that leads from the parent's DH frame to this link's.
  virtual const KtLinkKinematicsContainer& linkKinematicsContainer() const;
  /// Sets what `linkKinematicsContainer()` answers, and brings the mass in the DH frame up to date.
  virtual void setLinkKinematicsContainer(const KtLinkKinematicsContainer& container);
  /// Replaces the joint model by a copy of another. The mass in the DH frame stays as it is; see
  /// `updateDHMassProperties`.
  virtual void setLinkKinematics(const KtLinkKinematics& kinematics);
  /// The children, in the order of all walks.
  virtual const KtXmlVectorType<KtManipulatorLink>& childLinks() const;
  /// Sets what `childLinks()` answers.
  virtual void setChildLinks(const KtXmlVectorType<KtManipulatorLink>& links);
  /// Appends a copy of a link to the children.
  virtual void addChild(const KtManipulatorLink& link);
  /// Removes all children.
  virtual void clearChildLinks();
  /// Appends a copy of a link to the last link of the path of first children.
  virtual void addLinkToEndOfChain(const KtManipulatorLink& link);
  /// The extent of the shape that this link uses. Without one the answer is
  /// `m_theDummyPhysicalExtent`, with a message.
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
  /// Sets the primary frame, to which shapes and masses stay fixed, and brings the mass in the DH
  /// frame up to date. Reported without a joint model, unless it is the identity.
  virtual void setPrimaryFrame(const KtCoordinateSystemTransformation& frame);
  /// The joint's actuator.
  virtual const KtJointActuator& jointActuator() const;
  /// Sets what `jointActuator()` answers, bound to this link, and its limits' constraints.
  virtual void setJointActuator(const KtJointActuator& actuator);
  /// Cuts the coordinates of the shapes down to a precision; see
  /// `KtBasePhysicalExtent::truncateValues`. Of this link alone.
  virtual void truncateValues(const double& precision);
  /// The link's mass properties in the primary frame: the base, all masses it carries, and, where
  /// the asker is given, the root links of the manipulators that are attached to it.
  ///
  /// @return a reference that holds until the next call on this link
  virtual const KtRigidBodyMassProperties& massProperties(
      const KtStatedSystemStruct* asker = nullptr) const;
  /// Sets the mass properties of the link proper; the masses it carries are gone.
  virtual void setMassProperties(const KtRigidBodyMassProperties& properties);
  /// The mass properties of the link proper, in the primary frame.
  virtual const KtRigidBodyMassProperties& baseMassProperties() const;
  /// Sets what `baseMassProperties()` answers; the masses it carries stay.
  virtual void setBaseMassProperties(const KtRigidBodyMassProperties& properties);
  /// The masses that the link carries, by name, in the primary frame.
  virtual const MassMap& massPropertiesMap() const;
  /// Sets what `massPropertiesMap()` answers.
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
  /// Sets what `springProperties()` answers.
  virtual void setSpringProperties(const KtSpringProperties& properties);
  /// The joint's damper.
  virtual const KtDamperProperties& damperProperties() const;
  /// Sets what `damperProperties()` answers.
  virtual void setDamperProperties(const KtDamperProperties& properties);
  /// Whose shapes this link uses.
  virtual const KtLinkReferenceDescription& linkReferenceDescription() const;
  /// Sets what `linkReferenceDescription()` answers; it is resolved at the next mapping.
  virtual void setLinkReferenceDescription(const KtLinkReferenceDescription& description);
  /// The torque of the spring and the damper at the joint. Reported, and 0, without a manipulator.
  virtual double totalLocalTorque(KtManipulatorActiveState& activeState) const;
  /// `massProperties` in the DH frame.
  virtual const KtRigidBodyMassProperties& massPropertiesInDHFrame(
      const KtStatedSystemStruct* asker = nullptr) const;
  /// Brings the mass properties in the DH frame up to date with the total and the primary frame.
  virtual void updateDHMassProperties();
  /// Moves the base mass properties and the own shapes, and nothing else: what follows from the
  /// mass is brought up to date by the caller.
  virtual void transformComponentsBy(KtCoordinateSystemTransformation t);
  /// The link that holds this one, or null.
  virtual KtManipulatorLink* parentLink() const;
  /// Sets what `parentLink()` answers.
  virtual void setParentLink(KtManipulatorLink* link);
  /// Position of this link in its manipulator's table, by which state vectors are indexed;
  /// `ktUnmappedIndex` for a link that was never mapped.
  virtual KtU32 linkIndex() const;
  /// Number of links in this subtree, this one counted.
  virtual KtU32 subtreeLinkCount() const;
  /// The value of "ktCollisionAvoidanceMetric" among the properties of the shape's own surface; 1
  /// without.
  virtual double lookupCollisionAvoidanceMetric() const;
  /// Numbers and registers this subtree in pre-order. Of two links of one label the later one has
  /// the entry of the label table.
  ///
  /// @param links   receives the links, each at its index
  /// @param labels  receives the links by label
  /// @return        whether all overrides answered true
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
  /// What torques and forces add to the acceleration of the DH frame, in DH axes.
  virtual const KtGeneralMotion& arbiSupplementalDhFrameAccelerationInLocal(
      const KtManipulatorExternalForce& external, const KtManipulatorTorque& torque,
      KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const;
  /// The joint's acceleration under torques and forces.
  virtual double arbiJointAcceleration(const KtManipulatorExternalForce& external,
                                       const KtManipulatorTorque& torque,
                                       KtManipulatorActiveState& activeState,
                                       const KtStatedSystemStruct* asker) const;
  /// Appends the links without children in this subtree, in order.
  virtual void collectLeafLinks(LinkTable& links) const;
  /// Prepares the link for display. Does nothing: a hook for derived classes.
  virtual void optimizeForRendering();
  /// Looks up the properties of a surface: in the shape that this link uses, then in the
  /// manipulator. False for a link without a shape.
  ///
  /// @param data  receives the properties, or null
  virtual bool lookup(const std::string& label, const KtDataMap*& data) const;
  /// `optimizeForRendering` on this link and all below it.
  virtual void recursiveOptimizeForRendering();
  /// Where distance queries on this link keep what starts the next one near the last.
  virtual KtShapeQueryData& queryData() const;
  /// The manipulator of this link, or null if it was not mapped by one.
  virtual const KtIndividualManipulator* manipulator() const;
  /// Sets what `manipulator()` answers.
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
  /// @param counter  the first number; receives the one behind the last
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
  /// Scales shapes, base mass at constant density, primary frame, joint model and actuator. The sum
  /// of masses stays until `updateMassProperties`; that in the DH frame is it, in the new frame.
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
  /// Is to find where a line segment meets the shapes of this link. It does nothing yet.
  ///
  /// @param segment      in system axes
  /// @param event        is to receive the nearest point that is met; stays as it is
  /// @param activeState  the position; null finds nothing
  /// @param level        the bounding-volume level of the shapes to be met
  virtual void intersectLineSegment(const KtLineSegment& segment, KtLinkPointEvent& event,
                                    KtManipulatorActiveState* activeState, KtU32 level) const;
  /// Resolves the references of this subtree to other links' shapes by their labels. A label that
  /// no link has is reported, and the link uses its own shapes.
  ///
  /// @return true
  virtual bool setLinkReferences(const LabelTable& labels);
  /// Lets every link of this subtree but a base use the shapes of the first link of lower index
  /// that has equal ones and is the one that its label leads to; its own are emptied.
  ///
  /// @return whether any link was changed
  virtual bool useReferencesWherePossible(const LinkTable& links);
  /// Gives this link own copies of the shapes that it uses by reference.
  ///
  /// @return true
  virtual bool removeLinkReferences();
  /// Sets the mass properties to those of the capsule around the shape at a density of 2700 kg/m^3.
  /// Without a shape it is reported, and the default object taken.
  virtual void estimateMassProperties();
  /// Shape n of the physical representation: a member of a union of shapes, otherwise the shape
  /// itself, whatever n is. Null without a shape, for a member that isn't there, and for a union of
  /// extents.
  virtual const KtShape* getNthNonBoundingShape(KtU32 n) const;
  /// Appends the own shapes that stand for the link at a level of precision; see
  /// `KtShape::boundingVolumes`.
  virtual void boundingVolumes(KtShape::ShapeVector& volumes, const KtU32& level) const;
  /// `deleteBoundingVolumes` on this link and all below it.
  virtual void deleteAllBoundingVolumes();
  /// Sets a joint limit of the link of a label in this subtree.
  ///
  /// @param lower  whether it is the lower one
  /// @return       false if there is no such link
  virtual bool setJointLimit(const std::string& label, bool lower, double value);
  /// Gives the link of a label in this subtree the properties of another link; its label, children
  /// and `isConstrained()` stay.
  ///
  /// @param withShape  whether it gets the shapes too
  /// @return           false if there is no such link
  virtual bool replaceLinkProperties(const std::string& label, const KtManipulatorLink& source,
                                     bool withShape);
  /// Sets the mass properties of every link of a label in this subtree.
  ///
  /// @return false, as programs have come to expect of it
  virtual bool replaceMassProperties(const std::string& label,
                                     const KtRigidBodyMassProperties& properties);
  /// Gives the own shapes the properties of a surface; see `KtShape::setSurfaceProperties`.
  ///
  /// @return whether any shape took them
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
  /// The moment of the inertial forces of this subtree, mass times acceleration of each link's
  /// centre of mass, about a point of the system, in system axes. Rates of the links' own angular
  /// momenta are not in it.
  ///
  /// @param moment  receives it; not the same object as the point
  virtual void computeMomentFromLinearAcceleration(const KtVector& point,
                                                   KtManipulatorActiveState& activeState,
                                                   KtVector& moment,
                                                   const KtStatedSystemStruct* asker) const;
  /// The constraint that is at least 0 below the joint's upper limit: the one that was set, or else
  /// the actuator's limit minus the joint's position. That one is made when it is first asked for.
  virtual const KtBaseStateConstraint& upperLimitConstraint() const;
  /// Sets what `upperLimitConstraint()` answers, to a copy.
  virtual void setUpperLimitConstraint(const KtBaseStateConstraint& constraint);
  /// The constraint that is at least 0 above the joint's lower limit; see `upperLimitConstraint`.
  virtual const KtBaseStateConstraint& lowerLimitConstraint() const;
  /// Sets what `lowerLimitConstraint()` answers, to a copy.
  virtual void setLowerLimitConstraint(const KtBaseStateConstraint& constraint);
  /// Points of interest, in the primary frame.
  virtual const PointMap& namedPoints() const;
  /// Sets what `namedPoints()` answers.
  virtual void setNamedPoints(const PointMap& points);
  /// Looks up a named point; false, and the argument unchanged, if there is none.
  virtual bool lookupNamedPoint(const std::string& name, KtVector& point) const;
  /// Adds a named point. A name that exists is reported and keeps its point.
  virtual void addNamedPoint(const std::string& name, const KtVector& point);
  /// Frames of interest, in the primary frame.
  virtual const FrameMap& namedFrames() const;
  /// Sets what `namedFrames()` answers.
  virtual void setNamedFrames(const FrameMap& frames);
  /// Looks up a named frame; false, and the argument unchanged, if there is none.
  virtual bool lookupNamedFrame(const std::string& name,
                                KtCoordinateSystemTransformation& frame) const;
  /// Adds a named frame. A name that exists is reported and keeps its frame.
  virtual void addNamedFrame(const std::string& name,
                             const KtCoordinateSystemTransformation& frame);
  /// Whether the joint is marked as constrained.
  virtual bool isConstrained() const;
  /// Sets what `isConstrained()` answers.
  virtual void setIsConstrained(bool value);
  /// Brings the constraints that follow from the actuator's limits up to date. A link that has no
  /// place in a state vector, as a root or one that was never mapped, gets constants alone.
  virtual void updateDefaultLimitConstraints();
  /// Brings the total mass properties up to date with the base and the masses carried.
  virtual void updateMassProperties();

  /// Whether two links are alike in everything but their own labels; the children are compared with
  /// theirs. What a link is derived from, its parent, index and manipulator don't count.
  bool equalForReferencing(const KtManipulatorLink& other) const;
  /// Takes over all of another link but its children, under the rules of a copy. From itself it
  /// removes the children, which is all that it does then.
  void copyAllButChildLinksFrom(const KtManipulatorLink& other);
  /// Gives another link this link's label, damper, actuator, joint model, mass, spring and shapes.
  /// The shapes are copied even where they are another link's.
  void copyLinkProperties(KtManipulatorLink& target) const;
  /// Adds a bounding volume of a kind to the own shapes; see `KtShapeContainer::addBoundingVolume`.
  bool addBoundingVolume(KtShape::KtShapeValues type);
  /// `replaceMassProperties` for the actuator, with the same result.
  bool replaceJointActuator(const std::string& label, const KtJointActuator& actuator);

  /// How the joint moves, if it is a plain joint of Denavit and Hartenberg; null for any other, for
  /// which its model is to be asked. For passes over many links.
  const Kt::detail::JointMotion* jointMotion() const noexcept {
    const KtLinkKinematics* model = linkKinematicsContainer_.topElement();
    // A class derived from that joint may move otherwise.
    return model != nullptr && typeid(*model) == typeid(KtDenavitHartenberg)
               ? static_cast<const KtDenavitHartenberg*>(model)->jointMotion()
               : nullptr;
  }
  /// How the joint moves at a unit of its rate at the positions, as its model answers it: without
  /// the centripetal part.
  Kt::detail::JointMotion askedUnitMotion(
      const KtManipulatorActivePositionState& positionState) const;

  /// What `linkIndex()` answers, `parentLink()` and `jointActuator()`, without virtual calls.
  KtU32 mappedIndex() const noexcept { return linkIndex_; }
  /// See there.
  const KtManipulatorLink* inboardLink() const noexcept { return parentLink_; }
  /// See there.
  const KtJointActuator& actuator() const noexcept { return jointActuator_; }
  /// The link's entry of a state, with its joint transform valid. A link beyond the state's end is
  /// reported as by `dhFrameInSystem`, and gets a shared entry with the identity.
  const KtLinkPositionState& placedJoint(KtManipulatorActivePositionState& positionState) const;

  /// Equality of everything that is written to files.
  bool operator==(const KtManipulatorLink& other) const;
  /// Name of the class in files.
  static const KtToken& classToken() { return KtManip::KtManipulatorLinkToken; }

 protected:
  /// The link whose shapes this one uses; never null.
  KtManipulatorLink* referenceLink() const noexcept { return referenceLink_; }
  /// Sets what `referenceLink()` answers.
  void setReferenceLink(KtManipulatorLink* link) noexcept { referenceLink_ = link; }
  /// Sets the index.
  void setLinkIndex(KtU32 index) noexcept { linkIndex_ = index; }
  /// The own children, to be changed.
  KtXmlVectorType<KtManipulatorLink>& ownChildLinks() noexcept { return childLinks_; }
  /// The own children.
  const KtXmlVectorType<KtManipulatorLink>& ownChildLinks() const noexcept { return childLinks_; }
  /// Tells the children that this link holds them.
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
  // What constant operations work with or answer by reference.
  struct Scratch {
    KtShapeQueryData queryData;
    // Of a link without a parent: what it found last, which it goes on from
    KtCoordinateSystemTransformation frame;
    KtGeneralMotion velocity;
    // Of the attached manipulators
    std::vector<KtU32> dependents;
    KtXmlVectorType<KtCoordinateSystemTransformation> offsets;
    KtRigidBodyMassProperties massProperties;
    KtRigidBodyMassProperties massPropertiesInDHFrame;
  };
  // Constraints from the actuator's limits, made on first need: one is as long as the state.
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
  // What `massPropertiesInDHFrame` answers, without a virtual call where the own mass does. A class
  // derived from the base may have another opinion; links stand by value in lists.
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
