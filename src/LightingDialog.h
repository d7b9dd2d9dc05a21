// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_LIGHTINGDIALOG_H
#define STRANDVIEW_LIGHTINGDIALOG_H

#include <memory>

#include <Inventor/sensors/SoNodeSensor.h>
#include <QDialog>

#include <StrandviewExport.h>

class SoShaderParameterArray1f;
class SoShaderParameterArray3f;
class Ui_LightingDialog;

/// Shows and edits three directional lights in place: the arrays that
/// SoGeneralScene::getLightingParameters() hands out, three entries each, not owned.
/// Return in any field takes all of them, and the next render shows it.
/// As every widget it belongs to the thread of Qt's event loop and, with a parent, to that. Whoever
/// makes it keeps the arrays alive for as long.
class STRANDVIEW_EXPORT LightingDialog : public QDialog
{
    Q_OBJECT

public:
    /// Not modal. With any array null or destroyed the dialog changes nothing.
    LightingDialog(QWidget* parent, SoShaderParameterArray3f* directions,
                   SoShaderParameterArray1f* intensities, SoShaderParameterArray1f* shininess);
    ~LightingDialog() override;

    /// Writes the arrays into the fields, with six significant digits.
    void updateGUIFromShaders();

public slots:
    /// QDialog::exec(); without all three arrays 0 at once, and nothing is shown.
    int exec() override;
    /// Reads the fields into the arrays, and shows what was stored. Directions are taken
    /// as typed, not normalised; intensities are clamped to 0 to 1, shininess to 0 and
    /// above. What is no number counts as 0.
    void updateShaderParameters();

private:
    struct LightFields;

    SoShaderParameterArray3f* getDirections() const;
    SoShaderParameterArray1f* getIntensities() const;
    SoShaderParameterArray1f* getShininess() const;
    bool hasParameters() const;

    std::unique_ptr<Ui_LightingDialog> form;
    // Attached to the arrays as long as these exist.
    SoNodeSensor directions;
    SoNodeSensor intensities;
    SoNodeSensor shininess;
    std::unique_ptr<LightFields[]> lights;
};

#endif
