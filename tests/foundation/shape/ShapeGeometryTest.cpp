#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "ktManipulator/ktManipulator.h"
#include "support/Allocations.h"
#include "support/KtLogCapture.h"
#include "support/Random.h"

namespace {

using sampling::randomOrientation;
using sampling::randomTransformation;
using sampling::randomVector;
using sampling::uniform;
using T = KtCoordinateSystemTransformation;
using Triangles = std::vector<std::array<KtU32, 3>>;
using Solid = std::unique_ptr<KtBasePhysicalExtent>;

std::vector<KtVector> randomPoints(int count) {
  std::vector<KtVector> points;
  for (int i = 0; i < count; ++i) points.push_back(randomVector());
  return points;
}

// A prism over an L: not convex, closed.
KtPolyPhysicalExtent prismOverL() {
  const double outline[6][2] = {{0, 0}, {2, 0}, {2, 0.5}, {0.5, 0.5}, {0.5, 1.5}, {0, 1.5}};
  std::vector<KtVector> vertices;
  for (const double z : {0.0, 0.8}) {
    for (const auto& p : outline) vertices.emplace_back(p[0], p[1], z);
  }
  Triangles triangles;
  const Triangles top = {{0, 1, 2}, {0, 2, 3}, {0, 3, 4}, {0, 4, 5}};
  for (const auto& t : top) {
    triangles.push_back({t[0] + 6, t[1] + 6, t[2] + 6});
    triangles.push_back({t[0], t[2], t[1]});
  }
  for (KtU32 i = 0; i < 6; ++i) {
    const KtU32 j = (i + 1) % 6;
    triangles.push_back({i, j, j + 6});
    triangles.push_back({i, j + 6, i + 6});
  }
  KtPolyPhysicalExtent mesh;
  EXPECT_TRUE(mesh.setMesh(vertices, triangles));
  return mesh;
}

template <class Shape>
Solid solid(Shape shape) {
  shape.transformBy(randomTransformation());
  return std::make_unique<Shape>(shape);
}

template <class Shape>
std::unique_ptr<Shape> copyOf(const Shape& shape) {
  return std::unique_ptr<Shape>(dynamic_cast<Shape*>(shape.clone()));
}

constexpr KtShape::KtShapeValues kVolumes[] = {KtShape::kConvexHull, KtShape::kSphere,
                                               KtShape::kCapsule, KtShape::kBox};

// Every kind of solid, at random places.
std::vector<Solid> solids() {
  std::vector<Solid> all;
  all.push_back(solid(KtSphereShape(randomVector(), 0.7)));
  all.push_back(solid(KtCapsuleShape({KtLineSegment(randomVector(), randomVector()), 0.3})));
  all.push_back(solid(KtBoxShape({0.5, 1.0, 2.0})));
  all.push_back(solid(KtCylinderShape(0.4, 1.5)));
  all.push_back(solid(KtConeShape(0.6, 1.2)));
  all.push_back(solid(KtEllipsoidShape(KtEllipsoid(0.4, 0.8, 1.1, T()))));
  KtConvexPolyhedron hull;
  EXPECT_TRUE(hull.setFromPoints(randomPoints(100)));
  all.push_back(solid(hull));
  all.push_back(solid(prismOverL()));
  KtExtentUnion extents;
  extents.addMember(KtSphereShape({-1.0, 0.0, 0.0}, 0.5));
  extents.addMember(KtConeShape(0.5, 1.0, KtVector(1.0, 0.0, 0.0)));
  all.push_back(solid(extents));
  KtShapeUnion shapes;
  shapes.addMember(KtBoxShape({1.0, 0.5, 0.5}));
  shapes.addMember(KtCylinderShape(0.3, 1.0, KtVector(0.0, 2.0, 0.0)));
  all.push_back(solid(shapes));
  return all;
}

class Shapes : public sampling::Seeded {
 protected:
  template <class Check>
  void forEach(Check&& check) {
    for (const Solid& one : solids()) {
      SCOPED_TRACE(one->token().localName());
      check(*one);
    }
  }
};

KtAxisAlignedBoundingBox boxOf(const KtShape& shape, const T& t = {}) {
  KtAxisAlignedBoundingBox box;
  EXPECT_TRUE(KtAxisAlignedBoundingBoxTool().axisAlignedBoundingBoxInSystem(t, shape, box));
  return box;
}

KtVector randomPointIn(const KtAxisAlignedBoundingBox& box) {
  const KtVector size = box.size();
  return box.minimum() +
         KtVector(size.x * uniform(0, 1), size.y * uniform(0, 1), size.z * uniform(0, 1));
}

void expectNear(const KtVolumeMoments& a, const KtVolumeMoments& b, double tolerance) {
  EXPECT_NEAR(a.volume, b.volume, tolerance);
  EXPECT_TRUE(a.first.approxEq(b.first, tolerance)) << a.first.x - b.first.x;
  EXPECT_TRUE(a.squares.approxEq(b.squares, tolerance)) << a.squares.x - b.squares.x;
  EXPECT_TRUE(a.products.approxEq(b.products, tolerance)) << a.products.x - b.products.x;
}

TEST_F(Shapes, MomentsAreTheIntegralsOverWhatIsInside) {
  forEach([](const KtBasePhysicalExtent& one) {
    const KtAxisAlignedBoundingBox box = boxOf(one);
    constexpr int n = 60;
    const KtVector cell = box.size() / n;
    KtVolumeMoments sum;
    for (int i = 0; i < n * n * n; ++i) {
      const KtVector p =
          box.minimum() +
          KtVector(cell.x * (i % n + 0.5), cell.y * (i / n % n + 0.5), cell.z * (i / n / n + 0.5));
      if (!one.contains(p)) continue;
      KtVolumeMoments here;
      here.volume = 1.0;
      here.first = p;
      here.addProduct(1.0, p);
      sum += here;
    }
    sum *= cell.x * cell.y * cell.z;
    EXPECT_TRUE(one.isSolid());
    // About the middle, where nothing large hides an error.
    const T toMiddle(-box.center());
    const double reach = 0.5 * box.size().mag();
    expectNear(one.volumeMoments().transformedBy(toMiddle), sum.transformedBy(toMiddle),
               1e-3 * one.volume() * reach * reach);
    EXPECT_NEAR(one.volume(), sum.volume, 3e-3 * one.volume());
  });
}

// A box far away, as box, as hull, and as mesh with its triangles inside out.
TEST_F(Shapes, MomentsAreExactFarAway) {
  KtBoxShape box({1.0, -2.0, 3.0}, {KtVector(50.0, -20.0, 7.0), randomOrientation()});
  EXPECT_EQ(box.volume(), 6.0) << "negative lengths count as their magnitudes";
  std::vector<KtSphere> corners;
  box.boundingSpheres(corners);
  std::vector<KtVector> points;
  for (const KtSphere& corner : corners) points.push_back(corner.center());
  KtConvexPolyhedron hull;
  ASSERT_TRUE(hull.setFromPoints(points));
  KtPolyPhysicalExtent mesh;
  Triangles turned = hull.triangles();
  for (auto& t : turned) std::swap(t[1], t[2]);
  ASSERT_TRUE(mesh.setMesh(hull.vertices(), turned));
  expectNear(hull.volumeMoments(), box.volumeMoments(), 1e-9);
  expectNear(mesh.volumeMoments(), box.volumeMoments(), 1e-9);
  double mass = 0.0;
  KtVector first;
  KtSecondMoment second;
  EXPECT_TRUE(KtBoxShape({1.0, 2.0, 3.0}).massMoments(5.0 / 6.0, mass, first, second));
  EXPECT_TRUE(KtRigidBodyMassProperties(mass, first, second)
                  .approxEq(KtRigidBodyMassProperties::uniformSolidAxisAlignedRectangularPrism(
                                5.0, 1.0, 2.0, 3.0),
                            1e-12));
}

TEST_F(Shapes, SupportAndBoxAreTight) {
  forEach([](const KtBasePhysicalExtent& one) {
    const T frame = randomTransformation();
    const KtAxisAlignedBoundingBox box = boxOf(one, frame);
    const KtOrientation back = frame.orientation().inverse();
    const KtVector up = back * KtVector::zVector(1.0);
    EXPECT_NEAR(box.maximum().z, (frame * one.supportPoint(up)).z, 1e-12);
    EXPECT_NEAR(box.minimum().z, (frame * one.supportPoint(-up)).z, 1e-12);
    for (int i = 0; i < 50; ++i) {
      const KtVector direction = randomVector() * 1e-3;
      const KtVector farthest = one.supportPoint(direction);
      // It belongs to the body, as far as a point of a surface can.
      const KtVector center = one.volumeMoments().first / one.volume();
      if (one.isConvex()) {
        EXPECT_TRUE(one.contains(center + (farthest - center) * (1.0 - 1e-9)));
      }
      for (int k = 0; k < 40; ++k) {
        const KtVector p = randomPointIn(boxOf(one));
        if (!one.contains(p)) continue;
        EXPECT_LE(p.dot(direction), farthest.dot(direction) + 1e-15);
        EXPECT_TRUE(box.contains(frame * p));
      }
    }
  });
  KtAxisAlignedBoundingBox box;
  EXPECT_FALSE(KtShapeUnion().axisAlignedBoundingBox(T(), box));
  EXPECT_FALSE(KtSphereShape({NAN, 0.0, 0.0}, 1.0).axisAlignedBoundingBox(T(), box));
  EXPECT_TRUE(box.isEmpty());
}

TEST_F(Shapes, LineSegmentsMeetTheFirstPointInside) {
  forEach([](const KtBasePhysicalExtent& one) {
    int hits = 0;
    for (int i = 0; i < 100; ++i) {
      KtAxisAlignedBoundingBox around = boxOf(one);
      around.enlarge(0.3);
      const KtLineSegment segment(randomPointIn(around), randomPointIn(around));
      double expected = -1.0;
      constexpr int steps = 2000;
      const KtVector along = segment.endpoint1() - segment.endpoint0();
      for (int k = 0; k <= steps && expected < 0.0; ++k) {
        const double share = static_cast<double>(k) / steps;
        if (one.contains(segment.endpoint0() + along * share)) expected = share * along.mag();
      }
      double distance = -7.0;
      const KtShape* met = one.intersectLineSegment(segment, distance);
      const double step = along.mag() / steps;
      if (expected < 0.0) {
        // Between two samples the segment may graze the body.
        EXPECT_EQ(met == nullptr, distance == -7.0);
        continue;
      }
      ++hits;
      ASSERT_NE(met, nullptr);
      EXPECT_LE(distance, expected + 1e-9);
      EXPECT_GE(distance, expected - step - 1e-9);
    }
    EXPECT_GT(hits, 10);
  });
}

// The mesh with vertices of their own for each triangle, as many files have them.
KtPolyPhysicalExtent unshared(const KtBasePolyhedralExtent& from) {
  std::vector<KtVector> vertices;
  Triangles triangles;
  for (const auto& t : from.triangles()) {
    const auto first = static_cast<KtU32>(vertices.size());
    for (const KtU32 corner : t) vertices.push_back(from.vertices()[corner]);
    triangles.push_back({first, first + 1, first + 2});
  }
  triangles.push_back({0, 0, 1});  // a line encloses nothing and opens nothing
  KtPolyPhysicalExtent mesh;
  EXPECT_TRUE(mesh.setMesh(vertices, triangles));
  return mesh;
}

TEST_F(Shapes, NoLineSegmentSlipsThroughTheEdgesOfAMesh) {
  KtConvexPolyhedron hull;
  ASSERT_TRUE(hull.setFromPoints(randomPoints(60)));
  const KtPolyPhysicalExtent mesh = unshared(hull);
  EXPECT_TRUE(mesh.isSolid());
  EXPECT_NEAR(mesh.volume(), hull.volume(), 1e-14);
  for (int i = 0; i < 5000; ++i) {
    const auto& t = hull.triangles()[static_cast<std::size_t>(i) % hull.triangles().size()];
    const double share = i % 3 == 0 ? 1.0 : uniform(0, 1);
    const KtVector edge = hull.vertices()[t[0]] * share + hull.vertices()[t[1]] * (1.0 - share);
    const KtVector inside = hull.vertices()[t[2]] * 0.01;
    double distance = 0.0;
    ASSERT_NE(mesh.intersectLineSegment({inside + (edge - inside) * 2.0, inside}, distance),
              nullptr);
    ASSERT_NEAR(distance, (edge - inside).mag(), 1e-12);
  }
}

TEST_F(Shapes, LineSegmentsFromFarAwayMeetSmallBodies) {
  forEach([](const KtBasePhysicalExtent& one) {
    const Solid small = copyOf(one);
    small->scaleBy(1e-2);
    const KtAxisAlignedBoundingBox box = boxOf(*small);
    for (int i = 0; i < 50; ++i) {
      const KtVector from = randomVector().unitVector() * 1e6;
      const KtVector through = randomPointIn(box);
      const KtVector near = through + (from - through).unitVector();
      double expected = 0.0;
      double distance = 0.0;
      const bool isMet = small->intersectLineSegment({near, through}, expected) != nullptr;
      const bool isMetFromFar = small->intersectLineSegment({from, through}, distance) != nullptr;
      // Beside the body by less than rounding it may be either.
      if (isMet && isMetFromFar) {
        EXPECT_NEAR(distance - (from - near).mag(), expected, 1e-6);
      }
      if (small->contains(through)) {
        EXPECT_TRUE(isMet && isMetFromFar);
      }
    }
  });
}

TEST_F(Shapes, EveryKindIsReadInAHolder) {
  forEach([](const KtBasePhysicalExtent& one) {
    KtShapeContainer holder, back;
    holder.setTopElement(one);
    const std::string text = KtXmlWriter::writeString(holder);
    EXPECT_TRUE(KtXmlReader::readString(text, back));
    EXPECT_EQ(KtXmlWriter::writeString(back), text);
    EXPECT_TRUE(back == holder);
  });
}

TEST_F(Shapes, NothingMeetsWhatIsNoNumber) {
  forEach([&](const KtBasePhysicalExtent& one) {
    const KtVector inside = one.volumeMoments().first / one.volume();
    double distance = -7.0;
    EXPECT_EQ(one.intersectLineSegment({inside, {NAN, 0.0, 0.0}}, distance), nullptr);
    EXPECT_EQ(one.intersectLineSegment({{NAN, 0.0, 0.0}, inside}, distance), nullptr);
    const Solid moved = copyOf(one);
    moved->transformBy(T(KtVector(NAN, 0.0, 0.0)));
    EXPECT_EQ(moved->intersectLineSegment({{}, inside}, distance), nullptr);
    EXPECT_FALSE(moved->contains(inside));
    EXPECT_EQ(distance, -7.0);
  });
  EXPECT_FALSE(KtAxisAlignedBoundingBox().meets({}, {1.0, 1.0, 1.0}, 1.0));
}

TEST_F(Shapes, FlatBodiesAreMetThroughTheirVolumes) {
  KtPolyPhysicalExtent sheet;
  ASSERT_TRUE(sheet.setMesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {{0, 1, 2}, {0, 2, 3}}));
  KtConeShape disc(1.0, 0.0);
  EXPECT_TRUE(disc.contains({0.9, 0.0, 0.0}));
  EXPECT_FALSE(disc.contains({1.1, 0.0, 0.0}));
  for (KtShape* flat : {static_cast<KtShape*>(&sheet), static_cast<KtShape*>(&disc)}) {
    for (const auto type : kVolumes) {
      flat->deleteBoundingVolumes();
      ASSERT_TRUE(flat->addBoundingVolume(type));
      double distance = 0.0;
      EXPECT_EQ(flat->intersectLineSegment({{0.3, 0.4, 1}, {0.3, 0.4, -1}}, 0, distance), flat);
      EXPECT_EQ(distance, 1.0);
      EXPECT_EQ(flat->intersectLineSegment({{0.3, 1.4, 1}, {0.3, 1.4, -1}}, 0, distance), nullptr);
    }
  }
}

TEST_F(Shapes, ScalingAndMovingAreThoseOfEveryPoint) {
  forEach([](const KtBasePhysicalExtent& one) {
    for (const double factor : {2.5, -0.5}) {
      const T t = randomTransformation();
      const Solid other = copyOf(one);
      other->scaleBy(factor);
      other->transformBy(t);
      KtVolumeMoments scaled = one.volumeMoments();
      const double cubed = std::abs(factor * factor * factor);
      scaled.volume *= cubed;
      scaled.first *= cubed * factor;
      scaled.squares *= cubed * factor * factor;
      scaled.products *= cubed * factor * factor;
      expectNear(other->volumeMoments(), scaled.transformedBy(t), 1e-12 * (1.0 + 30.0 * cubed));
      for (int i = 0; i < 100; ++i) {
        const KtVector p = randomPointIn(boxOf(one));
        EXPECT_EQ(one.contains(p), other->contains(t * (p * factor)));
      }
      const KtLogCapture log;
      other->scaleBy(NAN);
      EXPECT_TRUE(log.contains("is not finite"));
      EXPECT_NEAR(other->volume(), scaled.volume, 1e-12 * (1.0 + cubed));
    }
  });
}

TEST_F(Shapes, BoundingVolumesContain) {
  forEach([](const KtBasePhysicalExtent& one) {
    for (const auto type : kVolumes) {
      const Solid bounded = copyOf(one);
      ASSERT_TRUE(bounded->addBoundingVolume(type));
      const KtShape& volume = *bounded->outerBoundingVolume();
      EXPECT_EQ(volume.shapeType(), type);
      double worst = 0.0;
      for (int i = 0; i < 300; ++i) {
        const KtVector d = randomVector().unitVector();
        worst = std::min(worst, (volume.supportPoint(d) - bounded->supportPoint(d)).dot(d));
      }
      EXPECT_GE(worst, -1e-12) << type;
      // The hull of a body that bulges is wider by less than its bound says.
      const double slack = volume.physicalExtent().volume() / one.volume();
      EXPECT_LE(slack, type == KtShape::kConvexHull && one.isConvex() ? 1.06 : 100.0);
    }
  });
}

TEST_F(Shapes, BoundingVolumesAreSmall) {
  const auto ratio = [](KtBasePhysicalExtent&& shape, KtShape::KtShapeValues type) {
    shape.transformBy({randomVector(), randomOrientation()});
    EXPECT_TRUE(shape.addBoundingVolume(type));
    return std::as_const(shape).outerBoundingVolume()->physicalExtent().volume() / shape.volume();
  };
  constexpr double pi = std::numbers::pi;
  // What a volume of its own kind bounds it fits exactly, however it is turned.
  EXPECT_NEAR(ratio(KtBoxShape({1.0, 1.0, 1.0}), KtShape::kBox), 1.0, 1e-9);
  EXPECT_NEAR(ratio(KtBoxShape({1.0, 2.0, 30.0}), KtShape::kBox), 1.0, 1e-9);
  EXPECT_NEAR(ratio(KtSphereShape({}, 0.2), KtShape::kSphere), 1.0, 1e-9);
  EXPECT_NEAR(ratio(KtCapsuleShape({KtLineSegment({}, {1.0, 2.0, 3.0}), 0.2}), KtShape::kCapsule),
              1.0, 1e-9);
  // Others: the best ones known.
  EXPECT_NEAR(ratio(KtBoxShape({1.0, 2.0, 2.0}), KtShape::kSphere), pi / 6.0 * 27.0 / 4.0, 1e-9);
  EXPECT_LE(ratio(KtCylinderShape(0.5, 2.0), KtShape::kBox), 4.0 / pi * 1.01);
  EXPECT_LE(ratio(KtEllipsoidShape(KtEllipsoid(1.0, 2.0, 3.0, T())), KtShape::kBox),
            6.0 / pi * 1.08);
  double best = 1e300;  // of the capsules about the axis of a cylinder
  for (double r = 0.5; r < 1.2; r += 1e-3) {
    const double half = std::max(0.0, 1.0 - std::sqrt(r * r - 0.25));
    best = std::min(best, pi * r * r * (2.0 * half + 4.0 / 3.0 * r));
  }
  EXPECT_LE(ratio(KtCylinderShape(0.5, 2.0), KtShape::kCapsule), best / (pi * 0.5) * 1.02);
  // The radius of a smallest ball grows wherever its centre goes: for points, and for balls.
  for (const double wide : {0.0, 0.4}) {
    KtExtentUnion cloud;
    for (const KtVector& p : randomPoints(60)) cloud.addMember(KtSphereShape(p, wide * uniform()));
    ASSERT_TRUE(cloud.addBoundingVolume(KtShape::kSphere));
    const auto& ball = dynamic_cast<const KtSphereShape&>(*cloud.outerBoundingVolume());
    for (int i = 0; i < 50; ++i) {
      const KtVector center = ball.center() + randomVector() * 1e-3;
      double needed = 0.0;
      for (KtU32 k = 0; k < 60; ++k) {
        const auto& one = dynamic_cast<const KtSphereShape&>(*cloud.member(k));
        needed = std::max(needed, (one.center() - center).mag() + one.radius());
      }
      EXPECT_GE(needed, ball.radius() * (1.0 - 1e-12));
    }
  }
}

TEST_F(Shapes, HullsOfCloudsHaveAllPointsBehindTheirFaces) {
  for (int round = 0; round < 20; ++round) {
    std::vector<KtVector> points = randomPoints(20 + 40 * round);
    const double size = std::pow(10.0, uniform(-6, 6));
    const KtVector far = randomVector() * (size * 100.0);
    for (KtVector& p : points) {
      // Every other cloud lies on a cube's surface, where many points share a plane.
      if (round % 2 == 1) p = p / p.largestComponent();
      p = p * size + far;
    }
    KtConvexPolyhedron hull;
    ASSERT_TRUE(hull.setFromPoints(points));
    EXPECT_TRUE(hull.isSolid());
    for (const auto& t : hull.triangles()) {
      const KtVector& a = hull.vertices()[t[0]];
      const KtVector normal =
          (hull.vertices()[t[1]] - a).cross(hull.vertices()[t[2]] - a).unitVector();
      for (const KtVector& p : points) ASSERT_LE(normal.dot(p - a), 1e-12 * size * 100.0);
    }
    // Walking over the hull finds what looking through all points finds.
    for (int i = 0; i < 50; ++i) {
      const KtVector d = randomVector();
      double best = -1e300;
      for (const KtVector& p : points) best = std::max(best, p.dot(d));
      EXPECT_NEAR(hull.support(d).dot(d), best, 1e-12 * size * 100.0);
      EXPECT_EQ(hull.vertices()[hull.closestPointIndex()], hull.support(d));
    }
  }
  // Points that differ by rounding, or little more, make faces whose planes mean nothing.
  for (int round = 0; round < 200; ++round) {
    std::vector<KtVector> points;
    for (const KtVector& p : randomPoints(4 + round % 40)) {
      for (int i = 0; i <= round % 4; ++i) {
        points.push_back(p + randomVector() * std::pow(10.0, i * (round % 7) - 16));
      }
    }
    KtConvexPolyhedron hull;
    ASSERT_TRUE(hull.setFromPoints(points));
    EXPECT_TRUE(hull.isSolid());
    const KtVector center = hull.volumeMoments().first / hull.volume();
    double distance = 0.0;
    for (const KtVector& p : hull.vertices()) {
      EXPECT_TRUE(hull.contains(center + (p - center) * 0.99));
      EXPECT_EQ(hull.intersectLineSegment({center + (p - center) * 9.0, center}, distance), &hull);
    }
  }
  std::vector<KtVector> grid;
  for (int i = 0; i < 125; ++i) grid.emplace_back(i % 5, i / 5 % 5, i / 25);
  KtConvexPolyhedron cube;
  ASSERT_TRUE(cube.setFromPoints(grid));
  EXPECT_NEAR(cube.volume(), 64.0, 1e-12);
  EXPECT_EQ(cube.vertices().size(), 8U);
}

TEST_F(Shapes, FlatCloudsAreAnsweredFor) {
  std::vector<KtVector> line, sheet;
  for (int i = 0; i < 9; ++i) {
    line.push_back(KtVector(0.1, 0.2, 0.3) * i);
    sheet.emplace_back(i % 3, i / 3, 5.0);
  }
  const std::vector<std::pair<const char*, std::vector<KtVector>>> cases = {
      {"fewer than four", {}},
      {"fewer than four", {{1, 2, 3}}},
      {"all points are one", std::vector<KtVector>(9, {1, 2, 3})},
      {"one plane", line},
      {"one plane", sheet}};
  for (const auto& [complaint, points] : cases) {
    SCOPED_TRACE(complaint);
    const KtLogCapture log;
    KtConvexPolyhedron flat;
    EXPECT_FALSE(flat.setFromPoints(points));
    EXPECT_TRUE(log.contains(complaint)) << log.text();
    EXPECT_EQ(flat.vertices(), points);
    EXPECT_EQ(flat.isEmpty(), points.empty());
    EXPECT_FALSE(flat.isSolid());
    EXPECT_EQ(flat.volume(), 0.0);
    double distance = 0.0;
    EXPECT_EQ(flat.intersectLineSegment(KtLineSegment({1, 1, 9}, {1, 1, -9}), distance), nullptr);
    for (const auto type : kVolumes) {
      KtConvexPolyhedron one = flat;
      ASSERT_EQ(one.addBoundingVolume(type), !points.empty());
      for (const KtVector& p : points) {
        const KtVector d = randomVector().unitVector();
        EXPECT_GE(one.outerBoundingVolume()->supportPoint(d).dot(d), p.dot(d) - 1e-14);
      }
    }
  }
  for (const double bad : {double(NAN), double(INFINITY), 1e200}) {
    const KtLogCapture log;
    KtConvexPolyhedron hull;
    EXPECT_FALSE(hull.setFromPoints({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, bad}}));
    EXPECT_TRUE(log.contains("not finite"));
    EXPECT_TRUE(hull.isEmpty());
    KtPolyPhysicalExtent mesh = prismOverL();
    EXPECT_FALSE(mesh.setMesh({{0, 0, 0}, {1, 0, 0}, {0, bad, 0}}, {{0, 1, 2}}));
    EXPECT_FALSE(mesh.setMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 3}}));
    EXPECT_EQ(mesh, prismOverL());
    KtSphereShape sphere({bad, 0.0, 0.0}, 1.0);
    EXPECT_FALSE(sphere.addBoundingVolume(KtShape::kBox));
    EXPECT_EQ(std::as_const(sphere).outerBoundingVolume(), nullptr);
  }
}

TEST_F(Shapes, MeshesAndUnionsConsistOfConvexParts) {
  KtPolyPhysicalExtent sheet;  // open
  std::vector<KtVector> vertices;
  Triangles triangles;
  for (KtU32 i = 0; i < 400; ++i) {
    vertices.emplace_back(i % 20, i / 20, 0.1 * uniform());
    if (i % 20 != 19 && i / 20 != 19) {
      triangles.push_back({i, i + 1, i + 20});
      triangles.push_back({i + 1, i + 21, i + 20});
    }
  }
  ASSERT_TRUE(sheet.setMesh(vertices, triangles));
  EXPECT_FALSE(sheet.isSolid());
  EXPECT_FALSE(sheet.contains({5.0, 5.0, 0.0}));
  EXPECT_EQ(sheet.volume(), 0.0);
  sheet.transformBy(randomTransformation());
  KtShapeUnion both;
  both.addMember(KtBoxShape({1.0, 1.0, 1.0}));
  both.addMember(sheet);
  ASSERT_EQ(both.numberOfConvexParts(), 1 + triangles.size());
  EXPECT_EQ(both.convexPart(0).shape(), both.member(0));
  EXPECT_EQ(both.convexPart(1 + 7).triangle(), 7U);
  EXPECT_EQ(both.convexPart(1 + 7).shape(), both.member(1));
  EXPECT_EQ(both.convexPart(both.numberOfConvexParts()).shape(), nullptr);
  KtExtentUnion extents;
  extents.addMember(sheet);
  EXPECT_EQ(extents.convexPart(3).shape(), extents.member(0));
  EXPECT_EQ(extents.convexPart(3).owner(), &extents);
  constexpr double far = std::numeric_limits<double>::infinity();
  std::vector<KtU32> all;
  both.convexPartsInBox({{-far, -far, -far}, {far, far, far}}, all);
  EXPECT_EQ(all.size(), both.numberOfConvexParts());
  // An open member makes a union open, one without a point plays no part.
  EXPECT_FALSE(both.isSolid());
  KtShapeUnion solid;
  solid.addMember(KtBoxShape({1.0, 1.0, 1.0}));
  solid.addMember(KtPolyPhysicalExtent());
  EXPECT_TRUE(solid.isSolid());
  const KtVector d = randomVector();
  double farthest = -1e300;
  for (KtU32 i = 0; i < both.numberOfConvexParts(); ++i) {
    farthest = std::max(farthest, both.convexPart(i).support(d).dot(d));
  }
  EXPECT_DOUBLE_EQ(farthest, both.support(d).dot(d));
  for (int round = 0; round < 100; ++round) {
    KtAxisAlignedBoundingBox box;
    box.include(randomPointIn(boxOf(both)));
    box.include(randomPointIn(boxOf(both)));
    std::vector<KtU32> found;
    both.convexPartsInBox(box, found);
    EXPECT_TRUE(std::is_sorted(found.begin(), found.end()));
    for (KtU32 i = 0; i < both.numberOfConvexParts(); ++i) {
      const KtConvexPart part = both.convexPart(i);
      KtAxisAlignedBoundingBox own;
      bool inside = false;
      if (i == 0) own = boxOf(*both.member(0));
      for (int k = 0; k < 20 && i != 0; ++k) {
        const double u = uniform(0, 1);
        const double v = uniform(0, 1 - u);
        const auto& [a, b, c] = part.corners();
        inside = inside || box.contains(a + (b - a) * u + (c - a) * v);
        own.include(part.corners()[k % 3U]);
      }
      const bool isFound = std::binary_search(found.begin(), found.end(), i);
      ASSERT_TRUE(isFound || !inside);
      ASSERT_TRUE(!isFound || own.intersects(box));
    }
  }
}

TEST_F(Shapes, QueriesOfAStepTakeNoMemory) {
  for (const Solid& one : solids()) {
    const T t = randomTransformation();
    const KtLineSegment segment(randomVector() * 5.0, {});
    KtAxisAlignedBoundingBox box;
    double distance = 0.0;
    const Allocations allocations;
    one->axisAlignedBoundingBox(t, box);
    static_cast<void>(one->supportPoint(segment.endpoint0()));
    one->intersectLineSegment(segment, distance);
    EXPECT_EQ(allocations.count(), 0U) << one->token().localName();
  }
}

TEST_F(Shapes, TruncatedValuesAreMultiples) {
  KtShapeUnion shapes;
  shapes.addMember(KtSphereShape({0.3, -0.27, 1.0 / 3.0}, 0.3));
  KtConvexPolyhedron hull;
  ASSERT_TRUE(hull.setFromPoints(randomPoints(30)));
  shapes.addMember(hull);
  ASSERT_TRUE(shapes.addBoundingVolume(KtShape::kSphere));
  ASSERT_TRUE(shapes.addBoundingVolume(KtShape::kBox));
  shapes.outerBoundingVolume()->setIdentifier("ball");
  shapes.truncateValues(-1.0);
  shapes.truncateValues(NAN);
  EXPECT_EQ(dynamic_cast<const KtConvexPolyhedron&>(*shapes.member(1)), hull);
  shapes.truncateValues(0.1);
  const auto& sphere = dynamic_cast<const KtSphereShape&>(*shapes.member(0));
  EXPECT_EQ(sphere.center(), KtVector(0.3, -0.2, 0.30000000000000004));
  EXPECT_EQ(sphere.radius(), 0.3);
  for (const KtVector& v : dynamic_cast<const KtConvexPolyhedron&>(*shapes.member(1)).vertices()) {
    EXPECT_NEAR(v.x * 10.0, std::round(v.x * 10.0), 1e-14);
  }
  EXPECT_EQ(shapes.outerBoundingVolume()->identifier(), "ball");
  for (int i = 0; i < 100; ++i) {
    const KtVector d = randomVector().unitVector();
    const KtShape* volume = shapes.KtShape::outerBoundingVolume();
    EXPECT_GE((volume->supportPoint(d) - shapes.supportPoint(d)).dot(d), -1e-12);
  }
  const KtShapeUnion once = shapes;
  shapes.truncateValues(0.1);
  EXPECT_EQ(shapes, once);
}

TEST_F(Shapes, AxisAlignedBoxesKnowNoPointAndCapsules) {
  KtAxisAlignedBoundingBox box;
  EXPECT_TRUE(box.isEmpty());
  box.enlarge(5.0);
  EXPECT_TRUE(box.isEmpty());
  EXPECT_FALSE(box.intersects(box));
  box.resize(KtCapsule(KtLineSegment({1, 2, 3}, {-1, 2, 4}), 0.5));
  EXPECT_EQ(box, KtAxisAlignedBoundingBox({-1.5, 1.5, 2.5}, {1.5, 2.5, 4.5}));
  KtAxisAlignedBoundingBox touching({1.5, 2.5, 4.5}, {9, 9, 9});
  EXPECT_TRUE(box.intersects(touching));
  touching.enlarge(-1e-9);
  EXPECT_FALSE(box.intersects(touching));
  EXPECT_DOUBLE_EQ(box.distance({4.5, 6.5, 3.0}), 5.0);
}

}  // namespace
