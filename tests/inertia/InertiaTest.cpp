#include <boost/algorithm/string/replace.hpp>

#include "support/Testing.h"

namespace {

// A body made of particles: every answer can be found particle by particle.
struct Particle {
  double m;
  KtVector r;
};
using Cloud = std::vector<Particle>;

Cloud randomCloud(int count = 6) {
  Cloud cloud;
  for (int i = 0; i < count; ++i) cloud.push_back({uniform(0.1, 2.0), randomVector()});
  return cloud;
}
Mass massOf(const Cloud& cloud) {
  double m = 0.0;
  KtVector c;
  KtSecondMoment j;
  for (const auto& [mi, r] : cloud) {
    m += mi;
    c += r * mi;
    j += KtSecondMoment(r.y * r.y + r.z * r.z, r.x * r.x + r.z * r.z, r.x * r.x + r.y * r.y,
                        -r.x * r.y, -r.x * r.z, -r.y * r.z) *
         mi;
  }
  return {m, c, j};
}

void expectNear(const Mass& actual, const Mass& expected, double tolerance) {
  EXPECT_TRUE(actual.approxEq(expected, tolerance))
      << KtXmlWriter::writeString(actual) << KtXmlWriter::writeString(expected);
}

TEST(MassProperties, DoAsTheirParticlesDo) {
  for (int trial = 0; trial < 20; ++trial) {
    const Cloud cloud = randomCloud(), other = randomCloud();
    const T t = randomTransformation();
    Cloud moved = cloud, scaled = cloud, both = cloud;
    for (auto& [m, r] : moved) r = t * r;
    for (auto& [m, r] : scaled) m *= 1.5 * 1.5 * 1.5, r *= 1.5;
    both.insert(both.end(), other.begin(), other.end());
    Mass body = massOf(cloud);
    body.transformBy(t);
    expectNear(body, massOf(moved), 1e-13);
    body = massOf(cloud);
    body.scaleBy(1.5);
    expectNear(body, massOf(scaled), 1e-12);
    expectNear(massOf(cloud) + massOf(other), massOf(both), 1e-13);
    expectNear(massOf(both) - massOf(other), massOf(cloud), 1e-13);

    body = massOf(cloud);
    const KtGeneralMotion v = randomMotion(), a = randomMotion();
    const auto force = [&](const KtVector& w) {
      KtGeneralForce sum;
      for (const auto& [m, r] : cloud) {
        const KtVector f = (a.linear() + a.angular().cross(r) + w.cross(w.cross(r))) * m;
        sum += {f, r.cross(f)};
      }
      return sum;
    };
    const KtGeneralForce resting = force({}), moving = force(v.angular());
    EXPECT_TRUE(body.calculateForce(a).approxEq(resting, 1e-13));
    EXPECT_TRUE(body.calculateForce(v, a).approxEq(moving, 1e-13));
    EXPECT_TRUE(body.calculateAcceleration(resting).approxEq(a, 1e-11));
    EXPECT_TRUE(body.calculateAcceleration(v, moving).approxEq(a, 1e-11));

    T frame;
    EXPECT_TRUE(body.getPrincipalFrame(frame));
    Mass seen = body;
    seen.transformBy(frame.inverse());
    EXPECT_TRUE(seen.firstMoment().approxEq({}, 1e-14));
    const KtSecondMoment& j = seen.secondMoment();
    EXPECT_LE(std::max({std::abs(j.jxy()), std::abs(j.jxz()), std::abs(j.jyz())}), 1e-13);

    KtEllipsoid ellipsoid;
    double density = 0.0;
    body.getEllipsoid(ellipsoid, density);
    Mass again = Mass::uniformSolidAxisAlignedEllipsoid(density * ellipsoid.volume(), ellipsoid.a(),
                                                        ellipsoid.b(), ellipsoid.c());
    again.transformBy(ellipsoid.transformation());
    expectNear(again, body, 1e-12);
  }
}

// The particles of a uniform solid: the midpoints of a grid's cells that lie inside.
Mass solid(const Mass& like, const KtVector& half, bool (*inside)(const KtVector&)) {
  constexpr int cells = 80;
  Cloud cloud;
  for (int i = 0; i < cells * cells * cells; ++i) {
    const auto at = [](int k, double h) { return h * ((2.0 * k + 1.0) / cells - 1.0); };
    const KtVector r(at(i % cells, half.x), at(i / cells % cells, half.y),
                     at(i / cells / cells, half.z));
    if (inside(r)) cloud.push_back({1.0, r});
  }
  for (auto& particle : cloud) particle.m = like.mass() / static_cast<double>(cloud.size());
  return massOf(cloud);
}

TEST(MassProperties, BuildersAgreeWithIntegration) {
  using V = const KtVector&;
  constexpr double r = 0.7, length = 0.9;
  const KtCapsule capsule(KtLineSegment({0.0, 0.0, -0.5 * length}, {0.0, 0.0, 0.5 * length}), r);
  // The hemisphere's first moment doesn't know its mass. So it has 1 kg here, and so have those of
  // the capsule.
  EXPECT_EQ(Mass::uniformSolidHemisphere(3.0, r).firstMoment(), KtVector(0.0, 0.0, 0.375 * r));
  const auto expect = [](const Mass& mass, V half, bool (*inside)(V)) {
    expectNear(mass, solid(mass, half, inside), 1e-3);
  };
  expect(Mass::uniformSolidSphere(3.0, r), {r, r, r}, [](V p) { return p.mag() < r; });
  expect(Mass::uniformSolidHemisphere(1.0, r), {r, r, r},
         [](V p) { return p.mag() < r && p.z > 0.0; });
  expect(Mass::uniformSolidAxisAlignedEllipsoid(3.0, 0.5, 0.8, 1.1), {0.5, 0.8, 1.1},
         [](V p) { return std::hypot(p.x / 0.5, p.y / 0.8, p.z / 1.1) < 1.0; });
  expect(Mass::uniformSolidAxisAlignedRectangularPrism(3.0, 0.6, 0.9, 1.4), {0.3, 0.45, 0.7},
         [](V) { return true; });
  expect(Mass::uniformSolidAxisAlignedCylinder(3.0, r, 1.5), {r, r, 0.75},
         [](V p) { return std::hypot(p.x, p.y) < r; });
  expect(Mass::uniformSolidAxisAlignedTorus(3.0, 0.8, 0.3), {1.1, 1.1, 0.3},
         [](V p) { return std::hypot(std::hypot(p.x, p.y) - 0.8, p.z) < 0.3; });
  expect(Mass::uniformSolidCapsule(2.0 + 1.5 * length / r, capsule), {r, r, r + 0.5 * length},
         [](V p) { return std::hypot(p.x, p.y, std::max(0.0, std::abs(p.z) - 0.5 * length)) < r; });
  // A shell is what a sphere gains when it grows.
  const double d = 1e-4, grown = std::pow(1.0 + d, 3.0);
  const Mass gain = Mass::uniformSolidSphere(grown, r * (1.0 + d)) - Mass::uniformSolidSphere(1, r);
  expectNear(Mass::uniformSphericalShell(grown - 1.0, r), gain, 1e-3 * d);
}

TEST(MassProperties, CapsuleStandsWhereItsSegmentDoes) {
  const double m = 5.0, r = 0.3;
  const KtCapsule upright(KtLineSegment({0.0, 0.0, -0.4}, {0.0, 0.0, 0.4}), r);
  const Mass expected = Mass::uniformSolidCapsule(m, upright);
  for (int trial = 0; trial < 20; ++trial) {
    // Among them the segments along -z, and a little off it.
    T t = randomTransformation();
    if (trial == 1) t.setOrientation(KtOrientation(0.0, 0.6, 0.8, 0.0));
    if (trial == 2) t.setOrientation(KtOrientation::xRotation(3.141592653589793 - 1e-6));
    Mass moved = expected;
    moved.transformBy(t);
    expectNear(Mass::uniformSolidCapsule(m, t * upright), moved, 1e-9);
  }
  const KtVector center(1.0, 2.0, 3.0);
  Mass sphere = Mass::uniformSolidSphere(m, r);
  sphere.transformBy(center);
  EXPECT_EQ(Mass::uniformSolidCapsule(m, {KtLineSegment(center, center), r}), sphere);
}

TEST(MassProperties, RepairKeepsTheCentreOfMassAndGivesAnInvertibleInertia) {
  for (int trial = 0; trial < 100; ++trial) {
    Mass body;
    body.set(uniform(0.5, 2.0), randomVector(),
             {uniform(), uniform(), uniform(), uniform(), uniform(), uniform()}, false);
    const bool wasValid = body.isValid();
    const Mass before = body;
    body.makeValid();
    EXPECT_TRUE(body.isValid());
    EXPECT_TRUE(wasValid ? body == before : !(body == before));
    EXPECT_TRUE(body.firstMoment().approxEq(before.firstMoment(), 1e-14));
    if (wasValid) continue;
    KtVector center;
    body.getCenterOfMass(center);
    const KtGeneralMotion a = randomMotion();
    EXPECT_TRUE(body.calculateAcceleration(body.calculateForce(a)).approxEq(a, 1e-4));
    body.transformBy(-center);
    EXPECT_TRUE(body.secondMoment().isValid()) << "about the centre of mass";
  }
}

TEST(MassProperties, LeastMassAndNothing) {
  const KtSecondMoment j(1.0, 1.0, 1.0, 0.0, 0.0, 0.0);
  for (const double m : {1e-09, std::nextafter(1e-09, 0.0), 0.0, std::nan("")}) {
    Mass body;
    body.set(m, {}, j, false);
    EXPECT_EQ(body.isValid(), m == 1e-09) << m;
    body.makeValid();
    EXPECT_EQ(body.mass(), 1e-09);
    EXPECT_EQ(body.secondMoment(), j);
  }
  EXPECT_FALSE(Mass().isValid());
  EXPECT_EQ(Mass::pointMass(0.0).mass(), 1e-09);
  // The centre of mass is so far out that a repair about it is lost in the way back.
  EXPECT_TRUE(Mass(0.0, {10.0, -10.0, 10.0}, {}).isValid());

  const KtGeneralMotion a = Mass().calculateAcceleration({{1, 0, 0}, {0, 1, 0}});
  for (unsigned i = 0; i < 6; ++i) EXPECT_TRUE(std::isfinite(a[i]));
  EXPECT_TRUE(a[0] > 1e100 && a[4] > 1e100);
}

// The factor follows every change; the inverse doesn't follow set and scaleBy, which come last.
TEST(MassProperties, CachesFollowChanges) {
  const KtGeneralMotion a = randomMotion();
  const auto invertsJ = [&a](const Mass& body) {
    return (body.invSecondMoment() * (body.secondMoment() * a.linear())).approxEq(a.linear(), 1e-9);
  };
  const auto solves = [&a](const Mass& body) {
    return body.calculateAcceleration(body.calculateForce(a)).approxEq(a, 1e-9);
  };
  const Mass start = massOf(randomCloud()), other = massOf(randomCloud());
  const std::vector<std::function<void(Mass&)>> changes = {
      [](Mass& b) { b.transformBy(KtOrientation(0.5, 0.5, -0.5, 0.5)); },
      [](Mass& b) { b.transformBy(KtVector(1.0, 2.0, 3.0)); },
      [&](Mass& b) { b += other; },
      [&](Mass& b) { b -= other; },
      [&](Mass& b) { b = other; },
      [](Mass& b) { b.scaleBy(2.0); },
      [&](Mass& b) { b.set(other.mass(), other.firstMoment(), other.secondMoment(), true); }};
  for (std::size_t i = 0; i < changes.size(); ++i) {
    SCOPED_TRACE(i);
    Mass body = start + other;
    ASSERT_TRUE(solves(body) && invertsJ(body));
    changes[i](body);
    EXPECT_TRUE(solves(body));
    EXPECT_EQ(invertsJ(body), i + 2 < changes.size());
    const Mass copy = body;
    EXPECT_TRUE(solves(copy) && invertsJ(copy));
    body.computeSecondMomentInverse();
    EXPECT_TRUE(invertsJ(body));
  }
}

using Inertia = KtArticulatedBodyInertia;
using Dynamics = KtArticulatedBodyDynamics;

TEST(ArticulatedBody, SumsAreRigidIfBothAre) {
  const Dynamics nothing(Inertia(), {randomVector(), randomVector()});
  Dynamics shown;
  shown.setToTransformedValue(nothing, randomMotion(), 0.0, 3.0);
  EXPECT_TRUE(shown.approxEq(nothing, 0.0));
  Inertia a, b;
  a.setFromRigidBody(massOf(randomCloud()));
  b.setFromRigidBody(massOf(randomCloud()));
  EXPECT_TRUE((a + b).isRigid());
  KtReArray array(6, 6);
  for (KtU32 i = 0; i < 6; ++i) array[i][i] = 1.0;
  Inertia other;
  other.setFromArray(array);
  EXPECT_FALSE((a + other).isRigid() || (a - other).isRigid());
  EXPECT_TRUE((a + b - b).approxEq(a, 1e-14));
  a.getArray(array);
  b.setFromArray(array);
  const KtLogCapture log;
  b.setFromArray(KtReArray(5, 6));
  EXPECT_TRUE(b.approxEq(a, 0.0) && !log.text().empty());
}

// A file that names the bias as such is read as well.
TEST(ArticulatedBody, BiasIsReadUnderEitherName) {
  const Dynamics dynamics(massOf(randomCloud()), {{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}});
  const std::string text = KtXmlWriter::writeString(dynamics);
  Dynamics read;
  EXPECT_TRUE(KtXmlReader::readString(
      boost::replace_all_copy(text, "articulatedBodyInertia", "bias"), read));
  EXPECT_EQ(read, dynamics);
  EXPECT_NE(text.find("</articulatedBodyInertia>"), std::string::npos);
}

}  // namespace
