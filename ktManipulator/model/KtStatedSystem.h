#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/collision/KtShapeKeys.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/core/KtOnDemand.h"
#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/foundation/geometry/KtSphere.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"
#include "ktManipulator/model/KtManipulatorSystem.h"
#include "ktManipulator/state/KtManipulatorSystemState.h"
#include "ktManipulator/state/KtPropagationResultData.h"

class KtAccelerationState;
class KtLineSegment;
class KtSystemActiveState;
class KtSystemPointEvent;

/// A system together with one state of it: what an application holds.
///
/// Whatever changes the system here changes the state with it, so that the state has one position
/// and one velocity for each manipulator, in their order, each of as many joints; a file of which
/// the state doesn't fit is repaired when it is read. What assigns a state says so, and leaves its
/// sizes to the caller.
///
/// Copies share the system, which can be large, until one of them is about to change it: that one
/// gets a copy of its own. Some operations reach all sharers on purpose, and say so. A reference to
/// the system or into it holds until this object changes it or is assigned to. Stated systems that
/// share one belong to one thread at a time.
class KT_EXPORT KtStatedSystem : public KtXmlPersistent<KtStatedSystem, KtXmlCompoundType> {
 public:
  /// The type of lists of shapes.
  using ShapeKeyVector = std::vector<KtShapeStateCacheKey>;
  /// The type of the records of a step, one for each manipulator.
  using ResultVector = KtXmlVectorType<KtPropagationResultData>;

  /// What `system()` answers as long as there is none: a system without manipulators.
  static const KtManipulatorSystem m_theNullSystem;

  /// A stated system without a system.
  KtStatedSystem();
  /// A copy.
  ///
  /// @param independent  whether it gets a system of its own at once, instead of sharing
  KtStatedSystem(const KtStatedSystem& other, bool independent = false);
  /// Shares the other's system and takes over its state and what concerns its display.
  KtStatedSystem& operator=(const KtStatedSystem& other);
  ~KtStatedSystem() override;

  /// Reads the system and its state, and makes the state fit; see `KtXmlObject::read`.
  ///
  /// @return the result of the reading alone: a state that was repaired counts as read
  bool read(KtXmlReader& reader) override;
  void registerComponents() override;

  /// Appends the manipulators of another, see `KtManipulatorSystem::mergeWith`, and their states.
  virtual bool mergeWith(const KtStatedSystem& other);
  /// The system; `m_theNullSystem` if there is none.
  virtual const KtManipulatorSystem& system() const;
  /// Makes the own system a copy of another. The state stays as it is.
  virtual void setSystem(const KtManipulatorSystem& system);
  /// Takes over a system, which nobody else may own, in the place of the own one. The state stays
  /// as it is.
  virtual void setAndDeleteSystemPointer(KtManipulatorSystem* system);
  /// Makes the own system a copy of another, in its middle position; see `setToMidpointState`.
  virtual void setFromSystem(const KtManipulatorSystem& system);
  /// Makes the own system that of a copy of a manipulator, in its middle position.
  virtual void setFromManipulator(const KtIndividualManipulator& manipulator);
  /// Makes the own system that of one empty manipulator.
  ///
  /// @return the manipulator, to be built in place; then ask for `finalizeOneManipulator`
  virtual KtIndividualManipulator& clearAndInitializeForOneManipulator();
  /// Gives the manipulator that was built in place a state; see `setToMidpointState`.
  virtual void finalizeOneManipulator();
  /// Appends a copy of a manipulator, with a state. One of the wrong size is put right, and with it
  /// all states; see `KtManipulatorSystem::rightSizeState`.
  virtual void addManipulator(const KtIndividualManipulator& manipulator,
                              const KtPositionState& position, const KtVelocityState& velocity);
  /// Appends a copy of a manipulator, with joint positions of 1e-9, at rest. The joint positions of
  /// the others grow by 1e-9 too; see `KtManipulatorSystem::rightSizeState`.
  virtual void addManipulator(const KtIndividualManipulator& manipulator);
  /// Replaces a manipulator and its state; false for a bad index.
  virtual bool exchangeManipulator(KtU32 index, const KtIndividualManipulator& manipulator,
                                   const KtPositionState& position,
                                   const KtVelocityState& velocity);
  /// Appends a free-standing body of a shape, as a manipulator of its own.
  ///
  /// @param placement  of the shape's frame in the system
  /// @param data       the properties of the shape's surface
  /// @return           the index of the manipulator
  virtual KtU32 addShapeAsManipulator(const KtShape& shape,
                                      const KtCoordinateSystemTransformation& placement,
                                      const std::string& label, const KtDataMap& data);
  /// See `KtManipulatorSystem::setSelfCollisionMap`; all that share the system see the change.
  virtual bool setSelfCollisionMap(const KtManipulatorSelfCollisionLinkMap& map,
                                   const KtU32& index);
  /// Deletes the first manipulator of a label and its state; see
  /// `KtManipulatorSystem::deleteManipulator`.
  ///
  /// @return its index, or 0xFFFFFFFF if there is none
  virtual KtU32 deleteManipulator(const std::string& label);
  /// Deletes a manipulator and its state, see `KtManipulatorSystem::deleteManipulator`; false for a
  /// bad index.
  virtual bool deleteManipulator(KtU32 index);
  /// What surrounds the manipulators.
  virtual const KtSystemEnvironment& environment() const;
  /// Sets what `environment()` answers.
  virtual void setEnvironment(const KtSystemEnvironment& environment);
  /// The state.
  virtual const KtManipulatorSystemState& state() const;
  /// Sets what `state()` answers. That it fits the system is the caller's matter.
  virtual void setState(const KtManipulatorSystemState& state);
  /// Sets the position of one manipulator; a bad index is reported.
  virtual void setIndividualPositionState(KtU32 index, const KtPositionState& position);
  /// Sets the place of one manipulator's base; a bad index is reported.
  virtual void setIndividualCoordinateSystemTransformation(
      KtU32 index, const KtCoordinateSystemTransformation& frame);
  /// Sets the velocity of one manipulator; a bad index is reported.
  virtual void setIndividualVelocityState(KtU32 index, const KtVelocityState& velocity);
  /// Turns the velocity of one manipulator's base: given in the axes of frame B and turned by
  /// R_A_B, it is given in those of frame A. A bad index is reported.
  virtual void rotateIndividualBaseVelocity(KtU32 index, const KtOrientation& rotation);
  /// Brings one manipulator to rest; a bad index is reported.
  virtual void zeroIndividualVelocityState(KtU32 index);
  /// Sets all positions. That they fit the system is the caller's matter.
  virtual void setPositionStates(const KtXmlVectorType<KtPositionState>& states);
  /// Sets all velocities. That they fit the system is the caller's matter.
  virtual void setVelocityStates(const KtXmlVectorType<KtVelocityState>& states);

  // Propagation: one step, from the time of a state to another one. The velocities are advanced
  // first, by the accelerations that the active state holds, and the positions then by the new
  // velocities.

  /// `propagateTo` on the own state.
  virtual bool propagateSelfTo(double time, KtSystemActiveState* activeState);
  /// `propagateTo` on the own state; a null active state takes one that this object keeps.
  virtual bool propagateSelfTo(double time, ResultVector& results,
                               KtSystemActiveState* activeState);
  /// `propagateTo` on the own state; a null active state takes one that this object keeps.
  virtual bool propagateSelfTo(double time, ResultVector& results, KtSystemActiveState* activeState,
                               KtU32 collisionCheckMode, const KtReal& reservedFactor,
                               const KtU32& boundingVolumeLevel, const KtReal& collisionTolerance);
  /// The full form without a collision check; its results are lost. A null active state takes one
  /// that this object keeps.
  virtual bool propagateTo(double time, KtManipulatorSystemState& state,
                           KtSystemActiveState* activeState) const;
  /// The full form without a collision check.
  virtual bool propagateTo(double time, KtManipulatorSystemState& state, ResultVector& results,
                           KtSystemActiveState& activeState) const;
  /// Advances a state to a time, in one step. Joints stop at their limits, attached manipulators
  /// follow their parents, those that collide take back their positions, and so do those of which a
  /// stopping criterion is satisfied. Velocities and time stay advanced in any case.
  ///
  /// @param time                 the target, s; it may lie before the state's
  /// @param state                the state; it should fit the system
  /// @param results              receives one record for each manipulator. Those that are there are
  ///                             not reset.
  /// @param activeState          gives the accelerations; a collision check sets its state
  /// @param collisionCheckMode   1: in a collision all manipulators take back their positions; 2:
  ///                             those that collide do; else none is looked for
  /// @param reservedFactor       without effect; 1
  /// @param boundingVolumeLevel  of the bounding volumes that are checked for collision
  /// @param collisionTolerance   the distance from which on links collide, m
  /// @return                     true; what happened the results say
  virtual bool propagateTo(double time, KtManipulatorSystemState& state, ResultVector& results,
                           KtSystemActiveState& activeState, KtU32 collisionCheckMode,
                           const KtReal& reservedFactor, const KtU32& boundingVolumeLevel,
                           const KtReal& collisionTolerance) const;
  /// See `KtIndividualManipulator::propagateState`; a bad index does nothing.
  virtual void propagateSingleStateBy(KtU32 index, const KtVelocityState& velocity, double dt,
                                      KtPositionState& position) const;
  /// See `KtIndividualManipulator::propagateState`; a bad index does nothing.
  virtual void propagateSingleStateBy(KtU32 index, const KtVelocityState& velocity, double dt,
                                      KtPositionState& position,
                                      KtPropagationResultData& result) const;
  /// See `KtIndividualManipulator::propagateVelocityState`; a bad index does nothing.
  virtual void propagateSingleVelocityStateBy(KtU32 index, const KtAccelerationState& acceleration,
                                              double dt, KtVelocityState& velocity) const;

  /// Makes the state one that fits the system: all joint positions 1e-9, at rest, at time 0.
  virtual void addCompatibleState();
  /// Makes the state one that fits the system, with all joints halfway between the limits of their
  /// actuators, at rest, at time 0 and with all bases at the identity. A joint without finite
  /// limits gets what the mean of those gives.
  virtual void setToMidpointState();
  /// See `KtManipulatorSystem::rightSizeState`. The own state is not touched.
  virtual void rightSizeState(KtManipulatorSystemState& state) const;
  /// See `KtManipulatorSystem::absoluteBoundingSphere`, for the own state.
  virtual KtSphere absoluteBoundingSphere() const;
  /// Gives a shape a map of surfaces; false if there is no such shape.
  virtual bool setSurfacesByKey(const KtShapeStateCacheKey& key, const KtSurfaceMap& surfaces);
  /// Shapes that changed since the display looked last.
  virtual const ShapeKeyVector& modifiedShapeKeyVec() const;
  /// The same, to be changed.
  virtual ShapeKeyVector& modifiedShapeKeyVec();
  /// Sets what `modifiedShapeKeyVec()` answers.
  virtual void setModifiedShapeKeyVec(const ShapeKeyVector& keys);
  /// Adds a shape to those that changed, once; the key of no shape is passed over.
  virtual void addModifiedShapeKeyVec(const KtShapeStateCacheKey& key);
  /// Whether the display shows the system transparent.
  virtual bool isTransparentDisplay() const;
  /// Sets what `isTransparentDisplay()` answers.
  virtual void setIsTransparentDisplay(bool value) const;
  /// Is to find where a line segment meets the system. It does nothing yet, as does
  /// `KtIndividualManipulator::intersectLineSegmentWithManipulator`.
  ///
  /// @param segment      in system axes
  /// @param event        is to receive the data of the last manipulator tried, and the index of
  ///                     the one that is met first
  /// @param activeState  the positions; null finds nothing
  /// @param level        the bounding-volume level of the shapes to be met
  virtual void intersectLineSegment(const KtLineSegment& segment, KtSystemPointEvent& event,
                                    KtSystemActiveState* activeState, KtU32 level) const;
  /// Scales a manipulator by a factor and keeps its pose: positions and velocities of joints that
  /// are lengths scale with it. Its base stays where it is. A manipulator that stands for another
  /// scales by itself, not the links that it uses.
  ///
  /// @return false for a bad index
  virtual bool scaleManipulatorBy(KtU32 index, double factor);
  /// See `KtManipulatorSystem::findAndConvertToReferences`.
  virtual bool findAndConvertToReferences();
  /// Number of joints of all manipulators.
  virtual KtU32 jointDof() const;
  /// See `KtManipulatorSystem::setJointLimit`.
  virtual bool setJointLimit(KtU32 index, const std::string& label, bool lower, double value);
  /// See `KtManipulatorSystem::replaceLinkProperties`.
  virtual bool replaceLinkProperties(KtU32 index, const std::string& label,
                                     const KtManipulatorLink& link, bool withShape);
  /// Checks the own state for collisions; see `checkForCollisions`.
  virtual bool generateCollisionReport(ResultVector& results, const KtU32& boundingVolumeLevel,
                                       const KtReal& collisionTolerance) const;
  /// Whether the system was about to change since `resetIsSystemModified`.
  virtual bool isSystemModified() const;
  /// Makes `isSystemModified()` answer false.
  virtual void resetIsSystemModified() const;
  /// See `KtManipulatorSystem::truncateValues`; all that share the system see the change.
  virtual void truncateValues(const double& precision);
  /// Sets the property "ktAmbientAlpha" of surface "0" of a shape, and writes the old and the new
  /// value to the log. A bad key does nothing.
  virtual void changeAmbientAlpha(const KtShapeStateCacheKey& key, const double& alpha);
  /// The same for "ktDiffuseAlpha".
  virtual void changeDiffuseAlpha(const KtShapeStateCacheKey& key, const double& alpha);
  /// The same for "ktSpecularAlpha".
  virtual void changeSpecularAlpha(const KtShapeStateCacheKey& key, const double& alpha);
  /// The same for "ktEmissionAlpha".
  virtual void changeEmissionAlpha(const KtShapeStateCacheKey& key, const double& alpha);
  /// Shapes that the application has selected.
  virtual const ShapeKeyVector& selectedShapeKeyVector() const;
  /// Sets what `selectedShapeKeyVector()` answers.
  virtual void setSelectedShapeKeyVector(const ShapeKeyVector& keys);
  /// How opaque a transparent display is.
  virtual double transparencyAlpha() const;
  /// Sets what `transparencyAlpha()` answers.
  virtual void setTransparencyAlpha(double alpha);
  /// Whether the selection changed since the display looked last.
  virtual bool isSelectionDataChanged() const;
  /// Sets what `isSelectionDataChanged()` answers.
  virtual void setIsSelectionDataChanged(bool value) const;
  /// See `KtManipulatorSystem::setCollisionExclusionMap`; all that share the system see the change.
  virtual void setCollisionExclusionMap(const KtSystemCollisionExclusionMap& map);
  /// See `KtManipulatorSystem::setManipulatorAttachmentMap`; all that share the system see the
  /// change.
  virtual void setManipulatorAttachmentMap(const KtManipulatorAttachmentMap& map);
  /// Finds the first manipulator of a label.
  ///
  /// @param index  receives its index; unchanged if there is none
  /// @return       whether there is
  virtual bool lookupManipulatorIndexFromLabel(const std::string& label, KtU32& index) const;
  /// Makes the positions and velocities as many as there are manipulators: those in excess are
  /// dropped, those that miss are empty. A repair is reported.
  ///
  /// @return whether nothing had to change
  virtual bool validateTopLevelDimensions();
  /// Gives each position and velocity as many joints as its manipulator has. If one is wrong, which
  /// is reported, all are rebuilt, from the old values as far as they go, and joint positions of
  /// 1e-9 and velocities of 0 for the rest. To be called behind `validateTopLevelDimensions`.
  ///
  /// @return whether nothing had to change
  virtual bool validateLowLevelDimensions();
  /// Sees to it that there is a system and that it is this object's alone. To be called before the
  /// system is changed.
  virtual void aboutToModifySystem();
  /// Tells the table of components where the system is now.
  virtual void reregisterSystem();
  /// A new empty system, for derived classes to make one of theirs; the caller owns it.
  virtual KtManipulatorSystem* newManipulatorSystem() const;
  /// Checks every manipulator for collision with itself and the others.
  ///
  /// @param activeState          the positions; may be filled further
  /// @param reservedFactor       without effect
  /// @param boundingVolumeLevel  of the bounding volumes that are checked
  /// @param collisionTolerance   the distance from which on links collide, m
  /// @param results              receives for each manipulator whether and with what it collides
  /// @return                     whether any does
  virtual bool checkForCollisions(KtSystemActiveState& activeState, const KtReal& reservedFactor,
                                  const KtU32& boundingVolumeLevel,
                                  const KtReal& collisionTolerance, ResultVector& results) const;

  /// The shape of a key, or null.
  const KtShape* shapeByKey(const KtShapeStateCacheKey& key) const;

  /// Whether any manipulator is attached to a link, so that links have to be asked for that.
  bool hasAttachments() const;

  /// Equality of system, state, lists of shapes and display values.
  bool operator==(const KtStatedSystem& other) const;
  /// Name of the class in files.
  static const KtToken& classToken() { return KtManip::KtStatedSystemToken; }

 private:
  // What a step works with.
  struct PropagationScratch {
    KtXmlVectorType<KtPositionState> savedPositions;  // of before the step
    ResultVector results;                             // of collision checks
    ResultVector defaultResults;                      // where the caller wants none
    KtManipulatorActiveState parentState;             // of attachments
    KtString linkLabel;
  };

  KtSystemActiveState& givenOrLazy(KtSystemActiveState* activeState) const;
  void carryAttachments(KtManipulatorSystemState& state) const;
  void takeBackAll(KtManipulatorSystemState& state, ResultVector& results,
                   KtSystemActiveState& activeState, const KtReal& reservedFactor,
                   const KtU32& boundingVolumeLevel, const KtReal& collisionTolerance) const;
  void takeBackCollided(KtManipulatorSystemState& state, ResultVector& results,
                        KtSystemActiveState& activeState, const KtReal& reservedFactor,
                        const KtU32& boundingVolumeLevel, const KtReal& collisionTolerance) const;
  void askStoppingCriteria(double time, KtManipulatorSystemState& state, ResultVector& results,
                           KtSystemActiveState& activeState) const;
  void followSystem();
  void forgetReportedSystem();
  void changeAlpha(const char* property, const KtShapeStateCacheKey& key, double alpha);

  // Mutable, as the first write of an object that shares its system makes it its own.
  mutable std::shared_ptr<KtManipulatorSystem> system_;
  KtManipulatorSystemState state_;
  // For the display
  ShapeKeyVector modifiedShapeKeyVec_;
  ShapeKeyVector selectedShapeKeyVector_;
  double transparencyAlpha_ = 0.0;
  // For `generateCollisionReport`
  mutable KtOnDemand<KtSystemActiveState> reportActiveState_;
  // For propagation
  mutable KtOnDemand<PropagationScratch> propagation_;
  mutable KtOnDemand<KtSystemActiveState> lazyActiveState_;
  mutable bool isSystemModified_ = false;
  mutable bool isSelectionDataChanged_ = false;
  mutable bool isTransparentDisplay_ = false;
};
