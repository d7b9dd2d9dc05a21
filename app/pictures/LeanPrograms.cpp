// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/LeanPrograms.h"

#include <utility>
#include <vector>

#include <Inventor/SoPath.h>
#include <Inventor/actions/SoSearchAction.h>
#include <Inventor/lists/SoPathList.h>
#include <Inventor/nodes/SoShaderObject.h>
#include <Inventor/nodes/SoShaderParameter.h>
#include <Inventor/nodes/SoShaderProgram.h>

namespace strandview {

namespace {

// The conditions of a program's texts, and what each is worth.
using Values = std::vector<std::pair<std::string, std::string>>;

// In a loop over i, whose count compilers unroll: for which i a number is above 0.
std::string whereAbove0(const SoMFFloat& numbers)
{
    std::string where;
    for (int i = 0; i < numbers.getNum(); ++i) {
        if (numbers[i] > 0)
            where += (where.empty() ? "i == " : " || i == ") + std::to_string(i);
    }
    return where.empty() ? "false" : "(" + where + ")";
}

void addValues(const SoShaderObject& shader, Values& values)
{
    for (int i = 0; i < shader.parameter.getNum(); ++i) {
        SoNode* node = shader.parameter[i];
        if (const auto* flag = dynamic_cast<SoShaderParameter1i*>(node))
            values.emplace_back(std::string(flag->name.getValue().getString()) + " > 0",
                                flag->value.getValue() > 0 ? "true" : "false");
        else if (const auto* array = dynamic_cast<SoShaderParameterArray1f*>(node))
            values.emplace_back(std::string(array->name.getValue().getString()) + "[i] > 0.0",
                                whereAbove0(array->value));
    }
}

std::string replaced(std::string text, const Values& values)
{
    for (const auto& [condition, value] : values) {
        for (std::size_t at = text.find(condition); at != std::string::npos;
             at = text.find(condition, at + value.size()))
            text.replace(at, condition.size(), value);
    }
    return text;
}

} // namespace

LeanPrograms::~LeanPrograms()
{
    for (const auto& [shader, text] : texts)
        giveBack(*shader, text);
}

void LeanPrograms::use(SoNode* graph)
{
    SoSearchAction search;
    search.setType(SoShaderProgram::getClassTypeId());
    search.setInterest(SoSearchAction::ALL);
    search.setSearchingAll(TRUE);
    search.apply(graph);
    std::set<const SoShaderObject*> met;
    for (int i = 0; i < search.getPaths().getLength(); ++i)
        make(static_cast<const SoShaderProgram&>(*search.getPaths()[i]->getTail()), met);
    for (auto text = texts.begin(); text != texts.end();) {
        if (met.count(text->first) > 0) {
            ++text;
        } else {
            giveBack(*text->first, text->second);
            text = texts.erase(text);
        }
    }
}

void LeanPrograms::giveBack(SoShaderObject& shader, const std::string& text)
{
    shader.sourceProgram = text.c_str();
    shader.unref();
}

// Parameters belong to a whole program, whichever of its shaders they hang on.
void LeanPrograms::make(const SoShaderProgram& program, std::set<const SoShaderObject*>& met)
{
    Values values;
    std::vector<SoShaderObject*> shaders;
    for (int i = 0; i < program.shaderObject.getNum(); ++i) {
        auto* shader = dynamic_cast<SoShaderObject*>(program.shaderObject[i]);
        if (!shader || met.count(shader) > 0)
            continue;
        addValues(*shader, values);
        if (shader->sourceType.getValue() == SoShaderObject::GLSL_PROGRAM)
            shaders.push_back(shader);
    }
    for (SoShaderObject* shader : shaders) {
        met.insert(shader);
        const auto [own, isNew] =
            texts.emplace(shader, shader->sourceProgram.getValue().getString());
        if (isNew)
            shader->ref();
        const SbString lean(replaced(own->second, values).c_str());
        if (shader->sourceProgram.getValue() != lean) // which has it made again
            shader->sourceProgram = lean;
    }
}

} // namespace strandview
