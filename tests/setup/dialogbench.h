#pragma once

#include "app/switches.h"
#include "fakeregistry.h"
#include "link/serialport.h"
#include "link/tcpclient.h"
#include "setup/connectionwidget.h"
#include "setup/settingsdialog.h"
#include "widgettest.h"

#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>

#include <functional>
#include <memory>

/// The connection dialog with a registry of no window, a configuration directory of its own and
/// the tab "TCP/IP" in front. Connections wait shorter than real ones unless told otherwise.
class DialogBench final
{
public:
    static constexpr int shortTimeoutMs = 250;

    DialogBench()
    {
        switches::configDir = QDir(directory.path());
        switches::autoSerialSearch = false;
        switches::anySerialDevice = false;
        useTimeout(shortTimeoutMs);
        dialog.setInterfaceSearch([this](bool includePseudo, bool anyDevice) {
            searches.append({includePseudo, anyDevice});
            return found;
        });
        child<QTabWidget>("tabWidget").setCurrentIndex(1);
    }

    void useTimeout(int timeoutMs)
    {
        dialog.setConnectionFactory([timeoutMs](ConnectionType type) {
            std::unique_ptr<Connection> made;
            if (type == ConnectionType::Tcp)
                made = std::make_unique<TcpClient>();
            else
                made = std::make_unique<SerialPort>();
            made->setTimeoutMs(timeoutMs);
            return made;
        });
    }

    template <typename Widget>
    Widget& child(const QString& name) const
    {
        return widgettest::named<Widget>(dialog, name);
    }

    QString path(const QString& name) const { return directory.filePath(name); }
    QString defaultFile() const { return path("ConnectionSetup.xml"); }

    QString tcpInfo() const { return child<QLabel>("infoLabel2").text(); }
    QString serialInfo() const { return child<QLabel>("infoLabel").text(); }

    /// The lines of a list, in its order.
    QList<ConnectionWidget*> lines(const QString& listName) const
    {
        auto& list = child<QListWidget>(listName);
        QList<ConnectionWidget*> made;
        for (int i = 0; i < list.count(); ++i)
            made.append(static_cast<ConnectionWidget*>(list.itemWidget(list.item(i))));
        return made;
    }
    QList<ConnectionWidget*> tcpLines() const { return lines("listWidgetTcp"); }
    QList<ConnectionWidget*> serialLines() const { return lines("listWidgetSerial"); }

    /// As on a screen that has room for it; the test's own one has not.
    void showWide()
    {
        widgettest::show(dialog);
        dialog.resize(dialog.maximumWidth(), dialog.height());
        QCoreApplication::processEvents();
    }

    void fillTcp(const QString& address, const QString& port, const QString& label) const
    {
        for (const auto& [name, text] :
             {std::pair{"addressTcpEdit", address}, std::pair{"portLineEdit", port},
              std::pair{"labelTcpEdit", label}}) {
            auto& edit = child<QLineEdit>(name);
            edit.clear();
            QTest::keyClicks(&edit, text);
        }
    }

    void put(const QString& file, const QByteArray& content) const
    {
        QFile out(file);
        if (!out.open(QIODevice::WriteOnly) || out.write(content) != content.size())
            qFatal("%s can not be written", qPrintable(file));
    }

    QByteArray contentOf(const QString& file) const
    {
        QFile in(file);
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    }

    /// Does something to the file dialog as soon as it is there.
    void withFileDialog(std::function<void(QFileDialog&)> act)
    {
        auto* poll = new QTimer(&dialog);
        poll->start(5);
        QObject::connect(poll, &QTimer::timeout, poll, [poll, act] {
            auto* open = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            if (!open)
                return;
            poll->stop();
            poll->deleteLater();
            act(*open);
        });
    }

    /// Types a path into the file dialog and presses Enter.
    void chooseFile(const QString& file)
    {
        withFileDialog([this, file](QFileDialog& open) {
            titleOfFileDialog = open.windowTitle();
            modeOfFileDialog = open.acceptMode();
            auto& edit = widgettest::named<QLineEdit>(open, "fileNameEdit");
            edit.setText(file);
            QTest::keyClick(&edit, Qt::Key_Return);
        });
    }

    void cancelFileDialog()
    {
        withFileDialog([](QFileDialog& open) { QTest::keyClick(&open, Qt::Key_Escape); });
    }

    QTemporaryDir directory;
    FakeRegistry registry;
    QList<FoundInterface> found;
    QList<QPair<bool, bool>> searches;
    QString titleOfFileDialog;
    QFileDialog::AcceptMode modeOfFileDialog = QFileDialog::AcceptSave;
    SettingsDialog dialog{registry, nullptr};
};

constexpr char redBorder[] = "border: 1px solid red";
