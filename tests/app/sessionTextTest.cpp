// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/sessionText.h"

#include <cmath>
#include <random>

#include <gmock/gmock.h>

#include "request/settings.h"

namespace strandview {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

std::string faultOf(const std::string& text)
{
    std::string fault;
    EXPECT_FALSE(parseSession(text, fault)) << text;
    return fault;
}

Session readBack(const Session& session)
{
    std::string fault;
    const std::optional<Session> read = parseSession(textOf(session), fault);
    EXPECT_TRUE(read) << fault;
    return read.value_or(Session());
}

const std::string CAMERA = "orthographic,2.2660384,-1.7460601,3.0243015,0.25,0.25,0.0669873,"
                           "0.93301266,4.0323534,6.095605";

Session ofOneFile()
{
    Session session;
    session.files = {{"a \"rod\" \xc3\xa4.txt", 120, "5891b5"}};
    return session;
}

// A text around some entries.
std::string around(const std::string& entries)
{
    return R"({"strandview session": 1, "files": [{"name": "rod.txt"}])" + entries + "}";
}

} // namespace

TEST(SessionText, BringsBackAllThatWasSaid)
{
    Session session = ofOneFile();
    session.files.push_back({"other.txt", 0, ""});
    session.reading = {"--closed", "--frame-rows", "3"};
    session.style.radius = 0.1;
    session.style.showTube = false;
    session.style.compare = "first";
    session.areColoursShown = false;
    session.camera = parseCamera(CAMERA);
    ASSERT_TRUE(session.camera);
    session.frame = 12;
    session.pictureSize = {1200, 900};
    session.measurements = {*parseMeasurement("rod 1:10,rod 1:40"),
                            *parseMeasurement("angle rod 1:0.1,point at 0.1 2 1e-9,marker 3")};
    session.measurements[1].name = "a \"bend\"";
    session.measurements[1].isShown = false;
    session.views = {{"front", *session.camera}, {"the \u00e4nd", *session.camera}};
    session.views[1].camera.size = 0.3F;
    session.beside = {{"other/rod.txt", "same", "first"}, false};
    session.beside.cameras = {BesideCamera{*session.camera}, std::nullopt,
                              BesideCamera{session.views[1].camera}};
    session.picture.size = {1, 1, parsePaperSize("85.5x60mm"), 600, 2, true};
    session.picture.isOfView = session.picture.keepsShape = false;
    session.picture.hasMeasurements = true;
    session.picture.settings = {{"background", "#000000"}, {"legend", "off"}};

    const Session read = readBack(session);
    ASSERT_EQ(read.files.size(), 2U);
    EXPECT_EQ(read.files[0].name, session.files[0].name);
    EXPECT_EQ(read.files[0].bytes, 120U);
    EXPECT_EQ(read.files[0].digest, "5891b5");
    EXPECT_EQ(read.files[1].digest, "");
    EXPECT_EQ(read.reading, session.reading);
    EXPECT_TRUE(read.style == session.style);
    EXPECT_FALSE(read.areColoursShown);
    ASSERT_TRUE(read.camera);
    EXPECT_EQ(*read.camera, *session.camera);
    EXPECT_EQ(read.frame, 12U);
    EXPECT_EQ(read.pictureSize, session.pictureSize);
    EXPECT_EQ(read.measurements, session.measurements);
    EXPECT_EQ(read.views, session.views);
    EXPECT_TRUE(read.beside == session.beside);
    session.picture.size.width = 2020; // 600 to the inch of the paper
    session.picture.size.height = 1417;
    EXPECT_TRUE(read.picture == session.picture);
    session.picture.size.paper.reset();
    EXPECT_TRUE(readBack(session).picture == session.picture);
}

TEST(SessionText, LeavesOpenWhatWasNotSaid)
{
    const Session read = readBack(ofOneFile());
    EXPECT_TRUE(read.style == StyleRequest());
    EXPECT_TRUE(read.areColoursShown);
    EXPECT_FALSE(read.camera);
    EXPECT_FALSE(read.frame);
    EXPECT_FALSE(read.pictureSize);
    EXPECT_TRUE(read.picture == PictureChoice());
    EXPECT_TRUE(read.measurements.empty());
    EXPECT_TRUE(read.views.empty());
    EXPECT_TRUE(read.beside.what.empty());
}

TEST(SessionText, NamesTheOnlyFurtherViewWithoutAList)
{
    std::string fault;
    const auto read =
        parseSession(around(R"(, "beside": {"what": "other/rod.txt", "tied": true})"), fault);
    ASSERT_TRUE(read) << fault;
    EXPECT_TRUE(read->beside == besideOf({"other/rod.txt"}));
}

TEST(SessionText, SaysNothingOfCamerasThatAreAllLeftOpen)
{
    Session session = ofOneFile();
    session.beside = {{"same", "same"}, false, {std::nullopt, std::nullopt}};
    EXPECT_THAT(textOf(session), Not(HasSubstr("camera")));
    EXPECT_TRUE(readBack(session).beside == besideOf({"same", "same"}));
}

TEST(SessionText, KeepsLengthsToTheLastBit)
{
    std::mt19937 random(20261123);
    std::uniform_real_distribution<double> exponents(-12, 12);
    for (int i = 0; i < 200; ++i) {
        Session session = ofOneFile();
        session.style.radius = std::pow(10, exponents(random));
        EXPECT_EQ(readBack(session).style.radius, session.style.radius);
    }
}

TEST(SessionText, RefusesWhatIsNoSessionInOneLineThatSaysWhere)
{
    EXPECT_EQ(faultOf(""), "line 1: found the end, expected a session");
    EXPECT_EQ(faultOf("{\n\n!}"), "line 3: found what is no JSON, expected a session");
    EXPECT_EQ(faultOf("[]"), "found [], expected an object {...}");
    EXPECT_EQ(faultOf("{}"), "found no entry \"strandview session\", expected a session");
    EXPECT_THAT(faultOf(R"({"strandview session": 2})"),
                HasSubstr("strandview session: found 2, expected 1"));
    EXPECT_EQ(faultOf(R"({"strandview session": 1})"), "found no files, expected at least one");
    EXPECT_THAT(faultOf(around(R"(, "colour": 1)")),
                HasSubstr("found the entry 'colour', expected"));
    EXPECT_EQ(faultOf(around(R"(, "camera": "x")")).substr(0, 20), "camera: found \"x\", e");
    EXPECT_EQ(faultOf(around(R"(, "frame": -1)")),
              "frame: found -1, expected a whole number from 0 on");
    EXPECT_EQ(faultOf(around(R"(, "frame": 2147483648)")),
              "frame: found 2147483648, expected a whole number up to 2147483647");
    EXPECT_EQ(faultOf(around(R"(, "size": [0, 1])")),
              "size: found [0,1], expected width and height in pixels, " + wordsOfPictureSize());
    EXPECT_THAT(faultOf(around(R"(, "size": [32767, 32767])")), StartsWith("size: found [32767"));
    EXPECT_EQ(faultOf(around(R"(, "style": {"radius": "-1"})")),
              "style, radius: found '-1', expected a length above 0");
    EXPECT_EQ(faultOf(around(R"(, "style": {"radius": 1})")),
              "style, radius: found 1, expected a text");
    EXPECT_THAT(faultOf(around(R"(, "style": {"colour": "red"})")),
                StartsWith("style: found the setting 'colour', expected"));
    EXPECT_EQ(
        faultOf(around(R"(, "measurements": [{"what": "rod"}])")),
        "measurements 1, what: found \"rod\", expected what is measured between which places");
    EXPECT_EQ(faultOf(around(R"(, "measurements": [{"name": "x"}])")),
              "measurements 1: found {\"name\":\"x\"}, expected \"what\" is measured");
    EXPECT_EQ(faultOf(around(R"(, "views": [{"name": "x"}])")),
              "views 1: found {\"name\":\"x\"}, expected a view with its \"name\" and \"camera\"");
    EXPECT_THAT(faultOf(around(R"(, "picture": {"size": "0x5"})")),
                StartsWith("picture, size: found \"0x5\", expected WxH or, in millimetres"));
    EXPECT_THAT(faultOf(around(R"(, "picture": {"size": "1e6x1e6mm"})")),
                StartsWith("picture, size: found \"1e6x1e6mm\", expected millimetres that are, at "
                           "300 dpi, sides from 1 to"));
    EXPECT_THAT(faultOf(around(R"(, "picture": {"size": "85x60mm", "dpi": 10000})")),
                HasSubstr("at 10000 dpi"));
    EXPECT_EQ(faultOf(around(R"(, "picture": {"samples": 99})")),
              "picture, samples: found 99, expected a whole number from 1 to 8");
    EXPECT_EQ(faultOf(around(R"(, "picture": {"style": {"radius": "1"}})")),
              "picture, style: found \"radius\", expected a setting that a picture has of its own");
    EXPECT_EQ(faultOf(around(R"(, "views": [{"name": "x", "camera": ")" + CAMERA +
                             R"("}, {"name": "x", "camera": ")" + CAMERA + R"("}])")),
              "views: found two of the name 'x', expected one of each");
    EXPECT_EQ(faultOf(around(R"(, "beside": {"tied": true})")),
              "beside: found {\"tied\":true}, expected \"what\" is beside, up to 3 of them");
    EXPECT_EQ(faultOf(around(R"(, "beside": {"what": [""]})")),
              "beside: found {\"what\":[\"\"]}, expected \"what\" is beside, up to 3 of them");
    EXPECT_EQ(faultOf(around(R"(, "beside": {"what": ["a", "b", "c", "d"]})")),
              "beside: found {\"what\":[\"a\",\"b\",\"c\",\"d\"]}, expected \"what\" is beside, "
              "up to 3 of them");
    EXPECT_EQ(faultOf(around(R"(, "beside": {"what": ["a", 1]})")),
              "beside, what 2: found 1, expected a text");
    const auto faultOfCameras = [&](const std::string& cameras) {
        return faultOf(around(R"(, "beside": {"what": ["a", "b"], "tied": false, "cameras": )" +
                              cameras + "}"));
    };
    EXPECT_THAT(faultOfCameras(R"([null, "orthographic,1"])"),
                StartsWith("beside, cameras 2: found \"orthographic,1\", expected "));
    EXPECT_THAT(faultOfCameras("[null, 1]"),
                StartsWith("beside, cameras 2: found 1, expected a text"));
    EXPECT_EQ(faultOfCameras("[null]"),
              "beside, cameras: found [null], expected a camera, or null, for each of \"what\"");
    EXPECT_EQ(faultOfCameras("{}"), "beside, cameras: found {}, expected a list [...]");
    EXPECT_EQ(faultOf(R"({"strandview session": 1, "files": [{"name": "-"}]})"),
              "files 1: found {\"name\":\"-\"}, expected the name of a file");
    EXPECT_EQ(faultOf(R"({"strandview session": 1, "files": "rod.txt"})"),
              "files: found \"rod.txt\", expected a list [...]");
}

TEST(SessionText, RefusesListsWithinListsHoweverDeepTheyAre)
{
    const std::string deep = std::string(200'000, '[') + std::string(200'000, ']');
    EXPECT_EQ(faultOf(around(", \"camera\": " + deep)),
              "found lists within lists, expected a session");
}

TEST(SessionText, RefusesAnyCutOfASessionWithoutACrash)
{
    Session session = ofOneFile();
    session.style.radius = 0.1;
    session.frame = 3;
    const std::string text = textOf(session);
    const std::size_t end = text.find_last_of('}');
    for (std::size_t length = 0; length <= end; ++length)
        EXPECT_THAT(faultOf(text.substr(0, length)), StartsWith("line "));
}

TEST(SessionText, TakesAnyCharacterAsAnotherOneOrRefusesItInOneLine)
{
    Session session = ofOneFile();
    session.style.radius = 0.1;
    const std::string text = textOf(session);
    std::mt19937 random(20261123);
    for (int i = 0; i < 2000; ++i) {
        std::string damaged = text;
        damaged[random() % damaged.size()] = char(random() % 256);
        std::string fault;
        const bool isRead = parseSession(damaged, fault).has_value();
        EXPECT_EQ(fault.empty(), isRead);
        EXPECT_EQ(fault.find('\n'), std::string::npos) << fault;
    }
}

} // namespace strandview
