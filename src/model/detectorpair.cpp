#include "model/detectorpair.h"

#include "model/connectionsettings.h"

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
    : DetectorPair(settings.model[0], settings.calculation[0], settings.model[1],
                   settings.calculation[1], settings.pulsedLaser ? 1 : 0, settings.beamDiameter[0],
                   settings.beamDiameter[1])
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
