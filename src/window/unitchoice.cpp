#include "window/unitchoice.h"

#include <algorithm>

namespace {

using Pairs = std::vector<const DetectorPair*>;

bool sharesLengthUnit(const Pairs& displayed, std::size_t stage)
{
    const PositionUnit reference = (*displayed.front())[stage]->unitCode();
    return std::all_of(displayed.begin(), displayed.end(), [&](const DetectorPair* pair) {
        const Detector& detector = *(*pair)[stage];
        return detector.calculation != 0 && detector.unitCode() == reference;
    });
}

const Detector* largestBeam(const Pairs& displayed, std::size_t stage)
{
    const Detector* largest = nullptr;
    for (const DetectorPair* pair : displayed) {
        const Detector* detector = (*pair)[stage];
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

PositionUnit UnitChoice::unitCode() const
{
    return detectorOrPlain(detector).unitCode();
}

double UnitChoice::maxPosition() const
{
    return detectorOrPlain(detector).maxPosition();
}

double UnitChoice::minPosition() const
{
    return detectorOrPlain(detector).minPosition();
}

std::array<UnitChoice, 2> chooseUnits(const std::vector<const DetectorPair*>& displayed,
                                      const DetectorPair* current)
{
    std::array<UnitChoice, 2> choices;
    if (displayed.empty())
        return choices;
    const bool isDisplayed =
        std::find(displayed.begin(), displayed.end(), current) != displayed.end();
    const DetectorPair& source = isDisplayed ? *current : *displayed.front();
    bool diameterMatters = false;
    for (std::size_t stage = 0; stage < choices.size(); ++stage) {
        UnitChoice& choice = choices[stage];
        choice.unitsAgree = sharesLengthUnit(displayed, stage);
        if (choice.unitsAgree)
            choice.detector = source[stage];
        diameterMatters = diameterMatters || detectorOrPlain(choice.detector).usesBeamDiameter();
    }
    for (std::size_t stage = 0; stage < choices.size(); ++stage) {
        if (diameterMatters && choices[stage].detector)
            choices[stage].detector = largestBeam(displayed, stage);
    }
    return choices;
}
