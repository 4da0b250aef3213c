#pragma once

#include "link/talk.h"

#include <list>

/// The last words to a controller before its connection is closed: a system that is on the plots is
/// stopped, and one that still streams is stopped once more. A talk that never waits.
class Farewell final
{
public:
    /// The connection has to live longer than this.
    Farewell(Connection& connection, bool isOnPlots);

    bool advance();
    const Connection& leaving() const { return connection; }

private:
    enum class Step { LeavingPlots, Closing, Over };

    Step lastStep() const;

    Connection& connection;
    Step step;
    StopTalk hiding;
    StopTalk closing;
};

/// Leads all farewells, begun in the order of the list, and their waits pass at the same time.
/// Connections with one address, which may share a port, take their turns. Blocks for the waits and
/// takes no events.
void sayFarewell(std::list<Farewell> farewells);
