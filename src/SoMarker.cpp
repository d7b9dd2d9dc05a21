// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoMarker.h>

#include <cmath>

#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoScale.h>
#include <Inventor/nodes/SoSphere.h>
#include <Inventor/nodes/SoSwitch.h>
#include <Inventor/nodes/SoTranslation.h>

#include <SoArrow.h>
#include <global.h>
#include <toCoin.h>

#include "detail/copyOf.h"

using Vector = algebra3d::Vector3<double>;

// Without the macro for the whole source: the factory has arguments to pass.
SO_NODE_ABSTRACT_SOURCE(SoMarker);

void SoMarker::initClass() { SO_NODE_INIT_CLASS(SoMarker, SoSeparator, "SoSeparator"); }

void* SoMarker::createInstance() { return new SoMarker(-1, {1, 1, 1}, 0, 1, SPHERE); }

SoMarker::SoMarker(long long number, const Vector& colour, double size, double transparency,
                   Shape shape)
    : id(number),
      material(createMaterial(colour, colour, Vector(1, 1, 1))),
      shapeSwitch(new SoSwitch),
      sphere(new SoSphere),
      cube(new SoCube),
      scale(new SoScale),
      cross(new SoSeparator)
{
    SO_NODE_CONSTRUCTOR(SoMarker);

    material->transparency = float(transparency);
    addChild(material);

    sphere->ref();
    cube->ref();
    scale->ref();
    cross->ref();
    cross->addChild(scale);
    for (const Vector& end : {Vector(0, 0, 0.8), Vector(0, 0.8, 0), Vector(0.8, 0, 0)})
        cross->addChild(new SoArrow(Vector() - end, end, 0.2, 0, 0)); // a bar

    shapeSwitch->addChild(sphere);
    shapeSwitch->addChild(cube);
    shapeSwitch->addChild(cross);
    setSize(size);
    setShape(shape);
    addChild(shapeSwitch);
}

SoMarker::~SoMarker()
{
    sphere->unref();
    cube->unref();
    scale->unref();
    cross->unref();
}

SoSeparator* SoMarker::wrap(SoMarker* marker, SoScale* scale, const Vector& position)
{
    auto* place = new SoTranslation;
    place->translation = toSbVec3f(position);
    auto* placed = new SoSeparator;
    placed->addChild(place);
    placed->addChild(scale);
    placed->addChild(marker);
    return placed;
}

long long SoMarker::getId() const { return id; }

void SoMarker::setId(long long number) { id = number; }

void SoMarker::setShape(Shape shape)
{
    if (shape >= 0 && shape < NUM_SHAPES)
        shapeSwitch->whichChild = shape;
}

SoMarker::Shape SoMarker::getShape() const { return Shape(shapeSwitch->whichChild.getValue()); }

void SoMarker::setSize(double size)
{
    const auto edge = size == 0 ? 1.0f : float(std::abs(size));
    sphere->radius = 0.5f * edge;
    cube->width = edge;
    cube->height = edge;
    cube->depth = edge;
    scale->scaleFactor = SbVec3f(edge, edge, edge);
}

double SoMarker::getSize() const { return double(cube->width.getValue()); }

void SoMarker::setTransparency(double transparency)
{
    if (transparency >= 0 && transparency <= 1)
        material->transparency = float(transparency);
}

double SoMarker::getTransparency() const { return double(material->transparency[0]); }

void SoMarker::setColour(double r, double g, double b)
{
    const SbColor colour{float(r), float(g), float(b)};
    material->ambientColor = colour;
    material->diffuseColor = colour;
}

void SoMarker::getColour(double& r, double& g, double& b) const
{
    const SbColor& colour = material->ambientColor[0];
    r = double(colour[0]);
    g = double(colour[1]);
    b = double(colour[2]);
}

void SoMarker::copyContents(const SoFieldContainer* from, SbBool copyConnections)
{
    SoSeparator::copyContents(from, copyConnections);
    const auto* original = static_cast<const SoMarker*>(from);
    id = original->id;
    material = copyOf(original->material, copyConnections);
    shapeSwitch = copyOf(original->shapeSwitch, copyConnections);
    holdCopyOf(original->sphere, sphere, copyConnections);
    holdCopyOf(original->cube, cube, copyConnections);
    holdCopyOf(original->scale, scale, copyConnections);
    holdCopyOf(original->cross, cross, copyConnections);
}

const char* SoMarker::getFileFormatName() const { return "Separator"; }
