// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoDNA.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <ostream>

#include <Inventor/SoDB.h>
#include <Inventor/SoOutput.h>
#include <Inventor/SoPath.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoHandleEventAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/actions/SoSearchAction.h>
#include <Inventor/actions/SoWriteAction.h>
#include <Inventor/events/SoKeyboardEvent.h>
#include <Inventor/lists/SoFieldList.h>
#include <Inventor/nodes/SoAnnotation.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoEventCallback.h>
#include <Inventor/nodes/SoLightModel.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSwitch.h>
#include <Inventor/nodes/SoTransform.h>
#include <Inventor/nodes/SoTranslation.h>
#include <Inventor/sensors/SoNodeSensor.h>
#include <algebra3d/Matrix3.h>
#include <gmock/gmock.h>
#include <toCoin.h>

#include "support/AllocationCount.h"
#include "support/CoinEnvironment.h"
#include "support/IdealDna.h"
#include "support/RandomRods.h"
#include "support/graph.h"
#include "support/renderPicture.h"

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using Quaternion = algebra3d::Quaternion<double>;
using Vector = algebra3d::Vector3<double>;

namespace {

const double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

// A strand whose six frames of a pair are all different and at random.
struct RandomDna
{
    explicit RandomDna(std::size_t size, unsigned seed = 1) : sequence(irregularSequence(size))
    {
        RandomNumbers random(seed);
        for (std::size_t i = 0; i < size; ++i) {
            for (auto* points : {&rAvg, &r1, &r2})
                points->emplace_back(random.uniform(-9, 9), random.uniform(-9, 9),
                                     random.uniform(-9, 9));
            for (auto* rotations : {&qAvg, &q1, &q2})
                rotations->push_back(random.unitQuaternion());
        }
    }

    bool give(SoDNA* dna) const { return dna->setData(sequence, rAvg, qAvg, r1, q1, r2, q2); }

    std::string sequence;
    SoDNA::Vectors rAvg, r1, r2;
    SoDNA::Quaternions qAvg, q1, q2;
};

// The graph, found by its places.
struct Parts
{
    explicit Parts(SoDNA* dna)
        : bpSwitch(child<SoSwitch>(dna, 0)), basesGroup(child<SoSeparator>(dna, 1))
    {}

    // Of the three frames of a pair: 0 the average, 1 and 2 the strands.
    SoSeparator* separator(int pair, int frame) const
    {
        return frame == 0 ? child<SoSeparator>(bpSwitch, pair)
                          : child<SoSeparator>(basesGroup, 2 * pair + frame - 1);
    }
    SoTransform* transform(int pair, int frame) const
    {
        return child<SoTransform>(separator(pair, frame), 0);
    }
    SoSeparator* bpGroup(int pair) const { return child<SoSeparator>(separator(pair, 0), 1); }
    SoNucleobase* base(int pair, int strand) const
    {
        return child<SoNucleobase>(separator(pair, strand), 1);
    }

    SoSwitch* bpSwitch;
    SoSeparator* basesGroup;
};

// The file that Coin writes of a graph: all nodes, fields, names and connections.
std::string written(SoNode* node)
{
    SoOutput output;
    const auto grow = [](void* memory, std::size_t size) { return std::realloc(memory, size); };
    output.setBuffer(std::malloc(1), 1, grow);
    SoWriteAction(&output).apply(node);
    void* text;
    std::size_t size;
    output.getBuffer(text, size);
    const std::string result(static_cast<const char*>(text), size);
    std::free(text);
    return result;
}

} // namespace

class SoDNATest : public CoinTest
{
protected:
    NodeRef<SoDNA> dna{new SoDNA};
    Parts parts{dna};

    void expectStoredNothing()
    {
        EXPECT_EQ(dna->getNumBP(), 0);
        EXPECT_EQ(dna->getSequence(), "");
        EXPECT_TRUE(dna->getRAvg().empty() && dna->getR1().empty() && dna->getR2().empty());
        EXPECT_TRUE(dna->getQAvg().empty() && dna->getQ1().empty() && dna->getQ2().empty());
    }
};

// The type

TEST_F(SoDNATest, IsASeparatorThatCanBeCreatedByName)
{
    const SoType type = SoType::fromName("SoDNA");
    EXPECT_EQ(type, SoDNA::getClassTypeId());
    EXPECT_EQ(type.getParent(), SoSeparator::getClassTypeId());
    NodeRef<SoDNA> made(static_cast<SoDNA*>(type.createInstance()));
    EXPECT_EQ(made->getTypeId(), type);
    EXPECT_EQ(made->getNumChildren(), 2);
    SoFieldList own, inherited;
    NodeRef<SoSeparator> separator(new SoSeparator);
    EXPECT_EQ(made->getFields(own), separator->getFields(inherited));
}

TEST(SoDNADeathTest, ConstructedBeforeItsRegistration)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            SoDB::init();
            (new SoDNA)->ref();
        },
        AllOf(ContainsRegex("(^|[: \n])src/SoDNA\\.cpp:[0-9]+: "),
              HasSubstr("SoDNA::classTypeId != SoType::badType() && \"you forgot init()!\"")));
}

// Data

TEST(SoDNASequence, ZeroMeansCorrect) // on purpose
{
    EXPECT_EQ(SoDNA::isSequenceCorrect("ATGC"), 0);
    EXPECT_EQ(SoDNA::isSequenceCorrect(""), 0);
    EXPECT_EQ(SoDNA::isSequenceCorrect("ATxC"), 3);
    EXPECT_EQ(SoDNA::isSequenceCorrect("aTGC"), 1);
    EXPECT_EQ(SoDNA::isSequenceCorrect(std::string("ATG\0", 4)), 4);
}

TEST_F(SoDNATest, StoresWhatItIsGiven)
{
    const RandomDna data(5);
    ASSERT_TRUE(data.give(dna));
    EXPECT_EQ(dna->getNumBP(), 5);
    EXPECT_EQ(dna->getSequence(), data.sequence);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(dna->getRAvg()[i].x, data.rAvg[i].x);
        EXPECT_EQ(dna->getR1()[i].y, data.r1[i].y);
        EXPECT_EQ(dna->getR2()[i].z, data.r2[i].z);
        EXPECT_EQ(dna->getQAvg()[i][0], data.qAvg[i][0]);
        EXPECT_EQ(dna->getQ1()[i][1], data.q1[i][1]);
        EXPECT_EQ(dna->getQ2()[i][3], data.q2[i][3]);
    }
    EXPECT_EQ(parts.bpSwitch->getNumChildren(), 0); // not before generate()
    ASSERT_TRUE(dna->setData(dna->getSequence(), dna->getRAvg(), dna->getQAvg(), dna->getR1(),
                             dna->getQ1(), dna->getR2(), dna->getQ2()));
    EXPECT_EQ(dna->getNumBP(), 5);
}

TEST_F(SoDNATest, DataOfAnotherLengthAreRefused)
{
    const RandomDna good(3);
    for (int which = 0; which < 7; ++which) {
        for (bool longer : {false, true}) {
            RandomDna bad = good;
            SoDNA::Vectors* const points[] = {&bad.rAvg, &bad.r1, &bad.r2};
            SoDNA::Quaternions* const rotations[] = {&bad.qAvg, &bad.q1, &bad.q2};
            if (which < 3)
                points[which]->resize(longer ? 4 : 2);
            else if (which < 6)
                rotations[which - 3]->resize(longer ? 4 : 2);
            else
                bad.sequence = longer ? "ATGC" : "AT";
            ASSERT_TRUE(good.give(dna));
            EXPECT_FALSE(bad.give(dna)) << which;
            expectStoredNothing();
        }
    }
}

TEST_F(SoDNATest, LettersOtherThanUpperCaseBasesAreRefused)
{
    for (const char* letters : {"at", "AU", "NA", "A "}) {
        RandomDna data(2);
        data.sequence = letters;
        EXPECT_FALSE(data.give(dna)) << letters;
        expectStoredNothing();
    }
}

TEST_F(SoDNATest, QuaternionsMustBeUnitWithinAHundredth)
{
    SoDNA::Quaternions RandomDna::*const rotations[] = {&RandomDna::qAvg, &RandomDna::q1,
                                                        &RandomDna::q2};
    for (auto which : rotations) {
        const auto accepts = [&](double w) {
            RandomDna data(4);
            (data.*which)[2] = Quaternion(0, 0, 0, w);
            return data.give(dna);
        };
        EXPECT_TRUE(accepts(1.005));
        EXPECT_TRUE(accepts(-0.995));
        EXPECT_FALSE(accepts(1.02));
        EXPECT_FALSE(accepts(0.98));
        EXPECT_FALSE(accepts(0));
        EXPECT_FALSE(accepts(NOT_A_NUMBER));
        expectStoredNothing();
    }
}

TEST_F(SoDNATest, QuaternionsOfASinglePairAreNotExamined) // as isDataCorrect has it
{
    RandomDna data(1);
    data.q1[0] = Quaternion(0, 0, 0, 3);
    EXPECT_TRUE(data.give(dna));
    dna->generate();
    EXPECT_EQ(parts.transform(0, 1)->rotation.getValue(), SbRotation::identity());
}

TEST_F(SoDNATest, NoPairsAreCorrect)
{
    EXPECT_TRUE(dna->setData("", {}, {}, {}, {}, {}, {}));
    dna->generate();
    EXPECT_EQ(parts.basesGroup->getNumChildren(), 0);
}

TEST_F(SoDNATest, PositionsAreNotExamined)
{
    RandomDna data(3);
    data.r1[1].x = NOT_A_NUMBER;
    data.r2[1].y = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(data.give(dna));
    dna->generate();
    EXPECT_EQ(parts.bpSwitch->getNumChildren(), 3);
}

// The graph

TEST_F(SoDNATest, StartsWithoutPairs)
{
    EXPECT_EQ(dna->getNumChildren(), 2);
    EXPECT_EQ(parts.bpSwitch->whichChild.getValue(), SO_SWITCH_ALL);
    EXPECT_EQ(parts.bpSwitch->getNumChildren(), 0);
    EXPECT_EQ(parts.basesGroup->getNumChildren(), 0);
    expectStoredNothing();
    dna->generate();
    EXPECT_EQ(parts.bpSwitch->getNumChildren(), 0);
}

TEST_F(SoDNATest, EachPairHasThreePlacedSharedNodes)
{
    const RandomDna data(40);
    ASSERT_TRUE(data.give(dna));
    dna->generate();
    ASSERT_EQ(parts.bpSwitch->getNumChildren(), 40);
    ASSERT_EQ(parts.basesGroup->getNumChildren(), 80);
    SoNode* bases[2][4] = {};
    for (int i = 0; i < 40; ++i) {
        EXPECT_EQ(parts.bpGroup(i), parts.bpGroup(0));
        const char letters[2] = {data.sequence[std::size_t(i)],
                                 SoNucleobase::getComplement(data.sequence[std::size_t(i)])};
        for (int strand = 0; strand < 2; ++strand) {
            ASSERT_EQ(parts.separator(i, strand + 1)->getNumChildren(), 2);
            SoNode*& seen = bases[strand][SoNucleobase::getBaseIndex(letters[strand])];
            SoNucleobase* const base = parts.base(i, strand + 1);
            if (!seen)
                seen = base;
            EXPECT_EQ(base, seen);
            const Vector colour = base->getBoxColour();
            const double* const expected = SoNucleobase::getDefColour(letters[strand]);
            expectColour(colour, expected[0], expected[1], expected[2]);
        }
    }
    for (auto& strand : bases) {
        for (SoNode* base : strand)
            EXPECT_NE(base, nullptr); // all letters occurred
    }
}

TEST_F(SoDNATest, Strand2HasTheMirroredComplement)
{
    RandomDna data(1);
    data.sequence = "G";
    ASSERT_TRUE(data.give(dna));
    dna->generate();
    // Guanine: 11 atoms, N9 above; cytosine: 8 atoms, N1 below.
    auto* atoms = child<SoSwitch>(parts.base(0, 1), 0);
    EXPECT_EQ(atoms->getNumChildren(), 11);
    EXPECT_GT(child<SoTranslation>(atoms->getChild(0), 0)->translation.getValue()[1], 0);
    atoms = child<SoSwitch>(parts.base(0, 2), 0);
    EXPECT_EQ(atoms->getNumChildren(), 8);
    EXPECT_LT(child<SoTranslation>(atoms->getChild(0), 0)->translation.getValue()[1], 0);
}

TEST_F(SoDNATest, TransformsCarryTheFramesOfTheAlgebra)
{
    const RandomDna data(100, 7);
    ASSERT_TRUE(data.give(dna));
    dna->generate();
    const SoDNA::Vectors* const points[3] = {&data.rAvg, &data.r1, &data.r2};
    const SoDNA::Quaternions* const rotations[3] = {&data.qAvg, &data.q1, &data.q2};
    for (int frame = 0; frame < 3; ++frame) {
        for (int i = 0; i < 100; ++i) {
            SoTransform* const transform = parts.transform(i, frame);
            const Vector& point = (*points[frame])[std::size_t(i)];
            EXPECT_EQ(transform->translation.getValue(),
                      SbVec3f(float(point.x), float(point.y), float(point.z)));
            const algebra3d::Matrix3<double> matrix((*rotations[frame])[std::size_t(i)]);
            for (int axis = 0; axis < 3; ++axis) {
                SbVec3f unit(0, 0, 0), turned;
                unit[axis] = 1;
                transform->rotation.getValue().multVec(unit, turned);
                const Vector expected = matrix.getColumn(axis);
                EXPECT_NEAR(turned[0], expected.x, 1e-6);
                EXPECT_NEAR(turned[1], expected.y, 1e-6);
                EXPECT_NEAR(turned[2], expected.z, 1e-6);
            }
        }
    }
}

TEST_F(SoDNATest, PairBoxReachesOverBothBases)
{
    const RandomDna data(1);
    ASSERT_TRUE(data.give(dna));
    dna->generate();
    SoSeparator* const group = parts.bpGroup(0);
    ASSERT_EQ(group->getNumChildren(), 3);
    const auto* material = child<SoMaterial>(group, 0);
    EXPECT_EQ(material->ambientColor[0], SbColor(1, 1, 1));
    EXPECT_EQ(material->specularColor[0], SbColor(0, 0, 0));
    const SbVec3f centre = child<SoTranslation>(group, 1)->translation.getValue();
    EXPECT_FLOAT_EQ(centre[0], -0.2439585f);
    EXPECT_EQ(centre[1], 0);
    const auto* box = child<SoCube>(group, 2);
    EXPECT_FLOAT_EQ(box->width.getValue(), 5.416105f);
    EXPECT_FLOAT_EQ(box->height.getValue(), 10.139328f);
    EXPECT_EQ(box->depth.getValue(), 1.5f);
}

TEST_F(SoDNATest, OldPairsStayUntilTheNextGenerate)
{
    const RandomDna data(3);
    ASSERT_TRUE(data.give(dna));
    dna->generate();
    NodeRef<SoTransform> transform(parts.transform(1, 2));
    EXPECT_EQ(transform->getRefCount(), 3); // separator, DNA and this test
    NodeRef<SoSeparator> group(parts.bpGroup(0));
    ASSERT_FALSE(dna->setData("AT", data.rAvg, data.qAvg, data.r1, data.q1, data.r2, data.q2));
    EXPECT_EQ(parts.bpSwitch->getNumChildren(), 3);
    EXPECT_EQ(parts.transform(1, 2), static_cast<SoTransform*>(transform));
    dna->generate();
    EXPECT_EQ(parts.bpSwitch->getNumChildren(), 0);
    EXPECT_EQ(parts.basesGroup->getNumChildren(), 0);
    EXPECT_EQ(transform->getRefCount(), 1);
    EXPECT_TRUE(boxOf(dna).isEmpty());

    ASSERT_TRUE(data.give(dna));
    dna->generate();
    EXPECT_EQ(parts.bpGroup(0), static_cast<SoSeparator*>(group)); // what is shared survives
    EXPECT_FALSE(boxOf(dna).isEmpty());
}

TEST_F(SoDNATest, GeneratedAgainItIsAsANewOne)
{
    for (std::size_t size : {5, 8, 8, 3, 0, 4}) {
        const RandomDna data(size, unsigned(size));
        ASSERT_TRUE(data.give(dna));
        dna->generate();
        NodeRef<SoDNA> fresh(new SoDNA);
        ASSERT_TRUE(data.give(fresh));
        fresh->generate();
        EXPECT_EQ(written(dna), written(fresh));
        if (size > 0) { // the pairs and the DNA hold it, and nobody else
            EXPECT_EQ(parts.bpGroup(0)->getRefCount(), int(size) + 1);
        }
        EXPECT_EQ(boxOf(dna).getMin(), boxOf(fresh).getMin());
        EXPECT_EQ(boxOf(dna).getMax(), boxOf(fresh).getMax());
    }
}

// Pairs that nobody asks for

class UnaskedPairs : public SoDNATest
{
protected:
    static constexpr int PAIRS = 200;
    static constexpr int NODES = 6 * PAIRS; // a separator and a transform per frame

    void SetUp() override
    {
        ASSERT_TRUE(RandomDna(PAIRS).give(dna));
        dna->generate();
    }

    static bool search(SoSearchAction& action, SoNode* node)
    {
        action.setSearchingAll(TRUE);
        action.apply(node);
        return action.getPath() != nullptr;
    }
};

TEST_F(UnaskedPairs, AreNotMade)
{
    const auto useWithoutAsking = [](SoDNA* used) {
        boxOf(used);
        SoSearchAction cameras;
        cameras.setType(SoCamera::getClassTypeId());
        EXPECT_FALSE(search(cameras, used));
        SoHandleEventAction events(SbViewportRegion(100, 100));
        SoKeyboardEvent key;
        events.setEvent(&key);
        events.apply(used);
        ASSERT_TRUE(RandomDna(PAIRS, 2).give(used));
        used->generate();
    };
    const NodeRef<SoDNA> another(new SoDNA);
    useWithoutAsking(another); // what Coin allocates in its first time
    const AllocationCount count;
    useWithoutAsking(dna);
    EXPECT_LT(count.blocks(), std::size_t(NODES));
    parts.transform(0, 1);
    EXPECT_GT(count.blocks(), std::size_t(NODES) * 2 / 3); // those of the bases
}

TEST_F(UnaskedPairs, AreMadeInSilence)
{
    int notified = 0;
    SoNodeSensor sensor([](void* count, SoSensor*) { ++*static_cast<int*>(count); }, &notified);
    sensor.setPriority(0);
    sensor.attach(dna);
    const SbUniqueId id = dna->getNodeId();
    EXPECT_EQ(parts.bpSwitch->getNumChildren(), PAIRS);
    EXPECT_EQ(parts.basesGroup->getNumChildren(), 2 * PAIRS);
    EXPECT_EQ(notified, 0);
    EXPECT_EQ(dna->getNodeId(), id);
    EXPECT_TRUE(parts.bpSwitch->isNotifyEnabled());
}

TEST_F(UnaskedPairs, AreThoseOfTheLastGenerate)
{
    const SbVec3f place = toSbVec3f(RandomDna(PAIRS).r1[7]);
    ASSERT_TRUE(RandomDna(PAIRS, 2).give(dna));
    EXPECT_EQ(parts.transform(7, 1)->translation.getValue(), place);
}

TEST_F(UnaskedPairs, AreBoundedAsThoseThatAreMade)
{
    auto* turned = new SoTransform;
    turned->rotation.setValue(SbVec3f(1, 2, 3), 0.5f);
    turned->scaleFactor.setValue(1, 2, 0.5f);
    NodeRef<SoSeparator> scene(new SoSeparator);
    scene->addChild(turned);
    scene->addChild(dna);
    for (int look = 0; look < 4; ++look) {
        SCOPED_TRACE(look);
        dna->showAtoms(look != 1 && look != 3);
        dna->showBaseBoxes(look == 1);
        dna->showBasePairBoxes(look != 2);
        ASSERT_TRUE(RandomDna(PAIRS, unsigned(look)).give(dna));
        dna->generate();
        SoGetBoundingBoxAction unasked(SbViewportRegion(100, 100));
        unasked.apply(scene);
        parts.transform(0, 0);
        parts.transform(0, 1);
        dna->touch(); // or Coin would remember
        SoGetBoundingBoxAction made(SbViewportRegion(100, 100));
        made.apply(scene);
        EXPECT_EQ(unasked.getBoundingBox().getMin(), made.getBoundingBox().getMin());
        EXPECT_EQ(unasked.getBoundingBox().getMax(), made.getBoundingBox().getMax());
        EXPECT_EQ(unasked.getCenter(), made.getCenter());
    }
}

TEST_F(UnaskedPairs, AreFoundByWhatTheyHold)
{
    SoSearchAction cubes, transforms, base, name;
    cubes.setType(SoCube::getClassTypeId());
    transforms.setType(SoTransform::getClassTypeId());
    base.setNode(dna->getNucleobase('T', 2));
    dna->getNucleobase('G', 1)->setName("guanine");
    name.setName("guanine");
    for (SoSearchAction* action : {&cubes, &transforms, &base, &name}) {
        dna->generate();
        EXPECT_TRUE(search(*action, dna));
    }
    name.setName("nobody");
    EXPECT_FALSE(search(name, dna));
}

TEST_F(UnaskedPairs, HandleEventsWhereABaseDoes)
{
    int handled = 0;
    auto* callback = new SoEventCallback;
    callback->addEventCallback(
        SoKeyboardEvent::getClassTypeId(),
        [](void* count, SoEventCallback*) { ++*static_cast<int*>(count); }, &handled);
    dna->getNucleobase('A', 1)->addChild(callback);
    dna->generate();
    SoHandleEventAction events(SbViewportRegion(100, 100));
    SoKeyboardEvent key;
    events.setEvent(&key);
    events.apply(dna);
    const std::string& letters = dna->getSequence();
    EXPECT_EQ(handled, std::count(letters.begin(), letters.end(), 'A'));
}

TEST_F(UnaskedPairs, AreOfACopyToo)
{
    NodeRef<SoDNA> copy(static_cast<SoDNA*>(dna->copy()));
    EXPECT_EQ(written(copy), written(dna));
    copy->generate();
    const AllocationCount count;
    boxOf(copy);
    EXPECT_LT(count.blocks(), std::size_t(NODES));
    EXPECT_EQ(written(copy), written(dna));
}

TEST_F(UnaskedPairs, AreTakenOutByTheirGroup)
{
    parts.basesGroup->removeChild(3);
    EXPECT_EQ(parts.basesGroup->getNumChildren(), 2 * PAIRS - 1);
    parts.bpSwitch->removeAllChildren();
    EXPECT_EQ(parts.bpSwitch->getNumChildren(), 0);
    parts.bpSwitch->addChild(new SoCube);
    EXPECT_EQ(parts.bpSwitch->getNumChildren(), 1);
    dna->generate();
    auto* cube = new SoCube;
    parts.bpSwitch->insertChild(cube, 5);
    EXPECT_EQ(parts.bpSwitch->findChild(cube), 5);
    EXPECT_EQ(parts.bpSwitch->getNumChildren(), PAIRS + 1);
}

TEST_F(SoDNATest, TellsWhatItsPairsShare)
{
    ASSERT_TRUE(IdealDna("GA").give(*dna));
    dna->generate();
    EXPECT_EQ(dna->getNucleobase('G', 1), parts.base(0, 1));
    EXPECT_EQ(dna->getNucleobase('T', 2), parts.base(1, 2));
    EXPECT_EQ(dna->getPairBox(), child<SoCube>(parts.bpGroup(0), 2));
    for (char letter : {'a', 'U', '\0'})
        EXPECT_EQ(dna->getNucleobase(letter, 1), nullptr);
    for (int strand : {0, 3, -1})
        EXPECT_EQ(dna->getNucleobase('A', strand), nullptr);
}

TEST_F(SoDNATest, WhatSomebodyHoldsOfFormerPairsIsLeftAlone)
{
    ASSERT_TRUE(RandomDna(4, 1).give(dna));
    dna->generate();
    NodeRef<SoSeparator> separator(parts.separator(1, 0));
    NodeRef<SoTransform> transform(parts.transform(2, 1));
    auto* path = new SoPath(dna);
    path->ref();
    path->append(parts.basesGroup);
    path->append(parts.separator(3, 2));
    const std::string before = written(separator) + written(transform);
    ASSERT_TRUE(RandomDna(4, 2).give(dna));
    dna->generate();
    EXPECT_EQ(written(separator) + written(transform), before);
    EXPECT_EQ(separator->getRefCount(), 1);
    EXPECT_EQ(transform->getRefCount(), 1);
    EXPECT_EQ(path->getLength(), 2); // the pair that it led to has gone
    path->unref();
    NodeRef<SoDNA> fresh(new SoDNA);
    ASSERT_TRUE(RandomDna(4, 2).give(fresh));
    fresh->generate();
    EXPECT_EQ(written(dna), written(fresh));
}

struct Edit
{
    const char* name;
    std::function<void(const Parts&)> apply;
};

void PrintTo(const Edit& edit, std::ostream* stream) { *stream << edit.name; }

class EditedDna : public SoDNATest, public testing::WithParamInterface<Edit>
{
};

TEST_P(EditedDna, IsAsANewOneWhenGeneratedAgain)
{
    ASSERT_TRUE(RandomDna(4, 1).give(dna));
    dna->generate();
    GetParam().apply(parts);
    ASSERT_TRUE(RandomDna(5, 2).give(dna));
    dna->generate();
    NodeRef<SoDNA> fresh(new SoDNA);
    ASSERT_TRUE(RandomDna(5, 2).give(fresh));
    fresh->generate();
    EXPECT_EQ(written(dna), written(fresh));
    // What is not written:
    for (int pair = 0; pair < 5; ++pair) {
        for (int frame = 0; frame < 3; ++frame) {
            SoTransform* const transform = parts.transform(pair, frame);
            EXPECT_EQ(transform->getRefCount(), 2);
            for (SoNode* node : {static_cast<SoNode*>(parts.separator(pair, frame)),
                                 static_cast<SoNode*>(transform)}) {
                EXPECT_FALSE(node->isOverride());
                EXPECT_TRUE(node->isNotifyEnabled());
                EXPECT_EQ(node->getUserData(), nullptr);
                EXPECT_EQ(node->getNodeType(), SoNode::INVENTOR);
            }
            for (const SoField* field : {static_cast<SoField*>(&transform->translation),
                                         static_cast<SoField*>(&transform->center)}) {
                EXPECT_TRUE(field->isNotifyEnabled());
                EXPECT_TRUE(field->isConnectionEnabled());
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Edits, EditedDna,
    testing::Values(
        Edit{"None", [](const Parts&) {}},
        Edit{"Scale", [](const Parts& p) { p.transform(1, 1)->scaleFactor.setValue(2, 2, 2); }},
        Edit{"ScaleOrientation",
             [](const Parts& p) { p.transform(1, 1)->scaleOrientation.setValue(1, 0, 0, 0); }},
        Edit{"Centre", [](const Parts& p) { p.transform(1, 0)->center.setValue(1, 2, 3); }},
        Edit{"IgnoredTranslation",
             [](const Parts& p) { p.transform(1, 2)->translation.setIgnored(TRUE); }},
        Edit{"IgnoredRotation",
             [](const Parts& p) { p.transform(1, 2)->rotation.setIgnored(TRUE); }},
        Edit{"ConnectedTranslation",
             [](const Parts& p) {
                 p.transform(1, 2)->translation.connectFrom(&p.transform(2, 1)->translation);
             }},
        Edit{"ConnectedRotation",
             [](const Parts& p) {
                 p.transform(1, 2)->rotation.connectFrom(&p.transform(2, 1)->rotation);
             }},
        Edit{"TranslationThatTellsNobody",
             [](const Parts& p) { p.transform(0, 0)->translation.enableNotify(FALSE); }},
        Edit{"CentreThatTellsNobody",
             [](const Parts& p) { p.transform(0, 0)->center.enableNotify(FALSE); }},
        Edit{"TranslationThatFollowsNobody",
             [](const Parts& p) { p.transform(0, 0)->translation.enableConnection(FALSE); }},
        Edit{"CentreThatFollowsNobody",
             [](const Parts& p) { p.transform(0, 0)->center.enableConnection(FALSE); }},
        Edit{"VrmlSeparator",
             [](const Parts& p) { p.separator(0, 0)->setNodeType(SoNode::VRML2); }},
        Edit{"TransformThatTellsNobody",
             [](const Parts& p) { p.transform(0, 0)->enableNotify(FALSE); }},
        Edit{"SeparatorThatTellsNobody",
             [](const Parts& p) { p.separator(0, 0)->enableNotify(FALSE); }},
        Edit{"OverridingTransform", [](const Parts& p) { p.transform(3, 1)->setOverride(TRUE); }},
        Edit{"NamedTransform", [](const Parts& p) { p.transform(3, 1)->setName("third"); }},
        Edit{"NamedSeparator", [](const Parts& p) { p.separator(3, 0)->setName("third"); }},
        Edit{"UserData", [](const Parts& p) { p.separator(3, 2)->setUserData(p.bpSwitch); }},
        Edit{"RenderCaching",
             [](const Parts& p) { p.separator(2, 0)->renderCaching = SoSeparator::OFF; }},
        Edit{"BoxCaching",
             [](const Parts& p) { p.separator(2, 0)->boundingBoxCaching = SoSeparator::OFF; }},
        Edit{"RenderCulling",
             [](const Parts& p) { p.separator(2, 1)->renderCulling = SoSeparator::ON; }},
        Edit{"PickCulling",
             [](const Parts& p) { p.separator(2, 2)->pickCulling = SoSeparator::OFF; }},
        Edit{"AnotherChild", [](const Parts& p) { p.separator(2, 1)->addChild(new SoCube); }},
        Edit{"NoChildren", [](const Parts& p) { p.separator(2, 1)->removeAllChildren(); }},
        Edit{"AnotherTransform",
             [](const Parts& p) { p.separator(1, 1)->replaceChild(0, new SoTransform); }},
        Edit{"SharedTransform",
             [](const Parts& p) { p.separator(1, 1)->replaceChild(0, p.transform(3, 1)); }},
        Edit{"TransformElsewhere",
             [](const Parts& p) {
                 p.separator(2, 1)->addChild(p.transform(1, 1));
                 p.separator(1, 1)->replaceChild(0, new SoCube);
             }},
        Edit{"SomethingElsePlaced",
             [](const Parts& p) { p.separator(1, 1)->replaceChild(1, new SoCube); }},
        Edit{"RemovedSeparator", [](const Parts& p) { p.basesGroup->removeChild(3); }},
        Edit{"AnotherSeparator",
             [](const Parts& p) { p.bpSwitch->insertChild(new SoSeparator, 1); }},
        Edit{"AnotherKindOfSeparator",
             [](const Parts& p) {
                 auto* annotation = new SoAnnotation;
                 annotation->addChild(p.transform(1, 0));
                 annotation->addChild(p.bpGroup(1));
                 p.bpSwitch->replaceChild(1, annotation);
             }},
        Edit{"TwiceTheSameSeparator",
             [](const Parts& p) { p.bpSwitch->addChild(p.separator(1, 0)); }},
        Edit{"NoSeparators", [](const Parts& p) { p.bpSwitch->removeAllChildren(); }}),
    testing::PrintToStringParamName());

TEST_F(SoDNATest, GenerateNotifiesOnce)
{
    int notified = 0;
    SoNodeSensor sensor([](void* count, SoSensor*) { ++*static_cast<int*>(count); }, &notified);
    sensor.setPriority(0); // at once, for every notification
    sensor.attach(dna);
    const RandomDna data(20);
    ASSERT_TRUE(data.give(dna));
    EXPECT_EQ(notified, 0);
    dna->generate();
    EXPECT_EQ(notified, 1);
    parts.transform(3, 1)->translation = SbVec3f(1, 2, 3);
    EXPECT_EQ(notified, 2);
    dna->enableNotify(FALSE);
    dna->generate();
    EXPECT_EQ(notified, 2);
    EXPECT_FALSE(dna->isNotifyEnabled()); // as the host has set it
}

TEST_F(SoDNATest, ClearedItIsNotifiedAndShowsNothing)
{
    struct Clearable : SoDNA
    {
        using SoDNA::clear;
    };
    NodeRef<Clearable> cleared(new Clearable);
    ASSERT_TRUE(RandomDna(3).give(cleared));
    cleared->generate();
    EXPECT_FALSE(boxOf(cleared).isEmpty());
    const SbUniqueId id = cleared->getNodeId();
    cleared->clear();
    EXPECT_GT(cleared->getNodeId(), id);
    EXPECT_TRUE(boxOf(cleared).isEmpty());
    EXPECT_EQ(cleared->getNumBP(), 3); // what is stored stays
}

TEST_F(SoDNATest, GenerateNotifiesTheParentsOfItsGroups)
{
    for (SoNode* group :
         {static_cast<SoNode*>(parts.bpSwitch), static_cast<SoNode*>(parts.basesGroup)}) {
        NodeRef<SoSeparator> other(new SoSeparator);
        other->addChild(group);
        ASSERT_TRUE(RandomDna(3, 1).give(dna));
        dna->generate();
        const SbBox3f first = boxOf(other);
        const SbUniqueId id = other->getNodeId();
        ASSERT_TRUE(RandomDna(3, 2).give(dna));
        dna->generate();
        EXPECT_GT(other->getNodeId(), id);
        EXPECT_NE(boxOf(other).getMin(), first.getMin());
        group->enableNotify(FALSE);
        dna->generate();
        EXPECT_FALSE(group->isNotifyEnabled()); // as the host has set it
        group->enableNotify(TRUE);
    }
}

TEST_F(SoDNATest, ReleasesEverythingInTheEnd)
{
    auto* gone = new SoDNA;
    gone->ref();
    ASSERT_TRUE(RandomDna(2).give(gone));
    gone->generate();
    const Parts old(gone);
    NodeRef<SoNode> bpSwitch(old.bpSwitch), basesGroup(old.basesGroup), bpGroup(old.bpGroup(0));
    NodeRef<SoNode> material(child<SoMaterial>(bpGroup, 0)), cube(child<SoCube>(bpGroup, 2));
    NodeRef<SoNode> base1(old.base(0, 1)), base2(old.base(1, 2)), transform(old.transform(0, 0));
    gone->unref();
    for (SoNode* node : {static_cast<SoNode*>(bpSwitch), static_cast<SoNode*>(basesGroup),
                         static_cast<SoNode*>(bpGroup), static_cast<SoNode*>(base1),
                         static_cast<SoNode*>(base2), static_cast<SoNode*>(transform)})
        EXPECT_EQ(node->getRefCount(), 1);
    EXPECT_EQ(material->getRefCount(), 2); // the pair group, which the test holds
    EXPECT_EQ(cube->getRefCount(), 2);
}

TEST_F(SoDNATest, CopyIsADnaOfItsOwn)
{
    const RandomDna data(5);
    ASSERT_TRUE(data.give(dna));
    dna->generate();
    dna->setBoxHeight(2);
    const std::string before = written(dna);
    NodeRef<SoDNA> copy(static_cast<SoDNA*>(dna->copy()));
    EXPECT_EQ(written(copy), before);
    EXPECT_EQ(copy->getSequence(), data.sequence);
    EXPECT_EQ(copy->getR2()[4][1], data.r2[4][1]);
    EXPECT_EQ(copy->getQAvg()[4][3], data.qAvg[4][3]);
    EXPECT_EQ(copy->getBoxHeight(), 2);
    const Parts copied(copy);
    EXPECT_EQ(copied.transform(3, 1)->getRefCount(), 2);
    EXPECT_EQ(copied.separator(3, 1)->getRefCount(), 1);
    EXPECT_EQ(copied.bpGroup(0), copied.bpGroup(4));

    copy->setBasepairColour(Vector(1, 0, 0));
    copy->showBaseBoxes(true);
    copy->showBasePairBoxes(false);
    copy->setBoxHeight(3);
    ASSERT_TRUE(RandomDna(7, 2).give(copy));
    copy->generate();
    ASSERT_EQ(copied.bpSwitch->getNumChildren(), 7);
    ASSERT_EQ(copied.basesGroup->getNumChildren(), 14);
    EXPECT_TRUE(copied.base(6, 1)->isBoxShown());
    EXPECT_EQ(copied.base(0, 2)->getBoxHeight(), 3);
    EXPECT_FALSE(copy->areBasePairBoxesShown());
    EXPECT_EQ(written(dna), before);
}

TEST_F(SoDNATest, IsBoundedAndPickedByPair)
{
    const IdealDna ideal("ATGC");
    ASSERT_TRUE(ideal.give(*dna));
    dna->generate();
    dna->showAtoms(false);
    const SbBox3f box = boxOf(dna);
    EXPECT_NEAR(box.getMin()[2], -0.75, 1e-5);
    EXPECT_NEAR(box.getMax()[2], 3 * 3.4 + 0.75, 1e-5);
    SoRayPickAction pick(SbViewportRegion(100, 100));
    pick.setRay(SbVec3f(20, 0, 6.8f), SbVec3f(-1, 0, 0)); // the third pair
    pick.apply(dna);
    const SoPickedPoint* const point = pick.getPickedPoint();
    ASSERT_NE(point, nullptr);
    EXPECT_TRUE(point->getPath()->containsNode(parts.separator(2, 0)));
    SoSearchAction search;
    search.setNode(parts.base(3, 2));
    search.setInterest(SoSearchAction::ALL);
    search.apply(dna);
    EXPECT_EQ(search.getPaths().getLength(), 1); // G of strand 2 stands once, across C
}

// Forwarding

TEST_F(SoDNATest, SettersReachAllEightBases)
{
    RandomDna data(4);
    data.sequence = "ATGC";
    ASSERT_TRUE(data.give(dna));
    dna->generate();
    dna->setAtomColour(SoNucleobase::OXYGEN, Vector(0.1, 0.2, 0.3));
    dna->setAtomRadius(SoNucleobase::NITROGEN, -0.5);
    dna->setAtomComplexity(0.7);
    dna->showAtoms(false);
    dna->showBaseBoxes(true);
    dna->setSmallerPyr(true);
    dna->setBoxHeight(-2);
    const auto expectAll = [](const auto* node) {
        expectColour(node->getAtomColour(SoNucleobase::OXYGEN), 0.1, 0.2, 0.3);
        EXPECT_EQ(node->getAtomRadius(SoNucleobase::NITROGEN), 0.5);
        EXPECT_EQ(node->getAtomRadius(SoNucleobase::CARBON), 1.908f);
        EXPECT_EQ(node->getAtomComplexity(), 0.7f);
        EXPECT_FALSE(node->areAtomsShown());
        EXPECT_TRUE(node->isPyrSmaller());
        EXPECT_EQ(node->getBoxHeight(), 2);
    };
    for (int i = 0; i < 4; ++i) {
        for (int strand : {1, 2}) {
            expectAll(parts.base(i, strand));
            EXPECT_TRUE(parts.base(i, strand)->isBoxShown());
        }
    }
    expectAll(static_cast<SoDNA*>(dna));
    EXPECT_TRUE(dna->areBaseBoxesShown());
    EXPECT_EQ(child<SoCube>(parts.bpGroup(0), 2)->depth.getValue(), 2);
    dna->showAtoms(true);
    EXPECT_TRUE(dna->areAtomsShown());
    dna->showBaseBoxes(false);
    EXPECT_FALSE(dna->areBaseBoxesShown());
}

TEST_F(SoDNATest, BaseColoursAreThoseOfALetterInBothStrands)
{
    RandomDna data(4);
    data.sequence = "ATGC";
    ASSERT_TRUE(data.give(dna));
    dna->generate();
    dna->setBaseColour('T', Vector(0.5, 0.25, 0.75));
    expectColour(dna->getBaseColour('T'), 0.5, 0.25, 0.75);
    expectColour(dna->getBaseColour('A'), 1, 0, 0);
    expectColour(parts.base(1, 1)->getBoxColour(), 0.5, 0.25, 0.75);
    expectColour(parts.base(0, 2)->getBoxColour(), 0.5, 0.25, 0.75); // across A
    expectColour(parts.base(0, 1)->getBoxColour(), 1, 0, 0);
}

TEST_F(SoDNATest, InvalidLettersAndKindsAreIgnored)
{
    for (char letter : {'t', 'U', '\0'}) {
        dna->setBaseColour(letter, Vector(0.5, 0.25, 0.75));
        expectColour(dna->getBaseColour(letter), -1, -1, -1);
    }
    expectColour(dna->getBaseColour('T'), 0, 0, 1);
    const auto none = static_cast<SoNucleobase::Atom>(3);
    dna->setAtomRadius(none, 1);
    dna->setAtomColour(none, Vector(1, 1, 1));
    EXPECT_EQ(dna->getAtomRadius(none), -1);
    expectColour(dna->getAtomColour(none), -1, -1, -1);
}

TEST_F(SoDNATest, PairBoxesHaveTheirColourAndSwitch)
{
    expectColour(dna->getBasepairColour(), 1, 1, 1);
    EXPECT_EQ(dna->getBoxHeight(), 1.5);
    EXPECT_TRUE(dna->areBasePairBoxesShown());
    dna->setBasepairColour(Vector(0.5, 0.25, 0.75));
    expectColour(dna->getBasepairColour(), 0.5, 0.25, 0.75);
    ASSERT_TRUE(RandomDna(1).give(dna));
    dna->generate();
    EXPECT_EQ(child<SoMaterial>(parts.bpGroup(0), 0)->diffuseColor[0], SbColor(0.5f, 0.25f, 0.75f));
    dna->showBasePairBoxes(false);
    EXPECT_FALSE(dna->areBasePairBoxesShown());
    EXPECT_EQ(parts.bpSwitch->whichChild.getValue(), SO_SWITCH_NONE);
    dna->showBasePairBoxes(true);
    EXPECT_TRUE(dna->areBasePairBoxesShown());
}

// Pictures: unlit, 10 pixels to an ångström, the origin in the middle

class DnaPicture : public SoDNATest
{
protected:
    NodeRef<SoSeparator> scene{new SoSeparator};

    void SetUp() override
    {
        auto* camera = new SoOrthographicCamera;
        camera->position = SbVec3f(0, 0, 50);
        camera->nearDistance = 1;
        camera->farDistance = 100;
        camera->height = 20;
        scene->addChild(camera);
        auto* lightModel = new SoLightModel;
        lightModel->model = SoLightModel::BASE_COLOR;
        scene->addChild(lightModel);
        scene->addChild(dna);
    }

    Picture render() { return renderPicture(scene, 200, 200); }
    void give(const char* letters)
    {
        ASSERT_TRUE(IdealDna(letters).give(*dna));
        dna->generate();
    }
};

TEST_F(DnaPicture, PairBoxIsAsLargeAsItIsSaidToBe)
{
    give("A");
    dna->showAtoms(false);
    const Picture picture = render();
    EXPECT_NEAR(picture.count({255, 255, 255}), 54.16 * 101.39, 54.16 + 101.39);
    EXPECT_EQ(picture.getColour(98, 100), (Colour{255, 255, 255}));
    EXPECT_EQ(picture.getColour(98, 152), BLACK);
}

TEST_F(DnaPicture, BaseBoxesShowStrand1AboveAndItsComplementBelow)
{
    give("A");
    dna->showAtoms(false);
    dna->showBasePairBoxes(false);
    dna->showBaseBoxes(true);
    const Picture picture = render();
    EXPECT_EQ(picture.getColour(98, 125), RED);
    EXPECT_EQ(picture.getColour(98, 75), (Colour{0, 0, 255}));
    EXPECT_NEAR(picture.count(RED), 54.16 * 49.57, 54.16 + 49.57);
    EXPECT_EQ(picture.getColour(98, 100), BLACK); // between them
}

TEST_F(DnaPicture, AtomsStandAtTheirPlacesInTheirColours)
{
    give("A");
    dna->showBasePairBoxes(false);
    dna->setAtomColour(SoNucleobase::NITROGEN, Vector(0, 1, 0));
    for (SoNucleobase::Atom atom :
         {SoNucleobase::CARBON, SoNucleobase::NITROGEN, SoNucleobase::OXYGEN})
        dna->setAtomRadius(atom, 0.4); // no atom covers another one
    const Picture picture = render();
    EXPECT_EQ(picture.getColour(100 + 16, 100 + 9), GREEN);                    // N6 of adenine
    EXPECT_EQ(picture.getColour(100 + 19, 100 - 21), (Colour{255, 102, 102})); // O4 of thymine
    EXPECT_EQ(picture.getColour(100 - 13, 100 + 31), (Colour{102, 102, 102})); // C4 of adenine
    EXPECT_EQ(picture.getColour(100 - 25, 100 + 54), BLACK);                   // no C1'
}

TEST_F(DnaPicture, ChangesShowInTheNextPicture)
{
    give("A");
    dna->showAtoms(false);
    const int first = render().countOther(BLACK);
    dna->setBasepairColour(Vector(1, 0, 0));
    EXPECT_EQ(render().count(RED), first);
    parts.transform(0, 0)->translation = SbVec3f(100, 0, 0);
    EXPECT_EQ(render().countOther(BLACK), 0);
    dna->generate();
    EXPECT_EQ(render().count(RED), first);
    dna->showBasePairBoxes(false);
    EXPECT_EQ(render().countOther(BLACK), 0);
}

TEST_F(DnaPicture, RefusedDataLeaveThePictureUntilTheNextGenerate)
{
    give("AT");
    const int first = render().countOther(BLACK);
    ASSERT_GT(first, 1000);
    ASSERT_FALSE(dna->setData("at", {}, {}, {}, {}, {}, {}));
    EXPECT_EQ(render().countOther(BLACK), first);
    dna->generate();
    EXPECT_EQ(render().countOther(BLACK), 0);
}
