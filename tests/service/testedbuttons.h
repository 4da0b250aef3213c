#pragma once

#include "emulator/controlleroptions.h"

#include <QByteArray>
#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVector>

/// A button of the service dialog, what it sends, and what is read of it.
struct TestedButton
{
    QString name;
    QByteArray command;
    /// Each text a paragraph.
    QStringList success;
    QString failure;
    /// What a reply of two bytes that accepts is told as, where more is expected.
    QString bareSuccess;

    bool wantsMore() const { return !bareSuccess.isNull(); }
};

Q_DECLARE_METATYPE(TestedButton)

/// All buttons that send one command and can be clicked, in the order in which one reads them.
const QVector<TestedButton>& testedButtons();
/// Column "button", and a row for each.
void addTestedButtons();

/// The names of the first `count` buttons of a command.
QStringList namesOfEach(const char* command, int count);

/// A controller whose every sample is the one of which `testedButtons` tells.
emulator::ControllerOptions steadyController();
