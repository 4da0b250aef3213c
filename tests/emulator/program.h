#pragma once

#include <QProcess>
#include <QStringList>

#include <csignal>

constexpr int limitMs = 10000;

/// The program, run with the given arguments.
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
    void sendSignal(int number) { ::kill(static_cast<pid_t>(process.processId()), number); }

    QProcess process;
};
