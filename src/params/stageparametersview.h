#pragma once

#include "params/parameterapplying.h"
#include "params/parameterreading.h"
#include "params/sourceradios.h"

#include <QPointF>

class Detector;
class DetectorPair;
class QComboBox;
class QDoubleSpinBox;
class QRadioButton;

/// The controls of one stage in the parameter dialog: shows what is known of the stage, and tells
/// what is wanted of it. Whatever changes, the controls that have no meaning then are disabled.
class StageParametersView final
{
public:
    struct Widgets
    {
        QComboBox& type;
        QDoubleSpinBox& beamDiameter;
        QRadioButton& inVolt;
        QRadioButton& inLength;
        QDoubleSpinBox& pFactor;
        SourceRadios pFactorSource;
        QDoubleSpinBox& adjustX;
        QDoubleSpinBox& adjustY;
        SourceRadios adjustSource;
        QDoubleSpinBox& sensitivity;
        SourceRadios sensitivitySource;
        QDoubleSpinBox& positionX;
        QDoubleSpinBox& positionY;
    };

    /// Fills the list of types.
    explicit StageParametersView(const Widgets& shown);

    /// Forgets the values of the system before: zero everywhere, all from the external inputs.
    /// `showDetector` brings the detector of the one that follows.
    void reset();

    void showParameters(const StageParameters& parameters);
    /// A sensitivity of 0 is that of the external input. Any other one selects the software only
    /// if `selectsSoftware`.
    void showSensitivity(int sensitivityMv, bool selectsSoftware);
    void showPosition(const AxisValues& position);
    /// Volts, cut to the range of the fields.
    void showPosition(const QPointF& position);
    /// Makes the fields of the position read only.
    void shutPosition();
    void showDetector(const Detector& detector);
    /// Shows the row of the sensitivity. Without it the external input is selected.
    void offerSensitivity(bool offered);

    /// Whether the chosen type of detector tells where the beam is.
    bool isPositionSensitive() const;
    const SourceRadios& pFactorSource() const { return widgets.pFactorSource; }
    const SourceRadios& adjustSource() const { return widgets.adjustSource; }
    const SourceRadios& sensitivitySource() const { return widgets.sensitivitySource; }
    void selectPFactorSource(Source source);
    void selectAdjustSource(Source source);
    void selectSensitivitySource(Source source);

    /// For every change of the type and every choice of a unit: without a detector there is no
    /// length.
    void onDetectorChanged();
    void clearType();

    /// Takes what is still being typed, too.
    StageWishes wishes();
    /// Makes the stage's detector the one that is chosen.
    void storeDetector(DetectorPair& detectors, Stage stage);

private:
    void selectUnit(bool length);
    void updateAccess();

    Widgets widgets;
};
