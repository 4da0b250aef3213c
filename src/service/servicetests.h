#pragma once

#include "model/beamaxis.h"
#include "model/stage.h"

#include <QByteArray>
#include <QStringList>

#include <functional>

class Connection;

/// A command that is tried by hand, and what its reply says.
struct ServiceTest
{
    enum class Order {
        /// The stream that the test has stopped starts again before the result is shown.
        RestartFirst,
        ResultFirst,
    };

    /// Sends the command; its reply is taken afterwards.
    std::function<void(Connection&)> send;
    /// The texts of a reply, one paragraph each; the reply is empty if none came.
    std::function<QStringList(const QByteArray& reply, int firmwareVersion)> results;
    Order order = Order::RestartFirst;
};

/// The commands that the service dialog tries.
namespace servicetests {

/// The value is the number on the wire.
enum class Stages { One = 1, Two = 2, Both = 3 };

/// Of stage 1; nobody asks for that of stage 2.
ServiceTest intensity();
ServiceTest activeSignal();
ServiceTest oneShot();
/// A stop, sent once and not repeated.
ServiceTest stop();
ServiceTest setAndHold(Stages stages);
ServiceTest clearSetAndHold(Stages stages);
ServiceTest setTriggerFreeze(Stages stages);
ServiceTest clearTriggerFreeze(Stages stages);
ServiceTest driveActuator(Stage stage, BeamAxis axis, int valueMv);
ServiceTest lastError();
/// All bytes of the controller's memory.
ServiceTest memory();
ServiceTest pFactor(Stage stage, int valueMv);
ServiceTest sensitivity(Stage stage, int valueMv);
ServiceTest adjustIn(Stage stage, BeamAxis axis, int valueMv);

} // namespace servicetests
