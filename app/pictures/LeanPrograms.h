// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_PICTURES_LEANPROGRAMS_H
#define STRANDVIEW_APP_PICTURES_LEANPROGRAMS_H

#include <map>
#include <set>
#include <string>

class SoNode;
class SoShaderObject;
class SoShaderProgram;

namespace strandview {

/// Has a graph drawn, while it lives, through shader programs in which only what the scene's
/// parameters switch on is left, as they were when use() was called last. A condition of the
/// scene's texts that asks for a light, its highlight, the texture or the perspective is replaced
/// by what it was worth: a software driver works out both sides of every condition. So are the
/// directions of lights, whose length it would bring to 1 in every pixel, and powers whose
/// exponents are whole, which it would take by logarithms. Pixels are the same, but for what is
/// rounded in powers: fewer than twenty in a million are one of 255 levels brighter or darker.
class LeanPrograms
{
public:
    LeanPrograms() = default;
    /// The programs have their own texts again.
    ~LeanPrograms();
    LeanPrograms(const LeanPrograms&) = delete;
    LeanPrograms& operator=(const LeanPrograms&) = delete;

    /// To be called before a graph is drawn. Programs that are as they were, as between the
    /// pictures of a series, are not made again; those of graphs before have their own texts.
    void use(SoNode* graph);

private:
    static void giveBack(SoShaderObject& shader, const std::string& text);
    void make(const SoShaderProgram& program, std::set<const SoShaderObject*>& met);

    std::map<SoShaderObject*, std::string> texts; ///< their own, of shaders that are referenced
};

} // namespace strandview

#endif
