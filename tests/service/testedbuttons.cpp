#include "testedbuttons.h"

#include <QtTest>

namespace {

QByteArray bytes(const char* mnemonic, const QByteArray& hex)
{
    return mnemonic + QByteArray::fromHex(hex) + ';';
}

TestedButton setting(const QString& name, const QByteArray& command, const QString& what)
{
    return {name, command, {what + ": Success\n"}, what + ": Failed\n", {}};
}

/// The three buttons of a command for stage 1, 2 and both.
QVector<TestedButton> stageButtons(const char* mnemonic, const QString& what)
{
    const QString name = QStringLiteral("button%1_").arg(mnemonic);
    return {setting(name + '1', bytes(mnemonic, "01"), what + " Stage 1"),
            setting(name + '2', bytes(mnemonic, "02"), what + " Stage 2"),
            setting(name + '3', bytes(mnemonic, "03"), what + " Stage 1+2")};
}

QVector<TestedButton> asking()
{
    const QString noIntensity = "Get Intensity: failed - no response\n";
    const QString noActivity = "Get Active Signal: failed - no response\n";
    const QString noError = "Get Error: Failed\n";
    const QString noOneShot = "Trigger One Shot: Failed\n";
    const QStringList oneShot{"Trigger One Shot: Success\n",
                              "On/Off Stage 1/2: 0 / 0\n",
                              "Active Stage 1/2: 0 / 0\n",
                              "(Multiplex) Stage 1/2: 0 / 0\n",
                              "Stage 1 x/y/i: 250 / -1 / 3500 [mV]\n",
                              "Stage 2 x/y/i: -4000 / 1000 / 7 [mV]\n",
                              "Range 1 x/y: 100 / -100 [mV]\n",
                              "Range 2 x/y: 4999 / -5000 [mV]\n"};
    return {{"buttonGIN_1", bytes("GIN", "01"), {"Get Intensity:3500\n"}, noIntensity, noIntensity},
            {"buttonGAS",
             "GAS;",
             {"Get Active Signal: \n  Active 1: 0\n  Active 2: 0\n"},
             noActivity,
             noActivity},
            {"buttonS1S", "S1S;", oneShot, noOneShot, oneShot.first()},
            setting("buttonCLS", "CLS;", "Clear Live Stream"),
            {"error_PushButton", "GER;", {"Get Error: Command:--- Code: 0\n"}, noError, noError}};
}

QVector<TestedButton> driving()
{
    const QString what = "Set Drive Actuator Stage ";
    return {setting("buttonSDA_1x", bytes("SDA", "01780000"), what + "1 - x"),
            setting("buttonSDA_2x", bytes("SDA", "02780000"), what + "2 - x"),
            setting("buttonSDA_1y", bytes("SDA", "01790000"), what + "1 - y"),
            setting("buttonSDA_2y", bytes("SDA", "02790000"), what + "2 - y")};
}

QVector<TestedButton> values()
{
    QVector<TestedButton> all;
    for (const char* stage : {"1", "2"}) {
        for (const auto& [valueMv, hex] :
             {std::pair("5000", "1388"), std::pair("2500", "09c4"), std::pair("100", "0064")}) {
            const QByteArray argument = QByteArray("0") + stage + hex;
            all.append(
                setting(QStringLiteral("pFactor%1_%2").arg(stage, valueMv), bytes("SPF", argument),
                        QStringLiteral("Set P factor stage %1 to %2mV").arg(stage, valueMv)));
            all.append(setting(
                QStringLiteral("sensitivity%1_%2").arg(stage, valueMv), bytes("SDS", argument),
                QStringLiteral("Set detector sensitivity stage %1 to %2mV").arg(stage, valueMv)));
        }
    }
    return all;
}

QVector<TestedButton> adjusting()
{
    const auto adjust = [](const QString& place, const char* hex, const QString& what) {
        return TestedButton{"adjustIn" + place,
                            bytes("SAI", hex),
                            {what + "mV: Success\n"},
                            what + ": Failed\n",
                            {}};
    };
    return {adjust("1X", "0178fc18", "Set adjust in stage 1 axis X to -1000"),
            adjust("1Y", "0179fc18", "Set adjust in stage 1 axis Y to -1000"),
            adjust("2X", "0278fc18", "Set adjust in stage 2 axis X to -1000"),
            adjust("2Y", "0279fc18", "Set adjust in stage 2 axis Y to -1000")};
}

/// Those of both stages can not be clicked.
QVector<TestedButton> holding()
{
    return stageButtons("SSH", "Set&Hold").mid(0, 2)
           + stageButtons("CSH", "Clear Set&Hold").mid(0, 2);
}

} // namespace

const QVector<TestedButton>& testedButtons()
{
    static const QVector<TestedButton> all =
        asking() + holding() + stageButtons("STF", "Set Trigger Freeze")
        + stageButtons("CTF", "Clear Trigger Freeze") + driving() + values() + adjusting();
    return all;
}

void addTestedButtons()
{
    QTest::addColumn<TestedButton>("button");
    for (const TestedButton& button : testedButtons())
        QTest::newRow(qPrintable(button.name)) << button;
}

QStringList namesOfEach(const char* command, int count)
{
    QStringList names;
    for (int number = 1; number <= count; ++number)
        names.append(QStringLiteral("button%1_%2").arg(command).arg(number));
    return names;
}

emulator::ControllerOptions steadyController()
{
    emulator::PacketValues values{};
    values[0].x = 250;
    values[0].y = -1;
    values[0].intensity = 3500;
    values[1].x = -4000;
    values[1].y = 1000;
    values[1].intensity = 7;
    values[0].actuatorX = 100;
    values[0].actuatorY = -100;
    values[1].actuatorX = 4999;
    values[1].actuatorY = -5000;
    emulator::ControllerOptions options;
    options.script = {values};
    options.scriptRepeats = true;
    return options;
}
