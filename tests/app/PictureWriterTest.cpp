// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/PictureWriter.h"

#include <algorithm>
#include <functional>

#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoTransparencyType.h>
#include <Inventor/sensors/SoNodeSensor.h>
#include <QColor>
#include <QCoreApplication>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "pictures/TileRenderer.h"
#include "scene/DataScene.h"
#include "scene/SceneLoader.h"
#include "support/initialiseSceneOnce.h"
#include "support/keepPictures.h"

namespace strandview {

namespace {

struct Compared
{
    int covered = 0;   ///< pixels that are not those of the corner
    int differing = 0; ///< by more than a rounding
};

int difference(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                     std::abs(qBlue(a) - qBlue(b)), std::abs(qAlpha(a) - qAlpha(b))});
}

Compared compare(const QImage& a, const QImage& b)
{
    keepIfFailed(a, b);
    Compared compared;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            compared.covered += a.pixel(x, y) != a.pixel(0, 0);
            compared.differing += difference(a.pixel(x, y), b.pixel(x, y)) > 1;
        }
    }
    return compared;
}

struct Shown
{
    std::string name;
    std::string file;
    std::function<void(Options&)> ask;
    bool wireframe = false;
};

void PrintTo(const Shown& shown, std::ostream* stream) { *stream << shown.name; }

class PictureInTilesTest : public testing::TestWithParam<Shown>
{
protected:
    PictureInTilesTest()
    {
        initialiseSceneOnce();
        if (GetParam().ask)
            GetParam().ask(options);
        ReadReport report;
        scene = loadScene({std::string(SAMPLES_FOLDER) + "/" + GetParam().file}, options, report);
        EXPECT_NE(scene, nullptr) << report.error;
        scene->ref();
        if (GetParam().wireframe) {
            scene->toggleDrawStyle(false); // plain
            scene->toggleDrawStyle(false);
        }
    }
    ~PictureInTilesTest() override { scene->unref(); }

    QImage render(int samples, int samplesAtOnce)
    {
        const QString file = folder.filePath("picture.png");
        const std::string failure = writePicture(scene, {file.toStdString(),
                                                         301,
                                                         200,
                                                         samples,
                                                         {1, 1, 1},
                                                         options.transparent,
                                                         scene->settle(options.camera),
                                                         scene->getLegendRoom(),
                                                         DPI_OF_PIXELS,
                                                         samplesAtOnce});
        EXPECT_EQ(failure, "");
        return QImage(file).convertToFormat(QImage::Format_ARGB32);
    }

    QTemporaryDir folder;
    Options options;
    DataScene* scene = nullptr;
};

// Where an edge runs through a sample's middle it counts as the one side or the other by the
// last bit of its coordinates, which tiles round differently: of a thousand pixels that are
// covered at most two, all in all. A seam would change one at every edge of a tile.
TEST_P(PictureInTilesTest, IsThePictureThatIsRenderedWhole)
{
    const std::pair<int, int> divisions[] = {{1, 9000}, {3, 60000}}; // 7 tiles, 10 tiles
    for (const auto& [samples, samplesAtOnce] : divisions) {
        SCOPED_TRACE(samples);
        const QImage whole = render(samples, SAMPLES_AT_ONCE);
        const QImage tiled = render(samples, samplesAtOnce);
        ASSERT_EQ(tiled.size(), QSize(301, 200));
        const Compared compared = compare(whole, tiled);
        EXPECT_GT(compared.covered, 1500);
        EXPECT_LE(compared.differing, compared.covered / 500);
    }
}

INSTANTIATE_TEST_SUITE_P(, PictureInTilesTest,
                         testing::Values(Shown{"Rod", "trefoil.txt", nullptr},
                                         Shown{"RodInPerspective", "trefoil.txt",
                                               [](Options& o) { o.camera.perspective = true; }},
                                         Shown{"Wireframe", "elastica.txt",
                                               [](Options& o) {
                                                   o.subsegments = 1;
                                                   o.slices = 4;
                                               },
                                               true},
                                         Shown{"Legend", "helix.txt",
                                               [](Options& o) { o.colourBy = "curvature"; }},
                                         Shown{"LegendInPerspective", "supercoil.txt",
                                               [](Options& o) {
                                                   o.colourBy = "arclength";
                                                   o.camera.perspective = true;
                                               }},
                                         Shown{"Glyphs", "glyphs.json", nullptr},
                                         Shown{"GlyphsInPerspective", "glyphs.json",
                                               [](Options& o) { o.camera.perspective = true; }},
                                         Shown{"TransparentGlyphs", "glyphs.json",
                                               [](Options& o) { o.transparent = true; }},
                                         Shown{"Dna", "dna_bent.txt", nullptr},
                                         Shown{"Atoms", "dna_bent.txt",
                                               [](Options& o) {
                                                   o.dna.atoms = true;
                                                   o.dna.backbone = o.dna.bases = false;
                                               }},
                                         Shown{"AtomsOfFewPairsInPerspective", "minicircle.json",
                                               [](Options& o) {
                                                   o.dna.atoms = true;
                                                   o.camera.perspective = true;
                                                   o.camera.side = Side::X;
                                               }},
                                         Shown{"Boxes", "dna_bent.txt",
                                               [](Options& o) {
                                                   o.dna.bases = false;
                                                   o.dna.baseBoxes = true;
                                               }},
                                         Shown{"TransparentLegend", "helix.txt",
                                               [](Options& o) {
                                                   o.colourBy = "curvature";
                                                   o.transparent = true;
                                               }}),
                         [](const auto& test) { return test.param.name; });

TEST(Picture, OfAnyShapeIsRenderedInTiles)
{
    initialiseSceneOnce();
    ReadReport report;
    DataScene* scene = loadScene({std::string(SAMPLES_FOLDER) + "/rods.json"}, {}, report);
    ASSERT_NE(scene, nullptr) << report.error;
    scene->ref();
    QTemporaryDir folder;
    const QString file = folder.filePath("picture.png");
    const auto write = [&](const QSize& size, int samples, int samplesAtOnce) {
        EXPECT_EQ(writePicture(scene, {file.toStdString(),
                                       size.width(),
                                       size.height(),
                                       samples,
                                       {0, 0, 1},
                                       false,
                                       {},
                                       0,
                                       DPI_OF_PIXELS,
                                       samplesAtOnce}),
                  "");
        EXPECT_EQ(QImage(file).size(), size);
    };
    write({1, 1}, 8, 10); // a tile is a pixel at least
    write({80, 1}, 1, 30);
    write({1, 80}, 2, 30);
    write({12000, 2}, 3, SAMPLES_AT_ONCE); // wider than 16 bits of samples
    scene->unref();
}

// Of other scenes, sizes, samples, numbers of tiles and cameras.
TEST(Picture, IsTheSameWhateverItsWriterHasDrawnBefore)
{
    initialiseSceneOnce();
    std::vector<DataScene*> scenes;
    for (const char* name : {"trefoil.txt", "glyphs.json", "dna_bent.txt"}) {
        ReadReport report;
        scenes.push_back(loadScene({std::string(SAMPLES_FOLDER) + "/" + name}, {}, report));
        ASSERT_NE(scenes.back(), nullptr) << report.error;
        scenes.back()->ref();
    }
    struct Change
    {
        std::size_t scene;
        int width, samples, samplesAtOnce;
        bool transparent, perspective;
    };
    const Change changes[] = {{0, 90, 1, SAMPLES_AT_ONCE, false, false},
                              {0, 90, 1, SAMPLES_AT_ONCE, false, true},
                              {1, 90, 3, SAMPLES_AT_ONCE, false, true},
                              {1, 90, 3, SAMPLES_AT_ONCE, true, true},
                              {2, 70, 1, 1000, false, false},
                              {2, 70, 1, 1000, false, true},
                              {0, 90, 1, SAMPLES_AT_ONCE, false, false}};
    PictureWriter writer;
    for (const Change& change : changes) {
        DataScene* scene = scenes[change.scene];
        CameraRequest camera;
        camera.perspective = change.perspective;
        const Picture picture{"",
                              change.width,
                              60,
                              change.samples,
                              {1, 1, 1},
                              change.transparent,
                              scene->settle(camera),
                              scene->getLegendRoom(),
                              DPI_OF_PIXELS,
                              change.samplesAtOnce};
        QImage after, alone;
        EXPECT_EQ(writer.draw(scene, picture, after), "");
        EXPECT_EQ(PictureWriter().draw(scene, picture, alone), "");
        EXPECT_EQ(after, alone);
    }
    for (DataScene* scene : scenes)
        scene->unref();
}

TEST(Picture, IsTheSameWhenOthersDrawBetweenItsTiles)
{
    initialiseSceneOnce();
    ReadReport report;
    DataScene* scene = loadScene({std::string(SAMPLES_FOLDER) + "/trefoil.txt"}, {}, report);
    ASSERT_NE(scene, nullptr) << report.error;
    scene->ref();
    auto* other = new SoSeparator;
    other->ref();
    other->addChild(new SoCube);
    const Picture picture{"",  90, 60, 2, {1, 1, 1}, false, scene->settle({}), 0, DPI_OF_PIXELS,
                          6000};
    QImage alone, between;
    EXPECT_EQ(PictureWriter().draw(scene, picture, alone), "");
    std::vector<double> parts;
    const auto drawOther = [&](double done) {
        parts.push_back(done);
        TileRenderer tiles(SbViewportRegion(8, 8), 8, 8, {8, 8});
        return tiles.render(other, 0, 0, {0, 0, 0});
    };
    EXPECT_EQ(PictureWriter().draw(scene, picture, between, nullptr, drawOther), "");
    EXPECT_EQ(between, alone);
    EXPECT_GE(parts.size(), 3u);
    EXPECT_TRUE(std::is_sorted(parts.begin(), parts.end()));
    EXPECT_GT(parts.front(), 0);
    EXPECT_LT(parts.back(), 1);

    int asked = 0;
    const auto stop = [&asked](double /*done*/) { return ++asked < 2; };
    EXPECT_EQ(PictureWriter().draw(scene, picture, between, nullptr, stop), PICTURE_STOPPED);
    EXPECT_EQ(asked, 2);
    other->unref();
    scene->unref();
}

TEST(Picture, KeepsWhatASceneDropsBetweenItsTilesUntilItIsDrawn)
{
    initialiseSceneOnce();
    auto* scene = new SoGeneralScene;
    scene->ref();
    auto* group = new SoSeparator;
    scene->addChild(group);
    auto* lines = new SoDrawStyle;
    lines->lineWidth = 2;
    group->addChild(lines);
    group->addChild(new SoCube);
    bool isGone = false;
    SoNodeSensor sensor;
    sensor.setDeleteCallback([](void* gone, SoSensor*) { *static_cast<bool*>(gone) = true; },
                             &isGone);
    sensor.attach(lines);
    const Picture picture{"", 90, 60, 2, {1, 1, 1}, false, CameraRequest(), 0, DPI_OF_PIXELS, 6000};
    bool wasGone = false;
    const auto drop = [&](double /*done*/) {
        group->removeAllChildren();
        wasGone = isGone;
        return false;
    };
    QImage image;
    EXPECT_EQ(PictureWriter().draw(scene, picture, image, nullptr, drop), PICTURE_STOPPED);
    EXPECT_FALSE(wasGone);
    EXPECT_TRUE(isGone);
    scene->unref();
}

TEST(Picture, ThatIsNotWantedAnyMoreLeavesNoFileAndTheOneThatWasThere)
{
    QTemporaryDir folder;
    QImage image(4, 3, QImage::Format_RGB888);
    image.fill(Qt::red);
    for (const char* name : {"picture.png", "picture.jpg", "picture.pdf"}) {
        const QString file = folder.filePath(name);
        EXPECT_EQ(saveImage(image, file.toStdString(), [] { return false; }), PICTURE_STOPPED);
        EXPECT_FALSE(QFileInfo::exists(file));
        EXPECT_EQ(saveImage(image, file.toStdString(), [] { return true; }), "");
        EXPECT_TRUE(QFileInfo::exists(file));
    }
}

// JPEG has whole numbers to the inch. Of TIFF where Qt can write it.
TEST(Picture, ItsFileTellsItsResolutionInEveryFormatThatCan)
{
    initialiseSceneOnce();
    QTemporaryDir folder;
    ReadReport report;
    DataScene* scene = loadScene({std::string(SAMPLES_FOLDER) + "/trefoil.txt"}, Options(), report);
    ASSERT_TRUE(scene) << report.error;
    scene->ref();
    for (const std::string& ending : std::vector<std::string>{"png", "jpg", "tif", "bmp"}) {
        const QString file = folder.filePath("picture.") + QString::fromStdString(ending);
        if (ending == "tif" && !checkPictureName("", file.toStdString(), false).empty())
            continue;
        for (const int dpi : {10, 100, 300, 1200, 10000}) {
            SCOPED_TRACE(ending + " " + std::to_string(dpi));
            const Picture picture{file.toStdString(), 8, 6,  1, {1, 1, 1}, false,
                                  scene->settle({}),  0, dpi};
            ASSERT_EQ(writePicture(scene, picture), "");
            const QImage read(file);
            EXPECT_NEAR(read.dotsPerMeterX(), dpi / 0.0254, 1);
            EXPECT_EQ(read.dotsPerMeterY(), read.dotsPerMeterX());
        }
    }
    scene->unref();
}

// As it is where a window system tells one of 96.
TEST(Picture, TheResolutionOfAScreenIsNotItsOwn)
{
    initialiseSceneOnce();
    ReadReport report;
    DataScene* scene = loadScene({std::string(SAMPLES_FOLDER) + "/trefoil.txt"}, Options(), report);
    ASSERT_TRUE(scene) << report.error;
    scene->ref();
    const Picture picture{"", 8, 6, 1, {1, 1, 1}, false, scene->settle({}), 0};
    for (const bool is96 : {true, false}) {
        QCoreApplication::setAttribute(Qt::AA_Use96Dpi, is96);
        QImage image;
        EXPECT_EQ(PictureWriter().draw(scene, picture, image), "");
        EXPECT_EQ(image.dotsPerMeterX(), 3937) << is96; // 100 per inch
        EXPECT_EQ(image.dotsPerMeterY(), 3937) << is96;
    }
    scene->unref();
}

// What adds its light to all that is behind it hides nothing in the other two channels.
TEST(Picture, WhatShinesInOneChannelAloneIsSeenWithoutTheBackground)
{
    initialiseSceneOnce();
    QTemporaryDir folder;
    const std::string file = folder.filePath("picture.png").toStdString();
    for (int channel = 0; channel < 3; ++channel) {
        SCOPED_TRACE(channel);
        auto* scene = new SoGeneralScene;
        scene->ref();
        auto* adding = new SoTransparencyType;
        adding->value = SoTransparencyType::ADD;
        auto* material = new SoMaterial;
        material->diffuseColor = SbColor(channel == 0, channel == 1, channel == 2);
        material->transparency = 0.5f;
        auto* group = new SoSeparator;
        group->addChild(adding);
        group->addChild(material);
        auto* square = new SoCube;
        square->depth = 0; // of its two sides, both are added
        group->addChild(square);
        scene->addSolid(group);
        EXPECT_EQ(writePicture(scene, {file, 40, 40, 1, {1, 1, 1}, true, {}, 0}), "");
        const QColor seen = QImage(QString::fromStdString(file)).pixelColor(20, 20);
        const int colours[] = {seen.red(), seen.green(), seen.blue()};
        EXPECT_GT(seen.alpha(), 120);
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(colours[i], i == channel ? 255 : 0) << i;
        scene->unref();
    }
}

} // namespace

} // namespace strandview
