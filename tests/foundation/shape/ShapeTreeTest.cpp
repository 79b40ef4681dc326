#include "support/Testing.h"

namespace {

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
  KtShape::ShapeTable table;
  KtShape::ShapeVector shapes;
  KtU32 count = 0, levels = 0;
  part.mapShapes(count, &link, table, shapes);
  part.mapBoundingVolumeLevels(levels);
  EXPECT_EQ(levels, 2U);
  EXPECT_EQ(count, 5U);
  const KtShape *box = std::as_const(part).member(0), *ball = std::as_const(part).member(1);
  const KtShape* volume = std::as_const(part).outerBoundingVolume();
  const KtShape* hull = box->outerBoundingVolume();
  EXPECT_EQ(shapes, (KtShape::ShapeVector{box, hull, hull->outerBoundingVolume(), ball, volume}));
  for (KtU32 i = 0; i < shapes.size(); ++i) {
    EXPECT_EQ(shapes[i]->shapeIndex(), i);
    EXPECT_EQ(shapes[i]->link(), &link);
  }
  // The number that the link finds by adding up along the chain of its top shape.
  EXPECT_EQ(part.numberOfShapes() + volume->numberOfShapes(), shapes.size());
  EXPECT_EQ(table, (KtShape::ShapeTable{{"box", box}, {"ball", ball}, {"part", &part}}));
  EXPECT_EQ(part.shapeIndex(), ktUnmappedIndex);
  KtShape::ShapeVector volumes;
  part.boundingVolumes(volumes, 0);
  part.boundingVolumes(volumes, 1);
  EXPECT_EQ(volumes, (KtShape::ShapeVector{box, ball, volume}));
  // A copy belongs to no link yet.
  const KtShapeUnion copy = part;
  EXPECT_EQ(copy.member(0)->shapeIndex(), ktUnmappedIndex);
  EXPECT_EQ(copy.member(0)->link(), nullptr);
  EXPECT_EQ(copy, part);
}

void expectChain(const KtShape& top, KtU32 length) {
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
}

TEST(ShapeTree, ChainsLeadInAndOutWhateverMadeThem) {
  KtBoxShape box({1.0, 2.0, 3.0});
  expectChain(box, 1);
  EXPECT_TRUE(box.addBoundingVolume(KtShape::kBox));
  box.addBoundingVolume(KtSphereShape({}, 9.0));
  EXPECT_TRUE(box.addBoundingVolume(KtShape::kCapsule));
  const KtBoxShape copy = box;
  for (const KtBoxShape& one : {box, copy}) expectChain(one, 4);
  KtShapeContainer holder, back;
  holder.setTopElement(box);
  EXPECT_TRUE(KtXmlReader::readString(KtXmlWriter::writeString(holder), back));
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
  holder.setTopElement(machinePart());
  holder.deleteBoundingVolumes();
  expectChain(*dynamic_cast<KtShapeUnion&>(*holder.topElement()).member(0), 1);
  expectChain(*holder.topElement(), 1);

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
}

// A segment along x meets the shapes of a level; where it meets none, the event stays.
TEST(ShapeTree, LineSegmentsFillTheEventAtALevel) {
  KtShapeContainer holder;
  KtShapePointEvent event;
  EXPECT_EQ(holder.intersectLineSegment({{-10, 0, 0}, {10, 0, 0}}, event, 0), nullptr);
  holder.setTopElement(machinePart());
  holder.topElement()->addBoundingVolume(KtSphereShape({}, 9.0));
  const auto& part = dynamic_cast<const KtShapeUnion&>(*holder.topElement());
  const KtShape *box = part.member(0), *ball = part.member(1);
  const KtShape* outermost = part.outerBoundingVolume()->outerBoundingVolume();
  struct Row {
    double from, to;
    KtU32 level;
    const KtShape* met;
    double distance;
  };
  for (const Row& row : {Row{-10, 10, 0, box, 9.5}, Row{-10, 10, 2, outermost, 1.0},
                         Row{-10, 10, 99, outermost, 1.0}, Row{10, -10, 0, ball, 6.5},
                         Row{1.5, 2, 0, nullptr, 6.5}, Row{3, 3, 0, ball, 0.0}}) {
    const KtLineSegment segment({row.from, 0, 0}, {row.to, 0, 0});
    EXPECT_EQ(holder.intersectLineSegment(segment, event, row.level), row.met) << row.distance;
    EXPECT_DOUBLE_EQ(event.distance(), row.distance);
    EXPECT_TRUE(event.isImpacted());
  }
}

TEST(ShapeTree, SurfacesAreFoundByLabel) {
  KtDataMap surface;
  surface.add("k", 2.0);
  KtBoxShape box({1.0, 1.0, 1.0});
  const KtDataMap* found = nullptr;
  EXPECT_FALSE(box.setSurfaceProperties("ice", surface));
  EXPECT_FALSE(box.lookup("metal", found));
  EXPECT_TRUE(box.setSurfaceProperties("metal", surface));
  EXPECT_TRUE(box.lookup("metal", found));
  EXPECT_EQ(found, box.defaultSurface());
  // A volume has the surface of what it bounds.
  box.addBoundingVolume(KtShape::kSphere);
  double value = 0.0;
  EXPECT_TRUE(box.outerBoundingVolume()->defaultSurface()->lookup("k", value));
  EXPECT_EQ(value, 2.0);
  KtShapeUnion part;
  part.addMember(box);
  part.addMember(KtSphereShape({}, 1.0));
  part.member(1)->setSurfaceLabel("ice");
  EXPECT_TRUE(part.setSurfaceProperties("ice", surface));
  EXPECT_TRUE(part.lookup("ice", found));
  EXPECT_EQ(found, part.member(1)->defaultSurface());
  EXPECT_FALSE(part.lookup("wood", found));
  EXPECT_EQ(found, nullptr);
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
}

using Record = KtShapeCollisionData;
constexpr KtShapeKey kKeys[] = {{0, 1, 2}, {0, ktBaseIndex, 0}, {3, 1, 1}};

// Random edits, against a list of the records that are valid in the order in which they became so.
TEST(ShapeCollisionCache, VisitsValidRecordsOnceInTheirOrder) {
  KtSystemShapeCollisionCache cache;
  std::array<Record*, 3> records;
  for (std::size_t i = 0; i < 3; ++i) {
    records[i] = cache.getCollisionData(kKeys[i], kKeys[(i + 1) % 3]);
  }
  std::vector<Record*> valid;
  for (int round = 0; round < 200; ++round) {
    Record* const record = records[static_cast<std::size_t>(uniform(0, 2.999))];
    if (uniform(0, 1) < 0.3) {
      cache.invalidateAll();
      valid.clear();
    } else {
      cache.setValid(record);
      if (std::ranges::find(valid, record) == valid.end()) valid.push_back(record);
    }
    EXPECT_EQ(cache.getCollisionData(kKeys[0], kKeys[1]), records[0]);
    cache.resetNextCollisionData();
    for (Record* expected : valid) {
      EXPECT_EQ(cache.nextCollisionData(), expected);
      cache.setValid(expected);  // as a processor does with the record in hand
    }
    EXPECT_EQ(cache.nextCollisionData(), nullptr);
  }
  records[0]->setFrictionMode(Record::kKinetic);
  KtSystemShapeCollisionCache copy = cache;
  Record* const copied = copy.getCollisionData(kKeys[0], kKeys[1]);
  EXPECT_NE(copied, records[0]);
  EXPECT_EQ(copied->frictionMode(), Record::kKinetic);
}

// Asked for in the other order, a record has its sides exchanged, and turned again is as before.
TEST(ShapeCollisionCache, APairHasOneRecordInBothOrders) {
  KtSystemShapeCollisionCache cache;
  const auto& [one, two, other] = kKeys;
  const KtManipulatorLink links[2];
  Record& record = *cache.getCollisionData(one, two);
  record.setLinkPointer(one, &links[0]);
  record.setLinkPointer(two, &links[1]);
  record.setLinkPointer(other, nullptr);
  record.setClosestPointIndex(two, 7);
  record.setCollisionNormal({1, 0, 0});
  record.setLineOfAction({0, 1, 0});
  record.addPenetrationPoint({1, 1, 1}, {2, 2, 2});
  record.setVelocityPrimaryObject(two, {{1, 0, 0}, {}});
  record.setStaticStartCollisionPointInPrimary1({4, 0, 0});
  EXPECT_EQ(cache.getCollisionData(two, one), &record);
  EXPECT_EQ(record.key(), (KtShapeProximityKey{two, one}));
  EXPECT_EQ(record.link1Pointer(), &links[1]);
  EXPECT_EQ(record.link2Pointer(), &links[0]);
  EXPECT_EQ(record.closestPointIndex1(), 7U);
  EXPECT_EQ(record.collisionNormal(), KtVector(-1, 0, 0));
  EXPECT_EQ(record.lineOfAction(), KtVector(0, -1, 0));
  EXPECT_EQ(record.penetrationPointPrimary(0, 0), KtVector(2, 2, 2));
  EXPECT_EQ(record.getPenetrationPointShapePrimary(one, 0), KtVector(1, 1, 1));
  EXPECT_EQ(record.penetrationPointPrimary(2, 0), KtVector());
  EXPECT_EQ(record.penetrationPointPrimary(0, 1), KtVector());
  EXPECT_EQ(record.velocityPrimaryObject1().linear(), KtVector(1, 0, 0));
  EXPECT_EQ(record.staticStartCollisionPointInPrimary2(), KtVector(4, 0, 0));
}

}  // namespace
