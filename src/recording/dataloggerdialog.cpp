#include "recording/dataloggerdialog.h"

#include "app/logging.h"
#include "app/switches.h"
#include "controls/roomwhenhidden.h"
#include "plots/durationtext.h"
#include "plots/largetimer.h"
#include "recording/recordingclock.h"
#include "recording/recordingestimate.h"
#include "recording/recordingname.h"
#include "ui_dataloggerdialog.h"

#include <QDateTime>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QShowEvent>

namespace {

constexpr int progressMs = 1000;
/// Faster samples are saved all or not at all.
constexpr int highestChosenRateHz = 500;

QString recordingFolder()
{
    return recordingname::folder(switches::configDir.path());
}

} // namespace

DataLoggerDialog::DataLoggerDialog(QWidget* parent)
    : QDialog(parent, Qt::WindowCloseButtonHint)
    , ui(std::make_unique<Ui::DataLoggerDialog>())
{
    logMessage().debug() << "Constructing DataLoggerDialog";
    ui->setupUi(this);
    prepareForm();
    wireForm();
    progressTimer.setInterval(progressMs);
    showEstimate();
    logMessage().debug() << "Finished constructing DataLoggerDialog";
}

DataLoggerDialog::~DataLoggerDialog() = default;

void DataLoggerDialog::prepareForm()
{
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    keepRoomWhenHidden(*ui->lblWarningLargeFile);
    // Their background is light under every palette, so their text has to be dark.
    for (QLineEdit* result : {ui->lineEdit_DataBlocks, ui->lineEdit_FileSize}) {
        QPalette colors = result->palette();
        colors.setColor(QPalette::Text, Qt::black);
        result->setPalette(colors);
    }
}

void DataLoggerDialog::wireForm()
{
    connect(ui->spinBox_SaveRate, qOverload<int>(&QSpinBox::valueChanged), this,
            &DataLoggerDialog::showEstimate);
    connect(ui->lineEdit_RecordTime, &QLineEdit::textChanged, this,
            &DataLoggerDialog::showEstimate);
    connect(ui->pushButton_SaveAs, &QPushButton::clicked, this, &DataLoggerDialog::chooseFile);
    connect(ui->pushButton_Start, &QPushButton::clicked, this, &DataLoggerDialog::emitStartSignal);
    connect(ui->pushButton_Stop, &QPushButton::clicked, this, &DataLoggerDialog::emitStopSignal);
    connect(ui->pushButton_Close, &QPushButton::clicked, this, &DataLoggerDialog::close);
    connect(&progressTimer, &QTimer::timeout, this, &DataLoggerDialog::updateProgressBar);
}

void DataLoggerDialog::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    // A spin box writes its number again when it is hidden.
    clearRateIfFixed();
    // The window system shows a window that was minimised: the focus stays.
    if (!event->spontaneous())
        ui->pushButton_SaveAs->setFocus();
}

// The rate and what it costs.

void DataLoggerDialog::setSaveRate(int rateHz)
{
    // The value comes first: it is held to the highest rate so far.
    ui->spinBox_SaveRate->setValue(rateHz);
    ui->spinBox_SaveRate->setMaximum(rateHz);
    ui->spinBox_SaveRate->setEnabled(rateHz <= highestChosenRateHz);
    clearRateIfFixed();
    showEstimate();
}

bool DataLoggerDialog::canChooseRate() const
{
    return ui->spinBox_SaveRate->isEnabledTo(this);
}

void DataLoggerDialog::clearRateIfFixed()
{
    if (!canChooseRate())
        ui->spinBox_SaveRate->clear();
}

void DataLoggerDialog::showEstimate()
{
    recordSeconds = durationtext::toSeconds(ui->lineEdit_RecordTime->text());
    // A field that can not be changed shows nothing, and the value that it keeps does not count.
    saveRateHz = canChooseRate() ? ui->spinBox_SaveRate->value() : ui->spinBox_SaveRate->maximum();
    const RecordingEstimate estimate = estimateRecording(saveRateHz, recordSeconds);
    ui->lineEdit_DataBlocks->setText(QString::number(estimate.blocks));
    ui->lineEdit_FileSize->setText(estimate.megabytesText());
    ui->lblWarningLargeFile->setVisible(estimate.isLarge());
}

// The file.

void DataLoggerDialog::chooseFile()
{
    QFileDialog chooser(this, tr("Save data to file"), recordingFolder(),
                        QStringLiteral("*.csv\n *.txt\n  *.xls\n *.*"));
    chooser.setFileMode(QFileDialog::AnyFile);
    chooser.setAcceptMode(QFileDialog::AcceptSave);
    // Whether a file is overwritten is asked at the start, for typed names as for chosen ones.
    chooser.setOption(QFileDialog::DontConfirmOverwrite);
    chooser.setLabelText(QFileDialog::Accept, tr("Select"));
    chooser.selectFile(recordingname::proposal(QDateTime::currentDateTime()));
    const bool isChosen = chooser.exec() == QDialog::Accepted;
    ui->lineEdit_FileName->setText(isChosen ? chooser.selectedFiles().value(0) : QString());
}

bool DataLoggerDialog::mayWrite(const QString& fileName)
{
    if (!QFileInfo::exists(fileName))
        return true;
    const QString question = tr("File\n%1\n already exists!\n\nOverwrite the file?").arg(fileName);
    const bool wasEnabled = recordingEnabled;
    const auto answer =
        QMessageBox::question(this, tr("File exists!"), question,
                              QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Cancel);
    // The last system can have gone while the question was open.
    const bool isNothingLeft = wasEnabled && !recordingEnabled;
    return answer == QMessageBox::Ok && !isNothingLeft;
}

// Recording.

void DataLoggerDialog::setRecordingEnabled(bool on)
{
    recordingEnabled = on;
    if (!on && stopTimer && stopTimer->isRunning())
        emitStopSignal();
    allowStart();
}

void DataLoggerDialog::allowStart()
{
    ui->pushButton_Start->setEnabled(recordingEnabled && !isRecording());
}

void DataLoggerDialog::emitStartSignal()
{
    if (ui->lineEdit_FileName->text().isEmpty()) {
        QMessageBox::critical(this, tr("Error"),
                              tr("File name missing.\n\nPlease enter a name and try it again."),
                              QMessageBox::Ok);
        return;
    }
    const QString fileName =
        recordingname::completed(ui->lineEdit_FileName->text(), recordingFolder());
    if (!mayWrite(fileName))
        return;
    ui->lineEdit_FileName->setText(fileName);
    makeStopTimer();
    showRecording(true);
    progressTimer.start();
    updateProgressBar();
    emit dataRecordingStarted(fileName, ui->checkBox->isChecked());
}

void DataLoggerDialog::makeStopTimer()
{
    if (stopTimer)
        return;
    stopTimer = new LargeTimer(this, 0, LargeTimer::longestChunkMs);
    stopTimer->setSingleShot(true);
    connect(stopTimer, &LargeTimer::timeout, this, &DataLoggerDialog::emitStopSignal);
}

void DataLoggerDialog::startTimerSaving()
{
    if (!stopTimer)
        return;
    stopTimer->start(recordingclock::intervalMs(recordSeconds));
    updateProgressBar();
}

void DataLoggerDialog::emitStopSignal()
{
    updateProgressBar();
    progressTimer.stop();
    if (stopTimer) {
        stopTimer->stop();
        // This may be its own signal.
        stopTimer->deleteLater();
        stopTimer = nullptr;
    }
    showRecording(false);
    emit dataRecordingStopped();
}

void DataLoggerDialog::showRecording(bool on)
{
    // Start hands the focus on to Stop, and gets it back: who works by the keyboard stays between
    // the two.
    const bool isStopFocused = focusWidget() == ui->pushButton_Stop;
    ui->pushButton_Stop->setEnabled(on);
    ui->pushButton_SaveAs->setEnabled(!on);
    ui->lineEdit_FileName->setReadOnly(on);
    ui->spinBox_SaveRate->setReadOnly(on);
    ui->lineEdit_RecordTime->setReadOnly(on);
    ui->progressBar->setEnabled(on);
    allowStart();
    if (on)
        return;
    ui->remainingTimeLabel->clear();
    if (isStopFocused)
        ui->pushButton_Start->setFocus();
}

void DataLoggerDialog::updateProgressBar()
{
    if (!stopTimer)
        return;
    const quint64 intervalMs = stopTimer->totalInterval();
    ui->progressBar->setValue(recordingclock::percentDone(stopTimer->remainingTime(), intervalMs));
    // Before the first data all of the time remains.
    const quint64 remainingMs = stopTimer->isRunning() ? stopTimer->remainingTime()
                                                       : recordingclock::intervalMs(recordSeconds);
    ui->remainingTimeLabel->setText(recordingclock::isEndless(remainingMs)
                                        ? tr("does not stop by itself")
                                        : recordingclock::remainingText(remainingMs));
}
