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

/// A system together with one state of it. Most applications use this class.
///
/// Operations that change the number of manipulators or joints also resize the state, so that it
/// has one position and one velocity for each manipulator with the right number of joints. A state
/// that doesn't fit is repaired when a file is read. Operations that assign a state don't check its
/// sizes; the caller must pass a state that fits.
///
/// Copies share the system, which can be large. When one of them changes the system, it first makes
/// its own copy. A few operations change the system for all sharers; their comments say so. A
/// reference to the system or into it is valid until this object changes the system or is assigned
/// to. Only one thread at a time may use stated systems that share a system.
class KT_EXPORT KtStatedSystem : public KtXmlPersistent<KtStatedSystem, KtXmlCompoundType> {
 public:
  /// The type of lists of shapes.
  using ShapeKeyVector = std::vector<KtShapeStateCacheKey>;
  /// The type of the records of a step, one for each manipulator.
  using ResultVector = KtXmlVectorType<KtPropagationResultData>;

  /// The result of `system()` while there is no system: a system without manipulators.
  static const KtManipulatorSystem m_theNullSystem;

  /// A stated system without a system.
  KtStatedSystem();
  /// A copy.
  ///
  /// @param independent  true to copy the system at once instead of sharing it
  KtStatedSystem(const KtStatedSystem& other, bool independent = false);
  /// Shares the other's system, and copies its state and display data.
  KtStatedSystem& operator=(const KtStatedSystem& other);
  ~KtStatedSystem() override;

  /// Reads the system and its state, and repairs the state; see `KtXmlObject::read`.
  ///
  /// @return true if the file has no mistake; a repaired state doesn't count as one
  bool read(KtXmlReader& reader) override;
  void registerComponents() override;

  /// Appends the manipulators of another, see `KtManipulatorSystem::mergeWith`, and their states.
  virtual bool mergeWith(const KtStatedSystem& other);
  /// The system; `m_theNullSystem` if there is none.
  virtual const KtManipulatorSystem& system() const;
  /// Replaces the system by a copy of another. The state doesn't change.
  virtual void setSystem(const KtManipulatorSystem& system);
  /// Replaces the system by another and takes ownership of it; nobody else may own it. The state
  /// doesn't change.
  virtual void setAndDeleteSystemPointer(KtManipulatorSystem* system);
  /// Replaces the system by a copy of another, in the midpoint state; see `setToMidpointState`.
  virtual void setFromSystem(const KtManipulatorSystem& system);
  /// Replaces the system by one with a copy of a manipulator, in the midpoint state.
  virtual void setFromManipulator(const KtIndividualManipulator& manipulator);
  /// Replaces the system by one with an empty manipulator.
  ///
  /// @return the manipulator; build it in place and then call `finalizeOneManipulator`
  virtual KtIndividualManipulator& clearAndInitializeForOneManipulator();
  /// Sets the state of the manipulator that was built in place; see `setToMidpointState`.
  virtual void finalizeOneManipulator();
  /// Appends a copy of a manipulator with a state. If the state has the wrong size, all states are
  /// resized; see `KtManipulatorSystem::rightSizeState`.
  virtual void addManipulator(const KtIndividualManipulator& manipulator,
                              const KtPositionState& position, const KtVelocityState& velocity);
  /// Appends a copy of a manipulator at rest with joint positions of 1e-9. It also adds 1e-9 to the
  /// joint positions of all others; see `KtManipulatorSystem::rightSizeState`.
  virtual void addManipulator(const KtIndividualManipulator& manipulator);
  /// Replaces a manipulator and its state; false for a bad index.
  virtual bool exchangeManipulator(KtU32 index, const KtIndividualManipulator& manipulator,
                                   const KtPositionState& position,
                                   const KtVelocityState& velocity);
  /// Appends a manipulator that consists of a single body with a shape.
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
  /// The environment of the manipulators.
  virtual const KtSystemEnvironment& environment() const;
  virtual void setEnvironment(const KtSystemEnvironment& environment);
  /// The state.
  virtual const KtManipulatorSystemState& state() const;
  /// The caller sees to it that the state fits the system.
  virtual void setState(const KtManipulatorSystemState& state);
  /// Sets the position of one manipulator; a bad index is reported.
  virtual void setIndividualPositionState(KtU32 index, const KtPositionState& position);
  /// Sets the pose of one manipulator's base; a bad index is reported.
  virtual void setIndividualCoordinateSystemTransformation(
      KtU32 index, const KtCoordinateSystemTransformation& frame);
  /// Sets the velocity of one manipulator; a bad index is reported.
  virtual void setIndividualVelocityState(KtU32 index, const KtVelocityState& velocity);
  /// Rotates the velocity of one manipulator's base. Rotation by R_A_B converts it from the axes of
  /// frame B to those of frame A. A bad index is reported.
  virtual void rotateIndividualBaseVelocity(KtU32 index, const KtOrientation& rotation);
  /// Brings one manipulator to rest; a bad index is reported.
  virtual void zeroIndividualVelocityState(KtU32 index);
  /// Sets all positions. The caller must pass positions that fit the system.
  virtual void setPositionStates(const KtXmlVectorType<KtPositionState>& states);
  /// Sets all velocities. The caller must pass velocities that fit the system.
  virtual void setVelocityStates(const KtXmlVectorType<KtVelocityState>& states);

  // Propagation: one step from the time of a state to another time. It first advances the
  // velocities with the accelerations of the active state, and then the positions with the new
  // velocities.

  /// `propagateTo` for this object's state.
  virtual bool propagateSelfTo(double time, KtSystemActiveState* activeState);
  /// `propagateTo` on the own state; a null active state takes one that this object keeps.
  virtual bool propagateSelfTo(double time, ResultVector& results,
                               KtSystemActiveState* activeState);
  /// `propagateTo` on the own state; a null active state takes one that this object keeps.
  virtual bool propagateSelfTo(double time, ResultVector& results, KtSystemActiveState* activeState,
                               KtU32 collisionCheckMode, const KtReal& reservedFactor,
                               const KtU32& boundingVolumeLevel, const KtReal& collisionTolerance);
  /// The full form without a collision check and without results. If the active state is null, this
  /// object uses one of its own.
  virtual bool propagateTo(double time, KtManipulatorSystemState& state,
                           KtSystemActiveState* activeState) const;
  /// The full form without a collision check.
  virtual bool propagateTo(double time, KtManipulatorSystemState& state, ResultVector& results,
                           KtSystemActiveState& activeState) const;
  /// Advances a state to a time in one step. Joints stop at their limits, and attached manipulators
  /// follow their parents. If a manipulator collides or satisfies a stopping criterion, its
  /// positions return to those before the step. Velocities and time are advanced in any case.
  ///
  /// @param time                 the target time, s; may be before that of the state
  /// @param state                the state; it should fit the system
  /// @param results              receives one record for each manipulator. Existing records are not
  ///                             reset.
  /// @param activeState          has the accelerations; a collision check sets its state
  /// @param collisionCheckMode   1: a collision resets the positions of all manipulators; 2: only
  ///                             those of the colliding ones; other values: no collision check
  /// @param reservedFactor       no effect; pass 1
  /// @param boundingVolumeLevel  the level of the bounding volumes that are checked for collision
  /// @param collisionTolerance   links collide if their distance is at most this, m
  /// @return                     always true; the results say what happened
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

  /// Resets the state to the size of the system: joint positions 1e-9, at rest, at time 0.
  virtual void addCompatibleState();
  /// Resets the state to the size of the system: all joints halfway between the limits of their
  /// actuators, at rest, at time 0, all bases at the identity. The position is the mean of the two
  /// limits even if they are not finite.
  virtual void setToMidpointState();
  /// See `KtManipulatorSystem::rightSizeState`. This object's own state doesn't change.
  virtual void rightSizeState(KtManipulatorSystemState& state) const;
  /// See `KtManipulatorSystem::absoluteBoundingSphere`; uses this object's state.
  virtual KtSphere absoluteBoundingSphere() const;
  /// Sets the surfaces of a shape; false if there is no such shape.
  virtual bool setSurfacesByKey(const KtShapeStateCacheKey& key, const KtSurfaceMap& surfaces);
  /// Keys of the shapes that changed since the display was last updated.
  virtual const ShapeKeyVector& modifiedShapeKeyVec() const;
  virtual ShapeKeyVector& modifiedShapeKeyVec();
  virtual void setModifiedShapeKeyVec(const ShapeKeyVector& keys);
  /// Adds a shape to those that changed, unless it is among them. Ignores keys without a shape.
  virtual void addModifiedShapeKeyVec(const KtShapeStateCacheKey& key);
  /// Whether the display shows the system as transparent.
  virtual bool isTransparentDisplay() const;
  virtual void setIsTransparentDisplay(bool value) const;
  /// Will intersect a line segment with the system. It does nothing yet, nor does
  /// `KtIndividualManipulator::intersectLineSegmentWithManipulator`.
  ///
  /// @param segment      in system axes
  /// @param event        will receive the data of the last manipulator tried, and the index of
  ///                     the first one that the segment intersects
  /// @param activeState  the positions; null finds nothing
  /// @param level        the bounding-volume level of the shapes to intersect
  virtual void intersectLineSegment(const KtLineSegment& segment, KtSystemPointEvent& event,
                                    KtSystemActiveState* activeState, KtU32 level) const;
  /// Scales a manipulator by a factor. The positions and velocities of prismatic joints are scaled,
  /// too; the base stays where it is. If the manipulator references another one, the links that it
  /// uses are not scaled.
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
  /// Whether an operation has changed the system since `resetIsSystemModified`.
  virtual bool isSystemModified() const;
  /// Resets `isSystemModified()` to false.
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
  /// Keys of the shapes that the application has selected.
  virtual const ShapeKeyVector& selectedShapeKeyVector() const;
  virtual void setSelectedShapeKeyVector(const ShapeKeyVector& keys);
  /// Opacity of a transparent display.
  virtual double transparencyAlpha() const;
  virtual void setTransparencyAlpha(double alpha);
  /// Whether the selection changed since the display was last updated.
  virtual bool isSelectionDataChanged() const;
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
  /// Resizes the lists of positions and velocities to the number of manipulators: drops excess
  /// entries and adds empty ones. A repair is reported.
  ///
  /// @return true if the sizes were right
  virtual bool validateTopLevelDimensions();
  /// Checks that each position and velocity has the number of joints of its manipulator. If one is
  /// wrong, this is reported and all are rebuilt: existing values are kept, missing positions are
  /// 1e-9, missing velocities are 0. Call it after `validateTopLevelDimensions`.
  ///
  /// @return true if the sizes were right
  virtual bool validateLowLevelDimensions();
  /// Makes sure that this object has a system and doesn't share it. Call it before changing the
  /// system.
  virtual void aboutToModifySystem();
  /// Updates the address of the system in the table of components.
  virtual void reregisterSystem();
  /// Creates an empty system, which the caller owns. Derived classes override it.
  virtual KtManipulatorSystem* newManipulatorSystem() const;
  /// Checks every manipulator for collision with itself and the others.
  ///
  /// @param activeState          the positions; may be filled further
  /// @param reservedFactor       without effect
  /// @param boundingVolumeLevel  of the bounding volumes that are checked
  /// @param collisionTolerance   links collide if their distance is at most this, m
  /// @param results              receives for each manipulator whether and with what it collides
  /// @return                     true if any manipulator collides
  virtual bool checkForCollisions(KtSystemActiveState& activeState, const KtReal& reservedFactor,
                                  const KtU32& boundingVolumeLevel,
                                  const KtReal& collisionTolerance, ResultVector& results) const;

  /// The shape of a key, or null.
  const KtShape* shapeByKey(const KtShapeStateCacheKey& key) const;

  /// Whether any manipulator is attached to a link.
  bool hasAttachments() const;

  /// Equality of system, state, lists of shapes and display values.
  bool operator==(const KtStatedSystem& other) const;
  static const KtToken& classToken() { return KtManip::KtStatedSystemToken; }

 private:
  // Work arrays of a step.
  struct PropagationScratch {
    KtXmlVectorType<KtPositionState> savedPositions;  // before the step
    ResultVector results;                             // of collision checks
    ResultVector defaultResults;                      // if the caller passes none
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
