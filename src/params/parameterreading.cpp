#include "params/parameterreading.h"

#include "link/ask.h"
#include "link/connection.h"
#include "link/packet.h"
#include "link/replyforms.h"

namespace {

using command::payloadOffset;

constexpr int flagsEnd = payloadOffset + 1;
constexpr int valueEnd = payloadOffset + 2;

/// Asks one question after the other and keeps account of the answers.
class Questionnaire final
{
public:
    explicit Questionnaire(Connection& asked)
        : connection(asked)
    {}

    ParameterReading run();

private:
    QByteArray fetch();
    void noteUnread(const QString& what) { reading.unread.append(what); }
    void readFlags();
    void readPositions();
    int readValue(ArgumentCommand question, const QByteArray& argument, const QString& name);
    void readAdjustIn();
    void readOfBothStages(ArgumentCommand question, const char* name, int StageParameters::*value);

    Connection& connection;
    ParameterReading reading;
};

QByteArray Questionnaire::fetch()
{
    const QByteArray reply = replyOf(connection);
    reading.isAnswered |= !reply.isEmpty();
    return reply;
}

void Questionnaire::readFlags()
{
    connection.getStatusFlags();
    const QByteArray reply = fetch();
    if (command::isAccepted(reply, flagsEnd))
        reading.statusFlags = static_cast<quint8>(reply.at(payloadOffset));
    else
        noteUnread(QStringLiteral("GSF"));
}

void Questionnaire::readPositions()
{
    connection.triggerOneShot();
    const QByteArray reply = fetch();
    if (!packet::isWhole(reply)) {
        noteUnread(QStringLiteral("S1S"));
        return;
    }
    reading.positions.emplace();
    for (const Stage stage : bothStages) {
        const packet::ValueOffsets offsets = packet::offsetsOf(stage);
        (*reading.positions)[indexOf(stage)] = {
            command::signedValueAt(reply.constData(), offsets.x),
            command::signedValueAt(reply.constData(), offsets.y)};
    }
}

/// 0 if it can not be read.
int Questionnaire::readValue(ArgumentCommand question, const QByteArray& argument,
                             const QString& name)
{
    (connection.*question)(argument);
    const QByteArray reply = fetch();
    if (command::isAccepted(reply, valueEnd))
        return command::signedValueAt(reply.constData(), payloadOffset);
    noteUnread(name);
    return 0;
}

void Questionnaire::readAdjustIn()
{
    for (const Stage stage : bothStages) {
        AxisValues& values = reading.stages[indexOf(stage)].adjustIn;
        for (const BeamAxis axis : {BeamAxis::X, BeamAxis::Y}) {
            const QString name =
                QStringLiteral("GAI %1%2").arg(numberOf(stage)).arg(QLatin1Char(char(axis)));
            (axis == BeamAxis::X ? values.xMv : values.yMv) =
                readValue(&Connection::getAdjustIn, command::stageAxisArgument(stage, axis), name);
        }
    }
}

void Questionnaire::readOfBothStages(ArgumentCommand question, const char* name,
                                     int StageParameters::*value)
{
    for (const Stage stage : bothStages) {
        reading.stages[indexOf(stage)].*value =
            readValue(question, command::stageArgument(stage),
                      QStringLiteral("%1 %2").arg(QLatin1String(name)).arg(numberOf(stage)));
    }
}

ParameterReading Questionnaire::run()
{
    readFlags();
    readPositions();
    readAdjustIn();
    readOfBothStages(&Connection::getPFactor, "GPF", &StageParameters::pFactorMv);
    if (connection.firmwareVersion() > command::lastFirmwareWithoutSensitivity)
        readOfBothStages(&Connection::getDetectorSensitivity, "GDS",
                         &StageParameters::sensitivityMv);
    return reading;
}

} // namespace

ParameterReading readParameters(Connection& connection)
{
    return Questionnaire(connection).run();
}
