#include "service/servicetests.h"

#include "app/logging.h"
#include "link/ask.h"
#include "link/commandframe.h"
#include "link/connection.h"
#include "service/servicetexts.h"

namespace servicetests {

namespace {

ServiceTest asking(PlainCommand command, QString (*text)(const QByteArray&))
{
    return {[command](Connection& connection) { (connection.*command)(); },
            [text](const QByteArray& reply, int) { return QStringList{text(reply)}; }};
}

ServiceTest setting(ArgumentCommand command, const QByteArray& argument, const QString& what)
{
    return {[command, argument](Connection& connection) { (connection.*command)(argument); },
            [what](const QByteArray& reply, int) {
                return QStringList{servicetexts::outcome(what, reply)};
            }};
}

ServiceTest switching(ArgumentCommand command, Stages stages, const QString& what)
{
    const int number = static_cast<int>(stages);
    const QByteArray argument =
        QByteArray(1, static_cast<char>(number)).append(command::terminator);
    const QString names = stages == Stages::Both ? QStringLiteral("1+2") : QString::number(number);
    return setting(command, argument, ServiceText::tr("%1 Stage %2").arg(what, names));
}

QByteArray axisArgument(Stage stage, BeamAxis axis, int valueMv)
{
    return command::stageAxisValueArgument(stage, axis, static_cast<qint16>(valueMv));
}

QChar letterOf(BeamAxis axis)
{
    return QLatin1Char(static_cast<char>(axis));
}

ServiceTest settingMillivolts(ArgumentCommand command, Stage stage, int valueMv,
                              const QString& what)
{
    return setting(
        command, command::stageValueArgument(stage, static_cast<qint16>(valueMv)),
        ServiceText::tr("%1 stage %2 to %3mV").arg(what).arg(numberOf(stage)).arg(valueMv));
}

} // namespace

ServiceTest intensity()
{
    ServiceTest test;
    test.send = [](Connection& connection) {
        connection.getIntensity(command::stageArgument(Stage::One));
    };
    test.results = [](const QByteArray& reply, int) {
        return QStringList{servicetexts::intensity(reply)};
    };
    return test;
}

ServiceTest activeSignal()
{
    return asking(&Connection::getActiveSignal, servicetexts::activeSignal);
}

ServiceTest oneShot()
{
    return {[](Connection& connection) { connection.triggerOneShot(); }, servicetexts::oneShot};
}

ServiceTest stop()
{
    return asking(&Connection::clearLiveStream, [](const QByteArray& reply) {
        return servicetexts::outcome(ServiceText::tr("Clear Live Stream"), reply);
    });
}

ServiceTest setAndHold(Stages stages)
{
    return switching(&Connection::setAndHold, stages, ServiceText::tr("Set&Hold"));
}

ServiceTest clearSetAndHold(Stages stages)
{
    return switching(&Connection::clearSetAndHold, stages, ServiceText::tr("Clear Set&Hold"));
}

ServiceTest setTriggerFreeze(Stages stages)
{
    return switching(&Connection::setTriggerFreeze, stages, ServiceText::tr("Set Trigger Freeze"));
}

ServiceTest clearTriggerFreeze(Stages stages)
{
    return switching(&Connection::clearTriggerFreeze, stages,
                     ServiceText::tr("Clear Trigger Freeze"));
}

ServiceTest driveActuator(Stage stage, BeamAxis axis, int valueMv)
{
    return setting(&Connection::setDriveActuator, axisArgument(stage, axis, valueMv),
                   ServiceText::tr("Set Drive Actuator Stage %1 - %2")
                       .arg(numberOf(stage))
                       .arg(letterOf(axis)));
}

ServiceTest lastError()
{
    ServiceTest test = asking(&Connection::getError, servicetexts::lastError);
    test.order = ServiceTest::Order::ResultFirst;
    return test;
}

ServiceTest memory()
{
    return {[](Connection& connection) { connection.readFram(command::memoryArgument()); },
            [](const QByteArray& reply, int) {
                logMessage().debug() << reply;
                return servicetexts::memory(reply);
            },
            ServiceTest::Order::ResultFirst};
}

ServiceTest pFactor(Stage stage, int valueMv)
{
    return settingMillivolts(&Connection::setPFactor, stage, valueMv,
                             ServiceText::tr("Set P factor"));
}

ServiceTest sensitivity(Stage stage, int valueMv)
{
    return settingMillivolts(&Connection::setDetectorSensitivity, stage, valueMv,
                             ServiceText::tr("Set detector sensitivity"));
}

ServiceTest adjustIn(Stage stage, BeamAxis axis, int valueMv)
{
    const QByteArray argument = axisArgument(stage, axis, valueMv);
    const QString what = ServiceText::tr("Set adjust in stage %1 axis %2 to %3")
                             .arg(numberOf(stage))
                             .arg(letterOf(axis).toUpper())
                             .arg(valueMv);
    return {[argument](Connection& connection) { connection.setAdjustIn(argument); },
            [what](const QByteArray& reply, int) {
                return QStringList{servicetexts::outcomeOfMillivolts(what, reply)};
            }};
}

} // namespace servicetests
