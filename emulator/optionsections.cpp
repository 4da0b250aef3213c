#include "emulator/optionsections.h"

#include "emulator/beamoptions.h"
#include "emulator/device.h"
#include "emulator/faultoptions.h"
#include "emulator/identity.h"
#include "emulator/optionreader.h"
#include "emulator/text.h"

#include <QRegularExpression>

namespace emulator {

namespace {

constexpr int greatestFirmware = 999;
constexpr int greatestGroup = 99;
/// The beam is computed from pulse to pulse; slower pulses would need too many steps at once.
constexpr double leastTriggerRateHz = 0.01;
constexpr double greatestTriggerRateHz = 1000.0;

OptionSection identitySection()
{
    return {
        Text::tr("Controller"),
        {},
        {
            {"label", Text::tr("Label that it has stored, up to 25 bytes."), "TEXT"},
            {"key",
             Text::tr("Its key: 11 capital letters and digits, different for each "
                      "controller."),
             "KEY"},
            {"group",
             Text::tr("Controllers of one group, 1 to 99, share a common detector. 0 "
                      "(default) is no group."),
             "N"},
            {"firmware",
             Text::tr("Firmware number; default: 40. 10 and below, above 10 and above 30 differ."),
             "N"},
            {"vm", Text::tr("Firmware of the kind VM.")},
            {"trigger", Text::tr("Capable of packets by trigger pulses.")},
            {"trigger-rate",
             Text::tr("Trigger pulses per second, 0.01 to 1000, or 0 for none; default: 10."),
             "HZ"},
            {"baud",
             Text::tr("Baud rate of its serial line until SBR changes it: 115200 (default), "
                      "460800 or 921600."),
             "RATE"},
            {"no-flow-control", Text::tr("Its serial port has no hardware flow control.")},
        }};
}

void readKey(OptionReader& reader, QByteArray& key)
{
    if (!reader.isGiven("key"))
        return;
    static const QRegularExpression form(
        QRegularExpression::anchoredPattern(QStringLiteral("[A-Z0-9]{%1}").arg(keyLength)));
    const QString text = reader.text("key");
    if (!form.match(text).hasMatch())
        reader.complain("key", Text::tr("\"%1\" is not %2 capital letters and digits")
                                   .arg(text, QString::number(keyLength)));
    key = text.toLatin1();
}

void readLabel(OptionReader& reader, QByteArray& label)
{
    if (!reader.isGiven("label"))
        return;
    const QString text = reader.text("label");
    label = text.toLocal8Bit();
    if (label.size() > Device::labelLength)
        reader.complain("label", Text::tr("\"%1\" is longer than %2 bytes")
                                     .arg(text, QString::number(Device::labelLength)));
}

void readIdentity(OptionReader& reader, ControllerOptions& options)
{
    readLabel(reader, options.label);
    readKey(reader, options.key);
    reader.number("group", options.group, 0, greatestGroup);
    reader.number("firmware", options.firmware, 0, greatestFirmware);
    reader.flag("vm", options.vm);
    reader.flag("trigger", options.triggerCapable);
    reader.rate("trigger-rate", options.triggerRateHz, leastTriggerRateHz, greatestTriggerRateHz);
    reader.choice<int>("baud", options.baudRate,
                       {{"115200", 115200}, {"460800", 460800}, {"921600", 921600}});
    reader.flag("no-flow-control", options.hardwareFlowControl, false);
}

} // namespace

OptionSection programSection()
{
    return {
        Text::tr("Program"),
        {},
        {
            {"tcp",
             Text::tr("Put a controller at this numeric address. Port 0 picks a free port. May be "
                      "repeated, one controller each."),
             "ADDRESS:PORT[,OPTION...]"},
            {"pty",
             Text::tr(
                 "Put a controller on a pseudo terminal that is found under this link, as under "
                 "/dev/ttyUSB77. May be repeated, one controller each."),
             "LINK[,OPTION...]"},
            {"options",
             Text::tr("Read further options from a file, as they would stand on the command line. "
                      "Lines that begin with # are comments. May be repeated."),
             "FILE"},
            {"quiet",
             Text::tr(
                 "Say nothing of connections, refused commands and rules that no command met.")},
            {{"h", "help"}, Text::tr("Show this help.")},
            {{"v", "version"}, Text::tr("Show the version.")},
        }};
}

QVector<OptionSection> controllerSections()
{
    return QVector<OptionSection>{identitySection()} + beamSections() + faultSections();
}

ControllerOptions readControllerOptions(OptionReader& reader, const ControllerOptions& base)
{
    ControllerOptions options = base;
    readIdentity(reader, options);
    readBeamOptions(reader, options);
    options.faults = readFaults(reader, options.faults);
    return options;
}

} // namespace emulator
