// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_DRAWNCOARSELY_H
#define STRANDVIEW_TESTS_DRAWNCOARSELY_H

#include <memory>
#include <vector>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/nodes/SoCallback.h>
#include <Inventor/nodes/SoGroup.h>
#include <SoMeshShape.h>

#include "support/graph.h"

/// Looks on while rods and birods are drawn: each has a callback before it as long as this lives.
class DrawnCoarsely
{
public:
    struct Drawing
    {
        const SoAction* action; ///< a viewer has its own
        const SoMeshShape* shape;
        bool isCoarse; ///< leaves out rows

        bool operator==(const Drawing& other) const
        {
            return shape == other.shape && isCoarse == other.isCoarse;
        }
    };

    explicit DrawnCoarsely(SoNode* graph)
    {
        SoSearchAction search;
        search.setType(SoMeshShape::getClassTypeId());
        search.setInterest(SoSearchAction::ALL);
        search.setSearchingAll(TRUE);
        search.apply(graph);
        for (int i = 0; i < search.getPaths().getLength(); ++i) {
            const SoPath& path = *search.getPaths()[i];
            auto* const parent = static_cast<SoGroup*>(path.getNodeFromTail(1));
            watched.push_back(std::make_unique<Watched>());
            *watched.back() = {this, static_cast<SoMeshShape*>(path.getTail()), parent,
                               new SoCallback};
            watched.back()->callback->setCallback(note, watched.back().get());
            parent->ref();
            parent->insertChild(watched.back()->callback, parent->findChild(path.getTail()));
        }
    }
    ~DrawnCoarsely()
    {
        for (const auto& one : watched) {
            one->parent->removeChild(one->callback);
            one->parent->unref();
        }
    }
    DrawnCoarsely(const DrawnCoarsely&) = delete;
    DrawnCoarsely& operator=(const DrawnCoarsely&) = delete;

    std::vector<Drawing> drawings; ///< since then, in their order

private:
    struct Watched
    {
        DrawnCoarsely* self;
        const SoMeshShape* shape;
        SoGroup* parent;
        SoCallback* callback;
    };

    static void note(void* of, SoAction* action)
    {
        struct Opened : SoMeshShape
        {
            static bool of(const SoMeshShape& shape) { return (shape.*&Opened::leavesOutRows)(); }
        };
        const auto& [self, shape, parent, callback] = *static_cast<Watched*>(of);
        if (action->isOfType(SoGLRenderAction::getClassTypeId()))
            self->drawings.push_back({action, shape, Opened::of(*shape)});
    }

    std::vector<std::unique_ptr<Watched>> watched;
};

#endif
