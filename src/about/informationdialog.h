#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class InformationDialog;
}

/// The box behind "About the Software": the release, the maker, and the licences of the libraries.
/// It stands in the middle of the primary screen each time it is shown, and its size is fixed. A
/// picture or a licence document that is missing is not reported. For the GUI thread.
class InformationDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit InformationDialog(QWidget* parent);
    ~InformationDialog() override;

private slots:
    void showEvent(QShowEvent* event) override;
    void on_exit_clicked();

private:
    void enlargeTitle();
    void showRelease();
    void showMaker();
    void showLinks();
    void showQrCode();

    std::unique_ptr<Ui::InformationDialog> ui;
    bool qrLoaded = false;
};
