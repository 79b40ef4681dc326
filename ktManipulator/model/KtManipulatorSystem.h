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

/// The model of a whole scene: its manipulators by value, what surrounds them, the forces that act
/// between their links, which of them never collide, and which are attached to which.
///
/// It knows no positions: see `KtManipulatorSystemState`, of which `KtStatedSystem` holds one
/// beside the system. What is said of a manipulator's index here means its place in
/// `manipulators()`, by which the lists of states go too.
///
/// A manipulator may stand for another one of the system and then uses that one's links. The
/// sharing ends when one of the two is about to change; this system alone can see to that (see
/// `aboutToModifyManipulator`). After every change each manipulator knows its index, stands for the
/// first manipulator of the label that it names, and the exclusion map knows the present links.
///
/// The maps that name manipulators by index, those of attachments and exclusions and the
/// interactions, are not rewritten when a manipulator is deleted: that is the caller's matter.
class KT_EXPORT KtManipulatorSystem
    : public KtXmlPersistent<KtManipulatorSystem, KtXmlCompoundType> {
 public:
  /// The type of the list of manipulators.
  using ManipulatorVector = KtXmlVectorType<KtIndividualManipulator>;

  /// A system without manipulators.
  KtManipulatorSystem() = default;
  /// A copy, in which each manipulator that stands for another stands for the copy of that one.
  KtManipulatorSystem(const KtManipulatorSystem& other);
  /// The same as a copy; an assignment to itself changes nothing.
  KtManipulatorSystem& operator=(const KtManipulatorSystem& other);

  bool read(KtXmlReader& reader) override;
  void registerComponents() override;

  /// Appends the manipulators of another system, which may be this one, and their attachments to
  /// each other. Its environment, interactions and exclusions are left behind.
  ///
  /// @return true
  virtual bool mergeWith(const KtManipulatorSystem& other);
  /// Number of joints of all manipulators.
  virtual KtU32 jointDof() const;
  /// Number of joints of one manipulator; a bad index is reported and gives 0.
  virtual KtU32 jointDof(const KtU32& index) const;
  /// Number of joints of all manipulators, and six for each of them.
  virtual KtU32 jointAndBaseDof() const;
  /// What surrounds the manipulators.
  virtual const KtSystemEnvironment& environment() const;
  /// Sets what `environment()` answers.
  virtual void setEnvironment(const KtSystemEnvironment& environment);
  /// The manipulators.
  virtual const ManipulatorVector& manipulators() const;
  /// Sets what `manipulators()` answers, and maps them; the argument may be the own list.
  virtual void setManipulators(const ManipulatorVector& manipulators);
  /// Appends a copy of a manipulator.
  virtual void addManipulator(const KtIndividualManipulator& manipulator);
  /// Replaces a manipulator by a copy of another. Those that stood for the old one keep its links.
  ///
  /// @return false for a bad index
  virtual bool exchangeManipulator(KtU32 index, const KtIndividualManipulator& manipulator);
  /// The same for the first manipulator of a label; false if there is none.
  virtual bool exchangeManipulator(const std::string& label,
                                   const KtIndividualManipulator& manipulator);
  /// Deletes the first manipulator of a label. Those that stood for it keep its links; it and those
  /// attached to it are attached no more.
  ///
  /// @return its index, or 0xFFFFFFFF if there is none
  virtual KtU32 deleteManipulator(const std::string& label);
  /// Deletes a manipulator. Those that stood for it keep its links. Whichever manipulator that is,
  /// it is manipulator 0 and those attached to it that are attached no more; programs have come to
  /// rely on it.
  ///
  /// @return false for a bad index
  virtual bool deleteManipulator(KtU32 index);
  /// The first manipulator of a label, or null.
  virtual const KtIndividualManipulator* manipulatorByIdentifier(const std::string& label) const;
  /// Tells each manipulator its index and resolves what it stands for. The links are not numbered
  /// anew.
  virtual void mapManipulators();
  /// Builds the tree of boxes around the manipulators that can't move: those of a fixed base and
  /// without joints.
  ///
  /// @param activeStates  one for each manipulator; may be filled further
  virtual void buildBoundingBoxTreeFromEnvironment(
      KtXmlVectorType<KtManipulatorActiveState>& activeStates);
  /// Makes this the system of one manipulator without interactions. Environment, exclusions and
  /// attachments stay.
  virtual void setFromIndividualManipulator(const KtIndividualManipulator& manipulator);
  /// The forces that act between links.
  virtual const KtLinkInteractionsVector& linkInteractionsVector() const;
  /// Sets what `linkInteractionsVector()` answers.
  virtual void setLinkInteractionsVector(const KtLinkInteractionsVector& interactions);
  /// What of different manipulators never collides.
  virtual const KtSystemCollisionExclusionMap& collisionExclusionMap() const;
  /// Sets what `collisionExclusionMap()` answers, and compiles it for the present links.
  virtual void setCollisionExclusionMap(const KtSystemCollisionExclusionMap& map);
  /// Which manipulators have their base fixed to a link of another.
  virtual const KtManipulatorAttachmentMap& manipulatorAttachmentMap() const;
  /// Sets what `manipulatorAttachmentMap()` answers. Attachments of a manipulator of this system to
  /// a manipulator or a link that it doesn't have are left out.
  virtual void setManipulatorAttachmentMap(const KtManipulatorAttachmentMap& map);
  /// Advances all positions of a state, and its time, by a time step, s, at its velocities; see
  /// `KtIndividualManipulator::propagateState`. Attachments, collisions and stopping criteria are
  /// not looked at: see `KtStatedSystem::propagateTo`.
  virtual void propagateStateBy(KtManipulatorSystemState& state, double dt) const;
  /// Advances the position of one manipulator; a bad index does nothing.
  virtual void propagateSingleStateBy(KtU32 index, const KtVelocityState& velocity, double dt,
                                      KtPositionState& position) const;
  /// Gives a state that is not compatible the sizes of this system. The time stays, and of each
  /// manipulator the base and as many joints as there are; joints that miss get the position 1e-9
  /// and the velocity 0. All joint positions that stay grow by 1e-9 too, those of manipulators of
  /// the right size included: where they must stay to the bit, don't ask it of such a state.
  virtual void rightSizeState(KtManipulatorSystemState& state) const;
  /// Whether a state has as many positions and velocities as there are manipulators, each of as
  /// many joints.
  virtual bool isCompatible(const KtManipulatorSystemState& state) const;
  /// A sphere around all manipulators with their joints in any position and their bases as in a
  /// state, in the system; without a point if there is none. A state of another size is reported,
  /// and those manipulators that have one are taken.
  virtual KtSphere absoluteBoundingSphere(const KtManipulatorSystemState& state) const;
  /// How many manipulators there are.
  virtual KtU32 numberOfManipulators() const;
  /// Sums the forces of all interactions into the active state's forces, unless those are valid.
  ///
  /// @param activeState  the state, which receives the forces
  /// @param time         the present time, s
  /// @param torques      the joint torques, one record per manipulator
  virtual void processLinkInteractions(KtSystemActiveState& activeState, const KtReal& time,
                                       const KtXmlVectorType<KtManipulatorTorque>& torques) const;
  /// The level of bounding volumes at which contact is computed, as the last contact interaction
  /// says; 0 without one.
  virtual KtU32 collisionDetectionPrecisionLevel() const;
  /// Lets manipulators that are alike but for their labels share their links, and within each those
  /// links that have equal shapes share these.
  ///
  /// @return true
  virtual bool findAndConvertToReferences();
  /// Gives a shape a map of surfaces; false if there is no such shape.
  virtual bool setSurfacesByKey(const KtShapeStateCacheKey& key, const KtSurfaceMap& surfaces);
  /// Sets a joint limit of a manipulator's link; see `KtManipulatorLink::setJointLimit`.
  ///
  /// @param lower  whether it is the lower one
  /// @return       false if there is no such link; a bad index is reported too
  virtual bool setJointLimit(KtU32 index, const std::string& label, bool lower, double value);
  /// Whether two links of different manipulators are not excluded from collision;
  /// `ktBaseIndex` for a root.
  virtual bool canCollide(KtU32 manipulator1, KtU32 link1, KtU32 manipulator2, KtU32 link2) const;
  /// Gives a manipulator's link the properties of another; see
  /// `KtManipulatorLink::replaceLinkProperties`.
  ///
  /// @param withShape  whether it gets the shapes too
  /// @return           false if there is no such link; a bad index is reported too
  virtual bool replaceLinkProperties(KtU32 index, const std::string& label,
                                     const KtManipulatorLink& link, bool withShape);
  /// Cuts the coordinates of all shapes down to a precision; see
  /// `KtIndividualManipulator::truncateValues`.
  virtual void truncateValues(const double& precision);
  /// Makes a table of counters for all shapes: by manipulator, by link (the base in row 0, the link
  /// of index r in row r + 1), by shape.
  ///
  /// @param counters  receives the sizes; new entries are 0, those that are there stay
  virtual void getNumberOfShapes(std::vector<std::vector<std::vector<int>>>& counters) const;
  /// Ends the sharing of the first manipulator of a label; see the form by index. False if there is
  /// none.
  virtual bool aboutToModifyManipulator(const std::string& label);
  /// Ends the sharing of a manipulator that is about to change. Of those that stand for it the
  /// first gets the links, and the others stand for that one; if it stands for another itself, they
  /// stand for that one, and it gets a copy of the links. Labels stay.
  ///
  /// @return false, with a message, for a bad index. A manipulator that stands for itself, or for
  ///         one that can't be found, is reported and goes on doing so.
  virtual bool aboutToModifyManipulator(KtU32 index);
  /// Brings `collisionDetectionPrecisionLevel()` up to date with the interactions.
  virtual void computeCollisionDetectionPrecisionLevel();

  /// Sets which links of a manipulator may collide with each other; false for a bad index.
  bool setSelfCollisionMap(const KtManipulatorSelfCollisionLinkMap& map, const KtU32& index);
  /// Collects a, alpha and d of each link of all manipulators, in order. The row of a link whose
  /// joint is not of the craig convention, or has a precursor, is empty. Manipulators that stand
  /// for another have no rows.
  ///
  /// @return true
  bool getCraigDhParameters(std::vector<std::vector<double>>& parameters) const;

  /// Exact equality.
  bool operator==(const KtManipulatorSystem& other) const;
  /// Name of the class in files.
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
