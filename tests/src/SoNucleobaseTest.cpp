// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoNucleobase.h>

#include <map>
#include <string>

#include <Inventor/SoDB.h>
#include <Inventor/SoPath.h>
#include <Inventor/lists/SoFieldList.h>
#include <Inventor/nodes/SoComplexity.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoSphere.h>
#include <Inventor/nodes/SoSwitch.h>
#include <Inventor/nodes/SoTranslation.h>
#include <gmock/gmock.h>

#include "support/CoinEnvironment.h"
#include "support/graph.h"

using testing::AllOf;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using Vector = algebra3d::Vector3<double>;

namespace {

const SoNucleobase::Atom ATOMS[3] = {SoNucleobase::CARBON, SoNucleobase::NITROGEN,
                                     SoNucleobase::OXYGEN};
const auto NO_ATOM = static_cast<SoNucleobase::Atom>(3);
const auto NEGATIVE_ATOM = static_cast<SoNucleobase::Atom>(-1);

// The parts of a base that is not empty, found by their places.
struct Parts
{
    explicit Parts(SoNucleobase* base)
        : atoms(child<SoSwitch>(base, 0)),
          boxSwitch(child<SoSwitch>(base, 1)),
          boxMaterial(child<SoMaterial>(boxSwitch, 0)),
          boxTranslation(child<SoTranslation>(boxSwitch, 1)),
          box(child<SoCube>(boxSwitch, 2))
    {}

    SoSeparator* group(int atom) const
    {
        return child<SoSeparator>(child<SoSeparator>(atoms, atom), 1);
    }
    SbVec3f place(int atom) const
    {
        return child<SoTranslation>(child<SoSeparator>(atoms, atom), 0)->translation.getValue();
    }

    SoSwitch* atoms;
    SoSwitch* boxSwitch;
    SoMaterial* boxMaterial;
    SoTranslation* boxTranslation;
    SoCube* box;
};

} // namespace

class SoNucleobaseTest : public CoinTest
{
protected:
    NodeRef<SoNucleobase> guanine{new SoNucleobase('g', true)};
    NodeRef<SoNucleobase> empty{new SoNucleobase('X', true)};
};

// The type

TEST_F(SoNucleobaseTest, FactoryMakesAnUprightAdenine)
{
    const SoType type = SoType::fromName("SoNucleobase");
    EXPECT_EQ(type, SoNucleobase::getClassTypeId());
    EXPECT_EQ(type.getParent(), SoSeparator::getClassTypeId());
    NodeRef<SoNucleobase> made(static_cast<SoNucleobase*>(type.createInstance()));
    NodeRef<SoNucleobase> adenine(new SoNucleobase('A', true));
    const Parts parts(made), expected(adenine);
    ASSERT_EQ(parts.atoms->getNumChildren(), 10);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(parts.place(i), expected.place(i));
    expectColour(made->getBoxColour(), 1, 0, 0);
}

TEST_F(SoNucleobaseTest, AddsNoFields)
{
    SoFieldList own, inherited;
    NodeRef<SoSeparator> separator(new SoSeparator);
    EXPECT_EQ(guanine->getFields(own), separator->getFields(inherited));
}

TEST(SoNucleobaseDeathTest, ConstructedBeforeItsRegistration)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            SoDB::init();
            (new SoNucleobase('A', true))->ref();
        },
        AllOf(ContainsRegex("(^|[: \n])src/SoNucleobase\\.cpp:[0-9]+: "),
              HasSubstr("SoNucleobase::classTypeId != SoType::badType() && "
                        "\"you forgot init()!\"")));
}

// The graph

TEST_F(SoNucleobaseTest, HoldsASwitchOfAtomsAndASwitchOfTheBox)
{
    ASSERT_EQ(guanine->getNumChildren(), 2);
    const Parts parts(guanine);
    EXPECT_EQ(parts.atoms->whichChild.getValue(), SO_SWITCH_ALL);
    EXPECT_EQ(parts.boxSwitch->whichChild.getValue(), SO_SWITCH_NONE);
    EXPECT_EQ(parts.boxSwitch->getNumChildren(), 3);
}

TEST_F(SoNucleobaseTest, AtomsOfAKindShareTheirGroup)
{
    // Carbon, nitrogen, oxygen without C1', counted in the structural formulas.
    const std::map<char, std::vector<int>> counts = {
        {'A', {5, 5, 0}}, {'T', {5, 2, 2}}, {'G', {5, 5, 1}}, {'C', {4, 3, 1}}};
    for (const auto& [letter, expected] : counts) {
        SCOPED_TRACE(letter);
        NodeRef<SoNucleobase> base(new SoNucleobase(letter, true));
        const Parts parts(base);
        std::map<float, int> byRadius;
        std::map<SoNode*, int> byGroup;
        SoNode* complexity = nullptr;
        for (int i = 0; i < parts.atoms->getNumChildren(); ++i) {
            SoSeparator* const group = parts.group(i);
            ASSERT_EQ(group->getNumChildren(), 3);
            child<SoMaterial>(group, 0);
            if (!complexity)
                complexity = group->getChild(1);
            EXPECT_EQ(child<SoComplexity>(group, 1), complexity);
            ++byRadius[child<SoSphere>(group, 2)->radius.getValue()];
            ++byGroup[group];
        }
        EXPECT_EQ(byRadius[1.908f], expected[0]);
        EXPECT_EQ(byRadius[1.6612f], expected[1]);
        EXPECT_EQ(byRadius.count(1.842f) ? byRadius[1.842f] : 0, expected[2]);
        EXPECT_EQ(byGroup.size(), expected[2] > 0 ? 3u : 2u);
    }
}

TEST_F(SoNucleobaseTest, AtomsStandAsInTheTablesWithoutTheSugarCarbon)
{
    const Parts parts(guanine);
    ASSERT_EQ(parts.atoms->getNumChildren(), 11);
    EXPECT_EQ(parts.place(0), SbVec3f(-1.286578f, 4.522557f, 0));        // N9
    EXPECT_EQ(parts.place(9), SbVec3f(-2.952011f, 0.112605f, -0.001f));  // N2
    EXPECT_EQ(parts.place(10), SbVec3f(1.551991f, 0.923058f, 0));        // O6
    EXPECT_EQ(parts.place(3), SbVec3f(-0.81158f, 0.582461f, -0.00011f)); // N1
}

TEST_F(SoNucleobaseTest, OtherBasesAreMirroredInYBoxesIncluded)
{
    for (char letter : {'A', 'T', 'G', 'C'}) {
        for (bool smaller : {false, true}) {
            NodeRef<SoNucleobase> upright(new SoNucleobase(letter, true));
            NodeRef<SoNucleobase> mirrored(new SoNucleobase(letter, false));
            upright->setSmallerPyr(smaller);
            mirrored->setSmallerPyr(smaller);
            const Parts one(upright), other(mirrored);
            ASSERT_EQ(one.atoms->getNumChildren(), other.atoms->getNumChildren());
            const auto mirror = [](const SbVec3f& v) { return SbVec3f(v[0], -v[1], v[2]); };
            for (int i = 0; i < one.atoms->getNumChildren(); ++i)
                EXPECT_EQ(other.place(i), mirror(one.place(i)));
            EXPECT_EQ(other.boxTranslation->translation.getValue(),
                      mirror(one.boxTranslation->translation.getValue()));
            EXPECT_EQ(other.box->height.getValue(), one.box->height.getValue());
        }
    }
}

TEST_F(SoNucleobaseTest, DefaultsAreThoseOfTheConstants)
{
    expectColour(guanine->getAtomColour(SoNucleobase::CARBON), 0.4, 0.4, 0.4);
    expectColour(guanine->getAtomColour(SoNucleobase::NITROGEN), 0.4, 0.4, 1.0);
    expectColour(guanine->getAtomColour(SoNucleobase::OXYGEN), 1.0, 0.4, 0.4);
    EXPECT_EQ(guanine->getAtomRadius(SoNucleobase::CARBON), 1.908f);
    EXPECT_EQ(guanine->getAtomRadius(SoNucleobase::NITROGEN), 1.6612f);
    EXPECT_EQ(guanine->getAtomRadius(SoNucleobase::OXYGEN), 1.842f);
    EXPECT_EQ(guanine->getAtomComplexity(), 0.3f);
    expectColour(guanine->getBoxColour(), 0.2, 0.7, 0.1);
    EXPECT_EQ(guanine->getBoxHeight(), 1.5);
    EXPECT_TRUE(guanine->areAtomsShown());
    EXPECT_FALSE(guanine->isBoxShown());
    EXPECT_FALSE(guanine->isPyrSmaller());
    const Parts parts(guanine);
    EXPECT_EQ(parts.boxMaterial->diffuseColor[0], SbColor(0.2f, 0.7f, 0.1f));
    EXPECT_EQ(parts.boxMaterial->specularColor[0], SbColor(0, 0, 0));
    EXPECT_EQ(child<SoMaterial>(parts.group(0), 0)->specularColor[0], SbColor(0, 0, 0));
}

// Accessors

TEST_F(SoNucleobaseTest, SettingAKindReachesAllItsAtoms)
{
    const Parts parts(guanine);
    guanine->setAtomColour(SoNucleobase::CARBON, Vector(0.1, 0.2, 0.3));
    guanine->setAtomRadius(SoNucleobase::CARBON, 0.5);
    guanine->setAtomComplexity(-2); // as it is
    expectColour(guanine->getAtomColour(SoNucleobase::CARBON), 0.1, 0.2, 0.3);
    expectColour(guanine->getAtomColour(SoNucleobase::NITROGEN), 0.4, 0.4, 1.0);
    EXPECT_EQ(guanine->getAtomComplexity(), -2);
    int carbons = 0;
    for (int i = 0; i < 11; ++i) {
        SoSeparator* const group = parts.group(i);
        EXPECT_EQ(child<SoComplexity>(group, 1)->value.getValue(), -2);
        const auto* sphere = child<SoSphere>(group, 2);
        if (sphere->radius.getValue() != 0.5f)
            continue;
        ++carbons;
        EXPECT_EQ(child<SoMaterial>(group, 0)->ambientColor[0], SbColor(0.1f, 0.2f, 0.3f));
        EXPECT_EQ(child<SoMaterial>(group, 0)->diffuseColor[0], SbColor(0.1f, 0.2f, 0.3f));
    }
    EXPECT_EQ(carbons, 5);
}

TEST_F(SoNucleobaseTest, RadiiAndHeightsAreStoredWithoutTheirSign)
{
    guanine->setAtomRadius(SoNucleobase::OXYGEN, -2);
    EXPECT_EQ(guanine->getAtomRadius(SoNucleobase::OXYGEN), 2);
    guanine->setBoxHeight(-1);
    EXPECT_EQ(guanine->getBoxHeight(), 1);
    EXPECT_EQ(Parts(guanine).box->depth.getValue(), 1);
}

TEST_F(SoNucleobaseTest, ShowFlagsAreThoseOfTheSwitches)
{
    const Parts parts(guanine);
    guanine->showBox(true);
    EXPECT_TRUE(guanine->isBoxShown());
    EXPECT_EQ(parts.boxSwitch->whichChild.getValue(), SO_SWITCH_ALL);
    guanine->showAtoms(false);
    EXPECT_FALSE(guanine->areAtomsShown());
    EXPECT_EQ(parts.atoms->whichChild.getValue(), SO_SWITCH_NONE);
    parts.atoms->whichChild = 0; // one atom is not all
    EXPECT_FALSE(guanine->areAtomsShown());
    guanine->showBox(false);
    guanine->showAtoms(true);
    EXPECT_FALSE(guanine->isBoxShown());
    EXPECT_TRUE(guanine->areAtomsShown());
}

TEST_F(SoNucleobaseTest, BoxColourIsAmbientAndDiffuse)
{
    guanine->setBoxColour(Vector(0.5, 0.25, 0.75));
    expectColour(guanine->getBoxColour(), 0.5, 0.25, 0.75);
    const Parts parts(guanine);
    EXPECT_EQ(parts.boxMaterial->ambientColor[0], SbColor(0.5f, 0.25f, 0.75f));
    EXPECT_EQ(parts.boxMaterial->diffuseColor[0], SbColor(0.5f, 0.25f, 0.75f));
}

TEST_F(SoNucleobaseTest, MaterialWithoutColoursHasNone)
{
    Parts(guanine).boxMaterial->ambientColor.setNum(0);
    expectColour(guanine->getBoxColour(), -1, -1, -1);
}

TEST_F(SoNucleobaseTest, AllBoxesAreEqualUnlessPyrimidinesAreSmaller)
{
    const struct
    {
        char letter;
        double height, y; // of the base's own atoms
    } own[] = {{'A', 4.328321, 2.7223935},
               {'T', 2.932839, 3.6032445},
               {'G', 4.770698, 2.4979540},
               {'C', 3.041936, 3.5406530}};
    for (const auto& expected : own) {
        SCOPED_TRACE(expected.letter);
        NodeRef<SoNucleobase> base(new SoNucleobase(expected.letter, true));
        base->setBoxHeight(0.5);
        const Parts parts(base);
        const auto expectBox = [&parts](double height, double y) {
            EXPECT_FLOAT_EQ(parts.box->width.getValue(), 5.416105f);
            EXPECT_FLOAT_EQ(parts.box->height.getValue(), float(height));
            EXPECT_EQ(parts.box->depth.getValue(), 0.5f);
            const SbVec3f centre = parts.boxTranslation->translation.getValue();
            EXPECT_FLOAT_EQ(centre[0], -0.2439585f);
            EXPECT_FLOAT_EQ(centre[1], float(y));
            EXPECT_EQ(centre[2], 0);
        };
        expectBox(4.957059, 2.5911345);
        base->setSmallerPyr(true);
        EXPECT_TRUE(base->isPyrSmaller());
        expectBox(expected.height, expected.y);
        base->setSmallerPyr(false);
        EXPECT_FALSE(base->isPyrSmaller());
        expectBox(4.957059, 2.5911345);
    }
}

TEST_F(SoNucleobaseTest, ExtentsAreThoseOfAtomsAndBox)
{
    // N2 to the left, C8 on top: a carbon of 1.908 around each of the outermost.
    const SbBox3f atoms = boxOf(guanine);
    EXPECT_NEAR(atoms.getMin()[0], -2.952011 - 1.6612, 1e-5);
    EXPECT_NEAR(atoms.getMax()[1], 4.883303 + 1.908, 1e-5);
    guanine->showAtoms(false);
    guanine->showBox(true);
    const SbBox3f box = boxOf(guanine);
    EXPECT_NEAR(box.getMin()[0], -2.952011, 1e-5);
    EXPECT_NEAR(box.getMax()[1], 5.069664, 1e-5);
    EXPECT_NEAR(box.getMax()[2], 0.75, 1e-6);
}

TEST_F(SoNucleobaseTest, KindsWithoutAtomsKeepTheirSettings) // those of a DNA are read from A
{
    NodeRef<SoNucleobase> adenine(new SoNucleobase('A', true));
    adenine->setAtomRadius(SoNucleobase::OXYGEN, 0.5);
    adenine->setAtomColour(SoNucleobase::OXYGEN, Vector(0.5, 0.25, 0.75));
    EXPECT_EQ(adenine->getAtomRadius(SoNucleobase::OXYGEN), 0.5);
    expectColour(adenine->getAtomColour(SoNucleobase::OXYGEN), 0.5, 0.25, 0.75);
}

// Bad input

TEST_F(SoNucleobaseTest, NoBaseIsAnEmptyNodeThatAnswersSentinels)
{
    for (char letter : {'X', 'U', '\0', '\xe9', '1'}) {
        NodeRef<SoNucleobase> none(new SoNucleobase(letter, true));
        EXPECT_EQ(none->getNumChildren(), 0);
        for (SoNucleobase::Atom atom : ATOMS) {
            none->setAtomColour(atom, Vector(1, 1, 1));
            none->setAtomRadius(atom, 1);
            EXPECT_EQ(none->getAtomRadius(atom), -1);
            expectColour(none->getAtomColour(atom), -1, -1, -1);
        }
        none->setAtomComplexity(1);
        none->showAtoms(true);
        none->setBoxColour(Vector(1, 1, 1));
        none->setBoxHeight(1);
        none->setSmallerPyr(true);
        EXPECT_EQ(none->getAtomComplexity(), -1);
        EXPECT_FALSE(none->areAtomsShown());
        expectColour(none->getBoxColour(), -1, -1, -1);
        EXPECT_EQ(none->getBoxHeight(), -1);
        EXPECT_TRUE(none->isPyrSmaller()); // only the mode is stored
        EXPECT_TRUE(boxOf(none).isEmpty());
    }
}

TEST_F(SoNucleobaseTest, InvalidKindsAreIgnored)
{
    for (SoNucleobase::Atom atom : {NO_ATOM, NEGATIVE_ATOM}) {
        guanine->setAtomColour(atom, Vector(1, 1, 1));
        guanine->setAtomRadius(atom, 9);
        EXPECT_EQ(guanine->getAtomRadius(atom), -1);
        expectColour(guanine->getAtomColour(atom), -1, -1, -1);
    }
    for (SoNucleobase::Atom atom : ATOMS)
        EXPECT_LT(guanine->getAtomRadius(atom), 2);
}

TEST_F(SoNucleobaseTest, PartsGoWithTheNode)
{
    auto* base = new SoNucleobase('C', false);
    base->ref();
    NodeRef<SoNode> kept(base->getChild(0));
    EXPECT_EQ(kept->getRefCount(), 2);
    base->unref();
    EXPECT_EQ(kept->getRefCount(), 1);
}

// Look-ups, which need no node

TEST_F(SoNucleobaseTest, CopyIsABaseOfItsOwn)
{
    NodeRef<SoNucleobase> thymine(new SoNucleobase('T', false));
    thymine->setAtomRadius(SoNucleobase::OXYGEN, 0.5);
    thymine->setAtomColour(SoNucleobase::CARBON, Vector(0.25, 0.5, 0.75));
    thymine->setBoxHeight(2);
    thymine->setSmallerPyr(true);
    NodeRef<SoNucleobase> copy(static_cast<SoNucleobase*>(thymine->copy()));
    const Parts parts(copy), originals(thymine);
    ASSERT_EQ(copy->getNumChildren(), 2);
    ASSERT_EQ(parts.atoms->getNumChildren(), originals.atoms->getNumChildren());
    for (int i = 0; i < parts.atoms->getNumChildren(); ++i)
        EXPECT_EQ(parts.place(i), originals.place(i));
    EXPECT_EQ(copy->getAtomRadius(SoNucleobase::OXYGEN), 0.5);
    expectColour(copy->getAtomColour(SoNucleobase::CARBON), 0.25, 0.5, 0.75);
    EXPECT_EQ(copy->getBoxHeight(), 2);
    EXPECT_TRUE(copy->isPyrSmaller());

    copy->setAtomRadius(SoNucleobase::OXYGEN, 3);
    copy->setAtomComplexity(1);
    copy->setBoxHeight(4);
    copy->showAtoms(false);
    copy->showBox(true);
    copy->setSmallerPyr(false);
    EXPECT_EQ(child<SoSphere>(parts.group(6), 2)->radius.getValue(), 3); // O2
    EXPECT_EQ(parts.box->depth.getValue(), 4);
    EXPECT_EQ(parts.atoms->whichChild.getValue(), SO_SWITCH_NONE);
    EXPECT_LT(parts.boxTranslation->translation.getValue()[1], -2.5f); // mirrored still
    EXPECT_EQ(thymine->getAtomRadius(SoNucleobase::OXYGEN), 0.5);
    EXPECT_EQ(thymine->getBoxHeight(), 2);
    EXPECT_TRUE(thymine->areAtomsShown());
}

TEST_F(SoNucleobaseTest, CopyKeepsTheSettingsOfKindsWithoutAtoms)
{
    NodeRef<SoNucleobase> adenine(new SoNucleobase('A', true));
    adenine->setAtomRadius(SoNucleobase::OXYGEN, 0.5);
    NodeRef<SoNucleobase> copy(static_cast<SoNucleobase*>(adenine->copy()));
    EXPECT_EQ(copy->getAtomRadius(SoNucleobase::OXYGEN), 0.5);
    copy->setAtomRadius(SoNucleobase::OXYGEN, 2);
    EXPECT_EQ(copy->getAtomRadius(SoNucleobase::OXYGEN), 2);
    EXPECT_EQ(adenine->getAtomRadius(SoNucleobase::OXYGEN), 0.5);
}

TEST_F(SoNucleobaseTest, CopyOfNoBaseIsNone)
{
    NodeRef<SoNucleobase> copy(static_cast<SoNucleobase*>(empty->copy()));
    EXPECT_EQ(copy->getNumChildren(), 0);
    EXPECT_EQ(copy->getAtomRadius(SoNucleobase::CARBON), -1);
    EXPECT_EQ(copy->getBoxHeight(), -1);
    copy->showAtoms(true);
    EXPECT_FALSE(copy->areAtomsShown());
}

TEST(SoNucleobaseLookUps, BasesAreUpperCase)
{
    EXPECT_STREQ(SoNucleobase::BASES, "ATGC");
    EXPECT_STREQ(SoNucleobase::COMPLEMENTS, "TACG");
    for (int i = 0; i < 4; ++i) {
        EXPECT_TRUE(SoNucleobase::isBaseCorrect("ATGC"[i]));
        EXPECT_EQ(SoNucleobase::getBaseIndex("ATGC"[i]), i);
        EXPECT_EQ(SoNucleobase::getBase(i), "ATGC"[i]);
        EXPECT_FALSE(SoNucleobase::isBaseCorrect("atgc"[i]));
        EXPECT_EQ(SoNucleobase::getBaseIndex("atgc"[i]), -1);
    }
    for (char letter : {'U', 'N', '\0', ' ', '\xff'}) {
        EXPECT_FALSE(SoNucleobase::isBaseCorrect(letter));
        EXPECT_EQ(SoNucleobase::getBaseIndex(letter), -1);
    }
}

TEST(SoNucleobaseLookUps, ComplementsTakeLettersOfEitherCaseAndIndices)
{
    const int complements[4] = {1, 0, 3, 2};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(SoNucleobase::getComplement(i), "TACG"[i]);
        EXPECT_EQ(SoNucleobase::getComplement("ATGC"[i]), "TACG"[i]);
        EXPECT_EQ(SoNucleobase::getComplement("atgc"[i]), "TACG"[i]);
        EXPECT_EQ(SoNucleobase::getComplementIndex(i), complements[i]);
        EXPECT_EQ(SoNucleobase::getComplementIndex("ATGC"[i]), complements[i]);
        EXPECT_EQ(SoNucleobase::getComplementIndex("atgc"[i]), complements[i]);
    }
    EXPECT_EQ(SoNucleobase::getComplement('U'), '\0');
    EXPECT_EQ(SoNucleobase::getComplement('\0'), '\0');
    EXPECT_EQ(SoNucleobase::getComplementIndex('U'), -1);
}

TEST(SoNucleobaseLookUps, IndicesOutOfRangeHaveNothing)
{
    for (int index : {4, 7, -1, -2147483647 - 1, 2147483647}) {
        EXPECT_EQ(SoNucleobase::getBase(index), '\0');
        EXPECT_EQ(SoNucleobase::getComplement(index), '\0');
        EXPECT_EQ(SoNucleobase::getComplementIndex(index), -1);
        EXPECT_EQ(SoNucleobase::getDefColour(index), nullptr);
    }
}

TEST(SoNucleobaseLookUps, DefaultColoursTakeLettersOfEitherCase)
{
    const double colours[4][3] = {{1, 0, 0}, {0, 0, 1}, {0.2, 0.7, 0.1}, {1.0, 0.9, 0.0}};
    for (int i = 0; i < 4; ++i) {
        for (const double* colour :
             {SoNucleobase::getDefColour(i), SoNucleobase::getDefColour("ATGC"[i]),
              SoNucleobase::getDefColour("atgc"[i])}) {
            ASSERT_NE(colour, nullptr);
            for (int k = 0; k < 3; ++k)
                EXPECT_EQ(colour[k], colours[i][k]);
        }
    }
    EXPECT_EQ(SoNucleobase::getDefColour('U'), nullptr);
}

TEST(SoNucleobaseLookUps, KindsAreCarbonNitrogenAndOxygen)
{
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(int(ATOMS[i]), i);
        EXPECT_TRUE(SoNucleobase::isAtomCorrect(ATOMS[i]));
    }
    EXPECT_FALSE(SoNucleobase::isAtomCorrect(NO_ATOM));
    EXPECT_FALSE(SoNucleobase::isAtomCorrect(NEGATIVE_ATOM));
    EXPECT_THAT(SoNucleobase::ATOM_R_AMBER, ElementsAre(1.908, 1.6612, 1.842));
    EXPECT_EQ(SoNucleobase::BASE_HEIGHT_DEF, 1.5);
}

TEST(SoNucleobaseLookUps, ExtentsOfAllBasesLeaveOutTheSugarCarbon)
{
    double xMin = 0, xMax = 0, yMin = 0, yMax = 0;
    SoNucleobase::getAllBasesBB(xMin, xMax, yMin, yMax);
    EXPECT_EQ(xMin, -2.952011);
    EXPECT_EQ(xMax, 2.464094);
    EXPECT_EQ(yMin, 0.112605); // guanine's N2
    EXPECT_EQ(yMax, 5.069664); // C1' is at 5.389
}
