#include "emulator/commandline.h"

#include "emulator/command.h"
#include "emulator/replay.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <limits>
#include <optional>

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
    return QCoreApplication::translate("CommandLine", text);
}

/// Reads the values of the options one after the other, and keeps the first error message.
class OptionReader final
{
public:
    explicit OptionReader(const QCommandLineParser& commandLineParser)
        : parser(commandLineParser)
    {}

    const QString& complaint() const { return firstComplaint; }
    void complain(const QString& text)
    {
        if (firstComplaint.isEmpty())
            firstComplaint = text;
    }

    int number(const QString& option, int least, int greatest)
    {
        return numberIn(option, parser.value(option), least, greatest);
    }
    quint64 seed(const QString& option);
    double triggerRate(const QString& option);
    QByteArrayList mnemonics(const QString& option);
    QMap<QByteArray, int> numbersByMnemonic(const QString& option, int greatest);
    QVector<TcpPlace> places(const QString& option);
    QStringList links(const QString& option);
    template <typename Value>
    Value choice(const QString& option, const QMap<QString, Value>& choices);

private:
    int numberIn(const QString& option, const QString& text, int least, int greatest);
    QByteArray mnemonicIn(const QString& option, const QString& text);

    const QCommandLineParser& parser;
    QString firstComplaint;
};

int OptionReader::numberIn(const QString& option, const QString& text, int least, int greatest)
{
    bool ok = false;
    const int number = text.toInt(&ok);
    if (!ok || number < least || number > greatest) {
        complain(tr("--%1: \"%2\" is not a whole number from %3 to %4")
                     .arg(option, text)
                     .arg(least)
                     .arg(greatest));
    }
    return number;
}

quint64 OptionReader::seed(const QString& option)
{
    bool ok = false;
    const quint64 number = parser.value(option).toULongLong(&ok);
    if (!ok)
        complain(tr("--%1: \"%2\" is not a whole number").arg(option, parser.value(option)));
    return number;
}

double OptionReader::triggerRate(const QString& option)
{
    bool ok = false;
    const double rate = parser.value(option).toDouble(&ok);
    const bool pulses = rate >= leastTriggerRateHz && rate <= greatestTriggerRateHz;
    if (!ok || (!pulses && rate != 0.0)) {
        complain(tr("--%1: \"%2\" is neither 0 nor a rate from %3 to %4")
                     .arg(option, parser.value(option))
                     .arg(leastTriggerRateHz)
                     .arg(greatestTriggerRateHz));
    }
    return rate;
}

QByteArray OptionReader::mnemonicIn(const QString& option, const QString& text)
{
    QByteArray mnemonic = text.toLatin1().toUpper();
    if (argumentLength(mnemonic) < 0)
        complain(tr("--%1: there is no command \"%2\"").arg(option, text));
    return mnemonic;
}

QByteArrayList OptionReader::mnemonics(const QString& option)
{
    QByteArrayList list;
    for (const QString& text : parser.values(option))
        list.append(mnemonicIn(option, text));
    return list;
}

QMap<QByteArray, int> OptionReader::numbersByMnemonic(const QString& option, int greatest)
{
    QMap<QByteArray, int> numbers;
    for (const QString& text : parser.values(option)) {
        const int sign = text.indexOf('=');
        if (sign < 0) {
            complain(tr("--%1: \"%2\" lacks \"=\" and a number").arg(option, text));
            continue;
        }
        numbers.insert(mnemonicIn(option, text.left(sign)),
                       numberIn(option, text.mid(sign + 1), 0, greatest));
    }
    return numbers;
}

QVector<TcpPlace> OptionReader::places(const QString& option)
{
    QVector<TcpPlace> list;
    for (const QString& text : parser.values(option)) {
        const int colon = text.lastIndexOf(':');
        QString address = text.left(colon);
        // An IPv6 address stands in brackets, since it has colons of its own.
        if (address.startsWith('[') && address.endsWith(']'))
            address = address.mid(1, address.size() - 2);
        TcpPlace place;
        if (colon < 0 || !place.address.setAddress(address)) {
            complain(tr("--%1: \"%2\" is not a numeric address and a port, as in 127.0.0.1:2000")
                         .arg(option, text));
            continue;
        }
        place.port = static_cast<quint16>(
            numberIn(option, text.mid(colon + 1), 0, std::numeric_limits<quint16>::max()));
        list.append(place);
    }
    return list;
}

QStringList OptionReader::links(const QString& option)
{
    const QStringList list = parser.values(option);
    if (list.contains(QString()))
        complain(tr("--%1: the link has no name").arg(option));
    return list;
}

template <typename Value>
Value OptionReader::choice(const QString& option, const QMap<QString, Value>& choices)
{
    const QString text = parser.value(option);
    if (!choices.contains(text)) {
        complain(tr("--%1: \"%2\" is none of %3")
                     .arg(option, text, choices.keys().join(QStringLiteral(", "))));
    }
    return choices.value(text);
}

void addControllerOptions(QCommandLineParser& parser)
{
    const ControllerOptions defaults;
    parser.addOptions({
        {"tcp",
         tr("Put a controller at this numeric address. May be repeated, one controller "
            "each. Port 0 picks a free port."),
         "ADDRESS:PORT"},
        {"pty",
         tr("Put a controller on a pseudo terminal that is found under this link, as under "
            "/dev/ttyUSB77. May be repeated, one controller each."),
         "LINK"},
        {"baud",
         tr("Baud rate of the serial ports until SBR changes it: 115200, 460800 or 921600."),
         "RATE", QString::number(defaults.baudRate)},
        {"no-flow-control", tr("Serial ports without hardware flow control.")},
        {"firmware", tr("Firmware number: 10 and below, above 10 and above 30 differ."), "N",
         QString::number(defaults.firmware)},
        {"vm", tr("Firmware of the kind VM.")},
        {"trigger", tr("Capable of packets by trigger pulses.")},
        {"trigger-rate", tr("Trigger pulses per second, 0.01 to 1000, or 0 for none."), "HZ",
         QString::number(defaults.triggerRateHz)},
        {"seed", tr("Seed of the beam. The first controller takes N, the next N + 1."), "N",
         QString::number(defaults.seed)},
        {"preset", tr("Restlessness of the beam: quiet, typical or noisy."), "NAME", "typical"},
        {"detector", tr("Detectors of both stages: lateral or quadrant."), "NAME", "lateral"},
        {"replay", tr("Stream the samples of a recording file in place of a beam."), "FILE"},
        {"quiet", tr("Say nothing of connections and refused commands.")},
    });
}

void addFaultOptions(QCommandLineParser& parser)
{
    parser.addOptions({
        {"refuse", tr("Refuse this command. May be repeated, as all that name a command."),
         "MNEMONIC"},
        {"silent", tr("Do not answer this command, nor carry it out."), "MNEMONIC"},
        {"late", tr("Carry out and answer this command only after MS milliseconds."),
         "MNEMONIC=MS"},
        {"short", tr("Send only the first N bytes of the reply to this command."), "MNEMONIC=N"},
        {"close-on", tr("Close the connection when this command comes."), "MNEMONIC"},
        {"half-close-on", tr("Close the sending side when this command comes."), "MNEMONIC"},
        {"garbage", tr("Answer every command with noise.")},
        {"drop-every", tr("Leave out a byte of every Nth packet of a stream."), "N", "0"},
        {"insert-every", tr("Insert stray bytes before every Nth packet."), "N", "0"},
        {"insert-count", tr("Number of bytes that --insert-every inserts, 0 to 16384."), "N", "1"},
        {"corrupt-every", tr("Invert a byte of every Nth packet."), "N", "0"},
        {"close-after", tr("Close the connection behind the Nth packet of a stream."), "N", "0"},
    });
}

Faults readFaults(const QCommandLineParser& parser, OptionReader& reader)
{
    Faults faults;
    faults.refuse = reader.mnemonics("refuse");
    faults.silent = reader.mnemonics("silent");
    faults.lateMs = reader.numbersByMnemonic("late", greatestLatenessMs);
    faults.shortBytes = reader.numbersByMnemonic("short", greatestCount);
    faults.closeOn = reader.mnemonics("close-on");
    faults.halfCloseOn = reader.mnemonics("half-close-on");
    faults.garbageReplies = parser.isSet("garbage");
    faults.dropByteEvery = reader.number("drop-every", 0, greatestCount);
    faults.insertBytesEvery = reader.number("insert-every", 0, greatestCount);
    faults.insertCount = reader.number("insert-count", 0, greatestInsertCount);
    faults.corruptByteEvery = reader.number("corrupt-every", 0, greatestCount);
    faults.closeAfterPackets = reader.number("close-after", 0, greatestCount);
    return faults;
}

ControllerOptions readOptions(const QCommandLineParser& parser, OptionReader& reader)
{
    ControllerOptions options;
    options.firmware = reader.number("firmware", 0, greatestFirmware);
    options.vm = parser.isSet("vm");
    options.triggerCapable = parser.isSet("trigger");
    options.triggerRateHz = reader.triggerRate("trigger-rate");
    options.seed = reader.seed("seed");
    options.preset = reader.choice<Preset>(
        "preset",
        {{"quiet", Preset::Quiet}, {"typical", Preset::Typical}, {"noisy", Preset::Noisy}});
    const auto detector =
        reader.choice<DetectorKind>("detector", {{"lateral", DetectorKind::LateralEffect},
                                                 {"quadrant", DetectorKind::Quadrant}});
    for (StageOptions& stage : options.stages)
        stage.detector = detector;
    options.baudRate =
        reader.choice<int>("baud", {{"115200", 115200}, {"460800", 460800}, {"921600", 921600}});
    options.hardwareFlowControl = !parser.isSet("no-flow-control");
    options.faults = readFaults(parser, reader);
    if (parser.isSet("replay")) {
        QString error;
        options.replay = Replay::load(parser.value("replay"), error);
        if (!options.replay)
            reader.complain(tr("--replay: %1").arg(error));
    }
    return options;
}

CommandLine failed(const QString& complaint)
{
    CommandLine line;
    line.wish = CommandLine::Wish::ShowError;
    line.text = complaint;
    return line;
}

} // namespace

CommandLine readCommandLine(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        tr("Emulates controllers for laser-beam position stabilisation.\n\n"
           "For each controller that is ready a line \"tcp ADDRESS:PORT KEY\" or "
           "\"pty LINK KEY\" is printed."));
    // The library's own help option also adds "--help-all", which this program does not need.
    const QCommandLineOption help({"h", "help"}, tr("Show this help."));
    parser.addOption(help);
    const QCommandLineOption version = parser.addVersionOption();
    addControllerOptions(parser);
    addFaultOptions(parser);

    CommandLine line;
    if (!parser.parse(arguments))
        return failed(parser.errorText());
    if (parser.isSet(help)) {
        line.wish = CommandLine::Wish::ShowHelp;
        line.text = parser.helpText();
        return line;
    }
    if (parser.isSet(version)) {
        line.wish = CommandLine::Wish::ShowVersion;
        return line;
    }
    if (!parser.positionalArguments().isEmpty())
        return failed(tr("what is \"%1\"?").arg(parser.positionalArguments().first()));
    OptionReader reader(parser);
    line.places = reader.places("tcp");
    line.links = reader.links("pty");
    if (line.places.isEmpty() && line.links.isEmpty())
        reader.complain(tr("no controller to emulate: give --tcp ADDRESS:PORT or --pty LINK"));
    line.options = readOptions(parser, reader);
    line.quiet = parser.isSet("quiet");
    return reader.complaint().isEmpty() ? line : failed(reader.complaint());
}

} // namespace emulator
