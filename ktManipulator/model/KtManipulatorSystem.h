#pragma once

#include <string>
#include <vector>

#include "ktManipulator/collision/KtSystemCollisionExclusionMap.h"
#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/foundation/geometry/KtSphere.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"
#include "ktManipulator/model/KtIndividualManipulator.h"
#include "ktManipulator/model/KtManipulatorAttachmentMap.h"
#include "ktManipulator/model/KtSystemEnvironment.h"
#include "ktManipulator/propagation/KtLinkInteractionsVector.h"
#include "ktManipulator/state/KtManipulatorSystemState.h"
#include "ktManipulator/state/KtManipulatorTorque.h"

class KtManipulatorActiveState;
class KtShapeStateCacheKey;
class KtSystemActiveState;

/// The model of a scene: its manipulators (by value), environment, interactions between links,
/// collision exclusions and attachments.
///
/// A system has no positions; these are in a `KtManipulatorSystemState`. `KtStatedSystem` holds a
/// system together with a state. The index of a manipulator is its position in `manipulators()` and
/// in the lists of states.
///
/// A manipulator may reference another one of the system and use its links. Only the system can end
/// this sharing, so call `aboutToModifyManipulator` before changing one of them other than through
/// the system. After every change the system renumbers its manipulators, resolves each reference to
/// the first manipulator of the label, and updates the links of the exclusion map.
///
/// Attachments, exclusions and interactions name manipulators by index. Deleting a manipulator
/// doesn't update these indices; the caller must set them again.
class KT_EXPORT KtManipulatorSystem
    : public KtXmlPersistent<KtManipulatorSystem, KtXmlCompoundType> {
 public:
  /// The type of the list of manipulators.
  using ManipulatorVector = KtXmlVectorType<KtIndividualManipulator>;

  /// A system without manipulators.
  KtManipulatorSystem() = default;
  /// A copy, in which each reference leads to the copy of the referenced manipulator.
  KtManipulatorSystem(const KtManipulatorSystem& other);
  /// The same as a copy; an assignment to itself changes nothing.
  KtManipulatorSystem& operator=(const KtManipulatorSystem& other);

  bool read(KtXmlReader& reader) override;
  void registerComponents() override;

  /// Appends the manipulators of another system, which may be this one, and the attachments between
  /// them. Environment, interactions and exclusions of the other system are not copied.
  ///
  /// @return true
  virtual bool mergeWith(const KtManipulatorSystem& other);
  /// Number of joints of all manipulators.
  virtual KtU32 jointDof() const;
  /// Number of joints of one manipulator; a bad index is reported and gives 0.
  virtual KtU32 jointDof(const KtU32& index) const;
  /// Number of joints of all manipulators, plus six for each manipulator.
  virtual KtU32 jointAndBaseDof() const;
  /// The environment of the manipulators.
  virtual const KtSystemEnvironment& environment() const;
  virtual void setEnvironment(const KtSystemEnvironment& environment);
  /// The manipulators.
  virtual const ManipulatorVector& manipulators() const;
  /// Replaces all manipulators and maps them; the argument may be the system's own list.
  virtual void setManipulators(const ManipulatorVector& manipulators);
  /// Appends a copy of a manipulator.
  virtual void addManipulator(const KtIndividualManipulator& manipulator);
  /// Replaces a manipulator by a copy of another. Those that reference it keep its old links.
  ///
  /// @return false for a bad index
  virtual bool exchangeManipulator(KtU32 index, const KtIndividualManipulator& manipulator);
  /// The same for the first manipulator of a label; false if there is none.
  virtual bool exchangeManipulator(const std::string& label,
                                   const KtIndividualManipulator& manipulator);
  /// Deletes the first manipulator of a label, its attachment and those of its dependents. The
  /// manipulators that reference it keep its links.
  ///
  /// @return its index, or 0xFFFFFFFF if there is none
  virtual KtU32 deleteManipulator(const std::string& label);
  /// Deletes a manipulator. The manipulators that reference it keep its links. Whichever
  /// manipulator is deleted, the call removes the attachments of manipulator 0 and of its
  /// dependents; programs rely on this.
  ///
  /// @return false for a bad index
  virtual bool deleteManipulator(KtU32 index);
  /// The first manipulator of a label, or null.
  virtual const KtIndividualManipulator* manipulatorByIdentifier(const std::string& label) const;
  /// Sets the index of each manipulator and resolves its reference. The links are not
  /// renumbered.
  virtual void mapManipulators();
  /// Builds the tree of boxes around the manipulators that can't move: those with a fixed base and
  /// no joints.
  ///
  /// @param activeStates  one for each manipulator; may be filled further
  virtual void buildBoundingBoxTreeFromEnvironment(
      KtXmlVectorType<KtManipulatorActiveState>& activeStates);
  /// Makes this the system of one manipulator without interactions. Environment, exclusions and
  /// attachments stay.
  virtual void setFromIndividualManipulator(const KtIndividualManipulator& manipulator);
  /// The forces that act between links.
  virtual const KtLinkInteractionsVector& linkInteractionsVector() const;
  virtual void setLinkInteractionsVector(const KtLinkInteractionsVector& interactions);
  /// The pairs of links of different manipulators that are never tested for collision.
  virtual const KtSystemCollisionExclusionMap& collisionExclusionMap() const;
  /// Sets the map and compiles it for the present links.
  virtual void setCollisionExclusionMap(const KtSystemCollisionExclusionMap& map);
  /// The manipulators whose base is fixed to a link of another one.
  virtual const KtManipulatorAttachmentMap& manipulatorAttachmentMap() const;
  /// Leaves out each attachment that fixes one of the system's manipulators to a manipulator or
  /// link that the system doesn't have.
  virtual void setManipulatorAttachmentMap(const KtManipulatorAttachmentMap& map);
  /// Advances all positions of a state, and its time, by a time step, s, at its velocities; see
  /// `KtIndividualManipulator::propagateState`. Attachments, collisions and stopping criteria are
  /// not looked at: see `KtStatedSystem::propagateTo`.
  virtual void propagateStateBy(KtManipulatorSystemState& state, double dt) const;
  /// Advances the position of one manipulator; a bad index does nothing.
  virtual void propagateSingleStateBy(KtU32 index, const KtVelocityState& velocity, double dt,
                                      KtPositionState& position) const;
  /// Resizes an incompatible state to this system. It keeps the time, the bases and the existing
  /// joints; missing joints get the position 1e-9 and the velocity 0. It also adds 1e-9 to all
  /// existing joint positions, even of manipulators whose size is right; don't call it with an
  /// incompatible state if these positions must not change.
  virtual void rightSizeState(KtManipulatorSystemState& state) const;
  /// Whether a state has as many positions and velocities as there are manipulators, each of as
  /// many joints.
  virtual bool isCompatible(const KtManipulatorSystemState& state) const;
  /// A sphere, in the system, around all manipulators with their bases as in a state and their
  /// joints in any position; empty without manipulators. If the state has another size, this is
  /// reported, and only manipulators that have a position are included.
  virtual KtSphere absoluteBoundingSphere(const KtManipulatorSystemState& state) const;
  /// The number of manipulators.
  virtual KtU32 numberOfManipulators() const;
  /// Sums the forces of all interactions into the active state, unless its forces are valid.
  ///
  /// @param activeState  the state, which receives the forces
  /// @param time         the present time, s
  /// @param torques      the joint torques, one record per manipulator
  virtual void processLinkInteractions(KtSystemActiveState& activeState, const KtReal& time,
                                       const KtXmlVectorType<KtManipulatorTorque>& torques) const;
  /// The level of bounding volumes at which contact is computed: that of the last contact
  /// interaction, or 0 without one.
  virtual KtU32 collisionDetectionPrecisionLevel() const;
  /// Makes manipulators that are equal except for their labels share their links, and makes links
  /// of a manipulator share equal shapes.
  ///
  /// @return true
  virtual bool findAndConvertToReferences();
  /// Sets the surfaces of a shape; false if there is no such shape.
  virtual bool setSurfacesByKey(const KtShapeStateCacheKey& key, const KtSurfaceMap& surfaces);
  /// Sets a joint limit of a manipulator's link; see `KtManipulatorLink::setJointLimit`.
  ///
  /// @param lower  whether it is the lower one
  /// @return       false if there is no such link; a bad index is reported too
  virtual bool setJointLimit(KtU32 index, const std::string& label, bool lower, double value);
  /// Whether two links of different manipulators are not excluded from collision;
  /// `ktBaseIndex` for a root.
  virtual bool canCollide(KtU32 manipulator1, KtU32 link1, KtU32 manipulator2, KtU32 link2) const;
  /// Replaces the properties of a manipulator's link by those of another link; see
  /// `KtManipulatorLink::replaceLinkProperties`.
  ///
  /// @param withShape  whether the shapes are replaced, too
  /// @return           false if there is no such link; a bad index is reported too
  virtual bool replaceLinkProperties(KtU32 index, const std::string& label,
                                     const KtManipulatorLink& link, bool withShape);
  /// Truncates the coordinates of all shapes to a precision; see
  /// `KtIndividualManipulator::truncateValues`.
  virtual void truncateValues(const double& precision);
  /// Resizes a table of counters for all shapes: by manipulator, by link (the base in row 0, link r
  /// in row r + 1), by shape.
  ///
  /// @param counters  is resized; new entries are 0, existing ones stay
  virtual void getNumberOfShapes(std::vector<std::vector<std::vector<int>>>& counters) const;
  /// Ends the sharing of the first manipulator of a label; see the form by index. False if there is
  /// none.
  virtual bool aboutToModifyManipulator(const std::string& label);
  /// Ends the sharing of a manipulator that is about to change. If others reference it, the first
  /// of them gets the links, and the rest reference that one. If it references another one itself,
  /// they reference that one instead, and it gets a copy of the links. Labels stay.
  ///
  /// @return false, with a message, for a bad index. If a manipulator references itself or one that
  ///         can't be found, this is reported and the reference stays.
  virtual bool aboutToModifyManipulator(KtU32 index);
  /// Updates `collisionDetectionPrecisionLevel()` after a change of the interactions.
  virtual void computeCollisionDetectionPrecisionLevel();

  /// Sets which links of a manipulator may collide with each other; false for a bad index.
  bool setSelfCollisionMap(const KtManipulatorSelfCollisionLinkMap& map, const KtU32& index);
  /// Collects a, alpha and d of each link of all manipulators, in order. The row of a link whose
  /// joint is not of the craig convention, or has a precursor, is empty. Manipulators that stand
  /// for another have no rows.
  ///
  /// @return true
  bool getCraigDhParameters(std::vector<std::vector<double>>& parameters) const;

  bool operator==(const KtManipulatorSystem& other) const;
  static const KtToken& classToken() { return KtManip::KtManipulatorSystemToken; }

 private:
  friend class KtStatedSystem;  // to let a manipulator be built in place

  void mapAll();
  void detachWithDependents(KtU32 index);
  void handLinksOn(KtU32 index);
  void resolveReference(KtU32 index);
  void assignLinks(KtU32 index, KtU32 source);

  // Written to files
  KtSystemEnvironment environment_;
  ManipulatorVector manipulators_;
  KtLinkInteractionsVector linkInteractionsVector_;
  KtSystemCollisionExclusionMap collisionExclusionMap_;
  KtManipulatorAttachmentMap manipulatorAttachmentMap_;
  // Derived from that
  KtU32 collisionDetectionPrecisionLevel_ = 0;
};
