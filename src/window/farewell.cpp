#include "window/farewell.h"

#include "link/connection.h"

#include <QSet>
#include <QString>
#include <QThread>

Farewell::Farewell(Connection& leaving, bool isOnPlots)
    : connection(leaving)
    , step(isOnPlots ? Step::LeavingPlots : lastStep())
    , hiding(leaving, 1, StopTalk::Unanswered::Repeated)
    , closing(hiding)
{}

bool Farewell::advance()
{
    if (step == Step::LeavingPlots && hiding.advance())
        step = lastStep();
    if (step == Step::Closing && closing.advance())
        step = Step::Over;
    return step == Step::Over;
}

Farewell::Step Farewell::lastStep() const
{
    return connection.isStreaming() ? Step::Closing : Step::Over;
}

void sayFarewell(std::list<Farewell> farewells)
{
    while (!farewells.empty()) {
        QSet<QString> spokenTo;
        for (auto each = farewells.begin(); each != farewells.end();) {
            const QString address = each->leaving().address();
            const bool isItsTurn = !spokenTo.contains(address);
            spokenTo.insert(address);
            if (isItsTurn && each->advance())
                each = farewells.erase(each);
            else
                ++each;
        }
        if (!farewells.empty())
            QThread::msleep(talkPaceMs);
    }
}
