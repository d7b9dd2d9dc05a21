// SPDX-License-Identifier: GPL-3.0-or-later
// Measurements in pictures, as a user of the command line has them.
#include "scene/MeasuredLine.h"

#include <array>
#include <fstream>

#include <QColor>
#include <QImage>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "session/sessionText.h"
#include "support/keepPictures.h"
#include "support/runProgram.h"

namespace strandview {

using testing::HasSubstr;
using testing::Not;

namespace {

bool isRed(const QColor& c) { return c.red() > c.green() + 30; }
bool isBlack(const QColor& c) { return c.value() < 10; }
bool isWhite(const QColor& c) { return c.red() > 245 && c.green() > 245 && c.blue() > 245; }

int count(const QImage& image, bool (*isSuch)(const QColor&))
{
    int found = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            found += isSuch(image.pixelColor(x, y));
    return found;
}

// Left, right, upper and lower end of such pixels.
std::array<int, 4> boxOf(const QImage& image, bool (*isSuch)(const QColor&))
{
    std::array<int, 4> box{image.width(), -1, image.height(), -1};
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (isSuch(image.pixelColor(x, y)))
                box = {std::min(box[0], x), std::max(box[1], x), std::min(box[2], y),
                       std::max(box[3], y)};
    return box;
}

class MeasuredPicture : public testing::Test
{
protected:
    // A straight rod along x, 8 units long, as frame 0; frame 1 has its first half alone, twice as
    // long.
    MeasuredPicture()
    {
        std::ofstream rod(path("rod.txt")), frames(path("frames.txt"));
        for (int i = 0; i <= 8; ++i) {
            rod << i - 2 << " 0.5 0\n";
            frames << i - 2 << " 0.5 0\n";
        }
        frames << "\n\n";
        for (int i = 0; i <= 4; ++i)
            frames << 2 * i - 2 << " 0.5 0\n";
    }
    std::string path(const std::string& name) const
    {
        return folder.filePath(name.c_str()).toStdString();
    }

    ProgramRun run(const std::vector<std::string>& options, const std::string& file) const
    {
        std::vector<std::string> arguments{"--no-defaults", "--view", "z",        "--no-ribbon",
                                           "--tube-colour", "red",    "--radius", "0.2",
                                           "--samples",     "1"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        arguments.push_back(path(file));
        return runProgram(STRANDVIEW_PROGRAM, arguments);
    }
    // The rod is red, the background white.
    QImage render(std::vector<std::string> options, const std::string& file = "rod.txt")
    {
        options.insert(options.end(), {"--render", path("picture.png")});
        const ProgramRun done = run(options, file);
        EXPECT_EQ(done.status, 0) << done.error;
        told = done.error;
        const QImage image(folder.filePath("picture.png"));
        keepIfFailed(image);
        return image;
    }
    static std::vector<std::string>
    measuring(const char* what, std::vector<std::string> options = {}, const char* size = "900x600")
    {
        options.insert(options.end(), {"--size", size, "--measure", what});
        return options;
    }

    QTemporaryDir folder;
    std::string told;
};

} // namespace

TEST_F(MeasuredPicture, HasALineFromPlaceToPlaceAtEverySize)
{
    for (const char* size : {"900x600", "1800x1200", "500x800"}) {
        SCOPED_TRACE(size);
        const QImage image =
            render({"--size", size, "--measure", "rod 1:1,rod 1:7", "--zoom", "0.8"});
        const auto rod = boxOf(image, isRed), ink = boxOf(image, isBlack);
        const double unit = (rod[1] - rod[0]) / 8;
        EXPECT_NEAR(ink[0], rod[0] + unit, 0.15 * unit);
        EXPECT_NEAR(ink[1], rod[1] - unit, 0.15 * unit);
        EXPECT_LT(ink[2], rod[2]) << "letters stand above";
        EXPECT_GT(count(image, isBlack), 200);
    }
    EXPECT_EQ(count(render({"--size", "900x600"}), isBlack), 0);
}

// Of which each is a part of the same view.
TEST_F(MeasuredPicture, IsTheSameInTiles)
{
    const auto ask = [](const char* size) {
        return std::vector<std::string>{"--size", size, "--measure", "rod 1:1,rod 1:7"};
    };
    const QImage small = render(ask("1500x400")), large = render(ask("6000x1600"));
    const auto ofSmall = boxOf(small, isBlack), ofLarge = boxOf(large, isBlack);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(ofLarge[i], 4 * ofSmall[i] + 2, 6) << i;
    const double inSmall = 16.0 * count(small, isBlack); // of which more are at edges
    EXPECT_NEAR(count(large, isBlack), inSmall, 0.3 * inSmall);
}

TEST_F(MeasuredPicture, IsWhiteOnBlack)
{
    const QImage image = render(measuring("rod 1:1,rod 1:7", {"--background", "black"}));
    EXPECT_GT(count(image, isWhite), 200);
    const QImage clear = render(measuring("rod 1:1,rod 1:7", {"--transparent"}));
    EXPECT_GT(count(clear.convertToFormat(QImage::Format_RGB888), isBlack), 200);
}

TEST_F(MeasuredPicture, HasItsValueAndItsName)
{
    const QImage distance = render(measuring("rod 1:1,rod 1:7"));
    EXPECT_EQ(distance, render(measuring("distance rod 1:1,rod 1:7")));
    EXPECT_EQ(distance, render(measuring("arc length rod 1:1,rod 1:7"))) << "of a straight rod";
    EXPECT_NE(distance, render(measuring("rotation rod 1:1,rod 1:7")));
    const auto named = boxOf(render(measuring("rod 1:1,rod 1:7 as the middle of it")), isBlack);
    const auto bare = boxOf(distance, isBlack);
    EXPECT_LT(named[2], bare[2] + 2);
    EXPECT_GT(count(render(measuring("rod 1:1,rod 1:7 as the middle of it")), isBlack),
              count(distance, isBlack) + 100);
}

// The text stands above the line, which is as long in both.
TEST_F(MeasuredPicture, HasAllOfATextWhoseLineIsAtTheBorder)
{
    const auto at = [this](double y) {
        const std::string centre = "2," + std::to_string(y) + ",0";
        return render(measuring("rod 1:3,rod 1:5 as whole", {"--zoom", "0.8", "--centre", centre},
                                "1800x1200"));
    };
    const QImage amid = at(0.5);
    const auto rod = boxOf(amid, isRed);
    const double unit = (rod[1] - rod[0]) / 8, height = amid.height() / unit;
    const QImage above = at(0.5 - 0.96 * height / 2);
    ASSERT_GT(count(amid, isBlack), 300);
    EXPECT_LT(boxOf(above, isBlack)[3], 160);
    EXPECT_NEAR(count(above, isBlack), count(amid, isBlack), 0.2 * count(amid, isBlack));
    const auto aside = [this](double x) {
        const std::string centre = std::to_string(x) + ",0.5,0";
        return render(measuring("rod 1:3,rod 1:5 as a text that is wider than its line",
                                {"--zoom", "0.8", "--centre", centre}, "1800x1200"));
    };
    const QImage middle = aside(2), left = aside(2 + 0.45 * amid.width() / unit);
    EXPECT_LT(boxOf(left, isBlack)[1], amid.width() / 2);
    EXPECT_NEAR(count(left, isBlack), count(middle, isBlack), 0.2 * count(middle, isBlack));
    const QImage beyond = at(0.5 - 2 * height);
    EXPECT_EQ(count(beyond, isBlack), 0) << "nothing of a line that is out of sight";
}

TEST_F(MeasuredPicture, LeavesOutWhatIsHiddenOrNotThere)
{
    const QImage none = render({"--size", "900x600"});
    const char* const what = "rod 1:1,rod 1:12";
    EXPECT_EQ(render(measuring(what)), none);
    EXPECT_THAT(told, HasSubstr("--measure 'distance rod 1:1,rod 1:12' has no effect"));
    for (const char* look : {"rod 1: hidden", "rod 1: deleted"}) {
        const std::vector<std::string> hidden{"--thing", look};
        EXPECT_EQ(count(render(measuring("rod 1:1,rod 1:7", hidden)), isBlack), 0) << look;
    }
}

TEST_F(MeasuredPicture, OfAFrameHasTheValueThere)
{
    const std::string pattern = path("frame%d.png");
    const auto series = [&](std::vector<std::string> options) {
        options.insert(options.end(), {"--size", "300x200", "--overwrite", "--render", pattern});
        const ProgramRun done = run(options, "frames.txt");
        EXPECT_EQ(done.status, 0) << done.error;
        return std::array{QImage(folder.filePath("frame0.png")),
                          QImage(folder.filePath("frame1.png"))};
    };
    const auto bare = series({});
    const auto both = series({"--measure", "rod 1:1,rod 1:4"});
    EXPECT_EQ(count(bare[0], isBlack), 0);
    EXPECT_GT(count(both[0], isBlack), 50);
    const auto first = boxOf(both[0], isBlack), second = boxOf(both[1], isBlack);
    EXPECT_GT(second[1] - second[0], 1.7 * (first[1] - first[0])) << "twice as long there";
    const auto one = series({"--measure", "rod 1:1,rod 1:7"});
    EXPECT_GT(count(one[0], isBlack), 50);
    EXPECT_EQ(one[1], bare[1]) << "the frame has no such point";
    const QImage alone =
        render({"--size", "300x200", "--frame", "1", "--measure", "rod 1:1,rod 1:4"}, "frames.txt");
    EXPECT_EQ(alone, both[1]);
}

TEST_F(MeasuredPicture, IsMadeAnewWhereAnotherThingIsMeasured)
{
    const std::string pattern = path("frame%d.png");
    const auto first = [&](const char* what) {
        const ProgramRun done =
            run({"--size", "300x200", "--measure", what, "--render", pattern}, "frames.txt");
        EXPECT_EQ(done.status, 0) << done.error;
        return QImage(folder.filePath("frame0.png"));
    };
    EXPECT_NE(first("rod 1:1,rod 1:2"), first("rod 1:1,rod 1:3"));
}

TEST_F(MeasuredPicture, TellsTheCommandThatMakesIt)
{
    const QImage image = render(measuring("angle rod 1:0,rod 1:2,rod 1:4 as it's"));
    EXPECT_THAT(image.text("Command").toStdString(),
                HasSubstr("--measure 'angle rod 1:0,rod 1:2,rod 1:4 as it'\\''s'"));
}

TEST_F(MeasuredPicture, OfASessionHasWhatWasKeptIfThatWasAskedFor)
{
    Session session;
    session.files = {{"rod.txt", 0, ""}};
    session.reading = {};
    session.measurements = {*parseMeasurement("rod 1:1,rod 1:7"),
                            *parseMeasurement("rod 1:1,rod 1:3")};
    session.measurements[0].name = "arm";
    session.measurements[1].isShown = false;
    const auto renderIt = [&](bool hasMeasurements, std::vector<std::string> options) {
        session.picture.hasMeasurements = hasMeasurements;
        std::ofstream(path("work.strandview")) << textOf(session);
        options.insert(options.end(), {"--size", "900x600"});
        return render(options, "work.strandview");
    };
    const QImage asked = render(measuring("rod 1:1,rod 1:7 as arm"));
    EXPECT_EQ(renderIt(true, {}), asked);
    EXPECT_EQ(count(renderIt(false, {}), isBlack), 0);
    EXPECT_EQ(renderIt(true, {"--measure", "rod 1:1,rod 1:4"}),
              render(measuring("rod 1:1,rod 1:4")));
    const ProgramRun told = runProgram(STRANDVIEW_PROGRAM, {"--info", path("work.strandview")});
    EXPECT_THAT(told.output, HasSubstr("distance rod 1:1,rod 1:7 as arm: 6\n"));
    EXPECT_THAT(told.output, HasSubstr("distance rod 1:1,rod 1:3: 2\n"));
}

TEST_F(MeasuredPicture, ValuesAreToldForPeopleAndScripts)
{
    const std::vector<std::string> asked{
        "--measure", "rod 1:1,rod 1:7 as arm", "--measure", "angle rod 1:0,rod 1:1,rod 1:2",
        "--measure", "rod 1:1,rod 2:1",        "--info",    path("rod.txt")};
    const ProgramRun words = runProgram(STRANDVIEW_PROGRAM, asked);
    EXPECT_EQ(words.status, 0) << words.error;
    EXPECT_THAT(words.output, HasSubstr("distance rod 1:1,rod 1:7 as arm: 6\n"
                                        "angle rod 1:0,rod 1:1,rod 1:2: 180°\n"
                                        "distance rod 1:1,rod 2:1: not here\n"));
    std::vector<std::string> forScripts = asked;
    forScripts.insert(forScripts.begin(), "--json");
    const auto json =
        nlohmann::json::parse(runProgram(STRANDVIEW_PROGRAM, forScripts).output)["measurements"];
    EXPECT_EQ(json, nlohmann::json::parse(R"([
        {"what": "distance rod 1:1,rod 1:7", "kind": "distance", "name": "arm", "value": 6.0,
         "unit": "length"},
        {"what": "angle rod 1:0,rod 1:1,rod 1:2", "kind": "angle", "name": null,
         "value": 180.0, "unit": "°"},
        {"what": "distance rod 1:1,rod 2:1", "kind": "distance", "name": null, "value": null,
         "unit": "length"}])"));
}

TEST_F(MeasuredPicture, OfDnaIsInAngstromWhateverTheUnitOfTheFile)
{
    const std::string file = std::string(SAMPLES_FOLDER) + "/ring.par";
    const auto valueIn = [&](std::vector<std::string> options) {
        options.insert(options.end(), {"--info", "--json", "--measure", "DNA 1:1,DNA 1:5", file});
        const ProgramRun done = runProgram(STRANDVIEW_PROGRAM, options);
        EXPECT_EQ(done.status, 0) << done.error;
        return nlohmann::json::parse(done.output)["measurements"][0];
    };
    const auto inAngstrom = valueIn({});
    EXPECT_EQ(inAngstrom["unit"], "Å");
    const auto inNanometres = valueIn({"--dna-unit", "nm"});
    EXPECT_EQ(inNanometres["unit"], "Å");
    EXPECT_NEAR(double(inNanometres["value"]), 10 * double(inAngstrom["value"]), 1e-9);
}

TEST_F(MeasuredPicture, ThatNobodyUnderstandsIsRefusedInOneLine)
{
    for (const char* what :
         {"", "rod 1:1", "rod 1:1,nothing 2", "angle rod 1:1,rod 1:2", "rod 1:1,rod 1:2 as "}) {
        const ProgramRun done = run({"--measure", what, "--info"}, "rod.txt");
        EXPECT_EQ(done.status, 2) << what;
        EXPECT_THAT(done.error, HasSubstr("--measure: found '" + std::string(what) +
                                          "', expected places with commas between them"));
        EXPECT_EQ(done.error.find('\n'), done.error.size() - 1) << done.error;
    }
}

TEST_F(MeasuredPicture, OfAClippedRodIsWhole)
{
    const auto whole = boxOf(render(measuring("rod 1:1,rod 1:7")), isBlack);
    const QImage cut = render(measuring("rod 1:1,rod 1:7", {"--clip", "x:2"}));
    EXPECT_EQ(boxOf(cut, isBlack), whole);
}

} // namespace strandview
