#include "support/States.h"
#include "support/Testing.h"
#include "support/Trees.h"

namespace {

using Stated = KtStatedSystem;
using states::at, states::moving, states::randomJoints;

// A stated system that tells which active state its collision reports look at.
class Scene : public Stated {
 public:
  bool checkForCollisions(KtSystemActiveState& activeState, const KtReal&, const KtU32& level,
                          const KtReal& tolerance, ResultVector&) const override {
    active = &activeState;
    return level == 2 && tolerance == 0.5;
  }
  auto& reported() const {
    ResultVector results;
    EXPECT_TRUE(generateCollisionReport(results, 2, 0.5));
    return active->manipulatorActiveStateVector();
  }
  mutable KtSystemActiveState* active = nullptr;
};

// What a user sees of a manipulator's links: numbers that scale with the length's third power, with
// the length, and with it at sliding joints.
struct Content {
  double mass, length, limit;
  bool slides;
  bool operator==(const Content&) const = default;
};

std::vector<Content> contentOf(const Arm& arm) {
  std::vector<Content> content;
  for (KtU32 i = 0; i < arm.jointDof(); ++i) {
    const auto& link = *arm.linkByIndex(i);
    const auto& joint =
        dynamic_cast<const KtDenavitHartenberg&>(*link.linkKinematicsContainer().topElement());
    content.push_back({link.baseMassProperties().mass(), joint.dhA(),
                       link.jointActuator().lowerLimit(),
                       joint.jointType() == KtDenavitHartenberg::kPrismatic});
  }
  return content;
}

Arm armOf(const std::string& label, int links) {
  Arm arm = trees::randomManipulator(links, label);
  for (KtU32 i = 0; i < arm.jointDof(); ++i) {
    arm.setJointLimit(arm.linkByIndex(i)->label(), true, -1.0);
    arm.setJointLimit(arm.linkByIndex(i)->label(), false, 3.0);
  }
  return arm;
}

bool isReference(const Arm& arm) {
  return arm.manipulatorReferenceDescription().isManipulatorReferenced();
}

struct Model {
  std::vector<std::pair<std::string, std::vector<Content>>> arms;
  KtManipulatorSystemState state;
  int system = 0;  // equal where it is shared
  bool modified = false;

  // To the bit where all sizes fit. Otherwise states are cut or filled up, and joints moved by the
  // offset, whether they were there or not.
  bool fit() {
    auto& p = state.positionStates();
    auto& v = state.velocityStates();
    bool fits = p.size() == arms.size() && v.size() == arms.size();
    for (KtU32 i = 0; fits && i < arms.size(); ++i) {
      const std::size_t joints = arms[i].second.size();
      fits = p[i].jointPositions().size() == joints && v[i].jointVelocities().size() == joints;
    }
    if (fits) return true;
    p.resize(static_cast<KtU32>(arms.size())), v.resize(p.size());
    for (KtU32 i = 0; i < arms.size(); ++i) {
      const auto joints = static_cast<KtU32>(arms[i].second.size());
      p[i].jointPositions().resize(joints), v[i].jointVelocities().resize(joints);
      for (auto& q : p[i].jointPositions().vectorContainer()) q = 1e-9 + q;
    }
    return false;
  }
  void add(const Arm& arm) { arms.emplace_back(arm.label(), contentOf(arm)); }
};

void expectLike(const Scene& scene, const Model& model) {
  const KtManipulatorSystem& system = scene.system();
  ASSERT_EQ(system.numberOfManipulators(), model.arms.size());
  KtU32 joints = 0;
  for (KtU32 i = 0; i < model.arms.size(); ++i) {
    const auto& [label, content] = model.arms[i];
    const Arm& arm = system.manipulators()[i];
    EXPECT_EQ(arm.label(), label);
    EXPECT_EQ(arm.manipulatorIndex(), i);
    EXPECT_EQ(contentOf(arm), content);
    EXPECT_EQ(system.manipulatorByIdentifier(label), &arm);
    const auto& description = arm.manipulatorReferenceDescription();
    EXPECT_EQ(arm.referenceManipulator(),
              isReference(arm)
                  ? system.manipulatorByIdentifier(description.referencedManipulatorLabel())
                  : &arm);
    KtU32 found = 99;
    EXPECT_TRUE(scene.lookupManipulatorIndexFromLabel(label, found));
    EXPECT_EQ(found, i);
    joints += static_cast<KtU32>(content.size());
  }
  EXPECT_EQ(scene.jointDof(), joints);
  EXPECT_EQ(system.jointAndBaseDof(), joints + 6 * model.arms.size());
  EXPECT_EQ(scene.state(), model.state);
  EXPECT_EQ(scene.isSystemModified(), model.modified);
  // Reports of collisions look at the present state of the present system.
  if (model.arms.empty()) return;
  KtU32 reported = 0;
  for (const auto& active : scene.reported().vectorContainer()) {
    EXPECT_EQ(active.positionState(), model.state.positionStates()[reported++]);
  }
  EXPECT_EQ(reported, model.arms.size());
}

// Sharing must never show, neither that of systems nor that of links: whatever is done to one, the
// others look the same. States follow their systems.
TEST(StatedSystems, ChangesStayWithTheOneThatIsChanged) {
  std::vector<std::unique_ptr<Scene>> scenes(3);
  std::vector<Model> models(3);
  for (int k = 0; k < 3; ++k) scenes[k] = std::make_unique<Scene>();
  int systems = 1, step = 0;
  Scene* scene = nullptr;
  Model* model = nullptr;
  KtU32 index = 0;
  Arm arm;
  KtPositionState position;
  KtVelocityState velocity;
  bool coin = false;
  enum {
    kChanges,
    kMoves,
    kKeeps,
    kEither
  } effect = kChanges;  // on the system; moves: another one
  const auto label = [&] { return model->arms[index].first; };
  const auto isShared = [&] {
    return std::ranges::count(models, model->system, &Model::system) > 1;
  };
  const auto removed = [&] {
    model->arms.erase(model->arms.begin() + index);
    auto& p = model->state.positionStates();
    auto& v = model->state.velocityStates();
    if (index < p.size()) p.erase(index);
    if (index < v.size()) v.erase(index);
    model->fit();
  };
  const auto midpoint = [&] {
    model->state = {};
    model->fit();
    for (KtU32 i = 0; i < model->arms.size(); ++i) {
      for (KtU32 j = 0; j < model->arms[i].second.size(); ++j) {
        const auto* link = scene->system().manipulators()[i].linkByIndex(j);
        model->state.positionStates()[i].jointPositions()[j] =
            0.5 * (link->jointActuator().upperLimit() + model->arms[i].second[j].limit);
      }
    }
  };
  const auto keep = [&] { effect = kKeeps; };
  // First those that need no manipulator.
  const std::vector<std::function<void()>> actions{
      [&] {
        scene->addManipulator(arm, position, velocity);
        auto& p = model->state.positionStates();
        auto& v = model->state.velocityStates();
        p.resize(static_cast<KtU32>(model->arms.size())), v.resize(p.size());
        p.pushBack(position), v.pushBack(velocity);
        model->add(arm), model->fit();
      },
      [&] { scene->addManipulator(arm), model->add(arm), model->fit(); },
      [&] {
        KtSphereShape ball;
        const std::string name = arm.label();
        KtDataMap own, data;
        own.add("grip", 1.0), data.add("grip", 2.0);
        ball.setSurfaceLabel("rubber");
        ball.setSurfaces({std::string("rubber"), own});
        const KtU32 added =
            scene->addShapeAsManipulator(ball, position.coordSysXForm(), name, data);
        EXPECT_EQ(added, model->arms.size());
        EXPECT_EQ(*scene->shapeByKey({added, ktBaseIndex, 0})->defaultSurface(), data);
        KtPositionState there;
        there.setCoordSysXForm(position.coordSysXForm());
        auto& p = model->state.positionStates();
        p.resize(added), p.pushBack(there);
        model->state.velocityStates().resize(added + 1);
        model->arms.emplace_back(name, std::vector<Content>()), model->fit();
      },
      [&] {
        Scene other;
        other.addManipulator(arm, position, velocity);
        EXPECT_TRUE(scene->mergeWith(other));
        model->state.mergeWith(other.state()), model->add(arm);
        Scene twice(*scene);
        EXPECT_TRUE(twice.mergeWith(twice));
        EXPECT_EQ(twice.system().numberOfManipulators(), 2 * model->arms.size());
      },
      [&] { scene->setFromManipulator(arm), model->arms.clear(), model->add(arm), midpoint(); },
      [&] {
        scene->clearAndInitializeForOneManipulator() = arm;
        scene->finalizeOneManipulator();
        model->arms.clear(), model->add(arm), midpoint();
      },
      [&] {
        KtManipulatorSystem system;
        for (const auto& each : scenes)
          if (coin) system = each->system();
        const auto copied = coin ? models.back().arms : decltype(model->arms)();
        model->arms = copied, model->state = {};
        if (step % 3 == 1) {
          scene->setSystem(system), scene->addCompatibleState(), model->fit();
        } else if (uniform() < 0.0) {
          effect = kMoves;
          scene->setAndDeleteSystemPointer(new KtManipulatorSystem(system));
          scene->addCompatibleState(), model->fit();
        } else {
          scene->setFromSystem(system), midpoint();
        }
      },
      [&] {
        KtSystemEnvironment environment;
        environment.setUpGravityVector(position.coordSysXForm().translation());
        scene->setEnvironment(environment);
        EXPECT_EQ(scene->environment(), environment);
      },
      [&] {  // what it wrote is what it is, whatever system it wrote before
        Stated back;
        EXPECT_TRUE(KtXmlReader::readString(KtXmlWriter::writeString(*scene), back));
        EXPECT_EQ(KtXmlWriter::writeString(back), KtXmlWriter::writeString(*scene));
        if (coin) static_cast<Stated&>(*scene) = back;
        effect = kEither;
      },
      // From here on with one.
      [&] {
        if (isReference(scene->system().manipulators()[index])) return keep();
        KtManipulatorReferenceDescription description;
        description.setIsManipulatorReferenced(true);
        description.setReferencedManipulatorLabel(label());
        Arm reference;
        reference.setLabel(arm.label());
        reference.setManipulatorReferenceDescription(description);
        scene->addManipulator(reference);
        model->arms.emplace_back(arm.label(), model->arms[index].second), model->fit();
      },
      [&] {  // of two that are alike the second becomes a reference
        const auto& arms = scene->system().manipulators();
        if (std::ranges::any_of(arms.vectorContainer(), isReference)) return keep();
        Arm twin = arms[index];
        twin.changeLinkLabel(label(), arm.label());
        scene->addManipulator(twin), model->add(twin), model->fit();
        EXPECT_TRUE(scene->findAndConvertToReferences());
        EXPECT_TRUE(isReference(scene->system().manipulators()[model->arms.size() - 1]));
      },
      [&] {
        EXPECT_TRUE(coin ? scene->deleteManipulator(index)
                         : scene->deleteManipulator(label()) == index);
        removed();
      },
      [&] {
        EXPECT_TRUE(scene->exchangeManipulator(index, arm, position, velocity));
        model->arms[index] = {arm.label(), contentOf(arm)};
        model->state.positionStates()[index] = position;
        model->state.velocityStates()[index] = velocity;
        model->fit();
      },
      [&] {
        if (model->arms[index].second.empty()) return keep();
        const auto* link = scene->system().manipulators()[index].linkByIndex(0);
        EXPECT_TRUE(scene->setJointLimit(index, link->label(), true, -0.5 - step));
        model->arms[index].second[0].limit = -0.5 - step;
      },
      [&] {
        if (model->arms[index].second.empty()) return keep();
        const auto* link = scene->system().manipulators()[index].linkByIndex(0);
        EXPECT_TRUE(scene->replaceLinkProperties(index, link->label(), *arm.linkByIndex(0), coin));
        model->arms[index].second[0] = contentOf(arm)[0];
      },
      [&] {  // and what was known of its old places is forgotten
        // Those that refer to it would change with it.
        const auto& arms = scene->system().manipulators();
        if (std::ranges::any_of(arms.vectorContainer(), isReference)) return keep();
        auto& before = scene->reported()[index];
        std::vector<T> frames;
        const auto frame = [&](auto& active, KtU32 i) {
          const Arm& scaled = scene->system().manipulators()[index];
          return scaled.dhFrameInSystem(active.activePositionState()).inverse() *
                 scaled.linkByIndex(i)->primaryFrameInSystem(active.activePositionState());
        };
        auto& content = model->arms[index].second;
        for (KtU32 i = 0; i < content.size(); ++i) frames.push_back(frame(before, i));
        const double factor = step % 2 == 0 ? 2.0 : 0.5;
        EXPECT_TRUE(scene->scaleManipulatorBy(index, factor));
        auto& q = model->state.positionStates()[index].jointPositions();
        auto& rates = model->state.velocityStates()[index].jointVelocities();
        auto& after = scene->reported()[index];
        for (KtU32 i = 0; i < content.size(); ++i) {
          auto& [mass, length, limit, slides] = content[i];
          mass *= factor * factor * factor, length *= factor;
          if (slides) limit *= factor, q[i].value() *= factor, rates[i].value() *= factor;
          frames[i].setTranslation(frames[i].translation() * factor);
          EXPECT_TRUE(frame(after, i).approxEq(frames[i], 1e-9));
        }
      },
      [&] {
        const auto joints = static_cast<KtU32>(model->arms[index].second.size());
        position = at(randomJoints(joints)), velocity = moving(randomJoints(joints));
        scene->setIndividualPositionState(index, position);
        position.setCoordSysXForm(randomTransformation());
        scene->setIndividualCoordinateSystemTransformation(index, position.coordSysXForm());
        scene->setIndividualVelocityState(index, velocity);
        model->state.positionStates()[index] = position;
        model->state.velocityStates()[index] = velocity;
        scene->rotateIndividualBaseVelocity(index, position.coordSysXForm().orientation());
        model->state.velocityStates()[index].generalVelocity().transformBy(
            position.coordSysXForm().orientation());
        if (coin) scene->zeroIndividualVelocityState(index);
        auto& still = model->state.velocityStates()[index];
        if (coin) still.setGeneralVelocity({});
        for (auto& rate : still.jointVelocities().vectorContainer())
          rate = coin ? 0.0 : rate.value();
        keep();
      },
      // A state may be shorter than the system: what changes that repairs it.
      [&] {
        const KtLogCapture repairs;
        KtManipulatorSystemState few;
        few = states::random({pick(4), pick(4), pick(4)}, {pick(4), pick(4), pick(4)}, 0.5);
        few.positionStates().resize(pick(4)), few.velocityStates().resize(pick(4));
        scene->setState(few), model->state = few;
        scene->absoluteBoundingSphere(), scene->validateLowLevelDimensions();
        Model whole = *model;
        EXPECT_EQ(scene->system().isCompatible(few), whole.fit());
        scene->rightSizeState(few);
        EXPECT_EQ(few, whole.state);
        scene->setState(few = model->state);
        EXPECT_TRUE(coin || scene->scaleManipulatorBy(index, 1.0));
        if (index < few.positionStates().size() && uniform() < 0.0) {
          EXPECT_TRUE(scene->exchangeManipulator(index, arm, {}, {}));
          model->state.positionStates()[index] = {};
          if (index < few.velocityStates().size()) model->state.velocityStates()[index] = {};
          model->arms[index] = {arm.label(), contentOf(arm)}, model->fit();
        } else {
          EXPECT_TRUE(scene->deleteManipulator(index));
          removed();
        }
      }};
  const KtLogCapture log;
  for (step = 0; step < 1500 && !HasFailure(); ++step) {
    const std::size_t which = pick(3);
    scene = scenes[which].get(), model = &models[which];
    coin = uniform() < 0.0, arm = armOf("m" + std::to_string(step), 1 + step % 3);
    position = at(randomJoints(arm.jointDof())), velocity = moving(randomJoints(arm.jointDof()));
    const std::size_t from = pick(3);
    const auto* before = &scene->system();
    SCOPED_TRACE(testing::Message() << "step " << step);
    if (step % 3 == 0) {  // shared anew, in one way or another
      if (which == from) continue;
      const bool modified = coin && model->modified;
      if (coin) {
        *scene = *scenes[from];
      } else {
        scenes[which] = std::make_unique<Scene>(*scenes[from]);
      }
      *model = models[from], model->modified = modified;
    } else {
      // A clone that is written has a system of its own.
      const std::unique_ptr<KtXmlObject> clone(scene->clone());
      auto& own = dynamic_cast<Stated&>(*clone);
      EXPECT_TRUE(&own.system() == before && !own.isSystemModified());
      KtXmlWriter::writeString(own);
      EXPECT_TRUE(&own.system() != before && own.isSystemModified());
      if (coin) scene->resetIsSystemModified();
      index = pick(model->arms.size());
      const KtU32 action = pick(model->arms.empty() ? 9 : actions.size());
      SCOPED_TRACE(testing::Message() << "action " << action);
      effect = kChanges;
      actions[action]();
      if (HasFailure()) return;
      // The last one that shares a system needs no copy.
      const bool isNew = before == &Stated::m_theNullSystem || isShared() || effect == kMoves;
      if (effect == kChanges || effect == kMoves) {
        EXPECT_TRUE(scene->isSystemModified());
        EXPECT_EQ(&scene->system() != before, isNew);
      } else if (effect == kKeeps) {
        EXPECT_EQ(&scene->system(), before);
      }
      model->modified = scene->isSystemModified();
      if (&scene->system() != before) model->system = systems++;
    }
    for (int k = 0; k < 3; ++k) {
      SCOPED_TRACE(testing::Message() << "scene " << k);
      expectLike(*scenes[k], models[k]);
      for (int j = 0; j < k; ++j) {
        EXPECT_EQ(&scenes[j]->system() == &scenes[k]->system(),
                  models[j].system == models[k].system);
      }
    }
  }
  EXPECT_EQ(log.text(), "");
}

TEST(StatedSystems, AreWrittenAsEmptyOnesWhenEmptied) {
  Stated scene;
  scene.addManipulator(armOf("a", 2));
  EXPECT_NE(KtXmlWriter::writeString(scene), KtXmlWriter::writeString(Stated()));
  scene = Stated();
  EXPECT_EQ(KtXmlWriter::writeString(scene), KtXmlWriter::writeString(Stated()));
  EXPECT_NE(&scene.system(), &Stated::m_theNullSystem) << "writing makes a system";
}

TEST(StatedSystems, ShapesAreFoundAndColouredByKey) {
  KtSphereShape ball;
  KtDataMap data;
  data.add("ktDiffuseAlpha", 0.25);
  ball.setSurfaces({std::string("0"), data});
  ball.setSurfaceLabel("0");
  KtManipulatorLink link;
  link.setShape(ball);
  Arm arm;
  arm.addLinkToEndOfChain(link);
  Stated stated;
  stated.addManipulator(arm);
  std::vector<std::vector<std::vector<int>>> counters;
  stated.system().getNumberOfShapes(counters);
  EXPECT_THAT(counters, ElementsAre(ElementsAre(ElementsAre(), ElementsAre(0))));
  const Stated sharer(stated);
  const KtLogCapture log;
  for (const KtShapeStateCacheKey& bad : {KtShapeStateCacheKey(2, 0, 0), {0, 1, 0}, {0, 0, 1}}) {
    EXPECT_EQ(stated.shapeByKey(bad), nullptr);
    stated.changeDiffuseAlpha(bad, 0.5);
  }
  const KtShapeStateCacheKey key(0, 0, 0);
  stated.changeDiffuseAlpha(key, 0.5);
  stated.changeDiffuseAlpha(key, 0.125);
  stated.changeAmbientAlpha(key, 0.75);
  stated.changeSpecularAlpha(key, 0.125);
  stated.changeEmissionAlpha(key, 1.0);
  EXPECT_EQ(log.errors(),
            "\nktDiffuseAlpha: 0.250000\n\nNew Alpha: 0.500000\n"
            "\nktDiffuseAlpha: 0.500000\n\nNew Alpha: 0.125000\n"
            "\nktAmbientAlpha: 0.000000\n\nNew Alpha: 0.750000\n"
            "\nktSpecularAlpha: 0.000000\n\nNew Alpha: 0.125000\n"
            "\nktEmissionAlpha: 0.000000\n\nNew Alpha: 1.000000\n");
  EXPECT_EQ(*sharer.shapeByKey(key)->defaultSurface(), data);

  for (const auto& each : {key, KtShapeStateCacheKey::nullObject(), key}) {
    stated.addModifiedShapeKeyVec(each);
  }
  EXPECT_EQ(stated.modifiedShapeKeyVec(), std::vector{key});
}

}  // namespace
