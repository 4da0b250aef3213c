#include "dialogue.h"

namespace {

constexpr int packetLength = 25;
constexpr int mnemonicLength = 3;

QString commandLine(const QByteArray& frame)
{
    return QStringLiteral("> ") + QLatin1String(frame.left(mnemonicLength))
           + QLatin1String(frame.mid(mnemonicLength).toHex());
}

} // namespace

QStringList dialogue(const emulator::ControllerHandle& controller)
{
    QStringList lines;
    for (const emulator::WireEvent& event : controller.wire()) {
        QString line;
        if (event.direction == emulator::WireEvent::FromHost)
            line = commandLine(event.bytes);
        else if (event.bytes.size() == packetLength)
            line = packets();
        else
            line = got(event.bytes);
        if (line != packets() || lines.isEmpty() || lines.last() != line)
            lines.append(line);
    }
    return lines;
}

QStringList dialogueWithoutPolls(const emulator::ControllerHandle& controller)
{
    QStringList lines = dialogue(controller);
    for (int i = lines.size() - 1; i >= 0; --i) {
        if (lines[i] != sent("GSF"))
            continue;
        lines.removeAt(i);
        if (i < lines.size() && lines[i].startsWith(QLatin1String("< 003b")))
            lines.removeAt(i);
    }
    return lines;
}

QString sent(const char* mnemonic, const QByteArray& argument)
{
    return commandLine(mnemonic + argument);
}

QString got(const QByteArray& bytes)
{
    return QStringLiteral("< ") + QLatin1String(bytes.toHex());
}

QString accepted()
{
    return got(QByteArray("\0;", 2));
}

QString packets()
{
    return QStringLiteral("< packets");
}

QString labelCommand(const char* label)
{
    constexpr int labelLength = 25;
    return sent("SLA", QByteArray(label).leftJustified(labelLength, ' ') + ';');
}

QString startCommand(int rateHz)
{
    QByteArray argument(2, '\0');
    argument.append(char(rateHz >> 8)).append(char(rateHz & 0xFF)).append(';');
    return sent("SLS", argument);
}

QString stageCommand(const char* mnemonic, int stage)
{
    return sent(mnemonic, QByteArray(1, char(stage)) + ';');
}
