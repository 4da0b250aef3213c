#include "model/detectorpair.h"

#include "app/logging.h"
#include "model/connectionsettings.h"

#include <cmath>

namespace {

int knownType(const ConnectionSettings& settings, std::size_t stage)
{
    const int code = settings.model[stage];
    if (isDetectorType(code))
        return code;
    logMessage().warning() << "Unknown detector type" << code << "of stage" << int(stage) + 1
                           << "of" << qPrintable(settings.label.text());
    return SelectDetector;
}

double usableDiameterUm(const ConnectionSettings& settings, std::size_t stage)
{
    const double diameterUm = settings.beamDiameter[stage];
    if (std::isfinite(diameterUm) && diameterUm > 0.0)
        return diameterUm;
    logMessage().warning() << "Impossible beam diameter" << diameterUm << "of stage"
                           << int(stage) + 1 << "of" << qPrintable(settings.label.text());
    return Detector::defaultBeamDiameterUm;
}

} // namespace

DetectorPair::DetectorPair()
    : detectors{std::make_unique<Detector>(), std::make_unique<Detector>()}
{}

DetectorPair::DetectorPair(int type1, int calculation1, int type2, int calculation2, int pulsed,
                           double beamDiameter1Um, double beamDiameter2Um)
    : pulsedLaser(pulsed)
    , detectors{makeDetector(type1, Detector(beamDiameter1Um, calculation1)),
                makeDetector(type2, Detector(beamDiameter2Um, calculation2))}
{}

DetectorPair::DetectorPair(const ConnectionSettings& settings)
    : DetectorPair(knownType(settings, 0), settings.calculation[0], knownType(settings, 1),
                   settings.calculation[1], settings.pulsedLaser ? 1 : 0,
                   usableDiameterUm(settings, 0), usableDiameterUm(settings, 1))
{}

DetectorPair::DetectorPair(const DetectorPair& other)
    : DetectorPair()
{
    *this = other;
}

DetectorPair& DetectorPair::operator=(const DetectorPair& other)
{
    if (this == &other)
        return *this;
    pulsedLaser = other.pulsedLaser;
    for (std::size_t stage = 0; stage < detectors.size(); ++stage)
        detectors[stage] = makeDetector(other[stage]->typeCode(), *other[stage]);
    return *this;
}

void DetectorPair::setDetectorType(quint16 stageIndex, int typeCode)
{
    std::unique_ptr<Detector>& detector = detectors[stageIndex];
    detector = makeDetector(typeCode, *detector);
}

void DetectorPair::copyTo(ConnectionSettings& settings) const
{
    for (std::size_t stage = 0; stage < detectors.size(); ++stage) {
        settings.calculation[stage] = detectors[stage]->calculation;
        settings.model[stage] = detectors[stage]->typeCode();
        settings.beamDiameter[stage] = detectors[stage]->beamDiameter;
    }
    settings.pulsedLaser = pulsedLaser != 0;
}
