#include <gtest/gtest.h>

#include "ktManipulator/ktManipulator.h"
#include "support/KtLogCapture.h"
#include "support/Random.h"

namespace {

KtDataMap dataMap(const std::string& key, double value) {
  KtDataMap map;
  map.add(key, value);
  return map;
}

// A box with a hull and a sphere around it, and a ball, side by side in a capsule.
KtShapeUnion machinePart() {
  KtBoxShape box({1.0, 1.0, 1.0});
  box.setIdentifier("box");
  box.addBoundingVolume(KtShape::kConvexHull);
  box.addBoundingVolume(KtShape::kSphere);
  KtSphereShape ball({3.0, 0.0, 0.0}, 0.5);
  ball.setIdentifier("ball");
  KtShapeUnion part;
  part.setIdentifier("part");
  part.addMember(box);
  part.addMember(ball);
  part.addBoundingVolume(KtShape::kCapsule);
  return part;
}

TEST(ShapeTree, NumbersMembersWithTheirVolumesThenItsOwn) {
  KtShapeUnion part = machinePart();
  const KtManipulatorLink link;
  KtU32 count = 0;
  KtShape::ShapeTable table;
  KtShape::ShapeVector shapes;
  for (int pass = 0; pass < 2; ++pass) {  // numbering again changes nothing
    count = 0;
    part.mapShapes(count, &link, table, shapes);
    KtU32 levels = 0;
    part.mapBoundingVolumeLevels(levels);
    EXPECT_EQ(levels, 2U);
  }
  const KtShape* box = std::as_const(part).member(0);
  ASSERT_EQ(count, 5U);
  EXPECT_EQ(shapes,
            (KtShape::ShapeVector{
                box, box->outerBoundingVolume(), box->outerBoundingVolume()->outerBoundingVolume(),
                std::as_const(part).member(1), std::as_const(part).outerBoundingVolume()}));
  for (KtU32 i = 0; i < count; ++i) {
    EXPECT_EQ(shapes[i]->shapeIndex(), i);
    EXPECT_EQ(shapes[i]->link(), &link);
  }
  // The number that the link finds by adding up along the chain of its top shape.
  EXPECT_EQ(part.numberOfShapes() + std::as_const(part).outerBoundingVolume()->numberOfShapes(),
            count);
  EXPECT_EQ(table, (KtShape::ShapeTable{{"box", box}, {"ball", shapes[3]}, {"part", &part}}));
  EXPECT_EQ(part.shapeIndex(), ktUnmappedIndex);
  // A copy belongs to no link yet.
  const KtShapeUnion copy = part;
  EXPECT_EQ(copy.member(0)->shapeIndex(), ktUnmappedIndex);
  EXPECT_EQ(copy.member(0)->link(), nullptr);
  EXPECT_EQ(copy, part);
}

TEST(ShapeTree, ChainsLeadInAndOutWhateverMadeThem) {
  const auto expectChain = [](const KtShape& top, KtU32 length) {
    const KtShape* shape = &top;
    EXPECT_EQ(top.innerBoundedShape(), nullptr);
    for (KtU32 level = 0; level < length; ++level) {
      ASSERT_NE(shape, nullptr);
      EXPECT_EQ(shape->boundingVolumeLevel(), level);
      const KtShape* next = shape->outerBoundingVolume();
      EXPECT_TRUE(next == nullptr || next->innerBoundedShape() == shape);
      shape = next;
    }
    EXPECT_EQ(shape, nullptr);
  };
  KtBoxShape box({1.0, 2.0, 3.0});
  expectChain(box, 1);
  EXPECT_TRUE(box.addBoundingVolume(KtShape::kBox));
  box.addBoundingVolume(KtSphereShape({}, 9.0));
  EXPECT_TRUE(box.addBoundingVolume(KtShape::kCapsule));
  expectChain(box, 4);
  const KtBoxShape copy = box;
  expectChain(copy, 4);
  KtShapeContainer holder;
  holder.setTopElement(box);
  const std::string text = KtXmlWriter::writeString(holder);
  KtShapeContainer back;
  EXPECT_TRUE(KtXmlReader::readString(text, back));
  expectChain(*back.topElement(), 4);
  EXPECT_EQ(back, holder);
  // Taken out of the chain a volume is an exact shape with what is around it.
  holder.setTopElement(*std::as_const(box).outerBoundingVolume());
  expectChain(*holder.topElement(), 3);
  // Assigned to, a shape takes the other's volumes in place of its own, also once it was written.
  KtXmlWriter::writeString(box);
  box = KtBoxShape({1.0, 1.0, 1.0});
  expectChain(box, 1);
  box = copy;
  expectChain(box, 4);
  EXPECT_EQ(box, copy);

  const KtShapeUnion part = machinePart();
  KtShape::ShapeVector volumes;
  part.boundingVolumes(volumes, 0);
  EXPECT_EQ(volumes, (KtShape::ShapeVector{part.member(0), part.member(1)}));
  volumes.clear();
  part.boundingVolumes(volumes, 1);
  EXPECT_EQ(volumes, (KtShape::ShapeVector{part.outerBoundingVolume()}));
  KtShapeContainer parts;
  parts.setTopElement(part);
  parts.deleteBoundingVolumes();
  expectChain(*dynamic_cast<KtShapeUnion&>(*parts.topElement()).member(0), 1);
  expectChain(*parts.topElement(), 1);

  const KtLogCapture log;
  EXPECT_FALSE(box.addBoundingVolume(KtShape::kCone));
  EXPECT_FALSE(KtShapeUnion().addBoundingVolume(KtShape::kBox));
  EXPECT_FALSE(KtShapeContainer().addBoundingVolume(KtShape::kBox));
  EXPECT_TRUE(log.contains("type 5 is no bounding volume"));
  EXPECT_TRUE(log.contains("shapeUnion has no point"));
  expectChain(box, 4);
}

TEST(ShapeTree, AShapeMayBeAssignedFromAPartOfItselfAndAPartFromTheWhole) {
  KtSphereShape inner({1, 0, 0}, 1.0);
  inner.addBoundingVolume(KtSphereShape({2, 0, 0}, 3.0));
  inner.addBoundingVolume(KtSphereShape({3, 0, 0}, 9.0));
  const KtSphereShape whole = inner;
  const auto volume = [](KtShape& shape) -> KtSphereShape& {
    return dynamic_cast<KtSphereShape&>(*shape.outerBoundingVolume());
  };
  inner = volume(inner);
  EXPECT_EQ(inner.radius(), 3.0);
  inner = volume(inner);
  EXPECT_EQ(inner, KtSphereShape({3, 0, 0}, 9.0));
  // The volume becomes a copy of the whole, which had that volume in it.
  inner = whole;
  volume(inner) = inner;
  EXPECT_EQ(volume(inner), whole);
  EXPECT_EQ(inner.radius(), 1.0);

  // A union out of one around it, and out of one in it.
  KtShapeUnion part = machinePart();
  KtShapeUnion around;
  around.addMember(machinePart());
  part.addBoundingVolume(around);
  const KtShape* outermost = std::as_const(part).outerBoundingVolume()->outerBoundingVolume();
  const auto* deep = dynamic_cast<const KtShapeUnion*>(outermost);
  ASSERT_NE(deep, nullptr);
  EXPECT_TRUE(part.holds(*deep->member(0)));
  EXPECT_FALSE(part.holds(part));
  part = dynamic_cast<const KtShapeUnion&>(*deep->member(0));
  EXPECT_EQ(part, machinePart());
  part = around;
  part = dynamic_cast<const KtShapeUnion&>(*std::as_const(part).member(0));
  EXPECT_EQ(part, machinePart());
}

TEST(ShapeTree, LineSegmentsFillTheEventAtALevel) {
  KtShapeContainer holder;
  KtShapePointEvent event;
  const KtLineSegment through({-10, 0, 0}, {10, 0, 0});
  EXPECT_EQ(holder.intersectLineSegment(through, event, 0), nullptr);
  holder.setTopElement(machinePart());
  holder.topElement()->addBoundingVolume(KtSphereShape({}, 9.0));
  const auto& part = dynamic_cast<const KtShapeUnion&>(*holder.topElement());
  EXPECT_EQ(holder.intersectLineSegment(through, event, 0), part.member(0));
  EXPECT_DOUBLE_EQ(event.distance(), 9.5);
  EXPECT_TRUE(event.isImpacted());
  EXPECT_EQ(holder.intersectLineSegment(through, event, 2),
            part.outerBoundingVolume()->outerBoundingVolume());
  EXPECT_DOUBLE_EQ(event.distance(), 1.0);
  EXPECT_EQ(holder.intersectLineSegment(through, event, 99),
            part.outerBoundingVolume()->outerBoundingVolume());
  // From the other side the ball comes first; nothing in between, the event stays.
  EXPECT_EQ(holder.intersectLineSegment({{10, 0, 0}, {-10, 0, 0}}, event, 0), part.member(1));
  EXPECT_DOUBLE_EQ(event.distance(), 6.5);
  EXPECT_EQ(holder.intersectLineSegment({{1.5, 0, 0}, {2, 0, 0}}, event, 0), nullptr);
  EXPECT_DOUBLE_EQ(event.distance(), 6.5);
  EXPECT_EQ(holder.intersectLineSegment({{3, 0, 0}, {3, 0, 0}}, event, 0), part.member(1));
  EXPECT_EQ(event.distance(), 0.0);
}

TEST(ShapeTree, SurfacesAreFoundByLabel) {
  KtBoxShape box({1.0, 1.0, 1.0});
  const KtDataMap* found = nullptr;
  EXPECT_FALSE(box.setSurfaceProperties("ice", dataMap("k", 1.0)));
  EXPECT_FALSE(box.lookup("metal", found));
  EXPECT_TRUE(box.setSurfaceProperties("metal", dataMap("k", 2.0)));
  EXPECT_TRUE(box.lookup("metal", found));
  EXPECT_EQ(found, box.defaultSurface());

  // A volume has the surface of what it bounds, in the colour of volumes.
  box.setTakesContactForces(false);
  box.addBoundingVolume(KtShape::kSphere);
  EXPECT_FALSE(box.outerBoundingVolume()->takesContactForces());
  double value = 0.0;
  EXPECT_TRUE(box.outerBoundingVolume()->defaultSurface()->lookup("k", value));
  EXPECT_EQ(value, 2.0);
  EXPECT_TRUE(box.outerBoundingVolume()->defaultSurface()->lookup("ktDiffuseAlpha", value));

  KtShapeUnion part;
  part.addMember(box);
  part.addMember(KtSphereShape({}, 1.0));
  part.member(1)->setSurfaceLabel("ice");
  EXPECT_TRUE(part.setSurfaceProperties("ice", dataMap("k", 3.0)));
  EXPECT_TRUE(part.lookup("ice", found));
  EXPECT_EQ(found, part.member(1)->defaultSurface());
  EXPECT_FALSE(part.lookup("wood", found));
  EXPECT_EQ(found, nullptr);
  // An extent union has one surface, whatever its members say.
  KtExtentUnion extents;
  extents.addMember(box);
  EXPECT_FALSE(extents.lookup("metal", found));
}

TEST(ShapeTree, AFileWrittenByHandIsRead) {
  const KtLogCapture log;
  KtConvexPolyhedron hull;
  EXPECT_TRUE(KtXmlReader::readString(
      "<convexPolyhedron><surfaceLabel>ice</surfaceLabel>\n<vertices>0 0 0  1 0 0\n"
      "\t0 1 0  0 0 1</vertices></convexPolyhedron>",
      hull));
  EXPECT_NEAR(hull.volume(), 1.0 / 6.0, 1e-15);
  EXPECT_EQ(log.text(), "");
}

TEST(ShapeTree, DamagedMeshesAreEmpty) {
  for (const auto& [complaint, content] : std::vector<std::pair<std::string, std::string>>{
           {"triples", "<vertices>0 0 0 1</vertices>"},
           {"\"one\" is not a number", "<vertices>0 0 one</vertices>"},
           {"not finite", "<vertices>0 0 NaN 1 1 1 0 0 0</vertices>"},
           {"isn't there", "<vertices>0 0 0 1 1 1 1 0 0</vertices><triangles>0 1 3</triangles>"},
           {"\"-1\" is not", "<vertices>0 0 0</vertices><triangles>0 0 -1</triangles>"}}) {
    SCOPED_TRACE(content);
    const KtLogCapture log;
    KtPolyPhysicalExtent mesh;
    const std::string text = "<polyPhysicalExtent>" + content + "</polyPhysicalExtent>";
    EXPECT_FALSE(KtXmlReader::readString(text, mesh));
    EXPECT_TRUE(log.contains(complaint)) << log.text();
    EXPECT_EQ(mesh.numberOfConvexParts(), 0U);
  }
  const KtLogCapture log;
  KtConvexPolyhedron flat;
  EXPECT_TRUE(KtXmlReader::readString(
      "<convexPolyhedron><vertices>0 0 0 1 0 0 0 1 0 1 1 0</vertices></convexPolyhedron>", flat));
  EXPECT_TRUE(log.contains("no volume: all points lie on one plane"));
  EXPECT_EQ(flat.support({1, 1, 0}), KtVector(1, 1, 0));
}

constexpr KtShapeKey kA{0, 1, 2};
constexpr KtShapeKey kB{0, ktBaseIndex, 0};
constexpr KtShapeKey kC{3, 1, 1};

TEST(ShapeCollisionCache, VisitsValidRecordsOnceInTheirOrder) {
  KtSystemShapeCollisionCache cache;
  KtShapeCollisionData* ab = cache.getCollisionData(kA, kB);
  KtShapeCollisionData* bc = cache.getCollisionData(kB, kC);
  KtShapeCollisionData* ac = cache.getCollisionData(kA, kC);
  EXPECT_EQ(cache.nextCollisionData(), nullptr);
  cache.setValid(ac);
  cache.setValid(ab);
  const auto visit = [&cache] {
    std::vector<KtShapeCollisionData*> seen;
    cache.resetNextCollisionData();
    while (KtShapeCollisionData* record = cache.nextCollisionData()) {
      seen.push_back(record);
      cache.setValid(record);  // as a processor does with the record in hand
    }
    return seen;
  };
  EXPECT_EQ(visit(), (std::vector{ac, ab}));
  EXPECT_EQ(visit(), (std::vector{ac, ab}));

  ab->setFrictionMode(KtShapeCollisionData::kKinetic);
  KtSystemShapeCollisionCache copy = cache;
  KtShapeCollisionData* copied = copy.getCollisionData(kA, kB);
  EXPECT_NE(copied, ab);
  EXPECT_EQ(copied->frictionMode(), KtShapeCollisionData::kKinetic);
  cache.invalidateAll();
  EXPECT_TRUE(visit().empty());
  EXPECT_EQ(cache.getCollisionData(kA, kB), ab);
  cache.setValid(bc);
  EXPECT_EQ(visit(), std::vector{bc});
  cache.invalidateAll();  // takes the visit back to its start, too
  cache.setValid(bc);
  EXPECT_EQ(cache.nextCollisionData(), bc);
  const KtLogCapture log;
  cache.setValid(nullptr);
  cache.setValid(copied);
  EXPECT_EQ(log.messages().size(), 1U);
  EXPECT_EQ(visit(), std::vector{bc});
  cache.clear();
  EXPECT_TRUE(visit().empty());
  EXPECT_EQ(cache.getCollisionData(kA, kB)->frictionMode(), KtShapeCollisionData::kFirstContact);
}

TEST(ShapeCollisionCache, APairHasOneRecordInBothOrders) {
  KtSystemShapeCollisionCache cache;
  const KtManipulatorLink one;
  const KtManipulatorLink two;
  KtShapeCollisionData& record = *cache.getCollisionData(kA, kB);
  record.setLinkPointer(kA, &one);
  record.setLinkPointer(kB, &two);
  record.setLinkPointer(kC, nullptr);
  record.setClosestPointIndex(kB, 7);
  record.setCollisionNormal({1, 0, 0});
  record.setLineOfAction({0, 1, 0});
  record.addPenetrationPoint({1, 1, 1}, {2, 2, 2});
  record.setVelocityPrimaryObject(kB, {{1, 0, 0}, {}});
  record.setStaticStartCollisionPointInPrimary1({4, 0, 0});
  KtShapeCollisionData& turned = *cache.getCollisionData(kB, kA);
  EXPECT_EQ(&turned, &record);
  EXPECT_EQ(turned.manipulatorOneID(), 0U);
  EXPECT_EQ(turned.shapeTwoID(), 2U);
  EXPECT_EQ(turned.link1Pointer(), &two);
  EXPECT_EQ(turned.link2Pointer(), &one);
  EXPECT_EQ(turned.closestPointIndex1(), 7U);
  EXPECT_EQ(turned.collisionNormal(), KtVector(-1, 0, 0));
  EXPECT_EQ(turned.lineOfAction(), KtVector(0, -1, 0));
  EXPECT_EQ(turned.penetrationPointPrimary(0, 0), KtVector(2, 2, 2));
  EXPECT_EQ(turned.getPenetrationPointShapePrimary(kA, 0), KtVector(1, 1, 1));
  EXPECT_EQ(turned.penetrationPointPrimary(2, 0), KtVector());
  EXPECT_EQ(turned.penetrationPointPrimary(0, 1), KtVector());
  EXPECT_EQ(turned.velocityPrimaryObject1().linear(), KtVector(1, 0, 0));
  EXPECT_EQ(turned.staticStartCollisionPointInPrimary2(), KtVector(4, 0, 0));
}

TEST(ShapeKeys, OrderAndHash) {
  EXPECT_LT(kA, kB);  // the root comes behind all links
  EXPECT_LT(kB, kC);
  EXPECT_EQ(KtShapeStateCacheKey(), KtShapeStateCacheKey::nullObject());
  EXPECT_NE(KtShapeStateCacheKey(1, 2), KtShapeStateCacheKey(1, 2, 0));
  const KtLinkProximityKey pair{kA.linkKey(), kC.linkKey()};
  EXPECT_EQ(hash_value(pair), std::size_t{kA.linkKey().guesstimate()} + kC.linkKey().guesstimate());
}

}  // namespace
