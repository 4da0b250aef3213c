#include "emulator/optionsections.h"

#include "emulator/optionreader.h"
#include "emulator/replay.h"

#include <QCoreApplication>

namespace emulator {

namespace {

constexpr int greatestFirmware = 999;
constexpr int greatestCount = 1000000000;
/// Stray bytes before one packet.
constexpr int greatestInsertCount = 16384;
constexpr int greatestLatenessMs = 3600000;
/// The beam is computed from pulse to pulse; slower pulses would need too many steps at once.
constexpr double leastTriggerRateHz = 0.01;
constexpr double greatestTriggerRateHz = 1000.0;

QString tr(const char* text)
{
    return QCoreApplication::translate("OptionSections", text);
}

OptionSection identitySection()
{
    return {
        tr("What a controller is"),
        {
            {"firmware",
             tr("Firmware number, 40 unless told: 10 and below, above 10 and above 30 differ."),
             "N"},
            {"vm", tr("Firmware of the kind VM.")},
            {"trigger", tr("Capable of packets by trigger pulses.")},
            {"trigger-rate",
             tr("Trigger pulses per second, 0.01 to 1000, or 0 for none; 10 unless told."), "HZ"},
            {"baud",
             tr("Baud rate of the serial port until SBR changes it: 115200 (unless told), "
                "460800 or 921600."),
             "RATE"},
            {"no-flow-control", tr("A serial port without hardware flow control.")},
        }};
}

OptionSection beamSection()
{
    return {
        tr("Its beams"),
        {
            {"seed",
             tr("Seed of the beams, 1 unless told. The first controller takes N, the next "
                "N + 1, and so on."),
             "N"},
            {"preset", tr("Restlessness of the beams: quiet, typical (unless told) or noisy."),
             "NAME"},
            {"detector", tr("Detectors of both stages: lateral (unless told) or quadrant."),
             "NAME"},
            {"replay", tr("Stream the samples of a recording file in place of the beams."), "FILE"},
        }};
}

OptionSection commandFaultSection()
{
    return {
        tr("Faults of commands, which may be repeated"),
        {
            {"refuse", tr("Refuse this command."), "MNEMONIC"},
            {"silent", tr("Do not answer this command, nor carry it out."), "MNEMONIC"},
            {"late", tr("Carry out and answer this command only after MS milliseconds."),
             "MNEMONIC=MS"},
            {"short", tr("Send only the first N bytes of the reply to this command."),
             "MNEMONIC=N"},
            {"close-on", tr("Close the connection when this command comes."), "MNEMONIC"},
            {"half-close-on", tr("Close the sending side when this command comes."), "MNEMONIC"},
            {"garbage", tr("Answer every command with noise.")},
        }};
}

OptionSection streamFaultSection()
{
    return {
        tr("Faults of streams"),
        {
            {"drop-every", tr("Leave out a byte of every Nth packet of a stream."), "N"},
            {"insert-every", tr("Insert stray bytes before every Nth packet."), "N"},
            {"insert-count",
             tr("Number of bytes that --insert-every inserts, 0 to 16384; 1 unless told."), "N"},
            {"corrupt-every", tr("Invert a byte of every Nth packet."), "N"},
            {"close-after", tr("Close the connection behind the Nth packet of a stream."), "N"},
        }};
}

Faults readFaults(OptionReader& reader, const Faults& base)
{
    Faults faults = base;
    reader.mnemonics("refuse", faults.refuse);
    reader.mnemonics("silent", faults.silent);
    reader.numbersByMnemonic("late", faults.lateMs, greatestLatenessMs);
    reader.numbersByMnemonic("short", faults.shortBytes, greatestCount);
    reader.mnemonics("close-on", faults.closeOn);
    reader.mnemonics("half-close-on", faults.halfCloseOn);
    reader.flag("garbage", faults.garbageReplies);
    reader.number("drop-every", faults.dropByteEvery, 0, greatestCount);
    reader.number("insert-every", faults.insertBytesEvery, 0, greatestCount);
    reader.number("insert-count", faults.insertCount, 0, greatestInsertCount);
    reader.number("corrupt-every", faults.corruptByteEvery, 0, greatestCount);
    reader.number("close-after", faults.closeAfterPackets, 0, greatestCount);
    return faults;
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

OptionSection programSection()
{
    return {tr("What to do"),
            {
                {"tcp",
                 tr("Put a controller at this numeric address. May be repeated, one controller "
                    "each. Port 0 picks a free port."),
                 "ADDRESS:PORT[,OPTION...]"},
                {"pty",
                 tr("Put a controller on a pseudo terminal that is found under this link, as under "
                    "/dev/ttyUSB77. May be repeated, one controller each."),
                 "LINK[,OPTION...]"},
                {"quiet", tr("Say nothing of connections and refused commands.")},
                {{"h", "help"}, tr("Show this help.")},
                {{"v", "version"}, tr("Show the version.")},
            }};
}

QVector<OptionSection> controllerSections()
{
    return {identitySection(), beamSection(), commandFaultSection(), streamFaultSection()};
}

ControllerOptions readControllerOptions(OptionReader& reader, const ControllerOptions& base)
{
    ControllerOptions options = base;
    reader.number("firmware", options.firmware, 0, greatestFirmware);
    reader.flag("vm", options.vm);
    reader.flag("trigger", options.triggerCapable);
    reader.rate("trigger-rate", options.triggerRateHz, leastTriggerRateHz, greatestTriggerRateHz);
    reader.choice<int>("baud", options.baudRate,
                       {{"115200", 115200}, {"460800", 460800}, {"921600", 921600}});
    reader.flag("no-flow-control", options.hardwareFlowControl, false);
    reader.seed("seed", options.seed);
    reader.choice<Preset>(
        "preset", options.preset,
        {{"quiet", Preset::Quiet}, {"typical", Preset::Typical}, {"noisy", Preset::Noisy}});
    for (StageOptions& stage : options.stages) {
        reader.choice<DetectorKind>(
            "detector", stage.detector,
            {{"lateral", DetectorKind::LateralEffect}, {"quadrant", DetectorKind::Quadrant}});
    }
    readReplay(reader, options.replay);
    options.faults = readFaults(reader, options.faults);
    return options;
}

} // namespace emulator
