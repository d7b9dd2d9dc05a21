// SPDX-License-Identifier: GPL-3.0-or-later
#include <LightingDialog.h>

#include <algorithm>

#include <Inventor/nodes/SoShaderParameter.h>

#include "ui_LightingDialog.h"

namespace {

const int LIGHT_COUNT = 3;

void showValue(QLineEdit* field, double value) { field->setText(QString::number(value, 'g', 6)); }

// Without a callback: the sensor is there to know whether the node still exists.
void watch(SoNodeSensor& sensor, SoNode* node)
{
    sensor.setPriority(0);
    if (node)
        sensor.attach(node);
}

double readValue(const QLineEdit* field) { return field->text().toDouble(); }

// Not std::max, which would let a typed "nan" through, and perhaps a "-0".
double atLeastZero(double value) { return value > 0 ? value : 0; }

} // namespace

struct LightingDialog::LightFields
{
    QLineEdit* direction[3];
    QLineEdit* intensity;
    QLineEdit* shininess;
};

LightingDialog::LightingDialog(QWidget* parent, SoShaderParameterArray3f* directionArray,
                               SoShaderParameterArray1f* intensityArray,
                               SoShaderParameterArray1f* shininessArray)
    : QDialog(parent), form(std::make_unique<Ui_LightingDialog>())
{
    watch(directions, directionArray);
    watch(intensities, intensityArray);
    watch(shininess, shininessArray);
    form->setupUi(this);
    setModal(false);
    lights.reset(
        new LightFields[LIGHT_COUNT]{{{form->x1LineEdit, form->y1LineEdit, form->z1LineEdit},
                                      form->intensity1LineEdit,
                                      form->shininess1LineEdit},
                                     {{form->x2LineEdit, form->y2LineEdit, form->z2LineEdit},
                                      form->intensity2LineEdit,
                                      form->shininess2LineEdit},
                                     {{form->x3LineEdit, form->y3LineEdit, form->z3LineEdit},
                                      form->intensity3LineEdit,
                                      form->shininess3LineEdit}});
    for (QLineEdit* field : findChildren<QLineEdit*>())
        connect(field, &QLineEdit::returnPressed, this, &LightingDialog::updateShaderParameters);
    updateGUIFromShaders();
}

LightingDialog::~LightingDialog() = default;

int LightingDialog::exec() { return hasParameters() ? QDialog::exec() : 0; }

void LightingDialog::updateGUIFromShaders()
{
    if (!hasParameters())
        return;
    for (int i = 0; i < LIGHT_COUNT; ++i) {
        for (int axis = 0; axis < 3; ++axis)
            showValue(lights[i].direction[axis], getDirections()->value[i][axis]);
        showValue(lights[i].intensity, getIntensities()->value[i]);
        showValue(lights[i].shininess, getShininess()->value[i]);
    }
}

void LightingDialog::updateShaderParameters()
{
    if (!hasParameters())
        return;
    for (int i = 0; i < LIGHT_COUNT; ++i) {
        const LightFields& light = lights[i];
        getDirections()->value.set1Value(i, float(readValue(light.direction[0])),
                                         float(readValue(light.direction[1])),
                                         float(readValue(light.direction[2])));
    }
    for (int i = 0; i < LIGHT_COUNT; ++i)
        getIntensities()->value.set1Value(
            i, float(std::min(atLeastZero(readValue(lights[i].intensity)), 1.0)));
    for (int i = 0; i < LIGHT_COUNT; ++i)
        getShininess()->value.set1Value(i, float(atLeastZero(readValue(lights[i].shininess))));
    updateGUIFromShaders();
}

SoShaderParameterArray3f* LightingDialog::getDirections() const
{
    return static_cast<SoShaderParameterArray3f*>(directions.getAttachedNode());
}

SoShaderParameterArray1f* LightingDialog::getIntensities() const
{
    return static_cast<SoShaderParameterArray1f*>(intensities.getAttachedNode());
}

SoShaderParameterArray1f* LightingDialog::getShininess() const
{
    return static_cast<SoShaderParameterArray1f*>(shininess.getAttachedNode());
}

bool LightingDialog::hasParameters() const
{
    return getDirections() && getIntensities() && getShininess();
}
