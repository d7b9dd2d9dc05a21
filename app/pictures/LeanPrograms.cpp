// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/LeanPrograms.h"

#include <charconv>
#include <cmath>
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

// Of a highlight: its width halves while this grows fourfold, and what is multiplied grows with it.
const float LARGEST_EXPONENT = 128;

// The conditions and terms of a program's texts, and what each is worth.
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

// So exact that it is read as the same number. Not a number's own text, nor that of what is
// infinite, is no GLSL.
std::string textOf(float number)
{
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, number).ptr};
}

// In a loop over i: what is known for some, and the term itself for others.
template <typename TextOf>
std::string known(int count, const TextOf& textOfEntry, const std::string& term)
{
    std::string text = term;
    for (int i = count - 1; i >= 0; --i) {
        const std::string entry = textOfEntry(i);
        if (!entry.empty())
            text = "(i == " + std::to_string(i) + " ? " + entry + " : " + text + ")";
    }
    return text;
}

// What has no direction, or none that is finite, is left to the driver.
std::string directionOf(const SbVec3f& v)
{
    if (!std::isfinite(v.dot(v)) || !(v.dot(v) > 0))
        return "";
    return "normalize(-vec3(" + textOf(v[0]) + ", " + textOf(v[1]) + ", " + textOf(v[2]) + "))";
}

// By squaring; compilers make what is written twice once.
std::string powerOf(const std::string& base, int exponent)
{
    if (exponent == 1)
        return base;
    const std::string half = powerOf(base, exponent / 2);
    return "(" + half + " * " + half + (exponent % 2 ? " * " + base : "") + ")";
}

// Of a number that is not whole it stays a power.
std::string powerOf(const std::string& base, float exponent)
{
    const bool isWhole =
        exponent >= 1 && exponent <= LARGEST_EXPONENT && exponent == std::floor(exponent);
    return isWhole ? powerOf(base, int(exponent)) : "";
}

void addFlag(const std::string& name, const SoShaderParameter1i& flag, Values& values)
{
    values.emplace_back(name + " > 0", flag.value.getValue() > 0 ? "true" : "false");
}

void addNumbers(const std::string& name, const SoMFFloat& numbers, Values& values)
{
    values.emplace_back(name + "[i] > 0.0", whereAbove0(numbers));
    const std::string power = "pow(h, " + name + "[i])";
    values.emplace_back(power, known(
                                   numbers.getNum(),
                                   [&numbers](int i) { return powerOf("h", numbers[i]); }, power));
}

void addDirections(const std::string& name, const SoMFVec3f& directions, Values& values)
{
    const std::string unit = "normalize(-" + name + "[i])";
    values.emplace_back(unit,
                        known(
                            directions.getNum(),
                            [&directions](int i) { return directionOf(directions[i]); }, unit));
}

void addValues(const SoShaderObject& shader, Values& values)
{
    for (int i = 0; i < shader.parameter.getNum(); ++i) {
        SoNode* node = shader.parameter[i];
        if (const auto* flag = dynamic_cast<SoShaderParameter1i*>(node))
            addFlag(flag->name.getValue().getString(), *flag, values);
        else if (const auto* numbers = dynamic_cast<SoShaderParameterArray1f*>(node))
            addNumbers(numbers->name.getValue().getString(), numbers->value, values);
        else if (const auto* vectors = dynamic_cast<SoShaderParameterArray3f*>(node))
            addDirections(vectors->name.getValue().getString(), vectors->value, values);
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
