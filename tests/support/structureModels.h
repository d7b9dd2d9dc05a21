// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_STRUCTUREMODELS_H
#define STRANDVIEW_TESTS_STRUCTUREMODELS_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <strandview/formats/Source.h>
#include <strandview/formats/structures/StructureReader.h>
#include <strandview/model/Configuration.h>
#include <strandview/model/Series.h>

#include "support/structureTexts.h"

namespace strandview {

/// A duplex that is one model after the other a little farther along x.
inline std::vector<TestAtom> modelsOf(const std::string& letters, int count)
{
    std::vector<TestAtom> atoms;
    for (int model = 1; model <= count; ++model)
        for (TestAtom atom : duplexAtoms(letters)) {
            atom.model = model;
            atom.place.x += model;
            atoms.push_back(atom);
        }
    return atoms;
}

/// What tells a model among those: the first place of its DNA, or -1 if it has none.
inline double placeOf(const std::optional<Configuration>& model)
{
    return model && !model->dnas.empty() ? model->dnas[0].pairPoints[0].x : -1;
}

inline std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    for (std::size_t at = text.find(from); at != text.npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

struct OpenedStructures
{
    std::unique_ptr<Series> series;
    ReadReport report;
};

inline OpenedStructures openText(const std::string& text, const ReadOptions& options = {})
{
    OpenedStructures opened;
    opened.series = openStructures(Source::ofBytes("here", text), options, opened.report);
    return opened;
}

inline ReadOptions atOnce()
{
    ReadOptions options;
    options.atOnce = true;
    return options;
}

} // namespace strandview

#endif
