#pragma once

#include "paramsbench.h"

#include <QMap>
#include <QVector>

/// What the form of the dialog shows, by short names of its controls, such as "AdjustX_2".
using Form = QMap<QString, QString>;

/// A question of the reading, and what shows its answer.
struct Question
{
    QByteArray command;
    /// In the log.
    QString name;
    QStringList controls;
    /// What these controls show if there is no answer. Empty: what they showed before.
    QStringList unread;
};

Q_DECLARE_METATYPE(emulator::Rule)
Q_DECLARE_METATYPE(Question)

/// A way in which a command fails.
struct Fault
{
    const char* name;
    emulator::RuleDraft rule;
};

/// Refused, ignored and answered short.
QVector<Fault> faultsOf(const QByteArray& command);

/// The questions of a reading, in their order.
const QVector<Question>& questions();
QString namesOf(const QVector<Question>& questions);

/// Rows of every question with each of its faults, in the columns "question", "always" and
/// "once", which are its rules.
void addQuestionFaults();

/// The dialog on a controller that has values of its own everywhere.
class FaultBench final
{
public:
    static constexpr int rateHz = 300;
    /// Of the exchanges in which something goes wrong: they wait for it once or twice.
    static constexpr int faultyTimeoutMs = 120;

    explicit FaultBench(const emulator::ControllerOptions& options = {});

    /// Opens the dialog, whose form then shows what the controller has.
    bool open();
    /// As `open`, with a stream that runs.
    bool openStreaming();

    /// Shows a form, as if a user had filled it.
    void fill(const Form& form) const;
    /// Clicks a button, and waits until the exchange that it began is over. What is logged and what
    /// passes on the wire is kept until the next click.
    bool click(const QString& button);
    /// As `click`, with a controller that follows the rule, and waits that it does not make long.
    bool clickUnder(const emulator::Rule& rule, const QString& button);
    /// As `click` on Refresh, in a form that shows `formOfUser`.
    bool refresh();
    bool refreshUnder(const emulator::Rule& rule);

    static Form formOfController();
    /// Differs from what the controller has wherever a reading that fails leaves it.
    static Form formOfUser();
    /// The form behind a `refresh` in which these questions had no answer.
    static Form formWithout(const QVector<Question>& unanswered);

    /// Each control that shows something else, such as "AdjustX shows 1.000, not 0.000".
    QString difference(const Form& expected) const;
    /// The warnings that the last click has logged.
    const QStringList& warnings() const { return logged; }
    /// The questions that the last click has logged as not read, such as "GSF, GAI 1x"; null if it
    /// logged no warning.
    QString unread() const;
    bool hasButtons() const;
    /// Whether a stream runs at both ends at the rate of `openStreaming`.
    bool streams() const;
    /// Whether no stream runs at either end.
    bool isQuiet() const;

    const SensitivityOffered offered;
    ParamsBench bench;

private:
    bool hasSensitivity() const;
    int patientTimeoutMs() const;
    bool setUpController();
    bool isOpen();

    QStringList logged;
};
