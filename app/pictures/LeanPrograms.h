// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_PICTURES_LEANPROGRAMS_H
#define STRANDVIEW_APP_PICTURES_LEANPROGRAMS_H

#include <map>
#include <string>

class SoNode;
class SoShaderObject;
class SoShaderProgram;

namespace strandview {

/// Draws a graph, while it lives, through shader programs in which only what the scene's parameters
/// switch on is left: a condition of the scene's texts that asks for a light, its highlight, the
/// texture or the perspective is replaced by what it is worth at present. A software driver works
/// out both sides of every condition. Pixels are the same; a parameter that is changed meanwhile
/// is not seen.
class LeanPrograms
{
public:
    explicit LeanPrograms(SoNode* graph);
    /// The programs have their own texts again.
    ~LeanPrograms();
    LeanPrograms(const LeanPrograms&) = delete;
    LeanPrograms& operator=(const LeanPrograms&) = delete;

private:
    void make(const SoShaderProgram& program);

    std::map<SoShaderObject*, std::string> texts; // their own
};

} // namespace strandview

#endif
