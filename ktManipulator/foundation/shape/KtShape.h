#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/geometry/KtCapsule.h"
#include "ktManipulator/foundation/geometry/KtSphere.h"
#include "ktManipulator/foundation/shape/KtDataMap.h"
#include "ktManipulator/foundation/shape/algorithms/KtAxisAlignedBoundingBox.h"
#include "ktManipulator/foundation/shape/algorithms/KtConvexPart.h"
#include "ktManipulator/foundation/xml/KtBaseExpressionTreeElement.h"

class KtBasePhysicalExtent;
class KtManipulatorLink;
class KtShapeContainer;

/// A shape: the geometry of a link, or of a part of it, in the primary frame of the link. Lengths
/// in m.
///
/// A shape may stand inside a bounding volume, which is a shape itself and may stand inside another
/// one, so that a chain leads outwards from the exact shape, level by level. Each shape owns the
/// next one outwards. A copy of a shape takes the volumes around it along, but not what is inside
/// of it: a copy of a bounding volume is an exact shape.
///
/// A shape has a surface, named by a label that is also its material, and may have the properties
/// of this and other surfaces in a map. What the map doesn't know, its link and manipulator may.
///
/// The numbers that a shape gets from its link, the level, the link itself and the closest point
/// are no part of its value.
class KT_EXPORT KtShape : public KtBaseExpressionTreeElement {
 public:
  /// The kinds of shapes. The first four also say which bounding volume to add.
  enum KtShapeValues : KtU32 {
    kConvexHull = 1,    ///< Convex polyhedron; as a volume: the convex hull.
    kSphere = 3,        ///< Ball; as a volume: the smallest one.
    kCapsule = 4,       ///< Capsule; as a volume: one of small volume.
    kBox = 7,           ///< Box in any orientation; as a volume: one of small volume.
    kCylinder = 2,      ///< Cylinder.
    kCone = 5,          ///< Cone.
    kEllipsoid = 6,     ///< Ellipsoid.
    kTriangleMesh = 8,  ///< Triangles, closed or open.
    kUnion = 16,        ///< Several shapes or extents as one.
  };
  /// The numbered shapes of a link by identifier.
  using ShapeTable = std::map<std::string, const KtShape*>;
  /// The numbered shapes of a link by number.
  using ShapeVector = std::vector<const KtShape*>;

  KtShape();
  /// A copy, with the volumes around it.
  KtShape(const KtShape& other);
  /// Assigns a value, with the volumes around it. The other shape may be a part of this one: then
  /// that part lives on until the next such assignment.
  KtShape& operator=(const KtShape& other);
  ~KtShape() override;

  bool read(KtXmlReader& reader) override;
  void registerComponents() override;

  /// The shape that bounds this one, one level out; null at the outermost.
  virtual const KtShape* outerBoundingVolume() const;
  /// The shape that this one bounds, one level in; null at the exact shape.
  virtual const KtShape* innerBoundedShape() const { return inner_; }
  /// The level of this shape in its chain: 0 for the exact shape, one more with each volume
  /// outwards.
  virtual const KtU32& boundingVolumeLevel() const { return level_; }
  /// The vertex of a polyhedron at which the last search for a farthest point ended, and the next
  /// begins; 0 for other shapes.
  virtual const KtU32& closestPointIndex() const { return closestPointIndex_; }

  // The chain of bounding volumes.

  /// The same as the constant form, to be changed. Its geometry must go on containing this shape.
  virtual KtShape* outerBoundingVolume();
  /// What kind of shape this is.
  virtual KtShapeValues shapeType() const = 0;
  /// Adds a volume of a kind around the outermost one there is. It contains that one, has the label
  /// of its surface, and, where the map of this shape has properties for the label, a copy of those
  /// with `KtDataMap::boundingColor()` over it.
  ///
  /// @param type  `kConvexHull`, `kSphere`, `kCapsule` or `kBox`
  /// @return      false, a message and no change for another kind, and for a shape without a point
  ///              or with coordinates that are not finite
  virtual bool addBoundingVolume(KtShapeValues type);
  /// Adds a copy of a shape, with the volumes around it, as the next volume around the outermost
  /// one there is. Whether it contains that one is the caller's matter.
  virtual void addBoundingVolume(const KtShape& volume);
  /// Removes all volumes around this shape; in a union also those around its members.
  virtual void deleteBoundingVolumes();
  /// Appends the shapes that stand for this one at a level of precision: the first outwards whose
  /// level is at least the given one, or else the outermost. A union that stands for itself
  /// hands on to its members.
  virtual void boundingVolumes(ShapeVector& volumes, const KtU32& level) const;
  /// Whether a shape is a part of this one: a volume around it, a member of a union, or a part of
  /// one of these.
  virtual bool holds(const KtShape& part) const;

  // Numbers.

  /// How many numbers this shape takes, without the volumes around it: 1, or as many as the members
  /// of a union of shapes take with the volumes around them.
  virtual KtU32 numberOfShapes() const { return 1; }
  /// Numbers this shape, then the volumes around it: the first pass.
  ///
  /// @param count   the next number; receives the one behind the last given
  /// @param link    the link that the shape belongs to
  /// @param table   receives the shapes that have an identifier
  /// @param shapes  receives the shapes by number
  virtual void mapShapes(KtU32& count, const KtManipulatorLink* link, ShapeTable& table,
                         ShapeVector& shapes);
  /// Sets the level of this shape and of the volumes around it: the second pass.
  ///
  /// @param level  the level of this shape; receives the one behind that of the outermost
  virtual void mapBoundingVolumeLevels(KtU32& level);
  /// The number of this shape in its link; `ktUnmappedIndex` for one that has none.
  virtual const KtU32& shapeIndex() const { return shapeIndex_; }
  /// The link that numbered this shape, or null.
  virtual const KtManipulatorLink* link() const { return link_; }
  /// The name by which a link finds the shape; may be empty.
  virtual const std::string& identifier() const { return identifier_.value(); }
  /// The link finds the shape by its new identifier as soon as shapes are numbered again.
  virtual void setIdentifier(const std::string& identifier) { identifier_ = identifier; }

  // The surface.

  /// The label of the surface, and the name of its material; "metal" unless set.
  virtual const std::string& surfaceLabel() const { return surfaceLabel_.value(); }
  virtual void setSurfaceLabel(const std::string& label) { surfaceLabel_ = label; }
  /// The properties of surfaces that this shape knows.
  virtual const KtSurfaceMap& surfaces() const { return surfaces_; }
  virtual void setSurfaces(const KtSurfaceMap& surfaces) { surfaces_ = surfaces; }
  /// Looks up the properties of a surface; a union asks its members after itself.
  ///
  /// @param data  receives the properties, or null; they belong to the shape
  /// @return      whether they were found
  virtual bool lookup(const std::string& label, const KtDataMap*& data) const;
  /// The properties of the own surface, or null.
  virtual const KtDataMap* defaultSurface() const;
  /// Takes over the properties of a surface, if this shape has that surface or knows it.
  ///
  /// @return whether it does
  virtual bool setSurfaceProperties(const std::string& label, const KtDataMap& data);
  /// The label of the surface at a point.
  ///
  /// @param closestPointIndex  the vertex next to the point, where the shape is a polyhedron
  /// @param point              the point, in the frame of the link
  virtual const std::string& surfaceType(const KtU32& closestPointIndex,
                                         const KtVector& point) const;
  /// Whether contacts put forces on the shape; true unless set. Collisions are found either way.
  virtual bool takesContactForces() const { return takesContactForces_.value(); }
  virtual void setTakesContactForces(bool value) { takesContactForces_ = value; }

  // The geometry of this very shape, without the volumes around it.

  /// The extent in space.
  virtual const KtBasePhysicalExtent& physicalExtent() const = 0;
  /// Whether the shape has no point.
  virtual bool isEmpty() const { return false; }
  /// Whether the shape contains the line between any two of its points.
  virtual bool isConvex() const { return true; }
  /// The point of the core farthest in a direction, which may have any length. The shape is its
  /// core, widened by `margin()`; a ball's core is its centre. Of a shape that is not convex it is
  /// the point of its convex hull; the zero vector for one without a point.
  virtual KtVector support(const KtVector& direction) const = 0;
  /// By how much the shape is wider than its core, m.
  virtual double margin() const { return 0.0; }
  /// Appends balls whose convex hull contains the shape: exactly the shape's convex hull where that
  /// is the hull of finitely many balls, otherwise at most 3 % wider.
  virtual void boundingSpheres(std::vector<KtSphere>& spheres) const = 0;
  /// Makes a box the smallest around this shape, in the axes of another frame.
  ///
  /// @param t    the frame of the shape in that frame
  /// @param box  receives the box
  /// @return     false, and a box without a point, for a shape without one or with coordinates that
  ///             are not finite
  virtual bool axisAlignedBoundingBox(const KtCoordinateSystemTransformation& t,
                                      KtAxisAlignedBoundingBox& box) const;
  /// A capsule around this shape, of small volume; a point at the origin for a shape without a
  /// point.
  virtual KtCapsule boundingCapsule() const;
  /// Appends the bounding capsule of each numbered shape in this one, with its number.
  virtual void boundingCapsules(std::vector<KtCapsule>& capsules,
                                std::vector<KtU32>& identifiers) const;
  /// Finds the first point of a line segment that belongs to the shape.
  ///
  /// @param distance  receives the distance from the segment's first end; 0 if that is inside
  /// @return          the numbered shape that was met, this one or a member; null, and the distance
  ///                  unchanged, if there is none
  virtual const KtShape* intersectLineSegment(const KtLineSegment& segment,
                                              double& distance) const = 0;
  /// Of how many convex parts the shape consists.
  virtual KtU32 numberOfConvexParts() const { return 1; }
  /// Convex part i; no part if there is none.
  virtual KtConvexPart convexPart(KtU32 index) const;
  /// Appends the numbers of the convex parts that may have a point in a box, ascending: all that
  /// have one, and at most those whose own boxes intersect it.
  virtual void convexPartsInBox(const KtAxisAlignedBoundingBox& box,
                                std::vector<KtU32>& parts) const;
  /// Scales all lengths, also those of the volumes around it, about the origin of the frame; a
  /// negative factor mirrors through the origin. A factor that is not finite is reported and
  /// changes nothing.
  virtual void scaleBy(double factor);
  /// Moves the shape and the volumes around it: given in frame B and transformed by T_A_B, it
  /// stands in frame A.
  virtual void transformBy(const KtCoordinateSystemTransformation& t);

  /// The point farthest in a direction, margin included.
  KtVector supportPoint(const KtVector& direction) const {
    return support(direction) + direction.unitVector() * margin();
  }
  /// Finds the first point of a line segment that belongs to this shape as it stands at a level of
  /// precision; volumes of higher levels tell early that there is none.
  ///
  /// @param level     of the shape to be met: the first outwards whose level is at least this, or
  ///                  the outermost
  /// @param distance  see the form without a level
  /// @return          see there
  const KtShape* intersectLineSegment(const KtLineSegment& segment, const KtU32& level,
                                      double& distance) const;

  /// Exact equality of geometry, identifier, surface and of the volumes around it.
  bool operator==(const KtShape& other) const;

 protected:
  /// Scales the geometry of this very shape by a finite factor.
  virtual void scaleOwn(double factor) = 0;
  /// Moves the geometry of this very shape.
  virtual void transformOwn(const KtCoordinateSystemTransformation& t) = 0;
  /// Fits the volumes around this shape anew after its geometry has changed: those of the kinds
  /// that can be added, wherever they came from.
  void refitBoundingVolumes();
  void setLink(const KtManipulatorLink* link) noexcept { link_ = link; }
  void setClosestPointIndex(KtU32 index) const noexcept { closestPointIndex_ = index; }

 private:
  KtShapeContainer& outer() const;
  const KtShape& outermost() const;
  void linkOuter();
  std::unique_ptr<KtShape> newBoundingVolume(KtShapeValues type) const;

  // Written to files
  KtXmlBasicType<std::string> identifier_;
  KtXmlBasicType<std::string> surfaceLabel_;
  KtSurfaceMap surfaces_;
  KtXmlBasicType<bool> takesContactForces_ = true;
  // Made on first need: most shapes have no volume around them.
  mutable std::unique_ptr<KtShapeContainer> outer_;
  // The volumes before the last assignment from a part of them; null otherwise.
  std::unique_ptr<KtShapeContainer> replaced_;
  // Set by the link and by the chain
  const KtShape* inner_ = nullptr;
  const KtManipulatorLink* link_ = nullptr;
  KtU32 level_ = 0;
  KtU32 shapeIndex_ = ktUnmappedIndex;
  mutable KtU32 closestPointIndex_ = 0;
};
