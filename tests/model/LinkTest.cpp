#include "support/States.h"
#include "support/Testing.h"
#include "support/Trees.h"

namespace {

Mass moved(Mass mass, const T& by) {
  mass.transformBy(by);
  return mass;
}

Mass randomMass() {
  return moved(Mass::uniformSolidSphere(uniform(1.0, 2.0), uniform(0.1, 0.2)),
               randomTransformation());
}

KtJointActuator actuatorOf(double lower, double upper) {
  KtJointActuator actuator;
  actuator.setLowerLimit(lower);
  actuator.setUpperLimit(upper);
  return actuator;
}

// A plain model of a link and all below it. What is derived from its masses may be outdated.
struct Body {
  std::string label;
  std::vector<Body> children;
  Mass base = randomMass(), total = base, inDH = base;
  std::map<std::string, Mass> carried = {};
  T frame = {}, box = {};  // the primary frame, and a box that the link shows, in that frame
  double edge = 1.0;       // 0 for none
  double limits[2] = {-1.0, 1.0};
  std::optional<double> explicitLimits[2] = {};  // those of joint 0
  std::map<std::string, double> points = {};

  void sum() {
    total = base;
    for (const auto& [name, mass] : carried) total += mass;
  }
  void move() { inDH = moved(total, frame); }
  void update() { sum(), move(); }
  void setMass(const Mass& mass) { base = mass, carried.clear(), update(); }
  void setLimits(double lower, double upper) { limits[0] = lower, limits[1] = upper; }
  KtBoxShape shape() const { return KtBoxShape({edge, 2.0 * edge, 3.0 * edge}, box); }
  void visit(const std::function<void(Body&)>& act) {
    act(*this);
    for (Body& child : children) child.visit(act);
  }
};

Link linkOf(const Body& body) {
  Link link = trees::randomLink(body.label);
  auto joint =
      dynamic_cast<const KtDenavitHartenberg&>(*link.linkKinematicsContainer().topElement());
  joint.setJointType(KtDenavitHartenberg::kPrismatic);
  link.setLinkKinematics(joint);
  link.setPrimaryFrame(body.frame);
  link.setMassProperties(body.base);
  if (body.edge > 0.0) link.setShape(body.shape());
  link.setJointActuator(actuatorOf(body.limits[0], body.limits[1]));
  for (const Body& child : body.children) link.addChild(linkOf(child));
  return link;
}

// A body with two below it, of shapes and frames that others have too.
Body randomBody(const std::string& label) {
  Body body{label, {}}, twin{uniform() < 0.8 ? label + "a" : "twin", {}}, leaf{label + "b", {}};
  body.children = {twin, leaf};
  static const T kFrames[] = {T(), randomTransformation()};
  body.visit([](Body& each) { each.edge = pick(3), each.frame = kFrames[pick(2)], each.update(); });
  return body;
}

void expectLink(const Arm& arm, const Body& body, const KtPositionState& state, KtU32 index) {
  SCOPED_TRACE(body.label);
  const Link& link = *arm.linkByIndex(index);
  EXPECT_EQ(link.label(), body.label);
  EXPECT_TRUE(link.baseMassProperties().approxEq(body.base, 1e-9));
  EXPECT_TRUE(link.massProperties().approxEq(body.total, 1e-9));
  EXPECT_TRUE(link.massPropertiesInDHFrame().approxEq(body.inDH, 1e-9));
  EXPECT_EQ(link.massPropertiesMap().size(), body.carried.size());
  EXPECT_TRUE(link.primaryFrame().approxEq(body.frame, 1e-12));
  // The tables of shapes have what is there, and lead back to the link that owns it.
  const KtShape* shape = link.shapeContainer().topElement();
  const KtVector d = randomVector();
  ASSERT_EQ(shape != nullptr, body.edge > 0.0);
  if (shape != nullptr) {
    EXPECT_TRUE(shape->supportPoint(d).approxEq(body.shape().supportPoint(d), 1e-9));
  }
  KtU32 number = 0;
  for (; shape != nullptr; shape = shape->outerBoundingVolume()) {
    EXPECT_EQ(link.shapeByIndex(number++), shape);
    EXPECT_EQ(&shape->link()->memberShapeContainer(), &link.shapeContainer());
  }
  EXPECT_EQ(link.shapeByIndex(number), nullptr);
  EXPECT_EQ(link.numShapes(), number);
  EXPECT_EQ(link.numberOfShapes(), number);
  for (std::size_t i = 0; i < body.children.size(); ++i) {
    EXPECT_EQ(link.childLinks()[static_cast<KtU32>(i)].parentLink(), &link);
  }
  if (index == ktBaseIndex) return;
  EXPECT_EQ(link.linkIndex(), index);
  EXPECT_EQ(link.manipulator(), &arm);
  KtManipulatorActiveState active;
  active.setPositionState(state);
  active.setVelocityState(states::moving(state.jointPositions()));
  active.setAccelerationState(KtAccelerationState::zeroCompatibleState(active.velocityState()));
  const T joint = link.linkKinematicsContainer().calculateTransform(state.jointPositions()[index]);
  auto& place = active.activePositionState();
  EXPECT_TRUE(link.dhFrameInSystem(place).approxEq(
      link.parentLink()->dhFrameInSystem(place) * joint, 1e-12));
  for (const auto& [name, x] : body.points) {
    KtVector point;
    T frame;
    EXPECT_TRUE(link.lookupNamedPoint(name, point) && link.lookupNamedFrame(name, frame));
    EXPECT_EQ(point.x, x);
    EXPECT_EQ(frame.translation().y, x);
  }
  EXPECT_EQ(link.namedPoints().size(), body.points.size());
  // Limits are those of the link's own joint, in whatever copy; so is what its actuator reads.
  const double q = state.jointPositions()[index], q0 = state.jointPositions()[0];
  const auto& [lower, upper] = body.explicitLimits;
  EXPECT_DOUBLE_EQ(link.lowerLimitConstraint().evaluate(state),
                   lower ? q0 - *lower : q - body.limits[0]);
  EXPECT_DOUBLE_EQ(link.upperLimitConstraint().evaluate(state),
                   upper ? *upper - q0 : body.limits[1] - q);
  link.jointActuator().initializeActuatorStates(active);
  EXPECT_EQ(active.actuatorState().motorPositions()[index], q);
}

// All that must hold of a tree of links.
void expectLike(const Arm& arm, Body& model) {
  std::vector<const Body*> bodies;
  std::vector<std::string> leaves;
  model.visit([&](const Body& body) {
    bodies.push_back(&body);
    if (body.children.empty()) leaves.push_back(body.label);
  });
  Link::LinkTable ends;
  arm.collectLeafLinks(ends);
  EXPECT_TRUE(std::ranges::equal(ends, leaves, {}, &Link::label));
  EXPECT_EQ(arm.subtreeLinkCount(), bodies.size());
  ASSERT_EQ(arm.jointDof() + 1, bodies.size());
  EXPECT_EQ(arm.totalDof(), arm.isFixedBase() ? arm.jointDof() : arm.jointDof() + 6);
  EXPECT_EQ(arm.linkByIndex(ktBaseIndex), &arm);
  EXPECT_EQ(arm.linkByIndex(arm.jointDof()), nullptr);
  const KtPositionState state = states::at(states::randomJoints(arm.jointDof()));
  expectLink(arm, model, state, ktBaseIndex);
  for (KtU32 i = 0; i < arm.jointDof(); ++i) {
    expectLink(arm, *bodies[i + 1], state, i);
    // One label leads to the first index, and to the last link.
    KtU32 first = i, last = i;
    for (KtU32 k = arm.jointDof(); k-- > 0;) {
      if (bodies[k + 1]->label != bodies[i + 1]->label) continue;
      first = k, last = std::max(k, last);
    }
    EXPECT_EQ(arm.linkIndexByIdentifier(bodies[i + 1]->label), first);
    EXPECT_EQ(arm.linkByIdentifier(bodies[i + 1]->label), arm.linkByIndex(last));
  }
}

// Trees are edited, links changed, shapes shared, and all of it copied and written.
TEST(Links, EveryChangeReachesWhatFollowsFromItAndNothingElse) {
  Arm arm;
  Body model, fresh;
  std::vector<Body*> bodies;  // in pre-order
  Body* body = nullptr;       // the one that is changed; its label is its own
  Link* link = nullptr;
  Mass mass;
  T t;
  std::string name;
  bool coin = false;
  int shared = 0;
  const auto linkAt = [&](std::size_t i) -> Link* {
    return const_cast<Link*>(i == 0 ? &arm : arm.linkByIndex(static_cast<KtU32>(i - 1)));
  };
  const auto isUnique = [&](const Body* one) {
    return std::ranges::count(bodies, one->label, &Body::label) == 1;
  };
  const auto uses = [&](const Link* from, const Link* to) {
    while (from != to && from->linkReferenceDescription().isShapeReferenced()) {
      from = arm.linkByIdentifier(from->linkReferenceDescription().referencedLinkLabel());
    }
    return from == to;
  };
  // Changes what a link shows, and with it all that show it by reference.
  const auto show = [&](double edge, const T& box) {
    for (std::size_t i = 0; i < bodies.size(); ++i) {
      if (uses(linkAt(i), link)) bodies[i]->edge = edge, bodies[i]->box = box;
    }
  };
  const auto unshare = [&] {
    for (std::size_t i = 0; i < bodies.size(); ++i) {
      EXPECT_TRUE(linkAt(i)->removeLinkReferences());
      EXPECT_EQ(linkAt(i)->memberShapeContainer(), linkAt(i)->shapeContainer());
    }
    arm.mapManipulator();
  };
  const auto toIdentity = [&] {
    arm.truncateValues(1e-13);
    // Of two links with one label the walk would pass over one.
    if (!std::ranges::all_of(bodies, isUnique)) return arm.mapManipulator();
    for (std::size_t i = 0; i < bodies.size(); ++i) {
      linkAt(i)->setMassProperties(bodies[i]->base);
      bodies[i]->base.transformBy(bodies[i]->frame);
      bodies[i]->box = bodies[i]->frame * bodies[i]->box, bodies[i]->frame = T();
      bodies[i]->setMass(bodies[i]->base);
    }
    EXPECT_TRUE(arm.transformAllPrimaryFramesToIdentity());
    for (std::size_t i = 0; i < bodies.size(); ++i) {
      linkAt(i)->updateMassProperties(), linkAt(i)->updateDHMassProperties();
    }
    return true;
  };
  // First those that need a joint, then those that the base can take too.
  const std::vector<std::function<void()>> actions{
      [&] { link->setPrimaryFrame(t), body->frame = t, body->move(); },
      [&] {
        unshare();
        const T by = t.inverse() * body->frame;
        EXPECT_TRUE(arm.transformPrimaryFrame(body->label, t));
        body->base.transformBy(by), body->box = by * body->box, body->frame = t, body->move();
      },
      [&] {
        double& limit = body->limits[coin ? 0 : 1] = uniform();
        EXPECT_TRUE(arm.setJointLimit(body->label, coin, limit));
      },
      [&] { link->setJointActuator(actuatorOf(-2.0, 3.0)), body->setLimits(-2.0, 3.0); },
      [&] {  // works, and says that it didn't
        EXPECT_FALSE(arm.replaceJointActuator(body->label, actuatorOf(-0.5, 0.75)));
        body->setLimits(-0.5, 0.75);
      },
      [&] {  // an explicit one hides the actuator's
        const Link& other = *arm.linkByIndex(0);
        coin ? link->setLowerLimitConstraint(other.lowerLimitConstraint())
             : link->setUpperLimitConstraint(other.upperLimitConstraint());
        const int k = coin ? 0 : 1;
        body->explicitLimits[k] = bodies[1]->explicitLimits[k].value_or(bodies[1]->limits[k]);
      },
      [&] {  // a name keeps what it has
        const double x = uniform();
        const KtLogCapture log;
        link->addNamedPoint(name, {x, 0.0, 0.0});
        link->addNamedFrame(name, T(KtVector(0.0, x, 0.0)));
        EXPECT_EQ(log.messages().size(), body->points.contains(name) ? 2U : 0U);
        body->points.emplace(name, x);
      },
      [&] {
        const std::size_t target = 1 + pick(bodies.size() - 1);
        if (!isUnique(bodies[target]) || uses(linkAt(target), link)) return;
        KtLinkReferenceDescription description;
        description.setIsShapeReferenced(true);
        description.setReferencedLinkLabel(bodies[target]->label);
        show(bodies[target]->edge, bodies[target]->box);
        link->setLinkReferenceDescription(description);
        coin ? arm.mapManipulator() : toIdentity();
      },
      [&] {  // also by itself
        Link source = coin ? *link : linkOf(fresh);
        if (coin) fresh = *body, fresh.base = body->total;
        if (!coin) {
          source.addMassProperties("more", mass), fresh.base += mass;
          source.addNamedPoint("x", {0.5, 0.0, 0.0});
          source.addNamedFrame("x", T(KtVector(0.0, 0.5, 0.0)));
          fresh.points = {{"x", 0.5}};
          const Link& first = *arm.linkByIndex(0);
          source.setLowerLimitConstraint(first.lowerLimitConstraint());
          source.setUpperLimitConstraint(first.upperLimitConstraint());
          for (const int k : {0, 1}) {
            fresh.explicitLimits[k] = bodies[1]->explicitLimits[k].value_or(bodies[1]->limits[k]);
          }
        }
        show(fresh.edge, fresh.box);
        EXPECT_TRUE(arm.replaceLinkProperties(body->label, coin ? *link : source, true));
        fresh.setMass(fresh.base), fresh.label = body->label, fresh.children = body->children;
        *body = fresh;
      },
      [&] {
        unshare();
        *body = fresh;
        const std::string before = link->label();
        EXPECT_TRUE(arm.replaceLinkAndChildren(before, linkOf(fresh)));
      },
      [&] {  // by a part of itself
        if (body->children.empty()) return;
        unshare();
        const std::string before = body->label;
        const Body part = body->children[0];
        *body = part;
        EXPECT_TRUE(arm.replaceLinkAndChildren(before, link->childLinks()[0]));
      },
      [&] {
        unshare();
        Link other;
        other.copyAllButChildLinksFrom(*link);
        other.setChildLinks(link->childLinks());
        EXPECT_TRUE(arm.replaceLinkAndChildren(body->label, other));
        other.copyAllButChildLinksFrom(other);
        EXPECT_EQ(other.subtreeLinkCount(), 1U);
      },
      // From here on also for the base.
      [&] { link->setBaseMassProperties(mass), body->base = mass, body->update(); },
      [&] { link->setMassProperties(mass), body->setMass(mass); },
      [&] { link->addMassProperties(name, mass), body->carried[name] = mass, body->update(); },
      [&] {
        EXPECT_EQ(link->deleteMassProperties(name), body->carried.contains(name));
        if (body->carried.erase(name) > 0) body->update();
      },
      [&] {
        Link::MassMap map;
        map.add(name, mass);
        link->setMassPropertiesMap(map), body->carried = {{name, mass}}, body->update();
      },
      [&] {
        EXPECT_FALSE(arm.replaceMassProperties(body->label, mass));
        body->setMass(mass);
      },
      [&] { link->updateMassProperties(), body->sum(); },
      [&] { link->updateDHMassProperties(), body->move(); },
      [&] {
        unshare();
        EXPECT_TRUE(arm.transformLinkComponentsBy(body->label, t));
        body->base.transformBy(t), body->box = t * body->box;
      },
      [&] {
        unshare();
        double largest = 0.0;
        body->visit([&](const Body& each) { largest = std::max(largest, each.edge); });
        const double factor = largest > 2.0 ? 0.5 : 2.0;
        link->scaleBy(factor);
        body->visit([&](Body& each) {
          each.base.scaleBy(factor), each.edge *= factor;
          for (T* one : {&each.box, &each.frame}) one->setTranslation(one->translation() * factor);
          each.move(), each.setLimits(factor * each.limits[0], factor * each.limits[1]);
        });
      },
      [&] {
        if (coin) {  // those that use its shapes keep what they have
          EXPECT_TRUE(arm.aboutToModifyLink(body->label));
          arm = Arm(arm);  // which numbers their shapes
          link = arm.linkByIdentifier(body->label);
        }
        fresh.box = t, fresh.edge = 1.0 + pick(2);
        if (!link->linkReferenceDescription().isShapeReferenced()) show(fresh.edge, t);
        EXPECT_TRUE(arm.replaceLinkShape(body->label, fresh.shape()));
      },
      [&] { arm.findAndConvertToReferences(); }, [&] { toIdentity(); },
      [&] {
        coin ? arm.addBoundingBoxToLinks() : arm.addSphereBoundingVolumeToLinks();
        if (uniform() < 0.0) arm.deleteAllBoundingVolumes();
      },
      [&] {
        model.children.push_back(fresh);
        arm.addChild(linkOf(fresh));
        EXPECT_EQ(arm.linkByIndex(arm.jointDof() - 1)->manipulator(), nullptr);
        arm.mapManipulator();
      },
      [&] {
        Body* end = &model;
        while (!end->children.empty()) end = &end->children.front();
        end->children.push_back(fresh);
        arm.addLinkToEndOfChain(linkOf(fresh));
      },
      [&] {
        unshare();
        EXPECT_TRUE(arm.changeLinkLabel(link->label(), body->label = fresh.label));
      },
      [&] {  // also by one of its own labels
        unshare();
        const std::string suffix = link->label();
        if (suffix.size() > 9) return;
        model.visit([&](Body& each) { each.label += suffix; });
        arm.appendToAllLabels(link->label());
        arm.mapManipulator();
      },
      [&] {
        unshare();
        KtU32 counter = 3, expected = 3;
        const std::string prefix = link->label();
        model.visit([&](Body& each) { each.label = prefix + std::to_string(expected++); });
        arm.relabelSubtree(link->label(), counter);
        EXPECT_EQ(counter, expected);
        arm.mapManipulator();
      },
      [&] {
        unshare();
        if (bodies.size() < 20) return;
        if (coin) arm.clearChildLinks(), model.children.clear();
        if (coin) return;
        const std::vector<Body> below = model.children[0].children;
        model.children = below;
        arm.setChildLinks(arm.childLinks()[0].childLinks());
      },
      [&] {
        Arm whole;
        whole.setCoordSysXForm(t);
        whole.setIsFixedBase(false);
        whole.setParentLink(&arm);
        whole.setFromLink(arm);
        EXPECT_EQ(whole.parentLink(), nullptr);
        EXPECT_TRUE(whole.isFixedBase());
        EXPECT_EQ(whole.coordSysXForm(), T());
        arm = whole;
        arm.setIsFixedBase(coin);
      },
      [&] {  // a copy is as good as the original, also after that is gone
        const auto copy = std::make_unique<Arm>(arm);
        arm = Arm();
        arm = *copy;
      },
      [&] {
        Arm read = trees::randomManipulator(3);
        const std::string text = KtXmlWriter::writeString(arm);
        ASSERT_TRUE(KtXmlReader::readString(text, read));
        EXPECT_EQ(KtXmlWriter::writeString(read), text);
        arm = read;
        for (Body* each : bodies) each->update();
      }};
  for (int step = 0; step < 4000 && !HasFailure(); ++step) {
    if (step % 200 == 0) {
      arm = Arm();
      model = Body{"base" + std::to_string(step), {}};
      arm.changeLinkLabel("", model.label);
      arm.setMassProperties(model.base);
      arm.setShape(model.shape());
      model.children = {randomBody("n")};
      arm.addLinkToEndOfChain(linkOf(model.children[0]));
    }
    bodies.clear();
    model.visit([&](Body& each) { bodies.push_back(&each); });
    do {
      body = bodies[pick(bodies.size())];
    } while (!isUnique(body));
    link = arm.linkByIdentifier(body->label);
    name = "xyz"[pick(3)], mass = randomMass(), t = randomTransformation(), coin = uniform() < 0.0;
    fresh = randomBody("n" + std::to_string(step));
    const KtU32 ofJoints = body == &model ? 12 : 0;
    const KtU32 action = ofJoints + pick(actions.size() - ofJoints);
    SCOPED_TRACE(testing::Message() << "step " << step << ", action " << action);
    actions[action]();
    expectLike(arm, model);
    for (KtU32 i = 0; i < arm.jointDof(); ++i) {
      shared += arm.linkByIndex(i)->linkReferenceDescription().isShapeReferenced() ? 1 : 0;
    }
  }
  EXPECT_GT(shared, 1000);
  EXPECT_FALSE(arm.changeLinkLabel("nobody", "somebody") || arm.aboutToModifyLink("nobody") ||
               arm.replaceLinkAndChildren("nobody", Link()) ||
               arm.replaceLinkPrimaryFrame(arm.jointDof(), T()) ||
               arm.setJointLimit("nobody", false, 1.0) ||
               arm.replaceLinkProperties("nobody", Link(), true));
  EXPECT_EQ(arm.linkIndexByIdentifier("nobody"), ktUnmappedIndex);
  EXPECT_EQ(arm.linkIndexByIdentifier(model.label), ktBaseIndex);
  // A link without a place weighs no joint.
  Link alone;
  alone.setJointActuator(actuatorOf(-1.0, 0.5));
  EXPECT_EQ(alone.upperLimitConstraint().evaluate(states::at(states::randomJoints(3))), 0.5);
}

TEST(Links, ActuatorsOfOlderFilesAreTakenOver) {
  const std::string document = R"(<manipulatorLink>
      <jointActuator><upperLimit>0.5</upperLimit><maxTorque>7</maxTorque></jointActuator>
      <identifier>old</identifier>
    </manipulatorLink>)";
  Link link;
  ASSERT_TRUE(KtXmlReader::readString(document, link));
  EXPECT_EQ(link.jointActuator().upperLimit(), 0.5);
  EXPECT_EQ(link.jointActuator().maxTorque(), 7.0);
  const std::string written = KtXmlWriter::writeString(link);
  EXPECT_EQ(written.find("<jointActuator>"), std::string::npos);
  EXPECT_NE(written.find("compositeJointActuator"), std::string::npos);
  // It is so again when a newer file is read into the same link.
  ASSERT_TRUE(KtXmlReader::readString(KtXmlWriter::writeString(Link()), link));
  EXPECT_EQ(link.jointActuator().upperLimit(), 0.5);
}

}  // namespace
