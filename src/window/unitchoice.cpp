#include "window/unitchoice.h"

#include <algorithm>

namespace {

bool sharesLengthUnit(const QList<DetectorPair>& pairs, const QList<int>& displayed,
                      std::size_t stage)
{
    const PositionUnit reference = pairs[displayed.first()][stage]->unitCode();
    return std::all_of(displayed.begin(), displayed.end(), [&](int index) {
        const Detector& detector = *pairs[index][stage];
        return detector.calculation != 0 && detector.unitCode() == reference;
    });
}

const Detector* largestBeam(const QList<DetectorPair>& pairs, const QList<int>& displayed,
                            std::size_t stage)
{
    const Detector* largest = nullptr;
    for (const int index : displayed) {
        const Detector* detector = pairs[index][stage];
        if (!largest || detector->beamDiameter > largest->beamDiameter)
            largest = detector;
    }
    return largest;
}

const Detector& detectorOrPlain(const Detector* detector)
{
    static const Detector plain;
    return detector ? *detector : plain;
}

} // namespace

QString UnitChoice::unit() const
{
    return detectorOrPlain(detector).unit();
}

int UnitChoice::unitCode() const
{
    return int(detectorOrPlain(detector).unitCode());
}

double UnitChoice::maxPosition() const
{
    return detectorOrPlain(detector).maxPosition();
}

double UnitChoice::minPosition() const
{
    return detectorOrPlain(detector).minPosition();
}

std::array<UnitChoice, 2> chooseUnits(const QList<DetectorPair>& pairs, const QList<int>& displayed,
                                      int current)
{
    std::array<UnitChoice, 2> choices;
    if (displayed.isEmpty())
        return choices;
    // The current one can have been hidden while others stayed.
    const int source = displayed.contains(current) ? current : displayed.first();
    bool diameterMatters = false;
    for (std::size_t stage = 0; stage < choices.size(); ++stage) {
        UnitChoice& choice = choices[stage];
        choice.unitsAgree = sharesLengthUnit(pairs, displayed, stage);
        if (choice.unitsAgree)
            choice.detector = pairs[source][stage];
        diameterMatters = diameterMatters || detectorOrPlain(choice.detector).usesBeamDiameter();
    }
    for (std::size_t stage = 0; stage < choices.size(); ++stage) {
        if (diameterMatters && choices[stage].detector)
            choices[stage].detector = largestBeam(pairs, displayed, stage);
    }
    return choices;
}
