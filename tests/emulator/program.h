#pragma once

#include <QProcess>
#include <QStringList>

#include <csignal>

constexpr int limitMs = 10000;

/// The emulator as a process of its own, run with the given arguments.
class Program final
{
public:
    explicit Program(const QStringList& arguments)
    {
        process.start(QStringLiteral(LUMETRA_EMULATOR_PROGRAM), arguments);
        process.waitForStarted(limitMs);
    }
    ~Program()
    {
        if (process.state() != QProcess::NotRunning) {
            process.kill();
            process.waitForFinished(limitMs);
        }
    }

    QString readLine()
    {
        while (!process.canReadLine() && process.waitForReadyRead(limitMs)) {}
        return QString::fromUtf8(process.readLine()).trimmed();
    }
    /// False, and nothing is sent, if the program does not run: its number would be 0 then, by
    /// which a signal reaches the whole group of processes that this one belongs to.
    bool sendSignal(int number)
    {
        // Takes notice of an end that was not seen yet.
        process.waitForFinished(0);
        const auto id = static_cast<pid_t>(process.processId());
        return id > 0 && ::kill(id, number) == 0;
    }

    QProcess process;
};
