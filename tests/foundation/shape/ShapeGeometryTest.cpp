#include "support/Testing.h"

namespace {

using Triangles = std::vector<std::array<KtU32, 3>>;
using Solid = std::unique_ptr<KtBasePhysicalExtent>;

std::vector<KtVector> randomPoints(int count) {
  std::vector<KtVector> points;
  for (int i = 0; i < count; ++i) points.push_back(randomVector());
  return points;
}

KtConvexPolyhedron hullOf(const std::vector<KtVector>& points) {
  KtConvexPolyhedron hull;
  EXPECT_TRUE(hull.setFromPoints(points));
  return hull;
}

KtPolyPhysicalExtent meshOf(const std::vector<KtVector>& vertices, const Triangles& triangles) {
  KtPolyPhysicalExtent mesh;
  EXPECT_TRUE(mesh.setMesh(vertices, triangles));
  return mesh;
}

// A hull around the origin with a dent: closed, not convex. Each triangle has vertices of its own,
// as in many files, and one is a line, which encloses nothing and opens nothing.
KtPolyPhysicalExtent dentedHull() {
  const KtConvexPolyhedron hull = hullOf(randomPoints(30));
  std::vector<KtVector> vertices;
  Triangles triangles = {{0, 0, 1}};
  for (const auto& t : hull.triangles()) {
    const auto first = static_cast<KtU32>(vertices.size());
    for (const KtU32 i : t) vertices.push_back(hull.vertices()[i] * (i < 4 ? 0.2 : 1.0));
    triangles.push_back({first, first + 1, first + 2});
  }
  return meshOf(vertices, triangles);
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
  all.push_back(solid(hullOf(randomPoints(100))));
  all.push_back(solid(dentedHull()));
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

class Shapes : public testing::Test {
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

// By how much the second shape reaches beyond the first at the most.
double excess(const KtShape& volume, const KtShape& inner) {
  double worst = 0.0;
  for (int i = 0; i < 300; ++i) {
    const KtVector d = randomVector().unitVector();
    worst = std::max(worst, (inner.supportPoint(d) - volume.supportPoint(d)).dot(d));
  }
  return worst;
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

TEST_F(Shapes, SupportAndBoxAreTight) {
  forEach([](const KtBasePhysicalExtent& one) {
    const T frame = randomTransformation();
    KtAxisAlignedBoundingBox box;
    double distance = 0.0;
    const Allocations allocations;
    EXPECT_TRUE(one.axisAlignedBoundingBox(frame, box));
    static_cast<void>(one.supportPoint({1.0, 2.0, 3.0}));
    one.intersectLineSegment({{5.0, 6.0, 7.0}, {}}, distance);
    EXPECT_EQ(allocations.count(), 0U);
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
    KtAxisAlignedBoundingBox around = boxOf(one);
    around.enlarge(0.3);
    for (int i = 0; i < 100; ++i) {
      const KtLineSegment segment(randomPointIn(around), randomPointIn(around));
      const KtVector along = segment.endpoint1() - segment.endpoint0();
      constexpr int steps = 2000;
      int first = 0;
      while (first <= steps && !one.contains(segment.endpoint0() + along * first / steps)) ++first;
      double distance = -7.0;
      const KtShape* met = one.intersectLineSegment(segment, distance);
      // Between two samples the segment may graze the body.
      EXPECT_EQ(met == nullptr, distance == -7.0);
      if (first > steps) continue;
      ++hits;
      ASSERT_NE(met, nullptr);
      EXPECT_LE(distance, along.mag() * first / steps + 1e-9);
      EXPECT_GE(distance, along.mag() * (first - 1) / steps - 1e-9);
    }
    EXPECT_GT(hits, 10);
    // Nothing meets what is no number.
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

TEST_F(Shapes, LineSegmentsFromFarAwayMeetSmallBodies) {
  forEach([](const KtBasePhysicalExtent& one) {
    const Solid small = copyOf(one);
    small->scaleBy(1e-2);
    for (int i = 0; i < 100; ++i) {
      const KtVector through = randomPointIn(boxOf(*small));
      if (!small->contains(through)) continue;
      const KtVector direction = randomVector().unitVector();
      double near = 0.0, far = 0.0;
      ASSERT_NE(small->intersectLineSegment({through + direction, through}, near), nullptr);
      ASSERT_NE(small->intersectLineSegment({through + direction * 1e6, through}, far), nullptr);
      EXPECT_NEAR(far - near, 1e6 - 1.0, 1e-6);
    }
  });
}

TEST_F(Shapes, FlatBodiesAreMetThroughTheirVolumes) {
  KtPolyPhysicalExtent sheet =
      meshOf({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {{0, 1, 2}, {0, 2, 3}});
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
      scaled.first *= factor;
      scaled.squares *= factor * factor;
      scaled.products *= factor * factor;
      scaled *= cubed;
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
      EXPECT_LE(excess(volume, one), 1e-12) << type;
      // The hull of a body that bulges is wider by less than its bound says.
      const double slack = volume.physicalExtent().volume() / one.volume();
      EXPECT_LE(slack, type == KtShape::kConvexHull && one.isConvex() ? 1.06 : 100.0);
    }
  });
}

TEST_F(Shapes, BoundingVolumesAreSmall) {
  const auto ratio = [](KtBasePhysicalExtent&& shape, KtShape::KtShapeValues type) {
    shape.transformBy(randomTransformation());
    EXPECT_TRUE(shape.addBoundingVolume(type));
    return std::as_const(shape).outerBoundingVolume()->physicalExtent().volume() / shape.volume();
  };
  using Box = KtBoxShape;
  constexpr double pi = std::numbers::pi;
  // What a volume of its own kind bounds it fits exactly, however it is turned.
  EXPECT_NEAR(ratio(Box({1.0, 1.0, 1.0}), KtShape::kBox), 1.0, 1e-9);
  EXPECT_NEAR(ratio(Box({1.0, 2.0, 30.0}), KtShape::kBox), 1.0, 1e-9);
  EXPECT_NEAR(ratio(KtSphereShape({}, 0.2), KtShape::kSphere), 1.0, 1e-9);
  const KtCapsule capsule(KtLineSegment({}, {1.0, 2.0, 3.0}), 0.2);
  EXPECT_NEAR(ratio(KtCapsuleShape(capsule), KtShape::kCapsule), 1.0, 1e-9);
  // Others: the best ones known. Of the capsules about the axis of a cylinder it is this one.
  double best = 1e300;
  for (double r = 0.5; r < 1.2; r += 1e-3) {
    const double half = std::max(0.0, 1.0 - std::sqrt(r * r - 0.25));
    best = std::min(best, pi * r * r * (2.0 * half + 4.0 / 3.0 * r));
  }
  EXPECT_LE(ratio(KtCylinderShape(0.5, 2.0), KtShape::kCapsule), best / (pi * 0.5) * 1.02);
  EXPECT_LE(ratio(KtCylinderShape(0.5, 2.0), KtShape::kBox), 4.0 / pi * 1.01);
  const KtEllipsoid ellipsoid(1.0, 2.0, 3.0, T());
  EXPECT_LE(ratio(KtEllipsoidShape(ellipsoid), KtShape::kBox), 6.0 / pi * 1.08);
  EXPECT_NEAR(ratio(Box({1.0, 2.0, 2.0}), KtShape::kSphere), pi / 6.0 * 27.0 / 4.0, 1e-9);
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
    const KtConvexPolyhedron hull = hullOf(points);
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
    const KtConvexPolyhedron hull = hullOf(points);
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
  const KtConvexPolyhedron cube = hullOf(grid);
  EXPECT_NEAR(cube.volume(), 64.0, 1e-12);
  EXPECT_EQ(cube.vertices().size(), 8U);
}

TEST_F(Shapes, FlatCloudsAreAnsweredFor) {
  std::vector<KtVector> sheet;
  for (int i = 0; i < 9; ++i) sheet.emplace_back(i % 3, i / 3, 5.0);
  for (const auto& [complaint, points] : std::vector<std::pair<const char*, std::vector<KtVector>>>{
           {"fewer than four", {}},
           {"all points are one", std::vector<KtVector>(9, {1, 2, 3})},
           {"one plane", sheet}}) {
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
    EXPECT_EQ(flat.intersectLineSegment({{1, 1, 9}, {1, 1, -9}}, distance), nullptr);
    for (const auto type : kVolumes) {
      KtConvexPolyhedron one = flat;
      ASSERT_EQ(one.addBoundingVolume(type), !points.empty());
      if (!points.empty()) {
        EXPECT_LE(excess(*one.outerBoundingVolume(), flat), 1e-14);
      }
    }
  }
  for (const double bad : {double(NAN), double(INFINITY), 1e200}) {
    const KtLogCapture log;
    KtConvexPolyhedron hull;
    EXPECT_FALSE(hull.setFromPoints({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, bad}}));
    EXPECT_TRUE(log.contains("not finite"));
    EXPECT_TRUE(hull.isEmpty());
    KtSphereShape sphere({bad, 0.0, 0.0}, 1.0);
    EXPECT_FALSE(sphere.addBoundingVolume(KtShape::kBox));
    EXPECT_EQ(std::as_const(sphere).outerBoundingVolume(), nullptr);
  }
}

TEST_F(Shapes, MeshesAndUnionsConsistOfConvexParts) {
  std::vector<KtVector> vertices;
  Triangles triangles;
  for (KtU32 i = 0; i < 400; ++i) {
    vertices.emplace_back(i % 20, i / 20, 0.1 * uniform());
    if (i % 20 == 19 || i / 20 == 19) continue;
    triangles.push_back({i, i + 1, i + 20});
    triangles.push_back({i + 1, i + 21, i + 20});
  }
  KtPolyPhysicalExtent sheet = meshOf(vertices, triangles);  // open
  EXPECT_FALSE(sheet.isSolid());
  EXPECT_FALSE(sheet.contains({5.0, 5.0, 0.0}));
  EXPECT_EQ(sheet.volume(), 0.0);
  sheet.transformBy(randomTransformation());
  KtShapeUnion both, solid;
  for (KtShapeUnion* each : {&both, &solid}) each->addMember(KtBoxShape({1.0, 1.0, 1.0}));
  both.addMember(sheet);
  solid.addMember(KtPolyPhysicalExtent());
  // An open member makes a union open, one without a point plays no part.
  EXPECT_FALSE(both.isSolid());
  EXPECT_TRUE(solid.isSolid());
  const KtU32 count = both.numberOfConvexParts();
  ASSERT_EQ(count, 1 + triangles.size());
  EXPECT_EQ(both.convexPart(0).shape(), both.member(0));
  EXPECT_EQ(both.convexPart(1 + 7).triangle(), 7U);
  EXPECT_EQ(both.convexPart(1 + 7).shape(), both.member(1));
  EXPECT_EQ(both.convexPart(count).shape(), nullptr);
  const KtVector d = randomVector();
  double farthest = -1e300;
  for (KtU32 i = 0; i < count; ++i) {
    farthest = std::max(farthest, both.convexPart(i).support(d).dot(d));
  }
  EXPECT_DOUBLE_EQ(farthest, both.support(d).dot(d));
  constexpr double far = std::numeric_limits<double>::infinity();
  for (int round = 0; round < 100; ++round) {
    KtAxisAlignedBoundingBox box({-far, -far, -far}, {far, far, far});
    if (round > 0) box = {};
    for (int k = 0; k < 2; ++k) box.include(randomPointIn(boxOf(both)));
    std::vector<KtU32> found;
    both.convexPartsInBox(box, found);
    EXPECT_TRUE(round > 0 || found.size() == count);
    EXPECT_TRUE(std::is_sorted(found.begin(), found.end()));
    for (KtU32 i = 0; i < count; ++i) {
      const KtConvexPart part = both.convexPart(i);
      KtAxisAlignedBoundingBox own;
      bool inside = false;
      if (i == 0) own = boxOf(*both.member(0));
      for (int k = 0; k < 20 && i != 0; ++k) {
        const double u = uniform(0, 1), v = uniform(0, 1 - u);
        const auto& [a, b, c] = part.corners();
        inside = inside || box.contains(a + (b - a) * u + (c - a) * v);
        own.include(part.corners()[k % 3U]);
      }
      const bool isFound = std::binary_search(found.begin(), found.end(), i);
      ASSERT_TRUE(isFound ? own.intersects(box) : !inside);
    }
  }
}

TEST_F(Shapes, TruncatedValuesAreMultiples) {
  KtShapeUnion shapes;
  shapes.addMember(KtSphereShape({0.3, -0.27, 1.0 / 3.0}, 0.3));
  shapes.addMember(hullOf(randomPoints(30)));
  shapes.addBoundingVolume(KtShape::kSphere);
  const KtShapeUnion before = shapes;
  shapes.truncateValues(NAN);
  EXPECT_EQ(shapes, before);
  shapes.truncateValues(0.1);
  EXPECT_EQ(dynamic_cast<const KtSphereShape&>(*shapes.member(0)),
            KtSphereShape({0.3, -0.2, 0.30000000000000004}, 0.3));
  for (const KtVector& v : dynamic_cast<const KtConvexPolyhedron&>(*shapes.member(1)).vertices()) {
    EXPECT_NEAR(v.x * 10.0, std::round(v.x * 10.0), 1e-14);
  }
  EXPECT_LE(excess(*std::as_const(shapes).outerBoundingVolume(), shapes), 1e-12);
}

TEST_F(Shapes, AxisAlignedBoxesKnowNoPointAndCapsules) {
  KtAxisAlignedBoundingBox box;
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
