#include "emulator/beamoptions.h"

#include "emulator/optionreader.h"
#include "emulator/replay.h"
#include "emulator/text.h"

#include <memory>

namespace emulator {

namespace {

constexpr double leastDiameterUm = 0.1;
constexpr double greatestDiameterUm = 10000.0;
constexpr double greatestOffsetUm = 10000.0;
/// Of the connectors of the external inputs, and of what SPF, SDS and SAI store.
constexpr int greatestInputMv = 5000;

QMap<QString, Preset> presets()
{
    return {{"still", Preset::Still},
            {"quiet", Preset::Quiet},
            {"typical", Preset::Typical},
            {"noisy", Preset::Noisy}};
}

QMap<QString, DetectorKind> detectors()
{
    return {{"lateral", DetectorKind::LateralEffect},
            {"quadrant", DetectorKind::Quadrant},
            {"4qd", DetectorKind::FourQuadrant},
            {"psd", DetectorKind::Psd},
            {"wid", DetectorKind::Wid},
            {"uvpsd4", DetectorKind::UvPsd4mm},
            {"uvpsd10", DetectorKind::UvPsd10mm}};
}

OptionSection beamSection()
{
    return {
        Text::tr("Beams and detectors"),
        Text::tr("1 and 2 at the end of a name stand for the stage."),
        {
            {"seed",
             Text::tr(
                 "Seed of the beams; default: 1. The first controller takes N, the next N + 1, "
                 "and so on."),
             "N"},
            {"preset",
             Text::tr("How much the beams move: still, quiet, typical (default) or noisy."),
             "NAME"},
            {"detector",
             Text::tr(
                 "Detectors of both stages: lateral (default) or quadrant, with 50 mV per "
                 "micrometre, or 4qd, psd, wid, uvpsd4 or uvpsd10, with the volts of that type, "
                 "so that lengths are right on the screen."),
             "NAME"},
            {"detector1", Text::tr("Detector of stage 1."), "NAME"},
            {"detector2", Text::tr("Detector of stage 2."), "NAME"},
            {"diameter1",
             Text::tr("Diameter of the spot on the detector, 0.1 to 10000 micrometres; default: "
                      "50."),
             "UM"},
            {"diameter2", Text::tr("The same for stage 2."), "UM"},
            {"offset1",
             Text::tr("Where the beam stands if nothing moves it, micrometres from the detector's "
                      "centre; default: 0:0."),
             "X:Y"},
            {"offset2", Text::tr("The same for stage 2."), "X:Y"},
            {"replay", Text::tr("Stream the samples of a recording file in place of the beams."),
             "FILE"},
        }};
}

OptionSection inputSection()
{
    return {
        Text::tr("P-factor and external inputs"),
        Text::tr("All in mV. The voltage at an input counts where the controller has stored 0."),
        {
            {"pfactor", Text::tr("P-factor that it has stored, 0 to 5000; default: 1000."), "MV"},
            {"pfactor-input", Text::tr("At the input of the P-factor; default: 1000."), "MV"},
            {"sensitivity-input", Text::tr("At the input of the sensitivity; default: 1000."),
             "MV"},
            {"adjust-input1", Text::tr("At the inputs of adjust-in of stage 1; default: 0:0."),
             "X:Y"},
            {"adjust-input2", Text::tr("The same for stage 2."), "X:Y"},
        }};
}

void readStage(OptionReader& reader, const QString& number, StageOptions& stage)
{
    reader.choice("detector", stage.detector, detectors());
    reader.choice("detector" + number, stage.detector, detectors());
    reader.decimal("diameter" + number, stage.spotDiameterUm, leastDiameterUm, greatestDiameterUm);
    reader.decimals("offset" + number, stage.offsetXUm, stage.offsetYUm, -greatestOffsetUm,
                    greatestOffsetUm);
    ExternalInputs& inputs = stage.inputs;
    reader.number("pfactor-input", inputs.pFactorMv, 0, greatestInputMv);
    reader.number("sensitivity-input", inputs.sensitivityMv, 0, greatestInputMv);
    reader.numbers("adjust-input" + number, inputs.adjustInXMv, inputs.adjustInYMv,
                   -greatestInputMv, greatestInputMv);
}

void readReplay(OptionReader& reader, std::shared_ptr<const Replay>& replay)
{
    if (!reader.isGiven("replay"))
        return;
    QString error;
    replay = Replay::load(reader.text("replay"), error);
    if (!replay)
        reader.complain("replay", error);
}

} // namespace

QVector<OptionSection> beamSections()
{
    return {beamSection(), inputSection()};
}

void readBeamOptions(OptionReader& reader, ControllerOptions& options)
{
    reader.seed("seed", options.seed);
    reader.choice("preset", options.preset, presets());
    readStage(reader, "1", options.stages[0]);
    readStage(reader, "2", options.stages[1]);
    readReplay(reader, options.replay);
    reader.number("pfactor", options.pFactorMv, 0, greatestInputMv);
}

} // namespace emulator
