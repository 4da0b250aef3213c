#include "model/detector.h"

#include <QtGlobal>

#include <cmath>

namespace {

constexpr double psdVoltPerMm = 1.2;
constexpr double psdUv10VoltPerMm = 1.1;
constexpr double psdUv4VoltPerMm = 2.9;
constexpr double psdLimitMm = 4.5;
/// Signal of a WID for a displacement of one beam diameter.
constexpr double widVoltPerDiameter = 6.5;
/// 1 / (2 sqrt 2): the 1/e² diameter as the scale of the error function.
constexpr double diameterToErfScale = 0.35355339059327373;

template <typename Kind>
std::unique_ptr<Detector> make(const Detector& source)
{
    return std::make_unique<Kind>(source);
}

constexpr DetectorKinds kinds{{
    {SelectDetector, QT_TRANSLATE_NOOP("ParamsDialog", "select"), false, false, make<Detector>},
    {QuadrantDetector, QT_TRANSLATE_NOOP("ParamsDialog", "4QD"), true, false, make<QD>},
    {PsdDetector, QT_TRANSLATE_NOOP("ParamsDialog", "PSD"), false, true, make<PSD>},
    {WidDetector, QT_TRANSLATE_NOOP("ParamsDialog", "WID"), true, false, make<WID>},
    {UvPsd4Detector, QT_TRANSLATE_NOOP("ParamsDialog", "UV PSD (4mm)"), false, true, make<PSD_UV4>},
    {UvPsd10Detector, QT_TRANSLATE_NOOP("ParamsDialog", "UV PSD (10mm)"), false, true,
     make<PSD_UV10>},
}};

const DetectorKind* kindOf(int typeCode)
{
    return isDetectorType(typeCode) ? &kinds[std::size_t(typeCode)] : nullptr;
}

} // namespace

const DetectorKinds& detectorKinds()
{
    return kinds;
}

bool isDetectorType(int typeCode)
{
    return typeCode >= 0 && typeCode < detectorKindCount;
}

bool isQuadrantType(int typeCode)
{
    const DetectorKind* kind = kindOf(typeCode);
    return kind && kind->isQuadrant;
}

bool isPsdType(int typeCode)
{
    const DetectorKind* kind = kindOf(typeCode);
    return kind && kind->isPsd;
}

double inverseErf(double x)
{
    // The stored constants are used as they stand: the first differs from 2 / (pi a) in its tenth
    // decimal place, and results have to stay comparable with those of earlier recordings.
    constexpr double twoByPiA = 4.330746750923655;
    constexpr double oneByA = 6.802721088435375;

    const double sign = x < 0.0 ? -1.0 : 1.0;
    const double l = std::log(1.0 - x) + std::log(1.0 + x);
    const double t = 0.5 * l + twoByPiA;
    const double u = std::sqrt(t * t - oneByA * l) - t;
    return sign * std::sqrt(u);
}

Detector::Detector(double beamDiameterUm, int calculationFlag)
    : beamDiameter(beamDiameterUm)
    , calculation(calculationFlag)
{}

double Detector::calculatePosition(double, double) const
{
    return 0.0;
}

QString Detector::unit() const
{
    switch (unitCode()) {
    case PositionUnit::Volt:
        break;
    case PositionUnit::Micrometre:
        return QStringLiteral("µm");
    case PositionUnit::Millimetre:
        return QStringLiteral("mm");
    }
    return QStringLiteral("V");
}

PSD::PSD(const Detector& other)
    : Detector(other)
{}

double PSD::calculatePosition(double signalV, double) const
{
    return signalV / psdVoltPerMm;
}

double PSD::maxPosition() const
{
    return showsLength() ? psdLimitMm : voltLimit;
}

double PSD::minPosition() const
{
    return showsLength() ? -psdLimitMm : -voltLimit;
}

PSD_UV10::PSD_UV10(const Detector& other)
    : PSD(other)
{}

double PSD_UV10::calculatePosition(double signalV, double) const
{
    return signalV / psdUv10VoltPerMm;
}

PSD_UV4::PSD_UV4(const Detector& other)
    : PSD(other)
{}

double PSD_UV4::calculatePosition(double signalV, double) const
{
    return signalV / psdUv4VoltPerMm;
}

QD::QD(const Detector& other)
    : Detector(other)
{}

double QD::calculatePosition(double signalV, double intensityV) const
{
    const double ratio = signalV / intensityV;
    return (beamDiameter * diameterToErfScale) * inverseErf(ratio);
}

double QD::maxPosition() const
{
    return showsLength() ? beamDiameter * 0.5 : voltLimit;
}

double QD::minPosition() const
{
    return showsLength() ? beamDiameter * -0.5 : -voltLimit;
}

WID::WID(const Detector& other)
    : QD(other)
{}

double WID::calculatePosition(double signalV, double) const
{
    return signalV * beamDiameter / widVoltPerDiameter;
}

std::unique_ptr<Detector> makeDetector(int typeCode, const Detector& source)
{
    const DetectorKind* kind = kindOf(typeCode);
    return kind ? kind->make(source) : nullptr;
}
