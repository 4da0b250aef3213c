#pragma once

#include "link/connection.h"
#include "plots/genericplot.h"
#include "recording/dataloggerdialog.h"
#include "support/userinput.h"
#include "support/windowfixture.h"
#include "window/mainwindow.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QWindow>
#include <QtTest>

#include <limits>

/// What stands behind the header of a recording.
inline QStringList linesOf(const QByteArray& recording)
{
    return QString::fromUtf8(recording).split('\n', Qt::SkipEmptyParts).mid(2);
}

/// Whether a recording holds whole lines only, in the order of their times.
inline bool isWhole(const QByteArray& recording)
{
    constexpr int columns = 11;
    if (!recording.endsWith('\n'))
        return false;
    qulonglong before = 0;
    for (const QString& line : linesOf(recording)) {
        const QStringList fields = line.split('\t');
        const qulonglong ms = fields.first().toULongLong();
        if (fields.size() != columns || ms < before)
            return false;
        before = ms;
    }
    return true;
}

/// A controller whose samples count through all numbers of 16 bits from here, over and over.
inline emulator::ControllerOptions countingController(int first = 0)
{
    constexpr int numbers = std::numeric_limits<quint16>::max() + 1;
    emulator::ControllerOptions options;
    options.script.reserve(numbers);
    for (int i = 0; i < numbers; ++i) {
        emulator::PacketValues values{};
        values[0].x = qint16(first + i);
        options.script.append(values);
    }
    options.scriptRepeats = true;
    return options;
}

/// The numbers of its samples that were recorded.
inline QVector<quint16> numbersIn(const QByteArray& recording)
{
    constexpr int mvPerVolt = 1000;
    QVector<quint16> numbers;
    for (const QString& line : linesOf(recording))
        numbers.append(quint16(qRound(line.section('\t', 1, 1).toDouble() * mvPerVolt)));
    return numbers;
}

/// The first line whose number is not by `step` more than that of the line before; empty if there
/// is none.
inline QString gapIn(const QVector<quint16>& numbers, int step = 1)
{
    if (numbers.isEmpty())
        return QStringLiteral("no lines");
    for (int i = 1; i < numbers.size(); ++i) {
        if (numbers.at(i) != quint16(numbers.at(i - 1) + step))
            return QStringLiteral("line %1: %2 behind %3")
                .arg(i)
                .arg(numbers.at(i))
                .arg(numbers.at(i - 1));
    }
    return {};
}

/// A window on controllers, its recording dialog, and a folder for the files.
class RecordingBench final
{
public:
    explicit RecordingBench(int controllers = 1, const emulator::ControllerOptions& options = {})
        : fixture(controllers, options)
    {}

    /// Opens the window with all systems, and the dialog.
    bool open(const QString& name = QStringLiteral("run.csv"))
    {
        return fixture.openWithSystems() && openDialog(name);
    }
    /// Opens the dialog of an open window by its menu and types a name.
    bool openDialog(const QString& name = QStringLiteral("run.csv"))
    {
        fixture.find<QAction>("actionOpenDataLog")->trigger();
        if (!QTest::qWaitForWindowExposed(&dialog()))
            return false;
        in<QLineEdit>("lineEdit_FileName").setText(path(name));
        return true;
    }
    bool openAndStart(const QString& name = QStringLiteral("run.csv"))
    {
        return open(name) && click("pushButton_Start") && isRecording();
    }

    /// Records two systems, A and B, to files of their own.
    bool openAndStartBoth()
    {
        if (!open())
            return false;
        fixture.window().relabelConnection(&fixture.connection(0), "A");
        fixture.window().relabelConnection(&fixture.connection(1), "B");
        return startAll();
    }
    /// Records every displayed system to a file of its own.
    bool startAll() const
    {
        return click("checkBox") && click("pushButton_Start") && isRecording();
    }

    DataLoggerDialog& dialog() const { return *fixture.window().findChild<DataLoggerDialog*>(); }
    template <typename Widget>
    Widget& in(const QString& name) const
    {
        return *dialog().findChild<Widget*>(name);
    }
    bool click(const QString& name) const { return user::click(&in<QWidget>(name)); }

    QString state() const { return fixture.find<QLabel>("recordingText")->text(); }
    bool isRecording() const { return state() == "Data recording enabled"; }
    bool isRunning() const { return fixture.find<QAction>("startAction")->isChecked(); }

    QString path(const QString& name) const { return folder.filePath(name); }
    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files, QDir::Name); }
    QByteArray content(const QString& name = QStringLiteral("run.csv")) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QStringList lines(const QString& name = QStringLiteral("run.csv")) const
    {
        return linesOf(content(name));
    }
    bool ticksUntilLines(int count, const QString& name = QStringLiteral("run.csv")) const
    {
        return fixture.tickUntil([&] { return lines(name).size() >= count; });
    }
    bool isWhole(const QString& name = QStringLiteral("run.csv")) const
    {
        return ::isWhole(content(name));
    }
    /// Whether the window shows new samples by itself.
    bool windowTicksOn() const
    {
        const auto newestS = [this] { return pointsOf(fixture.positionPlot(1), 0).last().x(); };
        const double before = newestS();
        return QTest::qWaitFor([&] { return newestS() != before; });
    }

    WindowFixture fixture;
    QTemporaryDir folder;
};
