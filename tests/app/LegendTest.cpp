// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Legend.h"

#include <array>
#include <cmath>
#include <random>
#include <set>
#include <tuple>
#include <utility>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/nodes/SoFaceSet.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoShape.h>
#include <gmock/gmock.h>

#include "request/limits.h"
#include "scene/Colouring.h"
#include "scene/SoLegendCamera.h"
#include "scene/Ticks.h"
#include "scene/overlay.h"
#include "support/graph.h"
#include "support/initialiseSceneOnce.h"

namespace strandview {

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

Colouring colouring(double min, double max, const std::string& name = "k")
{
    Colouring made;
    made.name = name;
    made.ramp = ColourMapper(0, 1);
    made.min = min;
    made.max = max;
    return made;
}

std::vector<std::string> textsOf(const Colouring& shown, float textSize = LEGEND_TEXT_SIZE,
                                 const LegendLook& look = {})
{
    std::vector<std::string> texts;
    for (const LegendText& text : layOutLegend(shown, textSize, look))
        texts.push_back(text.text);
    return texts;
}

void expectApart(const Colouring& shown, float textSize = LEGEND_TEXT_SIZE,
                 const LegendLook& look = {})
{
    const std::vector<LegendText> texts = layOutLegend(shown, textSize, look);
    for (std::size_t i = 0; i < texts.size(); ++i) {
        SCOPED_TRACE(texts[i].text);
        EXPECT_GT(texts[i].width, 0);
        EXPECT_LE(std::abs(texts[i].x) + texts[i].width / 2, 1) << "in every view";
        for (std::size_t j = 0; j < i; ++j) {
            if (texts[i].y != texts[j].y)
                continue;
            EXPECT_GT(std::abs(texts[i].x - texts[j].x),
                      (texts[i].width + texts[j].width) / 2 + 0.02f)
                << texts[j].text;
        }
    }
}

// Limits of any size from 1e-MOST to 1eMOST, as near to each other or as far apart as that allows.
class RandomRanges
{
public:
    RandomRanges(unsigned seed, double most) : engine(seed), exponent(-most, most) {}

    std::pair<double, double> next()
    {
        const double min = digit(engine) * std::pow(10, exponent(engine));
        return {min, min + std::abs(min) * std::pow(10, exponent(engine) / 3)};
    }

private:
    std::mt19937 engine;
    std::uniform_real_distribution<double> digit{-9.99, 9.99}, exponent;
};

TEST(Legend, WritesTheNameAndARoundNumberPerTick)
{
    EXPECT_THAT(textsOf(colouring(0, 1, "κ_β²")),
                ElementsAre("κ_β²", "0.0", "0.2", "0.4", "0.6", "0.8", "1.0"));
    EXPECT_THAT(textsOf(colouring(0, 2500000)),
                ElementsAre("k", "×10⁶", "0.0", "0.5", "1.0", "1.5", "2.0", "2.5"));
}

TEST(Legend, WritesTheUnitBehindTheNameWhereItIsKnown)
{
    Colouring shown = colouring(0, 1, "roll");
    shown.unit = "°";
    EXPECT_EQ(textsOf(shown).front(), "roll (°)");
    shown.name = std::string(400, 'W');
    EXPECT_THAT(textsOf(shown).front(), testing::EndsWith("… (°)"));
}

TEST(Legend, OfAConstantHasOneNumber)
{
    Colouring shown = colouring(0, 1);
    shown.constant = "0.3";
    EXPECT_THAT(textsOf(shown), ElementsAre("k", "0.3"));
}

TEST(Legend, SaysWhatTheGreyPatchIs)
{
    Colouring shown = colouring(0, 1);
    shown.isMissing = true;
    EXPECT_EQ(textsOf(shown).back(), "no value");
    expectApart(shown);
}

TEST(Legend, ItsTextsNeverMeet)
{
    RandomRanges ranges(12, 30);
    for (int i = 0; i < 60; ++i) {
        const auto [min, max] = ranges.next();
        if (!isRange(min, max))
            continue;
        SCOPED_TRACE(testing::Message() << min << " to " << max);
        Colouring shown = colouring(min, max, std::string(std::size_t(5 * i + 1), 'W'));
        shown.isMissing = i % 2;
        shown.unit = i % 5 ? "" : "Å⁻¹";
        expectApart(shown, i % 3 == 0 ? LARGEST_LEGEND_TEXT_SIZE : LEGEND_TEXT_SIZE);
    }
}

std::vector<std::string> textsIn(const std::string& format, const Colouring& shown)
{
    LegendLook look;
    look.format = *parseNumberFormat(format);
    return textsOf(shown, LEGEND_TEXT_SIZE, look);
}

TEST(Legend, WritesTheTitleAndTheUnitThatItIsTold)
{
    Colouring shown = colouring(0, 1, "roll");
    shown.unit = "°";
    LegendLook look;
    const auto title = [&] { return textsOf(shown, LEGEND_TEXT_SIZE, look).front(); };
    look.title = "Krümmung κ_β²";
    EXPECT_EQ(title(), "Krümmung κ_β² (°)");
    look.unit = "1/µm";
    EXPECT_EQ(title(), "Krümmung κ_β² (1/µm)");
    look.unit = "";
    EXPECT_EQ(title(), "Krümmung κ_β²");
    look.title.reset();
    EXPECT_EQ(title(), "roll");
    look.unit = "rad";
    EXPECT_EQ(title(), "roll (rad)");
    look.title = "";
    EXPECT_EQ(title(), "rad");
}

TEST(Legend, ALongTitleOrUnitLosesItsEndAndHasRoom)
{
    const std::string longText = "Curvature of the centreline, times the contour length, of all "
                                 "frames of this rather long trajectory";
    LegendLook look;
    look.title = longText;
    look.unit = "Å";
    for (const float size : {LEGEND_TEXT_SIZE, LARGEST_LEGEND_TEXT_SIZE}) {
        for (const Colouring& shown : {colouring(0, 1), colouring(0, 2500000)}) {
            expectApart(shown, size, look);
            const std::string title = textsOf(shown, size, look).front();
            EXPECT_EQ(title.rfind("Curvature of", 0), 0u) << title;
            EXPECT_THAT(title, testing::EndsWith("… (Å)"));
        }
    }
    look.unit = longText;
    expectApart(colouring(0, 1), LEGEND_TEXT_SIZE, look);
    EXPECT_THAT(textsOf(colouring(0, 1), LEGEND_TEXT_SIZE, look).front(),
                testing::AllOf(HasSubstr("Curvature of the"), HasSubstr("… (Curvature"),
                               testing::EndsWith("…)")));
}

TEST(Legend, WritesNumbersAsItIsAskedTo)
{
    EXPECT_THAT(textsIn(".2f", colouring(-1, 1)),
                ElementsAre("k", "\u22121.00", "\u22120.50", "0.00", "0.50", "1.00"));
    EXPECT_THAT(textsIn(".1e", colouring(0, 2500000)),
                ElementsAre("k", "0.0e+00", "5.0e+05", "1.0e+06", "1.5e+06", "2.0e+06", "2.5e+06"));
    EXPECT_THAT(textsIn(".0f", colouring(0, 2500000)),
                ElementsAre("k", "0", "500000", "1000000", "1500000", "2000000", "2500000"));
    EXPECT_THAT(textsIn(".3g", colouring(0, 0.4)),
                ElementsAre("k", "0", "0.1", "0.2", "0.3", "0.4"));
    Colouring constant = colouring(0, 1);
    constant.constant = "0.3";
    constant.constantMin = constant.constantMax = 0.3;
    EXPECT_THAT(textsIn(".2f", constant), ElementsAre("k", "0.30"));
    constant.constant = "0";
    constant.constantMin = constant.constantMax = 1e-17;
    EXPECT_THAT(textsIn(".1e", constant), ElementsAre("k", "0.0e+00"));
}

// A number that is rounded would be beside its tick.
TEST(Legend, HasNumbersWhereTheyAreExactInTheFormat)
{
    EXPECT_THAT(textsIn(".0f", colouring(0, 1)), ElementsAre("k", "0", "1"));
    EXPECT_THAT(textsIn(".1f", colouring(0, 0.3)), ElementsAre("k", "0.0", "0.1", "0.2", "0.3"));
}

TEST(Legend, WritesNumbersAsSuitsThemWhereTheFormatHasNoneOrNoRoom)
{
    for (const char* format : {".0f", ".2f"})
        EXPECT_EQ(textsIn(format, colouring(1e-4, 9e-4)), textsOf(colouring(1e-4, 9e-4)));
    EXPECT_EQ(textsIn(".15f", colouring(0, 1e30)), textsOf(colouring(0, 1e30)));
    Colouring constant = colouring(0, 1);
    constant.constant = "1×10⁸⁰";
    constant.constantMin = constant.constantMax = 1e80;
    EXPECT_EQ(textsIn(".0f", constant), textsOf(constant));
}

TEST(Legend, InAnyFormatItsNumbersNeverMeet)
{
    RandomRanges ranges(3, 12);
    for (int i = 0; i < 60; ++i) {
        const auto [min, max] = ranges.next();
        if (!isRange(min, max))
            continue;
        LegendLook look;
        look.format.notation = std::array{NumberFormat::DECIMALS, NumberFormat::SCIENTIFIC,
                                          NumberFormat::SHORTER}[std::size_t(i) % 3];
        look.format.digits = i % 16;
        SCOPED_TRACE(testing::Message() << min << " to " << max << formatOf(look.format));
        Colouring shown = colouring(min, max, std::string(std::size_t(5 * i + 1), 'W'));
        shown.isMissing = i % 2;
        expectApart(shown, i % 4 == 0 ? LARGEST_LEGEND_TEXT_SIZE : LEGEND_TEXT_SIZE, look);
    }
}

TEST(Legend, AtTheTopIsTheSameMovedUpByWhatIsLeftOfTheView)
{
    const Colouring shown = colouring(0, 1);
    LegendLook look;
    const std::vector<LegendText> below = layOutLegend(shown, LEGEND_TEXT_SIZE, look);
    look.place = LegendPlace::TOP;
    const std::vector<LegendText> above = layOutLegend(shown, LEGEND_TEXT_SIZE, look);
    ASSERT_EQ(above.size(), below.size());
    for (std::size_t i = 0; i < above.size(); ++i) {
        EXPECT_EQ(above[i].text, below[i].text);
        EXPECT_EQ(above[i].x, below[i].x);
        EXPECT_FLOAT_EQ(above[i].y - below[i].y, 2 - 2 * LEGEND_HEIGHT);
    }
    EXPECT_EQ(roomOf(LegendPlace::TOP), FreeEdges(0, LEGEND_HEIGHT));
    EXPECT_EQ(roomOf(LegendPlace::BOTTOM), FreeEdges(LEGEND_HEIGHT, 0));
    EXPECT_EQ(roomOf(LegendPlace::OFF), FreeEdges());
}

// Left, right, lower and upper end of a text, as large as its letters may be.
std::array<float, 4> boxOf(const LegendText& text, float size)
{
    const float below = 0.25f * size, above = 0.8f * size;
    if (text.isUpright)
        return {text.x - above, text.x + below, text.y - text.width / 2, text.y + text.width / 2};
    return {text.x - text.width / 2, text.x + text.width / 2, text.y - below, text.y + above};
}

const LegendPlace SIDES_OF_VIEW[] = {LegendPlace::LEFT, LegendPlace::RIGHT};

// Of the room there, none over another.
void expectBesideTheData(const Colouring& shown, float size, LegendLook look)
{
    for (const LegendPlace place : SIDES_OF_VIEW) {
        look.place = place;
        const FreeEdges room = roomOf(place, size);
        const std::vector<LegendText> texts = layOutLegend(shown, size, look);
        for (std::size_t i = 0; i < texts.size(); ++i) {
            SCOPED_TRACE(texts[i].text);
            const auto [left, right, low, high] = boxOf(texts[i], size);
            EXPECT_GE(left, place == LegendPlace::LEFT ? -1 : 1 - 2 * room.right);
            EXPECT_LE(right, place == LegendPlace::RIGHT ? 1 : -1 + 2 * room.left);
            EXPECT_GE(low, -0.9f);
            EXPECT_LE(high, 0.9f) << "the corner is for a stamp";
            for (std::size_t j = 0; j < i; ++j) {
                const auto other = boxOf(texts[j], size);
                EXPECT_TRUE(right < other[0] || other[1] < left || high < other[2] ||
                            other[3] < low)
                    << texts[j].text;
            }
        }
    }
}

TEST(Legend, AtASideHasNumbersBesideTheBarAndAnUprightTitle)
{
    Colouring shown = colouring(0, 2500000, "load");
    shown.unit = "N";
    LegendLook look;
    for (const LegendPlace place : SIDES_OF_VIEW) {
        look.place = place;
        const std::vector<LegendText> texts = layOutLegend(shown, LEGEND_TEXT_SIZE, look);
        const float outwards = place == LegendPlace::RIGHT ? 1 : -1;
        std::vector<std::string> words;
        float inner = 0; // of the numbers
        for (const LegendText& text : texts) {
            words.push_back(text.text);
            const bool isNumber = words.size() > 2;
            EXPECT_EQ(text.isUpright, !isNumber);
            EXPECT_GT(outwards * text.x, 0.5f);
            if (words.size() == 3)
                inner = text.x - outwards * text.width / 2;
            if (isNumber) {
                EXPECT_NEAR(text.x - outwards * text.width / 2, inner, 1e-6) << "in a column";
            }
        }
        EXPECT_THAT(words,
                    ElementsAre("load (N)", "×10⁶", "0.0", "0.5", "1.0", "1.5", "2.0", "2.5"));
        EXPECT_LT(texts[2].y, texts[7].y) << "upwards";
        EXPECT_GT(outwards * texts[0].x, outwards * texts[7].x) << "the title is outside";
    }
}

TEST(Legend, AtASideItsTextsHaveRoomAndNeverMeet)
{
    RandomRanges ranges(21, 30);
    for (int i = 0; i < 90; ++i) {
        const auto [min, max] = ranges.next();
        if (!isRange(min, max))
            continue;
        SCOPED_TRACE(testing::Message() << min << " to " << max);
        Colouring shown = colouring(min, max, std::string(std::size_t(5 * i + 1), 'W'));
        shown.isMissing = i % 2;
        shown.unit = i % 5 ? "" : "Å⁻¹";
        LegendLook look;
        if (i % 3 == 0) {
            look.format.notation = i % 2 ? NumberFormat::DECIMALS : NumberFormat::SCIENTIFIC;
            look.format.digits = i % 16;
        }
        expectBesideTheData(shown, i % 4 == 0 ? LARGEST_LEGEND_TEXT_SIZE : LEGEND_TEXT_SIZE, look);
    }
    for (const char* number : {"0.3", "−1.23456789×10⁻¹⁰⁰"}) {
        Colouring constant = colouring(0, 1);
        constant.constant = number;
        expectBesideTheData(constant, LEGEND_TEXT_SIZE, {});
        expectBesideTheData(constant, LARGEST_LEGEND_TEXT_SIZE, {});
    }
}

TEST(Legend, ALongTitleHasTheLengthOfTheBorder)
{
    LegendLook look;
    look.title = "Curvature of the centreline, times the contour length, of all frames of this";
    look.unit = "1";
    for (const LegendPlace place : {LegendPlace::BOTTOM, LegendPlace::TOP, LegendPlace::RIGHT}) {
        look.place = place;
        std::size_t before = 0;
        for (const float stretch : {1.0f, 1.25f, 1.5f, 2.0f}) {
            const LegendText title =
                layOutLegend(colouring(0, 1), LEGEND_TEXT_SIZE, look, stretch).front();
            EXPECT_GT(title.text.size(), before);
            EXPECT_LE(title.width, 2 * stretch - 0.1f);
            before = title.text == *look.title + " (1)" ? title.text.size() - 1 : title.text.size();
        }
        EXPECT_EQ(before + 1, look.title->size() + 4) << "all of it";
    }
}

// y from the middle of the lower border to that of the upper one.
std::pair<float, float> bordersOf(const SoLegendCamera& camera, float aspect)
{
    SbViewVolume volume = camera.getViewVolume(aspect);
    if (aspect < 1)
        volume.scale(1 / aspect); // as Coin does, so that all of the width is seen
    SbVec3f near, far;
    std::pair<float, float> borders;
    volume.projectPointToLine(SbVec2f(0.5f, 0), near, far);
    borders.first = near[1];
    volume.projectPointToLine(SbVec2f(0.5f, 1), near, far);
    borders.second = near[1];
    return borders;
}

TEST(Legend, AtTheTopIsSeenInAViewThatEndsThere)
{
    initialiseSceneOnce();
    SoSeparator* overlay = makeOverlay();
    overlay->ref();
    for (const auto& [place, low, high] :
         {std::tuple(LegendPlace::BOTTOM, -1, 3), {LegendPlace::TOP, -3, 1}}) {
        cameraOf(*overlay).standAt(place);
        auto* copy = static_cast<SoSeparator*>(overlay->copy());
        copy->ref();
        for (SoSeparator* const one : {overlay, copy}) {
            const auto [lowest, highest] = bordersOf(cameraOf(*one), 0.5f);
            EXPECT_NEAR(lowest, low, 1e-5);
            EXPECT_NEAR(highest, high, 1e-5);
            EXPECT_NEAR(bordersOf(cameraOf(*one), 2).second, 1, 1e-5) << "2 high, whichever it is";
        }
        copy->unref();
    }
    overlay->unref();
}

TEST(Legend, AtASideIsSeenInAViewThatEndsThere)
{
    initialiseSceneOnce();
    SoSeparator* overlay = makeOverlay();
    overlay->ref();
    for (const LegendPlace place : SIDES_OF_VIEW) {
        cameraOf(*overlay).standAt(place);
        for (const float aspect : {2.5f, 1.0f, 0.4f}) {
            SbViewVolume volume = cameraOf(*overlay).getViewVolume(aspect);
            if (aspect < 1)
                volume.scale(1 / aspect); // as Coin does, so that all of the width is seen
            SbVec3f near, far;
            volume.projectPointToLine(SbVec2f(place == LegendPlace::LEFT ? 0 : 1, 0.5f), near, far);
            EXPECT_NEAR(near[0], place == LegendPlace::LEFT ? -1 : 1, 1e-5);
            EXPECT_NEAR(near[1], 0, 1e-5);
            EXPECT_NEAR(cameraOf(*overlay).getStretch(), std::max(1.0f, 1 / aspect), 1e-5);
        }
    }
    overlay->unref();
}

TEST(Legend, HasFewerNumbersWhereTheyAreLarger)
{
    const Colouring shown = colouring(10000, 10007);
    EXPECT_LT(textsOf(shown, LARGEST_LEGEND_TEXT_SIZE).size(), textsOf(shown).size());
}

// The area of all that is filled but the bar: of the text, and of a patch or triangles.
double inkOf(const Colouring& shown)
{
    initialiseSceneOnce();
    Legend legend({1, 1, 1}, LEGEND_TEXT_SIZE);
    legend.tell(shown);
    SoCallbackAction triangles;
    double ink = 0;
    const auto add = [](void* data, SoCallbackAction* /*action*/, const SoPrimitiveVertex* a,
                        const SoPrimitiveVertex* b, const SoPrimitiveVertex* c) {
        const SbVec3f normal = (b->getPoint() - a->getPoint()).cross(c->getPoint() - a->getPoint());
        *static_cast<double*>(data) += double(normal.length()) / 2;
    };
    triangles.addTriangleCallback(SoFaceSet::getClassTypeId(), add, &ink);
    triangles.apply(legend.getNode());
    return ink;
}

TEST(Legend, DrawsLettersOfEveryAlphabetEachAsItself)
{
    const auto inkOfName = [](const std::string& name) {
        return inkOf(colouring(0, 1, name)) - inkOf(colouring(0, 1, ""));
    };
    const double beta = inkOfName("β"), underscore = inkOfName("_"), kappa = inkOfName("κ");
    EXPECT_GT(beta, 1e-5);
    EXPECT_GT(kappa, 1e-5);
    EXPECT_GT(beta, 1.2 * kappa) << "a tall letter and a small one, no box for both";
    EXPECT_NEAR(inkOfName("κβ_"), kappa + beta + underscore, 1e-6);
    EXPECT_EQ(inkOfName(" "), 0);
    EXPECT_EQ(inkOfName("\n\t"), 0);
}

// The corners of all triangles and lines, and their colours.
std::vector<float> drawn(const Legend& legend, const SbViewportRegion& region = {100, 100})
{
    std::vector<float> all;
    static const auto add = [](void* data, SoCallbackAction* action,
                               std::initializer_list<const SoPrimitiveVertex*> corners) {
        for (const SoPrimitiveVertex* const corner : corners) {
            SbColor ambient, diffuse, specular, emission;
            float shininess = 0, transparency = 0;
            action->getMaterial(ambient, diffuse, specular, emission, shininess, transparency,
                                corner->getMaterialIndex());
            for (const SbVec3f& three : {corner->getPoint(), SbVec3f(diffuse)})
                static_cast<std::vector<float>*>(data)->insert(
                    static_cast<std::vector<float>*>(data)->end(), three.getValue(),
                    three.getValue() + 3);
        }
    };
    SoCallbackAction action(region);
    action.addTriangleCallback(
        SoShape::getClassTypeId(),
        [](void* data, SoCallbackAction* of, const SoPrimitiveVertex* a, const SoPrimitiveVertex* b,
           const SoPrimitiveVertex* c) {
            add(data, of, {a, b, c});
        },
        &all);
    action.addLineSegmentCallback(
        SoShape::getClassTypeId(),
        [](void* data, SoCallbackAction* of, const SoPrimitiveVertex* a,
           const SoPrimitiveVertex* b) {
            add(data, of, {a, b});
        },
        &all);
    action.apply(legend.getNode());
    return all;
}

TEST(Legend, DrawsAsMuchOfALongTitleAsTheViewHasRoomFor)
{
    initialiseSceneOnce();
    LegendLook look;
    look.title = std::string(200, 'W');
    for (const LegendPlace place : {LegendPlace::TOP, LegendPlace::LEFT}) {
        look.place = place;
        const std::size_t along = place == LegendPlace::TOP ? 0 : 1;
        Legend legend({1, 1, 1}, LEGEND_TEXT_SIZE, look);
        legend.tell(colouring(0, 1));
        for (const short longer : {100, 200, 300, 200, 100}) {
            const SbViewportRegion region =
                along == 0 ? SbViewportRegion(longer, 100) : SbViewportRegion(100, longer);
            const std::vector<float> all = drawn(legend, region);
            float low = 0, high = 0;
            for (std::size_t i = along; i < all.size(); i += 6) {
                low = std::min(low, all[i]);
                high = std::max(high, all[i]);
            }
            const float border = 2 * float(longer) / 100;
            EXPECT_LT(high - low, border);
            EXPECT_GT(high - low, border - 0.4f);
        }
    }
}

TEST(Legend, ItsEndsHaveTheColoursOfWhatIsBeyondThem)
{
    initialiseSceneOnce();
    Colouring shown = colouring(0, 1);
    shown.isAbove = shown.isBelow = shown.isMissing = true;
    const auto has = [&shown](const std::array<float, 3>& colour) {
        Legend legend({1, 1, 1}, LEGEND_TEXT_SIZE);
        legend.tell(shown);
        const std::vector<float> all = drawn(legend); // corner after corner: place and colour
        for (std::size_t i = 3; i < all.size(); i += 6)
            if (std::equal(colour.begin(), colour.end(), all.begin() + std::ptrdiff_t(i)))
                return true;
        return false;
    };
    const std::array<float, 3> below{1, 0.5f, 0.25f}, above{0.5f, 0, 1}, none{0.25f, 0.5f, 0.75f};
    for (const auto& colour : {below, above, none})
        EXPECT_FALSE(has(colour));
    shown.below = Colour{1, 0.5f, 0.25f};
    shown.above = Colour{0.5f, 0, 1};
    shown.none = Colour{0.25f, 0.5f, 0.75f};
    for (const auto& colour : {below, above, none})
        EXPECT_TRUE(has(colour));
    shown.isAbove = shown.isBelow = shown.isMissing = false;
    for (const auto& colour : {below, above, none})
        EXPECT_FALSE(has(colour));
}

TEST(Legend, ThatTellsSomethingElseIsAsANewOneOfTheSameNodes)
{
    initialiseSceneOnce();
    Colouring constant = colouring(0, 1, "constant"), beyond = colouring(-3, 1e6, "beyond"),
              missing = colouring(2, 3, "missing");
    constant.constant = "0.3";
    beyond.isAbove = beyond.isBelow = true;
    missing.isMissing = true;
    missing.ramp.setColours({{1, 0, 0}, {0, 1, 0}});
    Legend legend({1, 1, 1}, LEGEND_TEXT_SIZE);
    const std::vector<const SoNode*> nodes = everyNodeOf(legend.getNode());
    ASSERT_GT(nodes.size(), 20u);
    std::set<std::vector<float>> seen;
    for (const Colouring& told : {constant, beyond, missing, constant, missing, beyond}) {
        LegendLook look;
        look.place = told.isAbove     ? LegendPlace::TOP
                     : told.isMissing ? LegendPlace::LEFT
                                      : LegendPlace::BOTTOM;
        if (told.isMissing)
            look.title = "another";
        legend.setLook(look);
        legend.tell(told);
        const Colour background = told.isMissing ? Colour{0, 0, 0} : Colour{1, 1, 1};
        legend.setBackground(background);
        Legend fresh(background, LEGEND_TEXT_SIZE, look);
        fresh.tell(told);
        EXPECT_TRUE(drawn(legend) == drawn(fresh)) << told.name;
        EXPECT_EQ(everyNodeOf(legend.getNode()), nodes);
        seen.insert(drawn(legend));
    }
    EXPECT_EQ(seen.size(), 3u);
}

} // namespace

} // namespace strandview
