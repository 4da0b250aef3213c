#include "params/stageparametersview.h"

#include "model/detectorpair.h"
#include "params/stageaccess.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QDoubleSpinBox>
#include <QRadioButton>
#include <QSignalBlocker>

namespace {

constexpr double voltsPerMillivolt = 0.001;
/// Kept as it is: two decimals show it as 0.00, which is then the value of the field.
constexpr double noSensitivityV = 0.001;

/// Includes what the user is still typing.
double valueOf(QDoubleSpinBox& field)
{
    field.interpretText();
    return field.value();
}

} // namespace

StageParametersView::StageParametersView(const Widgets& shown)
    : widgets(shown)
{
    const QSignalBlocker nothingIsChosen(widgets.type);
    for (const DetectorKind& kind : detectorKinds())
        widgets.type.addItem(QCoreApplication::translate("ParamsDialog", kind.name));
    selectPFactorSource(Source::External);
    selectSensitivitySource(Source::External);
    updateAccess();
}

void StageParametersView::reset()
{
    showParameters({});
    showPosition(AxisValues{});
    showSensitivity(0, false);
    selectPFactorSource(Source::External);
    selectAdjustSource(Source::External);
}

/// A P-factor of 0, that of the external input, shows as the least one.
void StageParametersView::showParameters(const StageParameters& parameters)
{
    widgets.adjustX.setValue(parameters.adjustIn.xMv * voltsPerMillivolt);
    widgets.adjustY.setValue(parameters.adjustIn.yMv * voltsPerMillivolt);
    widgets.pFactor.setValue(parameters.pFactorMv * voltsPerMillivolt);
}

void StageParametersView::showSensitivity(int sensitivityMv, bool selectsSoftware)
{
    if (sensitivityMv == 0) {
        selectSensitivitySource(Source::External);
        widgets.sensitivity.setValue(noSensitivityV);
        return;
    }
    widgets.sensitivity.setValue(sensitivityMv * voltsPerMillivolt);
    if (selectsSoftware)
        selectSensitivitySource(Source::Software);
}

void StageParametersView::showPosition(const AxisValues& position)
{
    showPosition(QPointF(position.xMv, position.yMv) * voltsPerMillivolt);
}

void StageParametersView::showPosition(const QPointF& position)
{
    widgets.positionX.setValue(position.x());
    widgets.positionY.setValue(position.y());
}

void StageParametersView::shutPosition()
{
    widgets.positionX.setReadOnly(true);
    widgets.positionY.setReadOnly(true);
}

bool StageParametersView::isPositionSensitive() const
{
    return isPsdType(widgets.type.currentIndex());
}

void StageParametersView::showDetector(const Detector& detector)
{
    widgets.beamDiameter.setValue(detector.beamDiameter);
    widgets.type.setCurrentIndex(detector.typeCode());
    selectUnit(detector.calculation != 0);
}

void StageParametersView::offerSensitivity(bool offered)
{
    widgets.sensitivitySource.setVisible(offered);
    widgets.sensitivity.setVisible(offered);
    if (!offered)
        selectSensitivitySource(Source::External);
}

void StageParametersView::selectPFactorSource(Source source)
{
    widgets.pFactorSource.select(source);
    widgets.pFactor.setEnabled(source == Source::Software);
}

void StageParametersView::selectAdjustSource(Source source)
{
    widgets.adjustSource.select(source);
    updateAccess();
}

void StageParametersView::selectSensitivitySource(Source source)
{
    widgets.sensitivitySource.select(source);
    widgets.sensitivity.setEnabled(source == Source::Software);
}

void StageParametersView::onDetectorChanged()
{
    selectUnit(widgets.inLength.isChecked());
}

void StageParametersView::clearType()
{
    widgets.type.setCurrentIndex(SelectDetector);
}

/// The radio buttons exclude each other, so only the one that is wanted is told.
void StageParametersView::selectUnit(bool length)
{
    const bool isKnown = widgets.type.currentIndex() != SelectDetector;
    (length && isKnown ? widgets.inLength : widgets.inVolt).setChecked(true);
    updateAccess();
}

void StageParametersView::updateAccess()
{
    const StageAccess access =
        stageAccess(widgets.type.currentIndex(), widgets.inLength.isChecked(),
                    widgets.adjustSource.selected() == Source::Software);
    widgets.inVolt.setEnabled(access.unit);
    widgets.inLength.setEnabled(access.unit);
    widgets.beamDiameter.setEnabled(access.beamDiameter);
    widgets.adjustSource.setEnabled(access.adjustSource);
    widgets.adjustX.setEnabled(access.adjustValues);
    widgets.adjustY.setEnabled(access.adjustValues);
}

StageWishes StageParametersView::wishes()
{
    StageWishes wishes;
    if (widgets.pFactorSource.selected() == Source::Software)
        wishes.pFactorMv = toMillivolts(valueOf(widgets.pFactor));
    if (widgets.sensitivitySource.selected() == Source::Software)
        wishes.sensitivityMv = toMillivolts(valueOf(widgets.sensitivity));
    if (isPositionSensitive() && widgets.adjustSource.selected() == Source::Software)
        wishes.adjustIn = AxisValues{toMillivolts(valueOf(widgets.adjustX)),
                                     toMillivolts(valueOf(widgets.adjustY))};
    return wishes;
}

void StageParametersView::storeDetector(DetectorPair& detectors, Stage stage)
{
    const std::size_t index = indexOf(stage);
    const int type = widgets.type.currentIndex();
    detectors[index]->beamDiameter = valueOf(widgets.beamDiameter);
    detectors.setDetectorType(quint16(index), type);
    const bool showsLength = widgets.inLength.isChecked() && type != SelectDetector;
    detectors[index]->calculation = showsLength ? 1 : 0;
}
