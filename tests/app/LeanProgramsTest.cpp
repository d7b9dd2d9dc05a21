// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/LeanPrograms.h"

#include <cstdlib>
#include <functional>
#include <limits>
#include <utility>
#include <vector>

#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoShaderObject.h>
#include <Inventor/nodes/SoShaderParameter.h>
#include <Inventor/nodes/SoShaderProgram.h>
#include <Inventor/nodes/SoSphere.h>
#include <Inventor/nodes/SoTexture2.h>
#include <Inventor/nodes/SoTranslation.h>
#include <SoGeneralScene.h>
#include <gmock/gmock.h>

#include "pictures/TileRenderer.h"
#include "support/initialiseSceneOnce.h"

namespace strandview {

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

const int WIDTH = 900, HEIGHT = 600;

// What the lighting dialog edits.
struct Lighting
{
    explicit Lighting(SoGeneralScene& scene)
    {
        scene.getLightingParameters(directions, intensities, shininess);
    }

    SoShaderParameterArray3f* directions = nullptr;
    SoShaderParameterArray1f* intensities = nullptr;
    SoShaderParameterArray1f* shininess = nullptr;
};

// By one level, in fewer than twenty samples of a million.
MATCHER_P(isAbout, expected, "")
{
    const auto level = [](std::uint32_t sample, int byte) {
        return int(sample >> 8 * byte & 0xff);
    };
    std::size_t different = 0;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        different += arg[i] != expected[i] ? 1 : 0;
        for (int byte = 0; byte < 4; ++byte) {
            if (std::abs(level(arg[i], byte) - level(expected[i], byte)) > 1)
                return false;
        }
    }
    *result_listener << different << " are different";
    return arg.size() == expected.size() && different < 20 * expected.size() / 1'000'000;
}

// Two spheres, the one lit and the other plain, before black.
class LeanProgramsTest : public testing::Test
{
protected:
    LeanProgramsTest()
    {
        initialiseSceneOnce();
        root = new SoSeparator;
        scene = new SoGeneralScene;
        root->ref();
        root->addChild(new SoOrthographicCamera);
        root->addChild(scene);
        scene->addShaded(sphereAt(-1));
        scene->addSolid(sphereAt(1));
        look(new SoOrthographicCamera);
    }
    ~LeanProgramsTest() override { root->unref(); }

    void look(SoCamera* camera)
    {
        camera->position = SbVec3f(0.2f, 0.1f, 4);
        camera->nearDistance = 1;
        camera->farDistance = 10;
        root->replaceChild(0, camera);
    }

    std::vector<std::uint32_t> render() const
    {
        const SbVec2s size(WIDTH, HEIGHT);
        TileRenderer renderer(SbViewportRegion(size), WIDTH, HEIGHT, size);
        EXPECT_TRUE(renderer.render(root, 0, 0, {0, 0, 0}));
        std::vector<std::uint32_t> samples(WIDTH * HEIGHT);
        renderer.read(0, HEIGHT, samples.data());
        return samples;
    }

    SoShaderObject& shader(int group, int stage) const
    {
        auto* skeleton = static_cast<SoGroup*>(scene->getChild(0));
        auto* nodes = static_cast<SoGroup*>(skeleton->getChild(group));
        auto* program = static_cast<SoShaderProgram*>(nodes->getChild(group == SOLID ? 1 : 0));
        return *static_cast<SoShaderObject*>(program->shaderObject[stage]);
    }

    std::string text(int group, int stage) const
    {
        return shader(group, stage).sourceProgram.getValue().getString();
    }

    static SoSeparator* sphereAt(float x)
    {
        auto* group = new SoSeparator;
        auto* place = new SoTranslation;
        place->translation = SbVec3f(x, 0, 0);
        group->addChild(place);
        auto* material = new SoMaterial;
        material->diffuseColor = SbColor(0.7f, 0.4f, 0.2f);
        group->addChild(material);
        group->addChild(new SoSphere);
        return group;
    }

    static constexpr int SOLID = 1, SHADED = 2; // in the skeleton
    static constexpr int VERTEX = 0, FRAGMENT = 1;

    SoSeparator* root;
    SoGeneralScene* scene;
};

} // namespace

// The plain program has no light to look at, the lit one no texture, and one light of three.
TEST_F(LeanProgramsTest, AskForNothingThatIsSettled)
{
    LeanPrograms lean;
    lean.use(root);
    for (const int group : {SOLID, SHADED}) {
        for (const char* condition : {"useTexture > 0", "useLight > 0"})
            EXPECT_THAT(text(group, FRAGMENT), Not(HasSubstr(condition)));
        EXPECT_THAT(text(group, VERTEX), Not(HasSubstr("useLight > 0")));
    }
    EXPECT_THAT(text(SHADED, FRAGMENT), Not(HasSubstr("[i] > 0.0")));
    EXPECT_THAT(text(SHADED, FRAGMENT), HasSubstr("if ((i == 0)) {"));
    EXPECT_THAT(text(SHADED, VERTEX), HasSubstr("if (false)")); // in perspective
}

TEST_F(LeanProgramsTest, KnowWhereLightsComeFromAndMultiplyPowersOut)
{
    Lighting(*scene).directions->value.set1Value(1, SbVec3f(0.1f, -1e-10f, 3));
    Lighting(*scene).shininess->value.set1Value(1, 5);
    LeanPrograms lean;
    lean.use(root);
    EXPECT_THAT(text(SHADED, FRAGMENT),
                AllOf(HasSubstr("i == 1 ? normalize(-vec3(0.1, -1e-10, 3)) :"),
                      HasSubstr("i == 1 ? ((h * h) * (h * h) * h) :")));
}

TEST_F(LeanProgramsTest, LeaveToTheDriverWhatIsNoNumberAndWhatIsNotWhole)
{
    const float none = std::numeric_limits<float>::quiet_NaN();
    for (int i = 0; i < 3; ++i) {
        Lighting(*scene).directions->value.set1Value(i, i == 0 ? SbVec3f(0, 0, 0)
                                                               : SbVec3f(none, 0, 0));
        Lighting(*scene).shininess->value.set1Value(i, i == 0 ? 2.5f : i == 1 ? 1e9f : none);
    }
    LeanPrograms lean;
    lean.use(root);
    EXPECT_THAT(text(SHADED, FRAGMENT), AllOf(HasSubstr("vec3 l = normalize(-lightDir[i]);"),
                                              HasSubstr("* pow(h, shininess[i]);")));
}

TEST_F(LeanProgramsTest, GiveBackThePrograms)
{
    const std::string vertex = text(SHADED, VERTEX), fragment = text(SHADED, FRAGMENT);
    {
        LeanPrograms lean;
        lean.use(root);
        EXPECT_NE(text(SHADED, FRAGMENT), fragment);
    }
    for (const int group : {SOLID, SHADED}) {
        EXPECT_EQ(text(group, VERTEX), vertex);
        EXPECT_EQ(text(group, FRAGMENT), fragment);
    }
}

TEST_F(LeanProgramsTest, ShowWhatIsSwitchedOnBetweenTwoPictures)
{
    const auto picture = [this] {
        LeanPrograms lean;
        lean.use(root);
        return render();
    };
    const std::vector<std::uint32_t> before = picture();
    Lighting(*scene).intensities->value.set1Value(2, 0.5f);
    EXPECT_NE(picture(), before);
    EXPECT_THAT(picture(), isAbout(render()));
}

TEST_F(LeanProgramsTest, AreNotMadeAgainWhereNothingChanged)
{
    LeanPrograms lean;
    lean.use(root);
    const std::string fragment = text(SHADED, FRAGMENT);
    const SbUniqueId plain = shader(SOLID, FRAGMENT).getNodeId();
    const SbUniqueId lit = shader(SHADED, FRAGMENT).getNodeId();
    lean.use(root);
    EXPECT_EQ(shader(SOLID, FRAGMENT).getNodeId(), plain);
    EXPECT_EQ(shader(SHADED, FRAGMENT).getNodeId(), lit);
    Lighting(*scene).intensities->value.set1Value(2, 0.5f);
    lean.use(root);
    EXPECT_NE(text(SHADED, FRAGMENT), fragment);
}

TEST_F(LeanProgramsTest, GiveThoseOfAGraphBackThatIsNoLongerUsed)
{
    const std::string fragment = text(SHADED, FRAGMENT);
    LeanPrograms lean;
    lean.use(root);
    auto* other = new SoSeparator;
    other->ref();
    lean.use(other);
    EXPECT_EQ(text(SHADED, FRAGMENT), fragment);
    lean.use(root);
    EXPECT_NE(text(SHADED, FRAGMENT), fragment);
    other->unref();
}

TEST_F(LeanProgramsTest, DrawTheSamePixelsButForRoundedPowers)
{
    const Lighting lighting(*scene);
    const auto light = [&](int i, float intensity, float shininess) {
        lighting.intensities->value.set1Value(i, intensity);
        lighting.shininess->value.set1Value(i, shininess);
    };
    const std::pair<const char*, std::function<void()>> changes[] = {
        {"a second light", [&] { light(1, 0.6f, 10); }},
        {"a third without highlight", [&] { light(2, 0.3f, 0); }},
        {"not the first", [&] { light(0, 0, 10); }},
        {"a highlight that is not whole", [&] { light(1, 0.6f, 2.5f); }},
        {"a light from elsewhere",
         [&] { lighting.directions->value.set1Value(1, SbVec3f(3, -0.7f, -1.1f)); }},
        {"no highlight", [&] { light(1, 0.6f, 0); }},
        {"no light",
         [&] {
             light(1, 0, 0);
             light(2, 0, 0);
         }},
        {"perspective",
         [&] {
             light(0, 1, 10);
             look(new SoPerspectiveCamera);
             scene->setShaderPersp(true);
         }},
        {"a texture", [&] {
             auto& flag = static_cast<SoShaderParameter1i&>(*shader(SHADED, VERTEX).parameter[2]);
             ASSERT_STREQ(flag.name.getValue().getString(), "useTexture");
             auto* texture = new SoTexture2;
             const unsigned char pixels[] = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 0};
             texture->image.setValue(SbVec2s(2, 2), 3, pixels);
             scene->insertChild(texture, 0);
             flag.value = 1;
         }}};
    std::vector<std::uint32_t> last = render();
    for (const auto& [what, change] : changes) {
        SCOPED_TRACE(what);
        change();
        const std::vector<std::uint32_t> own = render();
        EXPECT_NE(own, last);
        LeanPrograms lean;
        lean.use(root);
        EXPECT_THAT(render(), isAbout(own));
        last = own;
    }
}

} // namespace strandview
