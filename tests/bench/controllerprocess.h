#pragma once

#include "storedrecord.h"

#include <QList>

#include <cstdio>
#include <sys/types.h>

/// What controllers have streamed so far, all together.
struct StreamedPackets
{
    qint64 sent = 0;
    /// Due, but not sent: the other side did not read, or this machine was too slow.
    qint64 lost = 0;
    /// Processor time of the controllers.
    double cpuS = 0.0;
};

/// Emulated controllers in a process of their own, so that the processor times of this one are
/// those of the application. Each listens at an address of its own and sends a beam that runs on a
/// circle.
class ControllerProcess final
{
public:
    /// Forks, so no thread and no application object may exist yet.
    explicit ControllerProcess(int count);
    /// Ends the process and waits for it.
    ~ControllerProcess();
    ControllerProcess(const ControllerProcess&) = delete;
    ControllerProcess& operator=(const ControllerProcess&) = delete;

    /// Empty if not all controllers could be set up.
    const QList<ControllerPlace>& places() const { return controllerPlaces; }
    /// From now on the controllers keep their links and say nothing. Returns what they have sent
    /// until then.
    StreamedPackets silence();

private:
    void readPlaces(int count);

    pid_t process = -1;
    /// Both directions of the way to the process.
    std::FILE* talk = nullptr;
    QList<ControllerPlace> controllerPlaces;
};
