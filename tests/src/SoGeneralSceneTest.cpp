// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoGeneralScene.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>
#include <memory>
#include <new>
#include <sstream>
#include <stdexcept>

#include <Inventor/SoDB.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoWriteAction.h>
#include <Inventor/events/SoKeyboardEvent.h>
#include <Inventor/events/SoLocation2Event.h>
#include <Inventor/events/SoMouseButtonEvent.h>
#include <Inventor/lists/SoFieldList.h>
#include <Inventor/misc/SoChildList.h>
#include <Inventor/nodes/SoClipPlane.h>
#include <Inventor/nodes/SoComplexity.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoFragmentShader.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoShaderParameter.h>
#include <Inventor/nodes/SoShaderProgram.h>
#include <Inventor/nodes/SoSwitch.h>
#include <Inventor/nodes/SoTranslation.h>
#include <Inventor/nodes/SoVertexShader.h>
#include <Inventor/sensors/SoFieldSensor.h>
#include <gmock/gmock.h>
#include <gsl/gsl_errno.h>

#include "support/CoinEnvironment.h"
#include "support/registration.h"

using testing::ElementsAre;
using testing::HasSubstr;

// The program's own operator new and delete: they count, and note the blocks of a node's
// size and above that are made while a test asks for it.

namespace {

struct AllocationWatch
{
    static constexpr std::size_t CAPACITY = 100000;

    std::atomic<std::size_t> allocations{0}; // Mesa compiles on threads of its own
    bool noting = false;
    std::size_t notedCount = 0;
    void* noted[CAPACITY] = {}; // null again once freed
};

AllocationWatch allocationWatch;

void* allocate(std::size_t size)
{
    void* const block = std::malloc(size > 0 ? size : 1);
    if (!block)
        std::abort();
    ++allocationWatch.allocations;
    if (allocationWatch.noting && size >= sizeof(SoNode) &&
        allocationWatch.notedCount < AllocationWatch::CAPACITY)
        allocationWatch.noted[allocationWatch.notedCount++] = block;
    return block;
}

void release(void* block)
{
    if (!block)
        return;
    void** const end = allocationWatch.noted + allocationWatch.notedCount;
    std::replace(allocationWatch.noted, end, block, static_cast<void*>(nullptr));
    std::free(block);
}

} // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, std::size_t) noexcept { release(block); }
void operator delete[](void* block, std::size_t) noexcept { release(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { release(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { release(block); }

namespace {

const double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

using Rgb = algebra3d::Vector3<double>;

SoGroup* asGroup(SoNode* node)
{
    if (!node || !node->isOfType(SoGroup::getClassTypeId()))
        throw std::runtime_error("not a group");
    return static_cast<SoGroup*>(node);
}

// The parts of the skeleton, found by their places.
struct Skeleton
{
    explicit Skeleton(SoGeneralScene* scene)
        : root(asGroup(scene->getChild(0))),
          complexity(static_cast<SoComplexity*>(root->getChild(0))),
          solidGroup(asGroup(root->getChild(1))),
          shadedGroup(asGroup(root->getChild(2))),
          changingGroup(asGroup(root->getChild(3))),
          drawStyle(static_cast<SoDrawStyle*>(solidGroup->getChild(0))),
          solidProgram(static_cast<SoShaderProgram*>(solidGroup->getChild(1))),
          shadedProgram(static_cast<SoShaderProgram*>(shadedGroup->getChild(0))),
          modeSwitch(static_cast<SoSwitch*>(changingGroup->getChild(1)))
    {}

    SoGroup* root;
    SoComplexity* complexity;
    SoGroup* solidGroup;
    SoGroup* shadedGroup;
    SoGroup* changingGroup;
    SoDrawStyle* drawStyle;
    SoShaderProgram* solidProgram;
    SoShaderProgram* shadedProgram;
    SoSwitch* modeSwitch;
};

// One line per node, indented, with its type and a number that tells nodes apart; a
// node met again shows its number only.
void outline(SoNode* node, int depth, std::map<SoNode*, int>& seen, std::ostream& text)
{
    const auto [entry, isNew] = seen.emplace(node, int(seen.size()));
    text << std::string(std::size_t(2 * depth), ' ') << entry->second;
    if (isNew)
        text << " " << node->getTypeId().getName().getString();
    text << "\n";
    const SoChildList* children =
        isNew && node->isOfType(SoGroup::getClassTypeId()) ? node->getChildren() : nullptr;
    for (int i = 0; children && i < children->getLength(); ++i)
        outline((*children)[i], depth + 1, seen, text);
}

std::string outline(SoNode* node)
{
    std::ostringstream text;
    std::map<SoNode*, int> seen;
    outline(node, 0, seen, text);
    return text.str();
}

SoShaderObject* shaderObject(SoShaderProgram* program, int index)
{
    return static_cast<SoShaderObject*>(program->shaderObject[index]);
}

std::vector<std::string> parameterNames(SoShaderObject* shader)
{
    std::vector<std::string> names;
    for (int i = 0; i < shader->parameter.getNum(); ++i)
        names.emplace_back(
            static_cast<SoShaderParameter*>(shader->parameter[i])->name.getValue().getString());
    return names;
}

template <typename Parameter>
Parameter* parameter(SoShaderObject* shader, int index)
{
    SoNode* const node = shader->parameter[index];
    EXPECT_EQ(node->getTypeId(), Parameter::getClassTypeId());
    return static_cast<Parameter*>(node);
}

SoKeyboardEvent keyEvent(int key, SoButtonEvent::State state = SoButtonEvent::DOWN,
                         bool shift = false)
{
    SoKeyboardEvent event;
    event.setKey(SoKeyboardEvent::Key(key));
    event.setState(state);
    event.setShiftDown(shift);
    return event;
}

bool press(SoGeneralScene* scene, int key, bool shift = false)
{
    const SoKeyboardEvent event = keyEvent(key, SoButtonEvent::DOWN, shift);
    return scene->processSoEvent(&event);
}

} // namespace

class SoGeneralSceneTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { initScenesOnce(); }

    NodeRef<SoGeneralScene> scene{new SoGeneralScene};
    Skeleton parts{scene};
};

// The type

TEST_F(SoGeneralSceneTest, IsASeparatorThatCanBeCreatedByName)
{
    const SoType type = SoType::fromName("SoGeneralScene");
    ASSERT_FALSE(type.isBad());
    EXPECT_EQ(type, SoGeneralScene::getClassTypeId());
    EXPECT_EQ(type.getParent(), SoSeparator::getClassTypeId());
    ASSERT_TRUE(type.canCreateInstance());
    NodeRef<SoNode> made(static_cast<SoNode*>(type.createInstance()));
    EXPECT_EQ(made->getTypeId(), type);
    EXPECT_EQ(outline(made), outline(scene));
}

TEST_F(SoGeneralSceneTest, AddsNoFields)
{
    SoFieldList own, inherited;
    NodeRef<SoSeparator> separator(new SoSeparator);
    EXPECT_EQ(scene->getFields(own), separator->getFields(inherited));
}

using SceneRegistrationDeathTest = RegistrationDeathTest;

TEST_F(SceneRegistrationDeathTest, ConstructedBeforeItsRegistration)
{
    EXPECT_DEATH(
        {
            SoDB::init();
            (new SoGeneralScene)->ref();
        },
        assertionIn("SoGeneralScene",
                    R"(SoGeneralScene::classTypeId != SoType::badType() && "you forgot init()!")"));
}

TEST_F(SceneRegistrationDeathTest, RegisteredTwice)
{
    EXPECT_DEATH(
        {
            SoDB::init();
            SoGeneralScene::initClass();
            SoGeneralScene::initClass();
        },
        assertionIn(
            "SoGeneralScene",
            R"(SoGeneralScene::classTypeId == SoType::badType() && "don't init() twice!")"));
}

TEST_F(SceneRegistrationDeathTest, RegisteredBeforeItsParent)
{
    EXPECT_DEATH(
        {
            SoDB::init();
            SoType::removeType("Separator");
            SoGeneralScene::initClass();
        },
        assertionIn("SoGeneralScene",
                    R"(parentType != SoType::badType() && "you forgot init() on parentclass!")"));
}

TEST_F(SceneRegistrationDeathTest, NotRegisteredByItselfAndTakenBackByCoinsCleanUp)
{
    EXPECT_EXIT(
        {
            SoDB::init();
            const bool none = SoType::fromName("SoGeneralScene").isBad() &&
                              SoGeneralScene::getClassTypeId().isBad();
            SoGeneralScene::initClass();
            const bool registered = !SoGeneralScene::getClassTypeId().isBad();
            SoNode* const made = new SoGeneralScene;
            made->ref();
            made->unref();
            SoDB::finish();
            const bool takenBack = SoGeneralScene::getClassTypeId().isBad();
            std::_Exit(none && registered && takenBack ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

// The skeleton

TEST_F(SoGeneralSceneTest, SkeletonIsCompleteAndSharedByIdentity)
{
    const char* expected = "  1 Separator\n"
                           "    2 Complexity\n"
                           "    3 Separator\n"
                           "      4 DrawStyle\n"
                           "      5 ShaderProgram\n"
                           "    6 Separator\n"
                           "      7 ShaderProgram\n"
                           "    8 Separator\n"
                           "      4\n"
                           "      9 Switch\n"
                           "        7\n"
                           "        5\n";
    const std::string text = outline(scene);
    EXPECT_EQ(text.substr(text.find('\n') + 1), expected);
}

TEST_F(SoGeneralSceneTest, SkeletonStartsFilledLitAndInScreenSpace)
{
    EXPECT_EQ(parts.complexity->type.getValue(), SoComplexity::SCREEN_SPACE);
    EXPECT_EQ(parts.complexity->value.getValue(), 1.0f);
    EXPECT_EQ(parts.complexity->textureQuality.getValue(), 1.0f);
    EXPECT_EQ(parts.drawStyle->lineWidth.getValue(), 0.0f);
    EXPECT_EQ(parts.drawStyle->style.getValue(), SoDrawStyle::FILLED);
    EXPECT_EQ(parts.drawStyle->pointSize.getValue(), 0.0f);
    EXPECT_EQ(parts.drawStyle->linePattern.getValue(), 0xffff);
    EXPECT_EQ(parts.modeSwitch->whichChild.getValue(), 0);
}

TEST_F(SoGeneralSceneTest, AClippingPlaneStandsBeforeChangingContentUntilItIsDropped)
{
    auto* changing = new SoCube;
    scene->addChanging(changing);
    const auto vertexText = [](SoShaderProgram* program) {
        return std::string(shaderObject(program, 0)->sourceProgram.getValue().getString());
    };
    const std::string whole = outline(scene), text = vertexText(parts.shadedProgram);
    EXPECT_EQ(scene->getClipPlane(), nullptr);
    for (const float distance : {1.0f, -2.0f}) {
        const SbPlane plane(SbVec3f(0, 0, 1), distance);
        scene->setClipPlane(plane);
        ASSERT_EQ(parts.changingGroup->getNumChildren(), 4);
        EXPECT_EQ(parts.changingGroup->getChild(2), scene->getClipPlane());
        EXPECT_EQ(parts.changingGroup->getChild(3), changing);
        EXPECT_EQ(scene->getClipPlane()->plane.getValue(), plane);
    }
    // Drivers that do not find out where a vertex is are told, by either program.
    for (SoShaderProgram* program : {parts.shadedProgram, parts.solidProgram})
        EXPECT_NE(vertexText(program).find("gl_ClipVertex = gl_ModelViewMatrix * gl_Vertex;"),
                  std::string::npos);
    scene->dropClipPlane();
    scene->dropClipPlane();
    EXPECT_EQ(outline(scene), whole);
    for (SoShaderProgram* program : {parts.shadedProgram, parts.solidProgram})
        EXPECT_EQ(vertexText(program), text);
}

TEST_F(SoGeneralSceneTest, ACopyHasAClippingPlaneOfItsOwn)
{
    scene->setClipPlane(SbPlane(SbVec3f(0, 1, 0), 0.5f));
    NodeRef<SoGeneralScene> copy(static_cast<SoGeneralScene*>(scene->copy()));
    ASSERT_NE(copy->getClipPlane(), nullptr);
    EXPECT_NE(copy->getClipPlane(), scene->getClipPlane());
    EXPECT_EQ(copy->getClipPlane()->plane.getValue(), scene->getClipPlane()->plane.getValue());
    copy->dropClipPlane();
    EXPECT_EQ(Skeleton(copy).changingGroup->getNumChildren(), 2);
    EXPECT_EQ(parts.changingGroup->getNumChildren(), 3);
}

TEST_F(SoGeneralSceneTest, AddedNodesFollowInTheirGroups)
{
    auto* solid = new SoCube;
    auto* shaded = new SoCube;
    auto* changing = new SoCube;
    scene->addSolid(solid);
    scene->addShaded(shaded);
    scene->addChanging(changing);
    scene->addChanging(solid);
    EXPECT_EQ(scene->getNumChildren(), 1);
    EXPECT_EQ(parts.root->getNumChildren(), 4);
    ASSERT_EQ(parts.solidGroup->getNumChildren(), 3);
    EXPECT_EQ(parts.solidGroup->getChild(2), solid);
    ASSERT_EQ(parts.shadedGroup->getNumChildren(), 2);
    EXPECT_EQ(parts.shadedGroup->getChild(1), shaded);
    ASSERT_EQ(parts.changingGroup->getNumChildren(), 4);
    EXPECT_EQ(parts.changingGroup->getChild(2), changing);
    EXPECT_EQ(parts.changingGroup->getChild(3), solid);
}

TEST_F(SoGeneralSceneTest, PlainChildrenBypassTheSkeleton)
{
    auto* cube = new SoCube;
    scene->addChild(cube);
    ASSERT_EQ(scene->getNumChildren(), 2);
    EXPECT_EQ(scene->getChild(1), cube);
    EXPECT_EQ(parts.root->getNumChildren(), 4);
    SoGroup* const asSeenByCoin = scene; // a virtual operation
    asSeenByCoin->addChild(new SoCube);
    EXPECT_EQ(scene->getNumChildren(), 3);
}

TEST_F(SoGeneralSceneTest, ScenesShareNothing)
{
    NodeRef<SoGeneralScene> other(new SoGeneralScene);
    const Skeleton otherParts(other);
    EXPECT_NE(otherParts.root, parts.root);
    EXPECT_NE(otherParts.drawStyle, parts.drawStyle);
    EXPECT_NE(otherParts.solidProgram, parts.solidProgram);
    scene->setShaderPersp(true);
    scene->setColourMapperLimits(3, 4);
    EXPECT_FALSE(other->isShaderPersp());
    double min = 7, max = 7;
    other->getColourMapperLimits(min, max);
    EXPECT_EQ(min, 0);
    EXPECT_EQ(max, 1);
}

// Programs and parameters

TEST_F(SoGeneralSceneTest, ProgramsHaveAVertexAndAFragmentShaderOfText)
{
    std::string texts[2];
    for (SoShaderProgram* program : {parts.solidProgram, parts.shadedProgram}) {
        ASSERT_EQ(program->shaderObject.getNum(), 2);
        EXPECT_EQ(shaderObject(program, 0)->getTypeId(), SoVertexShader::getClassTypeId());
        EXPECT_EQ(shaderObject(program, 1)->getTypeId(), SoFragmentShader::getClassTypeId());
        for (int i = 0; i < 2; ++i) {
            SCOPED_TRACE(i);
            SoShaderObject* const shader = shaderObject(program, i);
            EXPECT_EQ(shader->sourceType.getValue(), SoShaderObject::GLSL_PROGRAM);
            EXPECT_TRUE(shader->isActive.getValue());
            const std::string text = shader->sourceProgram.getValue().getString();
            EXPECT_THAT(text, HasSubstr("void main()"));
            if (texts[i].empty())
                texts[i] = text;
            EXPECT_EQ(text, texts[i]); // one text for both programs
        }
    }
    EXPECT_NE(texts[0], texts[1]);
    EXPECT_NE(shaderObject(parts.solidProgram, 0), shaderObject(parts.shadedProgram, 0));
    EXPECT_NE(shaderObject(parts.solidProgram, 1), shaderObject(parts.shadedProgram, 1));
}

TEST_F(SoGeneralSceneTest, ParametersHangOnTheirShadersInOrder)
{
    EXPECT_THAT(parameterNames(shaderObject(parts.solidProgram, 0)),
                ElementsAre("useLight", "useTexture"));
    EXPECT_THAT(parameterNames(shaderObject(parts.solidProgram, 1)), ElementsAre());
    EXPECT_THAT(parameterNames(shaderObject(parts.shadedProgram, 0)),
                ElementsAre("isPersp", "useLight", "useTexture"));
    EXPECT_THAT(parameterNames(shaderObject(parts.shadedProgram, 1)),
                ElementsAre("lightDir", "lightIntensity", "shininess"));
}

TEST_F(SoGeneralSceneTest, FlagsHaveTheirInitialValues)
{
    SoShaderObject* const solid = shaderObject(parts.solidProgram, 0);
    SoShaderObject* const shaded = shaderObject(parts.shadedProgram, 0);
    EXPECT_EQ(parameter<SoShaderParameter1i>(solid, 0)->value.getValue(), 0);  // useLight
    EXPECT_EQ(parameter<SoShaderParameter1i>(solid, 1)->value.getValue(), 0);  // useTexture
    EXPECT_EQ(parameter<SoShaderParameter1i>(shaded, 0)->value.getValue(), 0); // isPersp
    EXPECT_EQ(parameter<SoShaderParameter1i>(shaded, 1)->value.getValue(), 1); // useLight
    EXPECT_EQ(parameter<SoShaderParameter1i>(shaded, 2)->value.getValue(), 0); // useTexture
    // Two nodes of one name on purpose; the texture flag is one node.
    EXPECT_NE(solid->parameter[0], shaded->parameter[1]);
    EXPECT_EQ(solid->parameter[1], shaded->parameter[2]);
}

TEST_F(SoGeneralSceneTest, LightingParametersAreThoseOfTheShadedProgram)
{
    SoShaderParameterArray3f* dirs = nullptr;
    SoShaderParameterArray1f* intensities = nullptr;
    SoShaderParameterArray1f* shininess = nullptr;
    scene->getLightingParameters(dirs, intensities, shininess);
    SoShaderObject* const shader = shaderObject(parts.shadedProgram, 1);
    EXPECT_EQ(dirs, parameter<SoShaderParameterArray3f>(shader, 0));
    EXPECT_EQ(intensities, parameter<SoShaderParameterArray1f>(shader, 1));
    EXPECT_EQ(shininess, parameter<SoShaderParameterArray1f>(shader, 2));
}

TEST_F(SoGeneralSceneTest, OnlyTheFirstOfThreeLightsIsOn) // on purpose
{
    SoShaderParameterArray3f* dirs = nullptr;
    SoShaderParameterArray1f* intensities = nullptr;
    SoShaderParameterArray1f* shininess = nullptr;
    scene->getLightingParameters(dirs, intensities, shininess);
    ASSERT_EQ(dirs->value.getNum(), 3);
    EXPECT_EQ(dirs->value[0], SbVec3f(0.2f, -0.2f, -1.0f));
    EXPECT_EQ(dirs->value[1], SbVec3f(-0.2f, -0.2f, -1.0f));
    EXPECT_EQ(dirs->value[2], SbVec3f(0.0f, 0.2f, -1.0f));
    ASSERT_EQ(intensities->value.getNum(), 3);
    EXPECT_EQ(intensities->value[0], 1.0f);
    EXPECT_EQ(intensities->value[1], 0.0f);
    EXPECT_EQ(intensities->value[2], 0.0f);
    ASSERT_EQ(shininess->value.getNum(), 3);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(shininess->value[i], 10.0f);
}

TEST(SoGeneralSceneTables, HaveTheInitialValues)
{
    const double directions[3][3] = {{0.2, -0.2, -1.0}, {-0.2, -0.2, -1.0}, {0.0, 0.2, -1.0}};
    const double intensities[3] = {1, 0, 0};
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        for (int k = 0; k < 3; ++k)
            EXPECT_EQ(SoGeneralScene::LIGHT_DIRS[i][k], directions[i][k]);
        EXPECT_EQ(SoGeneralScene::LIGHT_INTENSITY[i], intensities[i]);
        EXPECT_EQ(SoGeneralScene::LIGHT_SHININESS[i], 10.0);
    }
    for (int i = 0; i < 2; ++i) {
        SCOPED_TRACE(i);
        for (int k = 0; k < 3; ++k)
            EXPECT_EQ(SoGeneralScene::LINE_COLORS[i][k], 1.0 - i); // white, black
        EXPECT_EQ(SoGeneralScene::LINE_ALPHA[i], 1.0);
        EXPECT_EQ(SoGeneralScene::LINE_MARGINS[i], 0.002);
        EXPECT_EQ(SoGeneralScene::LINE_NUM_STEPS[i], 10);
        EXPECT_EQ(SoGeneralScene::LINE_STEPS[i], 0.1);
    }
}

namespace {

// The instances of a class among the noted blocks, known by the table of virtual
// functions at their start. For nodes that nothing else leads to.
template <typename Node>
std::vector<Node*> notedInstances()
{
    NodeRef<Node> sample(new Node);
    const void* const start = static_cast<Node*>(sample);
    std::vector<Node*> found;
    for (std::size_t i = 0; i < allocationWatch.notedCount; ++i) {
        void* const block = allocationWatch.noted[i];
        if (block && std::memcmp(block, start, sizeof(void*)) == 0)
            found.push_back(static_cast<Node*>(block));
    }
    return found;
}

template <typename Node>
Node* named(const std::vector<Node*>& nodes, const char* name)
{
    for (Node* node : nodes)
        if (node->name.getValue() == name)
            return node;
    return nullptr;
}

template <typename Node>
bool isFreed(Node* node)
{
    void** const end = allocationWatch.noted + allocationWatch.notedCount;
    return std::find(allocationWatch.noted, end, static_cast<void*>(node)) == end;
}

} // namespace

TEST_F(SoGeneralSceneTest, LineParametersExistAndGoWithTheScene)
{
    allocationWatch.notedCount = 0;
    allocationWatch.noting = true;
    auto* made = new SoGeneralScene;
    allocationWatch.noting = false;
    ASSERT_LT(allocationWatch.notedCount, AllocationWatch::CAPACITY);
    made->ref();

    const auto colours = notedInstances<SoShaderParameterArray4f>();
    const auto floats = notedInstances<SoShaderParameterArray1f>();
    const auto integers = notedInstances<SoShaderParameterArray1i>();
    const auto flags = notedInstances<SoShaderParameter1i>();
    const auto directions = notedInstances<SoShaderParameterArray3f>();
    EXPECT_EQ(colours.size() + floats.size() + integers.size() + flags.size() + directions.size(),
              11u);

    SoShaderParameterArray4f* const lineColours = named(colours, "lineColors");
    ASSERT_NE(lineColours, nullptr);
    ASSERT_EQ(lineColours->value.getNum(), 2);
    EXPECT_EQ(lineColours->value[0], SbVec4f(1, 1, 1, 1));
    EXPECT_EQ(lineColours->value[1], SbVec4f(0, 0, 0, 1));
    EXPECT_EQ(lineColours->getRefCount(), 1);
    SoShaderParameterArray1f* const margins = named(floats, "margins");
    ASSERT_NE(margins, nullptr);
    ASSERT_EQ(margins->value.getNum(), 2);
    EXPECT_EQ(margins->value[0], 0.002f);
    EXPECT_EQ(margins->value[1], 0.002f);
    EXPECT_EQ(margins->getRefCount(), 1);
    SoShaderParameterArray1i* const numSteps = named(integers, "numSteps");
    ASSERT_NE(numSteps, nullptr);
    ASSERT_EQ(numSteps->value.getNum(), 2);
    EXPECT_EQ(numSteps->value[0], 10);
    EXPECT_EQ(numSteps->value[1], 10);
    EXPECT_EQ(numSteps->getRefCount(), 1);
    SoShaderParameterArray1f* const steps = named(floats, "steps");
    ASSERT_NE(steps, nullptr);
    ASSERT_EQ(steps->value.getNum(), 2);
    EXPECT_EQ(steps->value[0], 0.1f);
    EXPECT_EQ(steps->value[1], 0.1f);
    EXPECT_EQ(steps->getRefCount(), 1);

    made->unref();
    EXPECT_TRUE(isFreed(made));
    for (auto* node : colours)
        EXPECT_TRUE(isFreed(node));
    for (auto* node : floats)
        EXPECT_TRUE(isFreed(node));
    for (auto* node : integers)
        EXPECT_TRUE(isFreed(node));
    for (auto* node : flags)
        EXPECT_TRUE(isFreed(node));
    for (auto* node : directions)
        EXPECT_TRUE(isFreed(node));
    allocationWatch.notedCount = 0;
}

TEST_F(SoGeneralSceneTest, ReleasesItsReferencesInTheEnd)
{
    auto* made = new SoGeneralScene;
    made->ref();
    const Skeleton madeParts(made);
    std::vector<SoNode*> kept = {madeParts.root, madeParts.solidProgram, madeParts.shadedProgram};
    for (SoShaderProgram* program : {madeParts.solidProgram, madeParts.shadedProgram}) {
        for (int i = 0; i < 2; ++i) {
            const SoMFNode& parameters = shaderObject(program, i)->parameter;
            for (int k = 0; k < parameters.getNum(); ++k)
                kept.push_back(parameters[k]);
        }
    }
    std::sort(kept.begin(), kept.end());
    kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
    ASSERT_EQ(kept.size(), 10u); // the four line parameters hang nowhere
    for (SoNode* node : kept)
        node->ref();
    // One from the scene node as parent, one held by the scene, one by the test.
    EXPECT_EQ(madeParts.root->getRefCount(), 3);
    // Parents, the scene and the test.
    EXPECT_EQ(madeParts.solidProgram->getRefCount(), 4);
    EXPECT_EQ(madeParts.shadedProgram->getRefCount(), 4);

    made->unref();
    // What hangs below the nodes that the test keeps is kept by them.
    EXPECT_EQ(madeParts.root->getRefCount(), 1);
    madeParts.root->removeAllChildren();
    EXPECT_EQ(madeParts.solidProgram->getRefCount(), 1);
    EXPECT_EQ(madeParts.shadedProgram->getRefCount(), 1);
    madeParts.solidProgram->shaderObject.deleteValues(0);
    madeParts.shadedProgram->shaderObject.deleteValues(0);
    for (SoNode* node : kept) {
        EXPECT_EQ(node->getRefCount(), 1) << node->getTypeId().getName().getString();
        node->unref();
    }
}

TEST_F(SoGeneralSceneTest, ChildrenThatTheHostKeepsOutliveTheScene)
{
    NodeRef<SoCube> cube(new SoCube);
    auto* made = new SoGeneralScene;
    made->ref();
    made->addShaded(cube);
    made->addChild(cube);
    EXPECT_EQ(cube->getRefCount(), 3);
    made->unref();
    EXPECT_EQ(cube->getRefCount(), 1);
}

TEST_F(SoGeneralSceneTest, PerspectiveFlagIsTheParameter)
{
    auto* flag = parameter<SoShaderParameter1i>(shaderObject(parts.shadedProgram, 0), 0);
    EXPECT_FALSE(scene->isShaderPersp());
    scene->setShaderPersp(true);
    EXPECT_TRUE(scene->isShaderPersp());
    EXPECT_EQ(flag->value.getValue(), 1);
    scene->setShaderPersp(false);
    EXPECT_FALSE(scene->isShaderPersp());
    EXPECT_EQ(flag->value.getValue(), 0);
    flag->value = -5; // anything but 0
    EXPECT_TRUE(scene->isShaderPersp());
}

// Draw style and keys

TEST_F(SoGeneralSceneTest, DrawStyleGoesThroughThreeSteps)
{
    struct Step
    {
        int whichChild;
        int style;
    };
    const Step steps[] = {{1, SoDrawStyle::FILLED}, {1, SoDrawStyle::LINES},
                          {0, SoDrawStyle::FILLED}, {1, SoDrawStyle::FILLED},
                          {1, SoDrawStyle::LINES},  {0, SoDrawStyle::FILLED}};
    const std::string before = outline(scene);
    for (const Step& step : steps) {
        scene->toggleDrawStyle(false);
        EXPECT_EQ(parts.modeSwitch->whichChild.getValue(), step.whichChild);
        EXPECT_EQ(parts.drawStyle->style.getValue(), step.style);
        EXPECT_EQ(parts.complexity->type.getValue(), SoComplexity::SCREEN_SPACE);
    }
    EXPECT_EQ(outline(scene), before);
}

TEST_F(SoGeneralSceneTest, DrawStyleCycleDependsOnTheCallsAlone)
{
    parts.drawStyle->style = SoDrawStyle::INVISIBLE;
    parts.modeSwitch->whichChild = SO_SWITCH_NONE;
    scene->toggleDrawStyle(false);
    EXPECT_EQ(parts.modeSwitch->whichChild.getValue(), 1);
    EXPECT_EQ(parts.drawStyle->style.getValue(), SoDrawStyle::FILLED);
}

TEST_F(SoGeneralSceneTest, ComplexityChangesBesideTheCycle)
{
    scene->toggleDrawStyle(true);
    EXPECT_EQ(parts.complexity->type.getValue(), SoComplexity::BOUNDING_BOX);
    EXPECT_EQ(parts.modeSwitch->whichChild.getValue(), 0);
    EXPECT_EQ(parts.drawStyle->style.getValue(), SoDrawStyle::FILLED);
    scene->toggleDrawStyle(false);
    scene->toggleDrawStyle(true);
    EXPECT_EQ(parts.complexity->type.getValue(), SoComplexity::SCREEN_SPACE);
    scene->toggleDrawStyle(false);
    EXPECT_EQ(parts.drawStyle->style.getValue(), SoDrawStyle::LINES); // the second step
    parts.complexity->type = SoComplexity::OBJECT_SPACE;
    scene->toggleDrawStyle(true);
    EXPECT_EQ(parts.complexity->type.getValue(), SoComplexity::SCREEN_SPACE);
    EXPECT_EQ(parts.complexity->value.getValue(), 1.0f);
}

TEST_F(SoGeneralSceneTest, TellsWhetherItShowsBoundingBoxes)
{
    EXPECT_FALSE(scene->isShowingBoundingBoxes());
    scene->toggleDrawStyle(true);
    EXPECT_TRUE(scene->isShowingBoundingBoxes());
    scene->toggleDrawStyle(false);
    EXPECT_TRUE(scene->isShowingBoundingBoxes());
    scene->toggleDrawStyle(true);
    EXPECT_FALSE(scene->isShowingBoundingBoxes());
}

TEST_F(SoGeneralSceneTest, TheSpaceBarGoesOnFromTheShadingThatAHostSets)
{
    const SoGeneralScene::Shading all[] = {SoGeneralScene::LIT, SoGeneralScene::PLAIN,
                                           SoGeneralScene::WIREFRAME};
    for (int i = 0; i < 3; ++i) {
        for (const SoGeneralScene::Shading before : all) {
            scene->setShading(before);
            scene->setShading(all[i]);
            EXPECT_EQ(scene->getShading(), all[i]);
            EXPECT_EQ(parts.modeSwitch->whichChild.getValue(), i == 0 ? 0 : 1);
            EXPECT_EQ(parts.drawStyle->style.getValue(),
                      i == 2 ? SoDrawStyle::LINES : SoDrawStyle::FILLED);
        }
        EXPECT_TRUE(press(scene, SoKeyboardEvent::SPACE));
        EXPECT_EQ(scene->getShading(), all[(i + 1) % 3]);
    }
}

TEST_F(SoGeneralSceneTest, AHostShowsBoundingBoxesOrShapesWhateverThereIs)
{
    for (const bool show : {true, true, false, false, true}) {
        scene->showBoundingBoxes(show);
        EXPECT_EQ(scene->isShowingBoundingBoxes(), show);
        EXPECT_EQ(parts.complexity->type.getValue(),
                  show ? SoComplexity::BOUNDING_BOX : SoComplexity::SCREEN_SPACE);
    }
}

TEST_F(SoGeneralSceneTest, TheKeysGoOnFromTheLineWidthThatAHostSets)
{
    scene->setGLLineData(SbVec2f(1, 10), 0.5f);
    scene->setLineWidth(4);
    EXPECT_EQ(scene->getLineWidth(), 4);
    EXPECT_EQ(parts.drawStyle->lineWidth.getValue(), 4);
    EXPECT_TRUE(press(scene, SoKeyboardEvent::EQUAL));
    EXPECT_EQ(parts.drawStyle->lineWidth.getValue(), 4.5f);
    scene->setLineWidth(0.25f); // below the least
    EXPECT_EQ(parts.drawStyle->lineWidth.getValue(), 0.25f);
}

TEST_F(SoGeneralSceneTest, SpaceBarTogglesTheDrawStyleAndWithShiftTheComplexity)
{
    EXPECT_TRUE(press(scene, SoKeyboardEvent::SPACE));
    EXPECT_EQ(parts.modeSwitch->whichChild.getValue(), 1);
    EXPECT_EQ(parts.drawStyle->style.getValue(), SoDrawStyle::FILLED);
    EXPECT_EQ(parts.complexity->type.getValue(), SoComplexity::SCREEN_SPACE);
    EXPECT_TRUE(press(scene, SoKeyboardEvent::SPACE, true));
    EXPECT_EQ(parts.complexity->type.getValue(), SoComplexity::BOUNDING_BOX);
    EXPECT_EQ(parts.drawStyle->style.getValue(), SoDrawStyle::FILLED);
    EXPECT_TRUE(press(scene, SoKeyboardEvent::SPACE));
    EXPECT_EQ(parts.drawStyle->style.getValue(), SoDrawStyle::LINES);
}

TEST_F(SoGeneralSceneTest, ReleasesOtherKeysAndOtherEventsAreNotHandled)
{
    scene->setGLLineData(SbVec2f(1, 10), 0.5f);
    for (int key : {SoKeyboardEvent::EQUAL, SoKeyboardEvent::MINUS, SoKeyboardEvent::SPACE}) {
        for (bool shift : {false, true}) {
            const SoKeyboardEvent released = keyEvent(key, SoButtonEvent::UP, shift);
            EXPECT_FALSE(scene->processSoEvent(&released)) << key;
            const SoKeyboardEvent unknown = keyEvent(key, SoButtonEvent::UNKNOWN, shift);
            EXPECT_FALSE(scene->processSoEvent(&unknown)) << key;
        }
    }
    for (int key : {int(SoKeyboardEvent::A), int(SoKeyboardEvent::PAD_ADD),
                    int(SoKeyboardEvent::PAD_SUBTRACT), int(SoKeyboardEvent::PAD_SPACE),
                    int(SoKeyboardEvent::RETURN), int(SoKeyboardEvent::NUMBER_0),
                    int(SoKeyboardEvent::LEFT_SHIFT), int(SoKeyboardEvent::ESCAPE),
                    int(SoKeyboardEvent::UNDEFINED)}) {
        EXPECT_FALSE(press(scene, key)) << key;
        EXPECT_FALSE(press(scene, key, true)) << key;
    }
    SoMouseButtonEvent button;
    button.setButton(SoMouseButtonEvent::BUTTON1);
    button.setState(SoButtonEvent::DOWN);
    EXPECT_FALSE(scene->processSoEvent(&button));
    const SoLocation2Event move;
    EXPECT_FALSE(scene->processSoEvent(&move));

    EXPECT_EQ(parts.drawStyle->lineWidth.getValue(), 0.0f);
    EXPECT_EQ(parts.drawStyle->style.getValue(), SoDrawStyle::FILLED);
    EXPECT_EQ(parts.modeSwitch->whichChild.getValue(), 0);
    EXPECT_EQ(parts.complexity->type.getValue(), SoComplexity::SCREEN_SPACE);
}

TEST_F(SoGeneralSceneTest, WithoutLineDataTheWidthKeysKeepZeroAndAreHandled)
{
    EXPECT_TRUE(press(scene, SoKeyboardEvent::EQUAL));
    EXPECT_EQ(parts.drawStyle->lineWidth.getValue(), 0.0f);
    EXPECT_TRUE(press(scene, SoKeyboardEvent::MINUS));
    EXPECT_EQ(parts.drawStyle->lineWidth.getValue(), 0.0f);
}

// "=" compares with the largest width only: 0 + 0 is not too wide. "-" compares with the
// smallest only, 0.125 then: 0 - 0 is too thin.
TEST_F(SoGeneralSceneTest, WithoutLineDataThickerSetsZeroAndThinnerIsRefused)
{
    parts.drawStyle->lineWidth = 3;
    press(scene, SoKeyboardEvent::MINUS);
    EXPECT_EQ(parts.drawStyle->lineWidth.getValue(), 3.0f);
    press(scene, SoKeyboardEvent::EQUAL);
    EXPECT_EQ(parts.drawStyle->lineWidth.getValue(), 0.0f);
}

TEST_F(SoGeneralSceneTest, WidthKeysMoveByTheGranularityWithinTheRange)
{
    scene->setGLLineData(SbVec2f(1, 10), 0.5f);
    EXPECT_EQ(parts.drawStyle->lineWidth.getValue(), 0.0f); // not touched before the first key
    EXPECT_TRUE(press(scene, SoKeyboardEvent::MINUS));      // 0.5 < 1: refused
    EXPECT_EQ(parts.drawStyle->lineWidth.getValue(), 0.0f);
    EXPECT_TRUE(press(scene, SoKeyboardEvent::EQUAL));
    EXPECT_EQ(parts.drawStyle->lineWidth.getValue(), 1.5f);
    EXPECT_TRUE(press(scene, SoKeyboardEvent::MINUS));
    EXPECT_EQ(parts.drawStyle->lineWidth.getValue(), 1.0f);
    EXPECT_TRUE(press(scene, SoKeyboardEvent::MINUS));
    EXPECT_EQ(parts.drawStyle->lineWidth.getValue(), 1.0f);
    for (int i = 1; i <= 18; ++i) {
        EXPECT_TRUE(press(scene, SoKeyboardEvent::EQUAL, i % 2 == 0)); // shift or not
        EXPECT_EQ(parts.drawStyle->lineWidth.getValue(), 1 + 0.5f * float(i));
    }
    EXPECT_TRUE(press(scene, SoKeyboardEvent::EQUAL)); // 10.5 > 10: refused
    EXPECT_EQ(parts.drawStyle->lineWidth.getValue(), 10.0f);
    EXPECT_TRUE(press(scene, SoKeyboardEvent::MINUS));
    EXPECT_EQ(parts.drawStyle->lineWidth.getValue(), 9.5f);
}

TEST_F(SoGeneralSceneTest, NewLineDataStartsAtItsSmallestWidth)
{
    scene->setGLLineData(SbVec2f(1, 10), 0.5f);
    press(scene, SoKeyboardEvent::EQUAL);
    scene->setGLLineData(SbVec2f(4, 5), 0.25f);
    EXPECT_EQ(parts.drawStyle->lineWidth.getValue(), 1.5f);
    press(scene, SoKeyboardEvent::MINUS);
    EXPECT_EQ(parts.drawStyle->lineWidth.getValue(), 1.5f);
    press(scene, SoKeyboardEvent::EQUAL);
    EXPECT_EQ(parts.drawStyle->lineWidth.getValue(), 4.25f);
}

// A width that cannot be compared is within no range.
TEST_F(SoGeneralSceneTest, GranularityThatIsNotANumberChangesNothing)
{
    scene->setGLLineData(SbVec2f(1, 10), std::numeric_limits<float>::quiet_NaN());
    EXPECT_TRUE(press(scene, SoKeyboardEvent::EQUAL));
    EXPECT_EQ(parts.drawStyle->lineWidth.getValue(), 0.0f);
    EXPECT_TRUE(press(scene, SoKeyboardEvent::MINUS));
    EXPECT_EQ(parts.drawStyle->lineWidth.getValue(), 0.0f);
}

// Hooks

TEST_F(SoGeneralSceneTest, PicksAreNotHandledAndUpdateDoesNothing)
{
    EXPECT_FALSE(scene->processPickEvent(nullptr));
    const auto asText = [this] {
        SoOutput output;
        std::vector<char> buffer(1 << 20);
        output.setBuffer(buffer.data(), buffer.size(),
                         [](void* block, std::size_t size) { return std::realloc(block, size); });
        SoWriteAction action(&output);
        action.apply(scene);
        return std::string(buffer.data());
    };
    const std::string before = asText();
    const SbUniqueId id = scene->getNodeId();
    scene->update();
    EXPECT_EQ(asText(), before);
    EXPECT_EQ(scene->getNodeId(), id);
}

namespace {

// Overrides all five; used through the base.
class HookedScene : public SoGeneralScene
{
public:
    std::string calls;

    void getColourMapperLimits(double&, double&) override { calls += "get "; }
    void setColourMapperLimits(double, double) override { calls += "set "; }
    bool processSoEvent(const SoEvent*) override
    {
        calls += "event ";
        return true;
    }
    bool processPickEvent(const SoPickedPoint*) override
    {
        calls += "pick ";
        return true;
    }
    void update() override { calls += "update "; }
};

} // namespace

TEST_F(SoGeneralSceneTest, SubclassesOverrideTheHooks)
{
    NodeRef<HookedScene> hooked(new HookedScene);
    SoGeneralScene* const base = hooked;
    double min = 0, max = 0;
    base->getColourMapperLimits(min, max);
    base->setColourMapperLimits(0, 1);
    EXPECT_TRUE(base->processSoEvent(nullptr));
    EXPECT_TRUE(base->processPickEvent(nullptr));
    base->update();
    EXPECT_EQ(hooked->calls, "get set event pick update ");
}

// Box

TEST_F(SoGeneralSceneTest, BoxIsThatOfAllContent)
{
    const auto boxAt = [](float x) {
        auto* group = new SoSeparator;
        auto* translation = new SoTranslation;
        translation->translation = SbVec3f(x, 0, 0);
        group->addChild(translation);
        group->addChild(new SoCube); // 2 wide
        return group;
    };
    SoGetBoundingBoxAction action(SbViewportRegion(100, 100));
    action.apply(scene);
    EXPECT_TRUE(action.getBoundingBox().isEmpty());

    scene->addSolid(boxAt(10));
    scene->addShaded(boxAt(20));
    scene->addChanging(boxAt(30));
    action.apply(scene);
    EXPECT_EQ(action.getBoundingBox().getMin(), SbVec3f(9, -1, -1));
    EXPECT_EQ(action.getBoundingBox().getMax(), SbVec3f(31, 1, 1));

    scene->addChild(boxAt(-40));
    action.apply(scene);
    EXPECT_EQ(action.getBoundingBox().getMin(), SbVec3f(-41, -1, -1));
    EXPECT_EQ(action.getBoundingBox().getMax(), SbVec3f(31, 1, 1));

    NodeRef<SoSeparator> above(new SoSeparator);
    auto* translation = new SoTranslation;
    translation->translation = SbVec3f(0, 100, 0);
    above->addChild(translation);
    above->addChild(scene);
    action.apply(above);
    EXPECT_EQ(action.getBoundingBox().getMin(), SbVec3f(-41, 99, -1));
    EXPECT_EQ(action.getBoundingBox().getMax(), SbVec3f(31, 101, 1));
}

// The mapper

TEST_F(SoGeneralSceneTest, LimitsAreThoseOfTheMapperInUse)
{
    const auto limits = [this] {
        double min = 7, max = 7;
        scene->getColourMapperLimits(min, max);
        return std::make_pair(min, max);
    };
    EXPECT_EQ(limits(), std::make_pair(0.0, 1.0));
    scene->setColourMapperLimits(5, 2);
    EXPECT_EQ(limits(), std::make_pair(2.0, 5.0));

    ColourMapper mine(-1, 1);
    scene->setColourMapper(&mine);
    EXPECT_EQ(limits(), std::make_pair(-1.0, 1.0));
    scene->setColourMapperLimits(10, 20);
    EXPECT_EQ(mine.getMin(), 10);
    EXPECT_EQ(mine.getMax(), 20);
    mine.setMapping(3, 4); // in place
    EXPECT_EQ(limits(), std::make_pair(3.0, 4.0));

    scene->setColourMapper(nullptr);
    EXPECT_EQ(limits(), std::make_pair(2.0, 5.0));
    scene->setColourMapperLimits(6, 8);
    EXPECT_EQ(limits(), std::make_pair(6.0, 8.0));
    EXPECT_EQ(mine.getMin(), 3);
    EXPECT_EQ(mine.getMax(), 4);
}

// Scalars to colours

namespace {

// Ten entries of the same colour in every field.
SoMaterial* tenEntries()
{
    auto* material = new SoMaterial;
    for (int i = 0; i < 10; ++i) {
        material->ambientColor.set1Value(i, 0.5f, 0.25f, 0.125f);
        material->diffuseColor.set1Value(i, 0.5f, 0.25f, 0.125f);
        material->specularColor.set1Value(i, 0.5f, 0.25f, 0.125f);
    }
    return material;
}

const SbColor OLD(0.5f, 0.25f, 0.125f);

void expectWhiteSpecular(const SoMaterial* material)
{
    ASSERT_EQ(material->specularColor.getNum(), 1);
    EXPECT_EQ(material->specularColor[0], SbColor(1, 1, 1));
}

std::vector<SbColor> entries(const SoMFColor& field)
{
    const SbColor* values = field.getValues(0);
    return {values, values + field.getNum()};
}

// From black to white: the colour is where the value stands between the limits.
ColourMapper greyMapper(double min, double max)
{
    return ColourMapper(min, max, {Rgb(0, 0, 0), Rgb(1, 1, 1)});
}

// Natural cubic spline: second derivatives by elimination in the tridiagonal system
// h[i-1] M[i-1] + 2 (h[i-1] + h[i]) M[i] + h[i] M[i+1] = 6 (s[i] - s[i-1]), M = 0 at both
// ends, h the distances and s the slopes between neighbours.
double naturalSpline(const std::vector<double>& x, const std::vector<double>& y, double position)
{
    const std::size_t n = x.size();
    std::vector<double> M(n, 0.0), diagonal(n, 1.0), right(n, 0.0);
    for (std::size_t i = 1; i + 1 < n; ++i) {
        const double before = x[i] - x[i - 1], after = x[i + 1] - x[i];
        diagonal[i] = 2 * (before + after);
        right[i] = 6 * ((y[i + 1] - y[i]) / after - (y[i] - y[i - 1]) / before);
        if (i > 1) {
            const double factor = before / diagonal[i - 1];
            diagonal[i] -= factor * before;
            right[i] -= factor * right[i - 1];
        }
    }
    for (std::size_t i = n - 2; i >= 1; --i)
        M[i] = (right[i] - (x[i + 1] - x[i]) * M[i + 1]) / diagonal[i];
    std::size_t k = 0;
    while (k + 2 < n && position > x[k + 1])
        ++k;
    const double h = x[k + 1] - x[k], a = (x[k + 1] - position) / h, b = (position - x[k]) / h;
    return a * y[k] + b * y[k + 1] +
           ((a * a * a - a) * M[k] + (b * b * b - b) * M[k + 1]) * h * h / 6;
}

// What a change of each field looked like from outside, in order.
class FieldChanges
{
public:
    explicit FieldChanges(SoMaterial* watched) : material(watched)
    {
        watch(ambient, material->ambientColor);
        watch(diffuse, material->diffuseColor);
        watch(specular, material->specularColor);
    }

    std::vector<std::string> changes;

private:
    void watch(SoFieldSensor& sensor, SoField& field)
    {
        sensor.setFunction([](void* data, SoSensor* reporter) {
            static_cast<FieldChanges*>(data)->report(reporter);
        });
        sensor.setData(this);
        sensor.setPriority(0); // at once
        sensor.attach(&field);
    }
    void report(SoSensor* reporter)
    {
        const bool isAmbient = reporter == &ambient, isDiffuse = reporter == &diffuse;
        const SoMFColor& field = isAmbient   ? material->ambientColor
                                 : isDiffuse ? material->diffuseColor
                                             : material->specularColor;
        changes.push_back((isAmbient   ? "ambient "
                           : isDiffuse ? "diffuse "
                                       : "specular ") +
                          std::to_string(field.getNum()));
    }

    SoMaterial* material;
    SoFieldSensor ambient, diffuse, specular;
};

} // namespace

class ScalarColouringTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { initScenesOnce(); }

    NodeRef<SoMaterial> material{tenEntries()};
};

TEST_F(ScalarColouringTest, ColoursAreWrittenFromTheOffsetOn)
{
    SoGeneralScene::generateMaterial(nullptr, material, 4, {0.0, 0.625, 1.0});
    expectWhiteSpecular(material);
    for (const SoMFColor* field : {&material->ambientColor, &material->diffuseColor}) {
        ASSERT_EQ(field->getNum(), 10);
        EXPECT_EQ((*field)[4], SbColor(0, 0, 1));
        EXPECT_EQ((*field)[5], SbColor(0.5f, 1, 0));
        EXPECT_EQ((*field)[6], SbColor(1, 0, 0));
        for (int i : {0, 1, 2, 3, 7, 8, 9})
            EXPECT_EQ((*field)[i], OLD) << i;
    }
}

TEST_F(ScalarColouringTest, MaterialGrowsByWhatIsMissing)
{
    SoGeneralScene::generateMaterial(nullptr, material, 9, {0.0, 0.5, 1.0});
    for (const SoMFColor* field : {&material->ambientColor, &material->diffuseColor}) {
        ASSERT_EQ(field->getNum(), 12);
        EXPECT_EQ((*field)[8], OLD);
        EXPECT_EQ((*field)[9], SbColor(0, 0, 1));
        EXPECT_EQ((*field)[11], SbColor(1, 0, 0));
    }
}

TEST_F(ScalarColouringTest, NoValuesLeaveOneWhiteSpecularColourOnly)
{
    for (int offset : {0, 4, 100}) {
        SCOPED_TRACE(offset);
        NodeRef<SoMaterial> untouched(tenEntries());
        SoGeneralScene::generateMaterial(nullptr, untouched, offset, {});
        expectWhiteSpecular(untouched);
        EXPECT_EQ(entries(untouched->ambientColor), std::vector<SbColor>(10, OLD));
        EXPECT_EQ(entries(untouched->diffuseColor), std::vector<SbColor>(10, OLD));
    }
    NodeRef<SoMaterial> plain(new SoMaterial);
    SoGeneralScene::generateMaterial(nullptr, plain, 0, {});
    EXPECT_EQ(plain->ambientColor.getNum(), 1);
    EXPECT_EQ(plain->diffuseColor.getNum(), 1);
}

TEST_F(ScalarColouringTest, TheMapperGivenIsUsedAndStays)
{
    ColourMapper mapper = greyMapper(-2, 2);
    SoGeneralScene::generateMaterial(&mapper, material, 0, {-2, -1, 0, 5, NOT_A_NUMBER});
    const float greys[] = {0, 0.25f, 0.5f, 1, 1};
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(material->diffuseColor[i], SbColor(greys[i], greys[i], greys[i])) << i;
    EXPECT_EQ(mapper.getMin(), -2);
    EXPECT_EQ(mapper.getMax(), 2);
    EXPECT_EQ(mapper.getNumSteps(), 2);
}

TEST_F(ScalarColouringTest, ShininessAndTheOtherColoursStay)
{
    material->emissiveColor.setValue(0.1f, 0.2f, 0.3f);
    material->transparency = 0.5f;
    material->shininess = 0.75f;
    SoGeneralScene::generateMaterial(nullptr, material, 0, {0.5});
    SoGeneralScene::interpolateMaterial(nullptr, material, 0, {0, 1, 2}, {0, 1, 0}, {0, 1, 2});
    EXPECT_EQ(material->emissiveColor[0], SbColor(0.1f, 0.2f, 0.3f));
    EXPECT_EQ(material->transparency[0], 0.5f);
    EXPECT_EQ(material->shininess[0], 0.75f);
}

// The specular colours are numbered first and then made one; kept on purpose.
TEST_F(ScalarColouringTest, FieldsChangeInOrder)
{
    const auto inOrder = ElementsAre("specular 7", "specular 1", "ambient 7", "diffuse 7");
    NodeRef<SoMaterial> plain(new SoMaterial);
    {
        FieldChanges watch(plain);
        SoGeneralScene::generateMaterial(nullptr, plain, 4, {0, 0.5, 1});
        EXPECT_THAT(watch.changes, inOrder);
    }
    NodeRef<SoMaterial> interpolated(new SoMaterial);
    {
        FieldChanges watch(interpolated);
        SoGeneralScene::interpolateMaterial(nullptr, interpolated, 4, {0, 1, 2}, {0, 1, 0},
                                            {0, 1, 2});
        EXPECT_THAT(watch.changes, inOrder);
    }
}

TEST_F(ScalarColouringTest, AMillionValuesTakeAFewAllocations)
{
    const std::vector<double> few(1000, 0.3), many(1000000, 0.3);
    const auto allocations = [](const std::vector<double>& values) {
        NodeRef<SoMaterial> coloured(new SoMaterial);
        const std::size_t before = allocationWatch.allocations;
        SoGeneralScene::generateMaterial(nullptr, coloured, 0, values);
        const std::size_t made = allocationWatch.allocations - before;
        EXPECT_EQ(coloured->diffuseColor.getNum(), int(values.size()));
        EXPECT_EQ(coloured->diffuseColor[int(values.size()) - 1],
                  SbColor(0, 1, 0.8f)); // a fifth of the way from cyan to green
        return made;
    };
    const std::size_t forFew = allocations(few);
    EXPECT_GT(forFew, 0u); // they are counted
    EXPECT_LT(forFew, 100u);
    // Coin may grow a field by doubling: a few more.
    EXPECT_LE(allocations(many), forFew + 30);
}

TEST_F(ScalarColouringTest, AMillionInterpolatedValuesTakeAFewAllocations)
{
    std::vector<double> at;
    for (int i = 0; i < 1000000; ++i)
        at.push_back(2e-6 * i);
    NodeRef<SoMaterial> coloured(new SoMaterial);
    const std::size_t before = allocationWatch.allocations;
    SoGeneralScene::interpolateMaterial(nullptr, coloured, 0, {0, 1, 2}, {0, 0.5, 1}, at);
    EXPECT_LT(allocationWatch.allocations - before, 130u);
    EXPECT_EQ(coloured->diffuseColor.getNum(), 1000000);
}

TEST_F(ScalarColouringTest, InterpolationOfLinearDataIsLinear)
{
    const std::vector<double> x = {0, 1, 2.5, 3, 7, 10};
    std::vector<double> y, at, linear;
    for (double position : x)
        y.push_back(0.1 * position - 0.05);
    for (int i = 0; i <= 40; ++i) {
        at.push_back(0.25 * i);
        linear.push_back(0.1 * at.back() - 0.05);
    }
    NodeRef<SoMaterial> expected(new SoMaterial);
    SoGeneralScene::generateMaterial(nullptr, expected, 0, linear);
    SoGeneralScene::interpolateMaterial(nullptr, material, 0, x, y, at);
    ASSERT_EQ(material->diffuseColor.getNum(), 41);
    for (int i = 0; i <= 40; ++i) {
        SCOPED_TRACE(i);
        EXPECT_TRUE(material->diffuseColor[i].equals(expected->diffuseColor[i], 1e-6f));
        EXPECT_EQ(material->ambientColor[i], material->diffuseColor[i]);
    }
    expectWhiteSpecular(material);
}

TEST_F(ScalarColouringTest, InterpolationIsTheNaturalCubicSpline)
{
    const std::vector<double> x = {-1, 0.5, 1, 2.25, 4, 4.5, 7};
    const std::vector<double> y = {0, 3, -2, 1, 1, 5, -1};
    std::vector<double> at;
    for (int i = 0; i <= 64; ++i)
        at.push_back(-1 + 0.125 * i);
    std::reverse(at.begin() + 20, at.end()); // positions need no order
    ColourMapper mapper = greyMapper(-10, 10);
    SoGeneralScene::interpolateMaterial(&mapper, material, 2, x, y, at);
    ASSERT_EQ(material->diffuseColor.getNum(), 67);
    ASSERT_EQ(material->ambientColor.getNum(), 67);
    EXPECT_EQ(material->diffuseColor[0], OLD);
    EXPECT_EQ(material->diffuseColor[1], OLD);
    double departure = 0; // from the straight lines between the samples
    for (int i = 0; i <= 64; ++i) {
        SCOPED_TRACE(i);
        const double value = naturalSpline(x, y, at[std::size_t(i)]);
        const auto grey = float((value + 10) / 20);
        EXPECT_NEAR(material->diffuseColor[i + 2][0], grey, 1e-6);
        EXPECT_NEAR(material->diffuseColor[i + 2][2], grey, 1e-6);
        EXPECT_EQ(material->ambientColor[i + 2], material->diffuseColor[i + 2]);
        if (at[std::size_t(i)] > 4.5)
            departure =
                std::max(departure, std::abs(value - (5 - 2.4 * (at[std::size_t(i)] - 4.5))));
    }
    EXPECT_GT(departure, 0.5);
}

TEST_F(ScalarColouringTest, TheShorterOfPositionsAndValuesDecides)
{
    ColourMapper mapper = greyMapper(-10, 10);
    const std::vector<double> at = {0.5, 1.5, 1.75};
    SoGeneralScene::interpolateMaterial(&mapper, material, 0, {0, 1, 2, 3, 4}, {0, 4, 0}, at);
    NodeRef<SoMaterial> other(tenEntries());
    SoGeneralScene::interpolateMaterial(&mapper, other, 0, {0, 1, 2}, {0, 4, 0, 9, -9, 3}, at);
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        const double value = naturalSpline({0, 1, 2}, {0, 4, 0}, at[std::size_t(i)]);
        EXPECT_NEAR(material->diffuseColor[i][0], (value + 10) / 20, 1e-6);
        EXPECT_EQ(other->diffuseColor[i], material->diffuseColor[i]);
    }
}

TEST_F(ScalarColouringTest, ColoursWithoutAMaterialAreThoseThatItWouldHave)
{
    ColourMapper mapper = greyMapper(-2, 2);
    const std::vector<double> x = {0, 1, 3, 4}, y = {-2, 1, 0, 2}, at = {0, 0.5, 1, 2.25, 4};
    for (const bool isGiven : {true, false}) {
        ColourMapper* const used = isGiven ? &mapper : nullptr;
        NodeRef<SoMaterial> mapped(new SoMaterial), interpolated(new SoMaterial);
        SoGeneralScene::generateMaterial(used, mapped, 0, y);
        SoGeneralScene::interpolateMaterial(used, interpolated, 0, x, y, at);
        EXPECT_EQ(SoGeneralScene::generateColours(used, y), entries(mapped->diffuseColor));
        EXPECT_EQ(SoGeneralScene::interpolateColours(used, x, y, at),
                  entries(interpolated->diffuseColor));
    }
    EXPECT_THAT(SoGeneralScene::generateColours(nullptr, {}), ElementsAre());
    EXPECT_THAT(SoGeneralScene::interpolateColours(nullptr, {0, 1}, {0, 1}, at), ElementsAre());
    EXPECT_THAT(SoGeneralScene::interpolateColours(nullptr, x, y, {0, 1}), ElementsAre());
    EXPECT_EQ(SoGeneralScene::interpolateColours(nullptr, {0, 2, 1}, {0, 1, 0}, at),
              std::vector<SbColor>(at.size(), SbColor(0, 0, 0)));
}

TEST_F(ScalarColouringTest, TooFewSamplesOrPositionsTouchNothing)
{
    FieldChanges watch(material);
    const std::vector<double> three = {0, 1, 2}, two = {0, 1}, none;
    SoGeneralScene::interpolateMaterial(nullptr, material, 0, two, two, three);
    SoGeneralScene::interpolateMaterial(nullptr, material, 0, three, two, three);
    SoGeneralScene::interpolateMaterial(nullptr, material, 0, two, three, three);
    SoGeneralScene::interpolateMaterial(nullptr, material, 0, three, three, two);
    SoGeneralScene::interpolateMaterial(nullptr, material, 0, three, three, none);
    SoGeneralScene::interpolateMaterial(nullptr, material, 0, none, none, none);
    // Not even looked at: unsorted.
    SoGeneralScene::interpolateMaterial(nullptr, material, 0, {2, 1}, two, three);
    EXPECT_THAT(watch.changes, ElementsAre());
    EXPECT_EQ(material->specularColor.getNum(), 10);
    EXPECT_EQ(material->diffuseColor.getNum(), 10);
}

struct UnorderedCase
{
    const char* name;
    std::vector<double> x;
};

class UnorderedPositionsTest : public ScalarColouringTest,
                               public testing::WithParamInterface<UnorderedCase>
{
};

TEST_P(UnorderedPositionsTest, MakeASingleBlack)
{
    SoGeneralScene::interpolateMaterial(nullptr, material, 3, GetParam().x, {1, 1, 1, 1},
                                        {0, 1, 2, 3});
    expectWhiteSpecular(material);
    EXPECT_EQ(entries(material->ambientColor), std::vector<SbColor>{SbColor(0, 0, 0)});
    EXPECT_EQ(entries(material->diffuseColor), std::vector<SbColor>{SbColor(0, 0, 0)});
}

INSTANTIATE_TEST_SUITE_P(
    ScalarColouring, UnorderedPositionsTest,
    testing::Values(UnorderedCase{"Swapped", {0, 2, 1, 3}}, UnorderedCase{"Falling", {3, 2, 1, 0}},
                    UnorderedCase{"NotANumberFirst", {NOT_A_NUMBER, 1, 2, 3}},
                    UnorderedCase{"NotANumberInside", {0, NOT_A_NUMBER, 2, 3}},
                    UnorderedCase{"NotANumberLast", {0, 1, 2, NOT_A_NUMBER}},
                    // The whole of x is looked at, whatever y needs.
                    UnorderedCase{"SwappedBeyondTheValues", {0, 1, 2, 3, 5, 4}},
                    UnorderedCase{"NotANumberBeyondTheValues", {0, 1, 2, 3, NOT_A_NUMBER}}),
    [](const auto& paramInfo) { return std::string(paramInfo.param.name); });

// GSL's errors

namespace {

int handledErrors = 0;
void countError(const char*, const char*, int, int) { ++handledErrors; }

// The handler in force, which is left as it is.
gsl_error_handler_t* currentErrorHandler()
{
    gsl_error_handler_t* const handler = gsl_set_error_handler_off();
    gsl_set_error_handler(handler);
    return handler;
}

} // namespace

TEST_F(ScalarColouringTest, ErrorHandlerOfGslIsNotTouched)
{
    EXPECT_EQ(currentErrorHandler(), nullptr); // GSL's own
    SoGeneralScene::interpolateMaterial(nullptr, material, 0, {0, 1, 2}, {0, 1, 0}, {0, 1, 2});
    SoGeneralScene::interpolateMaterial(nullptr, material, 0, {0, 2, 1}, {0, 1, 0}, {0, 1, 2});
    EXPECT_EQ(currentErrorHandler(), nullptr);

    gsl_error_handler_t* const before = gsl_set_error_handler(countError);
    handledErrors = 0;
    SoGeneralScene::interpolateMaterial(nullptr, material, 0, {0, 1, 2}, {0, 0.5, 0},
                                        {-1, 1, 2.5, 2});
    EXPECT_EQ(currentErrorHandler(), &countError);
    gsl_set_error_handler(before);
    EXPECT_EQ(handledErrors, 2); // -1 and 2.5 are outside
    // GSL answers not-a-number for those.
    EXPECT_EQ(material->diffuseColor[0], SbColor(1, 1, 1));
    EXPECT_EQ(material->diffuseColor[1], SbColor(0, 1, 0));
    EXPECT_EQ(material->diffuseColor[2], SbColor(1, 1, 1));
    EXPECT_EQ(material->diffuseColor[3], SbColor(0, 0, 1));
}

TEST_F(ScalarColouringTest, ValuesThatAreNotNumbersAreWhite)
{
    SoGeneralScene::interpolateMaterial(nullptr, material, 0, {0, 1, 2}, {0, NOT_A_NUMBER, 0},
                                        {0.5, 1.5, 0.25});
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(material->diffuseColor[i], SbColor(1, 1, 1)) << i;
    SoGeneralScene::interpolateMaterial(nullptr, material, 0, {0, 1, 2}, {0, 0.5, 0},
                                        {1, NOT_A_NUMBER, 2});
    EXPECT_EQ(material->diffuseColor[0], SbColor(0, 1, 0));
    EXPECT_EQ(material->diffuseColor[1], SbColor(1, 1, 1));
    EXPECT_EQ(material->diffuseColor[2], SbColor(0, 0, 1));
}

class ScalarColouringDeathTest : public testing::Test
{
protected:
    void SetUp() override { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

TEST_F(ScalarColouringDeathTest, EqualNeighboursGoToGslsErrorHandler)
{
    EXPECT_DEATH(
        {
            initScenesOnce();
            NodeRef<SoMaterial> material(new SoMaterial);
            SoGeneralScene::interpolateMaterial(nullptr, material, 0, {0, 1, 1, 2}, {0, 1, 0, 1},
                                                {0, 1, 2});
        },
        "strictly increasing");
}

TEST_F(ScalarColouringDeathTest, PositionsOutsideGoToGslsErrorHandler)
{
    EXPECT_DEATH(
        {
            initScenesOnce();
            NodeRef<SoMaterial> material(new SoMaterial);
            SoGeneralScene::interpolateMaterial(nullptr, material, 0, {0, 1, 2}, {0, 1, 0},
                                                {0, 1, 3});
        },
        "gsl");
}
