#include "link/commandframe.h"

#include "link/baudrates.h"

bool CommandFrame::isStop() const
{
    return message == command::stop().message;
}

bool CommandFrame::startsStream() const
{
    return message.startsWith("SLS") || message.startsWith("SGS") || message.startsWith("SPS");
}

namespace command {

namespace {

void appendValue(QByteArray& bytes, quint16 value)
{
    bytes.append(static_cast<char>(value >> 8));
    bytes.append(static_cast<char>(value & 0xFF));
}

} // namespace

CommandFrame frame(const char* mnemonic, const QByteArray& argument, int answerLength)
{
    QByteArray message(mnemonic);
    message += argument.isEmpty() ? QByteArray(1, terminator) : argument;
    return {message, answerLength};
}

CommandFrame statusRequest()
{
    return frame("GSF", {}, statusFlagsReplyLength);
}

CommandFrame stop()
{
    return frame("CLS", {}, statusReplyLength);
}

CommandFrame identityRequest()
{
    return frame("GID", {}, idReplyLength);
}

CommandFrame labelling(const QByteArray& labelArgument)
{
    return frame("SLA", labelArgument, statusReplyLength);
}

QByteArray stageArgument(Stage stage)
{
    QByteArray bytes(1, static_cast<char>(stage));
    bytes.append(terminator);
    return bytes;
}

QByteArray stageAxisArgument(Stage stage, BeamAxis axis)
{
    QByteArray bytes(1, static_cast<char>(stage));
    bytes.append(static_cast<char>(axis)).append(terminator);
    return bytes;
}

QByteArray stageValueArgument(Stage stage, qint16 valueMv)
{
    QByteArray bytes(1, static_cast<char>(stage));
    appendValue(bytes, static_cast<quint16>(valueMv));
    return bytes.append(terminator);
}

QByteArray stageAxisValueArgument(Stage stage, BeamAxis axis, qint16 valueMv)
{
    QByteArray bytes(1, static_cast<char>(stage));
    bytes.append(static_cast<char>(axis));
    appendValue(bytes, static_cast<quint16>(valueMv));
    return bytes.append(terminator);
}

QByteArray labelArgument(const QByteArray& label)
{
    return label.leftJustified(labelLength, ' ', true).append(terminator);
}

QByteArray streamArgument(quint16 rateHz)
{
    QByteArray bytes(2, '\0');
    appendValue(bytes, rateHz);
    return bytes.append(terminator);
}

QByteArray memoryArgument()
{
    QByteArray bytes(2, '\0');
    return bytes.append(static_cast<char>(memoryBytes)).append(terminator);
}

QByteArray baudRateArgument(int baudRate)
{
    QByteArray bytes;
    switch (baudRate) {
    case baudrate::slow:
        bytes.append('\x01');
        break;
    case baudrate::middle:
        bytes.append('\x04');
        break;
    case baudrate::fast:
        bytes.append('\x09');
        break;
    default:
        break;
    }
    return bytes.append(terminator);
}

QByteArray withoutRate(const QByteArray& argument)
{
    QByteArray bytes = argument;
    return bytes.remove(2, 2);
}

qint16 signedValueAt(const char* bytes, int offset)
{
    const auto high = static_cast<quint8>(bytes[offset]);
    const auto low = static_cast<quint8>(bytes[offset + 1]);
    return static_cast<qint16>(high << 8 | low);
}

} // namespace command
