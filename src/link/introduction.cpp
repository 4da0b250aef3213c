#include "link/introduction.h"

#include "link/connection.h"

#include <utility>

namespace {

/// The connection's thread is given this to report what ended the last exchange.
constexpr int lossReportMs = 20;

} // namespace

LossWatch::LossWatch(const Connection& watched)
    : connection(watched)
    , noted(std::make_shared<std::atomic<bool>>(false))
    , watching(QObject::connect(
          &watched, &Connection::hostDisconnected, &watched,
          [flag = noted](const QString&) { *flag = true; }, Qt::DirectConnection))
{}

LossWatch::~LossWatch()
{
    QObject::disconnect(watching);
}

bool LossWatch::isLost() const
{
    return *noted || !connection.isRunning();
}

Introduction::Introduction(Connection& talkedTo, const QString& controllerLabel,
                           const QString& expected, IdTest usable)
    : connection(talkedTo)
    , label(controllerLabel)
    , expectedId(expected)
    , isUsable(std::move(usable))
    , watch(talkedTo)
    , asking(talkedTo, LineClearing::TwoStops)
{}

bool Introduction::advance()
{
    if (step == Step::Asking && asking.advance())
        judge();
    if (step == Step::Labelling)
        storeLabel();
    if (step == Step::AwaitingLoss && lossReport.hasExpired())
        end(watch.isLost() ? LinkOutcome::NoLink : LinkOutcome::Up);
    return step == Step::Over;
}

bool Introduction::isExpected(const ControllerIdentity& identity) const
{
    return identity.isController && isUsable(identity.id)
           && (expectedId.isEmpty() || expectedId == identity.id);
}

void Introduction::judge()
{
    if (!isExpected(asking.identity())) {
        end(LinkOutcome::NotIdentified);
        return;
    }
    connection.setLabel(label);
    step = Step::Labelling;
}

void Introduction::storeLabel()
{
    QByteArray ignored;
    const CommandFrame frame = command::labelling(command::labelArgument(label.toLocal8Bit()));
    if (!labelling.advance(connection, frame, ignored))
        return;
    lossReport.setRemainingTime(lossReportMs);
    step = Step::AwaitingLoss;
}

void Introduction::end(LinkOutcome outcome)
{
    result = outcome;
    step = Step::Over;
}
