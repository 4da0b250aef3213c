#pragma once

#include "app/switches.h"
#include "images/images.h"
#include "plots/largetimer.h"
#include "recording/dataloggerdialog.h"
#include "support/boxanswers.h"
#include "support/userinput.h"
#include "support/widgetcheck.h"

#include <QApplication>
#include <QCheckBox>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTimer>
#include <QWindow>
#include <QtTest>

#include <functional>

/// The recording dialog with nothing behind it, in a configuration directory of its own with a
/// folder for recordings. There is something to record.
class DataLoggerBench final
{
public:
    DataLoggerBench()
    {
        initImages();
        switches::configDir = QDir(directory.path());
        if (!QDir(directory.path()).mkdir("Data"))
            qFatal("There is no room for recordings");
        dialog.setRecordingEnabled(true);
    }

    /// As the window shows it at a sampling rate.
    bool open(int samplingRateHz = 100)
    {
        dialog.setSaveRate(samplingRateHz);
        return show();
    }
    bool show()
    {
        dialog.show();
        QApplication::setActiveWindow(&dialog);
        return QTest::qWaitForWindowActive(&dialog);
    }

    template <typename Widget>
    Widget& find(const QString& name) const
    {
        auto* child = dialog.findChild<Widget*>(name);
        if (!child)
            qFatal("There is no %s", qPrintable(name));
        return *child;
    }
    QPushButton& startButton() const { return find<QPushButton>("pushButton_Start"); }
    QPushButton& stopButton() const { return find<QPushButton>("pushButton_Stop"); }
    QPushButton& saveAsButton() const { return find<QPushButton>("pushButton_SaveAs"); }
    QLineEdit& fileName() const { return find<QLineEdit>("lineEdit_FileName"); }
    QLineEdit& recordTime() const { return find<QLineEdit>("lineEdit_RecordTime"); }
    QSpinBox& rate() const { return find<QSpinBox>("spinBox_SaveRate"); }
    QProgressBar& progress() const { return find<QProgressBar>("progressBar"); }
    QString remaining() const { return find<QLabel>("remainingTimeLabel").text(); }
    QString text(const QString& edit) const { return find<QLineEdit>(edit).text(); }
    LargeTimer* clock() const { return dialog.findChild<LargeTimer*>(); }

    bool click(const QString& name) const { return user::click(&find<QWidget>(name)); }
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QTest::keyClick(dialog.windowHandle(), Qt::Key(key), modifiers);
    }
    /// Replaces what the field holds.
    bool type(const QString& name, const QString& text) const
    {
        if (!click(name))
            return false;
        press(Qt::Key_A, Qt::ControlModifier);
        press(Qt::Key_Delete);
        press(Qt::Key_Home);
        for (const QChar character : text)
            QTest::keyClick(dialog.windowHandle(), character.toLatin1());
        return true;
    }

    QString path(const QString& name) const { return directory.path() + "/Data/" + name; }
    void put(const QString& file) const
    {
        QFile out(file);
        if (!out.open(QIODevice::WriteOnly))
            qFatal("%s can not be written", qPrintable(file));
    }

    /// Starts with a file that does not exist, as the window does with the first data.
    bool startRecording()
    {
        if (!type("lineEdit_FileName", "run") || !click("pushButton_Start"))
            return false;
        dialog.startTimerSaving();
        return dialog.isRecording();
    }

    /// Does something to the modal dialog as soon as it is there. Closes it if that does not.
    template <typename Modal>
    void whenThereIs(std::function<void(Modal&)> act)
    {
        auto* poll = new QTimer(&dialog);
        poll->start(5);
        QObject::connect(poll, &QTimer::timeout, poll, [poll, act] {
            auto* open = qobject_cast<Modal*>(QApplication::activeModalWidget());
            if (!open)
                return;
            poll->stop();
            poll->deleteLater();
            act(*open);
            if (open->isVisible())
                open->reject();
        });
    }

    QTemporaryDir directory;
    DataLoggerDialog dialog{nullptr};
    QSignalSpy started{&dialog, qOverload<QString, bool>(&DataLoggerDialog::dataRecordingStarted)};
    QSignalSpy stopped{&dialog, &DataLoggerDialog::dataRecordingStopped};
};
