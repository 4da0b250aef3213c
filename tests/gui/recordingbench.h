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

/// A window on controllers, its recording dialog, and a folder for the files.
class RecordingBench final
{
public:
    explicit RecordingBench(int controllers = 1, const emulator::ControllerOptions& options = {})
        : fixture(controllers, options)
    {}

    /// Opens the dialog by its menu and types a name.
    bool open(const QString& name = QStringLiteral("run.csv"))
    {
        if (!fixture.openWithSystems())
            return false;
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
