// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_SAMPLENODES_H
#define STRANDVIEW_TESTS_SAMPLENODES_H

#include <cmath>
#include <string>
#include <vector>

#include <Inventor/SbRotation.h>
#include <Inventor/SoInput.h>
#include <Inventor/SoOutput.h>
#include <Inventor/actions/SoWriteAction.h>
#include <Inventor/nodes/SoSeparator.h>

#include <SoArrow.h>
#include <SoBirod.h>
#include <SoDNA.h>
#include <SoFrame.h>
#include <SoMarker.h>
#include <SoNucleobase.h>
#include <SoRod.h>

#include "IdealDna.h"

/// Points and frames of a bent curve, moved by `shift` along x.
struct BentCurve
{
    explicit BentCurve(double shift = 0, std::size_t size = 5)
    {
        for (std::size_t i = 0; i < size; ++i) {
            const double angle = 0.3 * double(i);
            points.emplace_back(shift, 1 - std::cos(angle), std::sin(angle));
            rotations.emplace_back(-std::sin(angle / 2), 0, 0, std::cos(angle / 2));
        }
    }

    std::vector<algebra3d::Vector3<double>> points;
    std::vector<algebra3d::Quaternion<double>> rotations;
};

inline SoRod* makeBentRod()
{
    auto* rod = new SoRod(0.1, 0.3, 6, 3, true, true, false);
    const BentCurve curve;
    rod->setData(curve.points, curve.rotations);
    return rod;
}

inline SoBirod* makeBentBirod()
{
    auto* birod = new SoBirod(0.1, 0.05, 0.2, 0.1, 0.02, 0.03, 6, 2, true, true, true, true, false);
    const BentCurve average, left(-0.4), right(0.4);
    birod->setData(average.points, average.rotations, left.points, left.rotations, right.points,
                   right.rotations);
    return birod;
}

inline SoDNA* makeShortDna()
{
    auto* dna = new SoDNA;
    IdealDna("ATGC").give(*dna);
    dna->generate();
    dna->showBasePairBoxes(true);
    return dna;
}

/// One of each class of content.
inline std::vector<SoNode*> makeOneOfEach()
{
    return {makeBentRod(),
            makeBentBirod(),
            new SoArrow({0, 0, 0}, {1, 0.5, 0}, 0.1, 0.2, 0.3),
            new SoFrame({1, 0, 0}, {0, 1, 0}, {0, 0, 1}),
            new SoMarker(7, {1, 0, 0}, 2, 0.5, SoMarker::CROSS),
            new SoNucleobase('G'),
            makeShortDna()};
}

/// What a file of the graph holds.
inline std::string writtenText(SoNode* root)
{
    SoOutput output;
    void* memory = std::malloc(1 << 16);
    output.setBuffer(memory, 1 << 16, std::realloc);
    SoWriteAction(&output).apply(root);
    size_t size = 0;
    output.getBuffer(memory, size);
    const std::string text(static_cast<char*>(memory), size);
    std::free(memory);
    return text;
}

#endif
