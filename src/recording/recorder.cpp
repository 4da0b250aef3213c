#include "recording/recorder.h"

#include "app/logging.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <utility>

namespace {

const RecordableSystem* find(const RecordableSystems& systems, const Connection* connection)
{
    const auto found =
        std::find_if(systems.begin(), systems.end(), [&](const RecordableSystem& system) {
            return system.connection == connection;
        });
    return found == systems.end() ? nullptr : &*found;
}

void warnIfOneLine(const RecordPlan& plan, const RecordableSystems& displayed,
                   const RecordableSystem& system, int divider)
{
    const bool counts = plan.everySystem || system.connection == displayed.last().connection;
    if (counts || divider <= 1 || system.detectors->pulsedLaser == 1)
        return;
    logMessage().warning() << "The recording of" << qPrintable(system.label)
                           << "ends with its first line: the system is not displayed last";
}

} // namespace

Recorder::~Recorder()
{
    stop();
}

std::optional<RecordFailure> Recorder::start(const RecordPlan& plan,
                                             const RecordableSystems& displayed,
                                             const RecordRates& rates, const QDateTime& now)
{
    stop();
    const SystemRecord::Counting counting = plan.everySystem
                                                ? SystemRecord::Counting::Everywhere
                                                : SystemRecord::Counting::LastDisplayed;
    for (const PlannedFile& file : plan.files) {
        const RecordableSystem* system = find(displayed, file.connection);
        if (!system)
            continue;
        systems.push_back({system->connection, open(file.path, *system, rates, counting, now)});
        if (systems.back().record->file().failure())
            return stop();
        warnIfOneLine(plan, displayed, *system, rates.divider());
    }
    return std::nullopt;
}

/// Labels that differ can still lead to one file, by a link or where case does not count.
std::unique_ptr<SystemRecord> Recorder::open(const QString& path, const RecordableSystem& system,
                                             const RecordRates& rates,
                                             SystemRecord::Counting counting,
                                             const QDateTime& now) const
{
    auto record =
        std::make_unique<SystemRecord>(path, *system.detectors, rates.divider(), counting, now);
    for (const System& other : systems) {
        if (record->file().isSameAs(other.record->file()))
            record->file().fail(EEXIST);
    }
    return record;
}

SystemRecord* Recorder::recordOf(const Connection* connection) const
{
    for (const System& system : systems) {
        if (connection && system.connection == connection)
            return system.record.get();
    }
    return nullptr;
}

bool Recorder::isBehind() const
{
    return std::any_of(systems.begin(), systems.end(),
                       [](const System& system) { return system.record->isBehind(); });
}

void Recorder::form(std::size_t most)
{
    for (std::size_t i = 0; i < systems.size(); ++i)
        most -= systems[(nextSystem + i) % systems.size()].record->form(most);
    ++nextSystem;
}

std::optional<RecordFailure> Recorder::flush(qint64 nowMs)
{
    form(linesPerTurn);
    // What a slow tick has brought must not wait for the next one.
    const bool hasCaughtUp = std::exchange(isCatchingUp, isBehind()) && !isCatchingUp;
    if (!hasCaughtUp && flushedMs && nowMs - *flushedMs < flushPeriodMs)
        return std::nullopt;
    flushedMs = nowMs;
    for (const System& system : systems)
        system.record->file().flush();
    return newFailure();
}

std::optional<RecordFailure> Recorder::stop()
{
    form(std::numeric_limits<std::size_t>::max());
    for (const System& system : systems)
        system.record->file().close();
    const std::optional<RecordFailure> failure = newFailure();
    systems.clear();
    flushedMs.reset();
    isCatchingUp = false;
    nextSystem = 0;
    hasFailed = false;
    return failure;
}

void Recorder::forget(const Connection* connection)
{
    for (System& system : systems) {
        if (system.connection == connection)
            system.connection = nullptr;
    }
}

std::optional<RecordFailure> Recorder::newFailure()
{
    if (hasFailed)
        return std::nullopt;
    for (const System& system : systems) {
        const std::optional<RecordFailure>& failure = system.record->file().failure();
        if (!failure)
            continue;
        hasFailed = true;
        logMessage().warning() << "Recording to" << qPrintable(failure->path)
                               << "failed:" << qPrintable(failure->reason);
        return failure;
    }
    return std::nullopt;
}
