// SPDX-License-Identifier: GPL-3.0-or-later
// The registration of the nodes of birods and glyphs.
#include <cstdlib>

#include <Inventor/SoDB.h>

#include <SoArrow.h>
#include <SoBirod.h>
#include <SoFrame.h>
#include <SoMarker.h>
#include <global.h>

#include "support/registration.h"

namespace {

// What comes before each class, the name of its parent, and an instance.
struct Birod
{
    using Node = SoBirod;
    static constexpr const char* NAME = "SoBirod";
    static constexpr const char* PARENT = "SoMeshShape";
    static void prepare() { SoMeshShape::initClass(); }
    static Node* make()
    {
        return new SoBirod(0.1, 0.1, 0.5, 0.5, 0, 0, 8, 2, true, true, true, true, false);
    }
};

struct Arrow
{
    using Node = SoArrow;
    static constexpr const char* NAME = "SoArrow";
    static constexpr const char* PARENT = "Separator";
    static void prepare() {}
    static Node* make() { return new SoArrow({0, 0, 0}, {1, 0, 0}, 0.1, 0.2, 0.3); }
};

struct Frame
{
    using Node = SoFrame;
    static constexpr const char* NAME = "SoFrame";
    static constexpr const char* PARENT = "Separator";
    static void prepare() {}
    static Node* make() { return new SoFrame({1, 0, 0}, {0, 1, 0}, {0, 0, 1}); }
};

struct Marker
{
    using Node = SoMarker;
    static constexpr const char* NAME = "SoMarker";
    static constexpr const char* PARENT = "Separator";
    static void prepare() { SoArrow::initClass(); }
    static Node* make() { return new SoMarker(1, {1, 0, 0}, 1, 0, SoMarker::SPHERE); }
};

template <typename Class>
class NodeRegistrationDeathTest : public RegistrationDeathTest
{
};

struct Names
{
    template <typename Class>
    static std::string GetName(int)
    {
        return Class::NAME;
    }
};

using Classes = testing::Types<Birod, Arrow, Frame, Marker>;
TYPED_TEST_SUITE(NodeRegistrationDeathTest, Classes, Names);

} // namespace

TYPED_TEST(NodeRegistrationDeathTest, Twice)
{
    const std::string name = TypeParam::NAME;
    EXPECT_DEATH(
        {
            SoDB::init();
            TypeParam::prepare();
            TypeParam::Node::initClass();
            TypeParam::Node::initClass();
        },
        assertionIn(name, name + R"(::classTypeId == SoType::badType() && "don't init() twice!")"));
}

TYPED_TEST(NodeRegistrationDeathTest, BeforeItsParent)
{
    EXPECT_DEATH(
        {
            SoDB::init();
            TypeParam::prepare();
            SoType::removeType(TypeParam::PARENT);
            TypeParam::Node::initClass();
        },
        assertionIn(TypeParam::NAME,
                    R"(parentType != SoType::badType() && "you forgot init() on parentclass!")"));
}

TYPED_TEST(NodeRegistrationDeathTest, ConstructedBefore)
{
    const std::string name = TypeParam::NAME;
    EXPECT_DEATH(
        {
            SoDB::init();
            TypeParam::prepare();
            TypeParam::make()->ref();
        },
        assertionIn(name, name + R"(::classTypeId != SoType::badType() && "you forgot init()!")"));
}

TYPED_TEST(NodeRegistrationDeathTest, NotByItselfAndTakenBackByCoinsCleanUp)
{
    EXPECT_EXIT(
        {
            SoDB::init();
            TypeParam::prepare();
            const bool none = SoType::fromName(TypeParam::NAME).isBad() &&
                              TypeParam::Node::getClassTypeId().isBad();
            TypeParam::Node::initClass();
            const bool registered = !TypeParam::Node::getClassTypeId().isBad();
            SoNode* const made = TypeParam::make();
            made->ref();
            made->unref();
            SoDB::finish();
            const bool takenBack = TypeParam::Node::getClassTypeId().isBad();
            std::_Exit(none && registered && takenBack ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

using InitStrandviewClassesDeathTest = RegistrationDeathTest;

TEST_F(InitStrandviewClassesDeathTest, RegistersWhatIsNotRegisteredYetWithoutTheViewer)
{
    EXPECT_EXIT(
        {
            SoDB::init();
            SoMeshShape::initClass();
            initStrandviewClasses();
            initStrandviewClasses();
            bool all = true;
            for (const char* name : {"SoMeshShape", "SoRod", "SoBirod", "SoArrow", "SoFrame",
                                     "SoMarker", "SoNucleobase", "SoDNA", "SoGeneralScene"})
                all &= !SoType::fromName(name).isBad();
            std::_Exit(all && SoType::fromName("SoQtGeneralViewer").isBad() ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}
