#pragma once

#include <QElapsedTimer>
#include <QObject>

#include <optional>
#include <vector>

/// Notes when the display ticks of the application begin.
class TickWatch final : public QObject
{
    Q_OBJECT

public:
    TickWatch();

    /// Forgets all ticks and begins to watch. Time 0 is now.
    void start();
    /// Ends what is watched; the figures stay.
    void stop();
    int ticks() const { return int(beginsS.size()); }
    double elapsedS() const;
    /// The fewest ticks in a whole second; 0 before the first one is over.
    int ticksOfWorstSecond() const;
    /// The time that this share of all times between two ticks does not exceed. `share` is from 0
    /// to 1; 0 before the second tick.
    double intervalMs(double share) const;

    bool eventFilter(QObject* object, QEvent* event) override;

private:
    QElapsedTimer clock;
    std::optional<double> endS;
    std::vector<double> beginsS;
};
