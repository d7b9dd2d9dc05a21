// SPDX-License-Identifier: GPL-3.0-or-later
// Graphs with nodes of every class in Open Inventor files.
#include <Inventor/SoDB.h>
#include <Inventor/errors/SoReadError.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <gmock/gmock.h>

#include <SoGeneralScene.h>
#include <global.h>

#include "support/CoinEnvironment.h"
#include "support/graph.h"
#include "support/renderPicture.h"
#include "support/sampleNodes.h"
#include "support/triangles.h"

using testing::HasSubstr;
using testing::Not;

namespace {

class GraphFileTest : public CoinTest
{
protected:
    static void SetUpTestSuite()
    {
        initCoinOnce();
        initStrandviewClasses();
    }
};

SoSeparator* readText(const std::string& text)
{
    SoInput input;
    input.setBuffer(text.data(), text.size());
    return SoDB::readAll(&input);
}

SoSeparator* holding(SoNode* node)
{
    auto* root = new SoSeparator;
    root->addChild(node);
    return root;
}

// What was read back has the triangles of the original, in their order. A file has eight
// digits of a number.
void expectTrianglesBack(SoNode* back, SoNode* original)
{
    const std::vector<Triangle> read = generatedTriangles(back);
    const std::vector<Triangle> expected = generatedTriangles(original);
    ASSERT_EQ(read.size(), expected.size());
    for (std::size_t i = 0; i < read.size(); ++i) {
        for (std::size_t corner = 0; corner < 3; ++corner) {
            for (std::size_t axis = 0; axis < 6; ++axis)
                ASSERT_NEAR(read[i][corner][axis], expected[i][corner][axis], 2e-6f)
                    << "triangle " << i << ", corner " << corner << ", number " << axis;
        }
    }
}

} // namespace

TEST_F(GraphFileTest, ShowsTheSameTrianglesForEveryClass)
{
    for (SoNode* node : makeOneOfEach()) {
        SCOPED_TRACE(node->getTypeId().getName().getString());
        const NodeRef<SoSeparator> root(holding(node));
        SoSeparator* const read = readText(writtenText(root));
        ASSERT_NE(read, nullptr);
        const NodeRef<SoSeparator> back(read);
        EXPECT_GT(generatedTriangles(root).size(), 8u);
        expectTrianglesBack(back, root);
    }
}

TEST_F(GraphFileTest, NamesNoClassOfTheLibrarySoThatAnyProgramReadsIt)
{
    for (SoNode* node : makeOneOfEach()) {
        const std::string name = node->getTypeId().getName().getString();
        SCOPED_TRACE(name);
        const NodeRef<SoSeparator> root(holding(node));
        EXPECT_THAT(writtenText(root), Not(HasSubstr(name)));
    }
    const NodeRef<SoGeneralScene> scene(new SoGeneralScene);
    EXPECT_THAT(writtenText(scene), Not(HasSubstr("SoGeneralScene")));
}

TEST_F(GraphFileTest, IsTheSameAfterReadingAndWritingAgain)
{
    for (SoNode* node : makeOneOfEach()) {
        SCOPED_TRACE(node->getTypeId().getName().getString());
        const NodeRef<SoSeparator> root(holding(node));
        const NodeRef<SoSeparator> once(readText(writtenText(root)));
        const std::string second = writtenText(once);
        const NodeRef<SoSeparator> twice(readText(second));
        EXPECT_EQ(writtenText(twice), second);
    }
}

TEST_F(GraphFileTest, HasARodInTwoPlacesOnce)
{
    auto* rod = makeBentRod();
    const NodeRef<SoSeparator> root(holding(rod));
    const std::string once = writtenText(root);
    root->addChild(rod);
    const std::string twice = writtenText(root);
    EXPECT_THAT(twice, HasSubstr("USE"));
    EXPECT_LT(twice.size(), once.size() + 60);
    const NodeRef<SoSeparator> back(readText(twice));
    expectTrianglesBack(back, root);
}

TEST_F(GraphFileTest, HasWhatARodShowsWhenItIsWritten)
{
    auto* rod = makeBentRod();
    const NodeRef<SoSeparator> root(holding(rod));
    const std::string before = writtenText(root);
    EXPECT_EQ(writtenText(root), before);

    rod->showRibbon(false);
    const NodeRef<SoSeparator> tubeAlone(readText(writtenText(root)));
    expectTrianglesBack(tubeAlone, root);

    const BentCurve other(2, 7);
    rod->setData(other.points, other.rotations);
    const NodeRef<SoSeparator> changed(readText(writtenText(root)));
    expectTrianglesBack(changed, root);
}

TEST_F(GraphFileTest, HasAnEmptySeparatorForARodThatShowsNothing)
{
    const NodeRef<SoSeparator> root(holding(new SoRod(0.1, 0.3, 6, 3, true, true, false)));
    const NodeRef<SoSeparator> back(readText(writtenText(root)));
    ASSERT_EQ(back->getNumChildren(), 1);
    EXPECT_EQ(child<SoSeparator>(back, 0)->getNumChildren(), 0);
}

TEST_F(GraphFileTest, OfASceneIsItsPicture)
{
    auto* scene = new SoGeneralScene;
    scene->addChanging(makeBentRod());
    scene->addShaded(makeShortDna());
    const NodeRef<SoSeparator> root(new SoSeparator);
    auto* camera = new SoOrthographicCamera;
    camera->position = SbVec3f(0, 0, 40);
    camera->height = 30;
    camera->farDistance = 80;
    root->addChild(camera);
    root->addChild(scene);

    const NodeRef<SoSeparator> back(readText(writtenText(root)));
    const Difference difference = compare(renderPicture(root, 80, 80), renderPicture(back, 80, 80));
    EXPECT_EQ(difference.strong, 0) << difference;
    EXPECT_GT(difference.covered, 200);
}

TEST_F(GraphFileTest, ThatNamesARodIsRefusedWithItsLine)
{
    SoErrorCB* const before = SoReadError::getHandlerCallback();
    void* const beforeData = SoReadError::getHandlerData();
    std::string message;
    SoReadError::setHandlerCallback(
        [](const SoError* error, void* text) {
            *static_cast<std::string*>(text) += error->getDebugString().getString();
        },
        &message);
    EXPECT_EQ(readText("#Inventor V2.1 ascii\nSoRod { fields [ ] }\n"), nullptr);
    SoReadError::setHandlerCallback(before, beforeData);
    EXPECT_THAT(message, HasSubstr("\"SoRod\" is abstract"));
    EXPECT_THAT(message, HasSubstr("line"));
}
