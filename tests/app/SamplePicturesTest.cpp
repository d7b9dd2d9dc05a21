// SPDX-License-Identifier: GPL-3.0-or-later
// Every sample configuration looks as it did when somebody last looked at it.
#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include <QImage>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "support/keepPictures.h"
#include "support/runProgram.h"

namespace strandview {

namespace {

// Rasterisers differ by a pixel along edges: those pixels may differ, if they are few.
const int SAME_COLOUR = 24;      // of 255, per channel
const double FEW_PIXELS = 0.004; // of the picture; a tube moved by a pixel is twice that

int distance(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                     std::abs(qBlue(a) - qBlue(b))});
}

// As the picture of that name among those expected.
void expectLooksAs(const QString& name, std::vector<std::string> options, const std::string& sample)
{
    const QTemporaryDir folder;
    const QString actualFile = folder.filePath("actual.png");
    options.insert(options.end(), {"--render", actualFile.toStdString(), "--size", "320x240",
                                   std::string(SAMPLES_FOLDER) + "/" + sample});
    const ProgramRun run = runProgram(STRANDVIEW_PROGRAM, options);
    ASSERT_EQ(run.status, 0) << run.error;
    const QImage actual = QImage(actualFile).convertToFormat(QImage::Format_RGB32);
    const QImage expected = QImage(QString(EXPECTED_PICTURES) + "/" + name + ".png")
                                .convertToFormat(QImage::Format_RGB32);
    keepIfFailed(actual, expected);
    ASSERT_FALSE(expected.isNull());
    ASSERT_EQ(actual.size(), expected.size());

    int differing = 0;
    for (int y = 0; y < actual.height(); ++y) {
        for (int x = 0; x < actual.width(); ++x)
            differing += distance(actual.pixel(x, y), expected.pixel(x, y)) > SAME_COLOUR;
    }
    EXPECT_LE(differing, FEW_PIXELS * actual.width() * actual.height());
}

class SamplePicturesTest : public testing::TestWithParam<const char*>
{
};

TEST_P(SamplePicturesTest, LooksAsExpected)
{
    expectLooksAs(QString(GetParam()).section('.', 0, 0), {}, GetParam());
}

TEST(LegendPicturesTest, AtTheRightLooksAsExpected)
{
    expectLooksAs("legend_right",
                  {"--colour-by", "curvature", "--legend", "right", "--range", "0.5:1.2",
                   "--below-colour", "magenta", "--above-colour", "orange", "--legend-unit",
                   "nm⁻¹"},
                  "supercoil.txt");
}

INSTANTIATE_TEST_SUITE_P(, SamplePicturesTest,
                         testing::Values("arm.npz", "aster.txt", "dna.txt", "dna_bent.txt",
                                         "elastica.txt", "glyphs.json", "hairpin.dat", "helix.txt",
                                         "knot.vect", "minicircle.json", "pulled.xyz", "random.txt",
                                         "ring.par", "rods.json", "sticky_end.pdb", "supercoil.txt",
                                         "superhelix.bplist", "trefoil.txt"),
                         [](const auto& test) {
                             const std::string file = test.param;
                             return file.substr(0, file.find('.'));
                         });

} // namespace

} // namespace strandview
