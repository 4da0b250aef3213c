#pragma once

#include "link/identification.h"
#include "link/linkoutcome.h"
#include "link/talk.h"

#include <QDeadlineTimer>
#include <QMetaObject>
#include <QString>

#include <atomic>
#include <functional>
#include <memory>

class Connection;

/// Remembers that a link was lost. The state of the link says so only after it was disconnected.
class LossWatch final
{
public:
    /// The connection has to live longer than this.
    explicit LossWatch(const Connection& connection);
    ~LossWatch();
    LossWatch(const LossWatch&) = delete;
    LossWatch& operator=(const LossWatch&) = delete;

    bool isLost() const;

private:
    const Connection& connection;
    /// Shared with the connection's thread, which can still be about to set it.
    std::shared_ptr<std::atomic<bool>> noted;
    QMetaObject::Connection watching;
};

/// Finds out who answers over a link that is up, and gives the expected controller its label. A
/// talk that never waits. To be made before the link is brought up, so that no loss is missed.
class Introduction final
{
public:
    using IdTest = std::function<bool(const QString& id)>;

    /// `expectedId` is empty if any controller whose identification `isUsable` is good. The
    /// connection has to live longer than this.
    Introduction(Connection& connection, const QString& label, const QString& expectedId,
                 IdTest isUsable);

    bool advance();
    /// Once the talk is over.
    LinkOutcome outcome() const { return result; }
    const QString& foundId() const { return asking.identity().id; }

private:
    enum class Step { Asking, Labelling, AwaitingLoss, Over };

    bool isExpected(const ControllerIdentity& identity) const;
    void judge();
    void storeLabel();
    void end(LinkOutcome outcome);

    Connection& connection;
    const QString label;
    const QString expectedId;
    const IdTest isUsable;
    const LossWatch watch;
    IdentityTalk asking;
    TalkTurn labelling;
    QDeadlineTimer lossReport;
    Step step = Step::Asking;
    LinkOutcome result = LinkOutcome::NoLink;
};
