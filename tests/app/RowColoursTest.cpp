// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/RowColours.h"

#include <cmath>
#include <memory>
#include <thread>
#include <vector>

#include <Inventor/nodes/SoMaterial.h>
#include <SoBirod.h>
#include <SoRod.h>
#include <gmock/gmock.h>

#include "request/ColourMap.h"
#include "scene/Colouring.h"
#include "scene/DataScene.h"
#include "scene/Progress.h"
#include "scene/SceneBuilder.h"
#include "scene/prepareLook.h"
#include "support/graph.h"
#include "support/initialiseSceneOnce.h"

namespace strandview {

namespace {

using algebra3d::Vector3;
using Points = std::vector<Vector3<double>>;

Points helix(double radius, double shift)
{
    Points points;
    for (int i = 0; i < 30; ++i)
        points.emplace_back(radius * std::cos(0.3 * i) + shift, radius * std::sin(0.3 * i),
                            0.2 * i + 0.001 * i * i);
    return points;
}

Configuration dataOf(double radius)
{
    Configuration data;
    Rod rod;
    rod.points = helix(radius, 0);
    rod.rotations.resize(rod.points.size());
    data.rods = {rod, rod};
    Birod birod;
    birod.points = helix(radius, 5);
    birod.points1 = helix(radius, 5.5);
    birod.points2 = helix(radius, 6);
    birod.rotations.resize(birod.points.size());
    birod.rotations1 = birod.rotations2 = birod.rotations;
    data.birods = {birod};
    return data;
}

std::vector<SbColor> coloursOf(const SbColor* colours, int count)
{
    return std::vector<SbColor>(colours, colours + count);
}

class RowColoursTest : public testing::Test
{
protected:
    RowColoursTest()
    {
        initialiseSceneOnce();
        options.colourBy = "arclength";
        show(dataOf(1));
    }
    ~RowColoursTest() override { scene->unref(); }

    // A new scene.
    void show(const Configuration& data)
    {
        std::optional<PreparedLook> look = prepare(data);
        std::string error;
        if (scene)
            scene->unref();
        scene = buildScene(data, look->style, &*look->colouring, std::move(look->geometry), never,
                           error);
        ASSERT_NE(scene, nullptr) << error;
        scene->ref();
        scene->setData(std::make_shared<const Configuration>(data));
    }

    std::optional<PreparedLook> prepare(const Configuration& data)
    {
        ReadReport report;
        std::optional<PreparedLook> look = prepareLook(options, data, report, never);
        EXPECT_TRUE(look && look->colouring) << report.error;
        return look;
    }

    // Other colours of what is shown.
    PreparedLook prepareColours(const RowsOfData* rows)
    {
        ReadReport report;
        const Configuration& data = *scene->getData();
        options.colours = findColourMap("cividis");
        return std::move(
            *strandview::prepareColours(options, data, data, nullptr, rows, report, never));
    }

    // Those of data of each rod and birod that is shown.
    std::vector<SoMFColor*> shownRows() const
    {
        std::vector<SoMFColor*> all;
        for (SoMaterial* const material : allOf<SoMaterial>(scene)) {
            if (material->diffuseColor.getNum() > 30 && material->ambientColor.getNum() == 1 &&
                material->specularColor[0] == SbColor(1, 1, 1))
                all.push_back(&material->diffuseColor);
        }
        return all;
    }
    std::vector<std::vector<SbColor>> shownColours() const
    {
        std::vector<std::vector<SbColor>> all;
        for (const SoMFColor* const rows : shownRows())
            all.push_back(coloursOf(rows->getValues(0), rows->getNum()));
        return all;
    }

    static std::vector<const SbColor*> madeRows(const SceneGeometry& geometry)
    {
        std::vector<const SbColor*> all;
        for (const SceneGeometry::Rod& rod : geometry.rods)
            all.push_back(rod.colours.colours.get());
        for (const SceneGeometry::Birod& birod : geometry.birods)
            all.push_back(birod.colours.colours.get());
        return all;
    }
    std::vector<const SbColor*> shownMemory() const
    {
        std::vector<const SbColor*> all;
        for (const SoMFColor* const rows : shownRows())
            all.push_back(rows->getValues(0));
        return all;
    }

    Options options;
    Progress never;
    DataScene* scene = nullptr;
};

TEST_F(RowColoursTest, AreThoseOfTheTubeThenThoseOfTheRibbon)
{
    const std::optional<PreparedLook> look = prepare(dataOf(1));
    const CurveRows rows = rowsOf(look->geometry).rods[1];
    const Colouring& colouring = *look->colouring;
    const RowColours made = makeRowColours(colouring, {&colouring.ofRod(1)}, {rows});
    std::vector<SbColor> expected(rows.tube->ofRows.size() + rows.ribbon->ofRows.size());
    colourRows(colouring, rows.tube->ofPoints, colouring.ofRod(1), rows.tube->ofRows,
               expected.data());
    colourRows(colouring, rows.ribbon->ofPoints, colouring.ofRod(1), rows.ribbon->ofRows,
               expected.data() + rows.tube->ofRows.size());
    EXPECT_EQ(coloursOf(made.colours.get(), made.count), expected);
    EXPECT_NE(expected.front(), expected[rows.tube->ofRows.size() - 1]);
}

TEST_F(RowColoursTest, OfABirodWhoseStrandsWereStoppedAreNotMade)
{
    std::optional<PreparedLook> look = prepare(dataOf(1));
    Colouring stopped = *look->colouring;
    stopped.places.resize(stopped.rods + 1);
    stopped.places.resize(stopped.rods + 3); // the average has some
    look->geometry.birods[0].colours = {};
    addRowColours(stopped, look->geometry);
    EXPECT_EQ(look->geometry.birods[0].colours.count, 0);
    EXPECT_GT(look->geometry.rods[1].colours.count, 0);
    addRowColours(*look->colouring, look->geometry);
    EXPECT_GT(look->geometry.birods[0].colours.count, 0);
}

TEST_F(RowColoursTest, OfANewLookAreShownInTheMemoryThatTheyWereMadeIn)
{
    std::optional<PreparedLook> look = prepare(dataOf(2));
    const std::vector<const SbColor*> made = madeRows(look->geometry);
    EXPECT_EQ(restyleScene(*scene, dataOf(2), look->style, &*look->colouring,
                           std::move(look->geometry), never),
              "");
    EXPECT_EQ(made.size(), 3u);
    EXPECT_EQ(shownMemory(), made);
}

TEST_F(RowColoursTest, OfOtherColoursAreShownInTheMemoryThatTheyWereMadeIn)
{
    const RowsOfData rows = rowsOf(*scene);
    PreparedLook look = prepareColours(&rows);
    const std::vector<const SbColor*> made = madeRows(look.geometry);
    ASSERT_EQ(made.size(), 3u);
    recolourScene(*scene, look.style, &*look.colouring, std::move(look.geometry));
    EXPECT_EQ(shownMemory(), made);

    const auto ofMade = shownColours();
    const PreparedLook without = prepareColours(nullptr);
    EXPECT_TRUE(without.geometry.rods.empty());
    recolourScene(*scene, without.style, &*without.colouring);
    EXPECT_EQ(shownColours(), ofMade) << "as if they are made of the nodes that are shown";
}

TEST_F(RowColoursTest, OfRowsThatAreNotShownAnyMoreAreNotTaken)
{
    const RowsOfData rows = rowsOf(*scene);
    PreparedLook look = prepareColours(&rows);
    const std::vector<const SbColor*> made = madeRows(look.geometry);
    const std::vector<SbColor> ofBefore = coloursOf(made[0], look.geometry.rods[0].colours.count);

    Configuration next = dataOf(1);
    for (auto* const points : {&next.rods[0].points, &next.birods[0].points})
        points->back() = points->back() + Vector3<double>(0, 0, 3); // of as many rows
    const Colouring followed = followColouring(*look.colouring, next);
    std::string error;
    SceneGeometry geometry =
        computeGeometry(next, scene->getStyle(), scene->getPlacement(), never, error);
    EXPECT_EQ(updateScene(*scene, next, &followed, std::move(geometry), never), "");
    scene->setData(std::make_shared<const Configuration>(next));
    recolourScene(*scene, look.style, &followed, std::move(look.geometry));
    const std::vector<const SbColor*> shown = shownMemory();
    for (std::size_t i = 0; i < made.size(); ++i)
        EXPECT_NE(shown[i], made[i]) << i;
    EXPECT_NE(shownColours()[0], ofBefore);
    recolourScene(*scene, look.style, &followed);
    EXPECT_NE(shownColours()[0], ofBefore);
}

TEST_F(RowColoursTest, AreMadeInAnotherThreadWhateverBecomesOfTheScene)
{
    const RowsOfData rows = rowsOf(*scene);
    const PreparedLook expected = prepareColours(&rows);
    PreparedLook look;
    std::thread worker([&] {
        for (int i = 0; i < 20; ++i)
            look = prepareColours(&rows);
    });
    for (int i = 0; i < 20; ++i) {
        std::string error;
        const Configuration next = dataOf(1 + 0.1 * i);
        SceneGeometry geometry =
            computeGeometry(next, scene->getStyle(), scene->getPlacement(), never, error);
        const Colouring followed = followColouring(*scene->getColouring(), next);
        EXPECT_EQ(updateScene(*scene, next, &followed, std::move(geometry), never), "");
    }
    worker.join();
    for (std::size_t i = 0; i < 2; ++i) {
        const RowColours &made = look.geometry.rods[i].colours,
                         &before = expected.geometry.rods[i].colours;
        EXPECT_EQ(coloursOf(made.colours.get(), made.count),
                  coloursOf(before.colours.get(), before.count));
    }
}

TEST_F(RowColoursTest, OfARibbonThatIsHiddenAndCannotBeDrawnAreThereAllTheSame)
{
    const CurveRows shown = rowsOf(*scene).rods[0];
    auto broken = std::make_shared<ArcLengths>(*shown.ribbon);
    for (double& length : broken->ofPoints)
        length = std::nan("");
    const std::optional<PreparedLook> look = prepare(dataOf(1));
    const Colouring& colouring = *look->colouring;
    const RowColours made = makeRowColours(colouring, {&colouring.ofRod(0), &colouring.ofRod(0)},
                                           {{shown.tube, broken}, shown});
    const auto tubeRows = shown.tube->ofRows.size(), ribbonRows = shown.ribbon->ofRows.size();
    ASSERT_EQ(made.count, int(2 * (tubeRows + ribbonRows)));
    const std::vector<SbColor> all = coloursOf(made.colours.get(), made.count);
    EXPECT_EQ(all[tubeRows],
              SbColor(colouring.none.red, colouring.none.green, colouring.none.blue));
    EXPECT_EQ(std::vector<SbColor>(all.begin(), all.begin() + std::ptrdiff_t(tubeRows)),
              std::vector<SbColor>(all.begin() + std::ptrdiff_t(tubeRows + ribbonRows),
                                   all.begin() + std::ptrdiff_t(2 * tubeRows + ribbonRows)));
}

} // namespace

} // namespace strandview
