#include "about/informationdialog.h"

#include "about/maker.h"
#include "about/release.h"
#include "controls/windowplace.h"
#include "ui_informationdialog.h"

#include <QCoreApplication>
#include <QDate>
#include <QFontInfo>
#include <QGuiApplication>
#include <QImage>
#include <QScreen>
#include <QShowEvent>
#include <QUrl>

namespace {

/// Size of the title against that of the other texts.
constexpr double titleScale = 1.75;

/// A link to a document in the folder `licenses` beside the executable. Blanks in its path are
/// encoded, as the attribute has no quotes. The path's own slash makes four of them, which browsers
/// read like three.
QString licenceLink(const QString& document, const QString& library)
{
    const QUrl folder(QCoreApplication::applicationDirPath());
    return QStringLiteral("<a href=file:///") + folder.toDisplayString(QUrl::EncodeSpaces)
           + QStringLiteral("/licenses/") + document + QLatin1Char('>') + library
           + QStringLiteral("</a>");
}

/// The versions are those that the program was made for, whatever it runs with.
QString libraryLinks()
{
    return licenceLink(QStringLiteral("QT_LICENSE.html"), QStringLiteral("Qt 5.9"))
           + QStringLiteral(", ")
           + licenceLink(QStringLiteral("QWT.html"), QStringLiteral("Qwt 6.1.3"));
}

QString webLink(const QString& address)
{
    return QStringLiteral("<a href=\"%1\">%1</a>").arg(address.toHtmlEscaped());
}

} // namespace

InformationDialog::InformationDialog(QWidget* parent)
    : QDialog(parent, Qt::WindowCloseButtonHint)
    , ui(std::make_unique<Ui::InformationDialog>())
{
    ui->setupUi(this);
    enlargeTitle();
    showRelease();
    showMaker();
    showLinks();
}

InformationDialog::~InformationDialog() = default;

void InformationDialog::enlargeTitle()
{
    QFont title = ui->label_9->font();
    title.setPointSizeF(titleScale * QFontInfo(title).pointSizeF());
    ui->label_9->setFont(title);
}

void InformationDialog::showRelease()
{
    ui->date->setText(QLatin1String(release::date));
    ui->version->setText(QLatin1String(release::version));
    ui->build->setText(QLatin1String(release::build));
}

void InformationDialog::showMaker()
{
    const QString name = QString::fromUtf8(maker::name);
    // The year of the clock, not that of the release.
    ui->copyRight->setText(QStringLiteral("© %1 %2").arg(QDate::currentDate().year()).arg(name));
    ui->label_5->setText(name);
    ui->label_6->setText(QString::fromUtf8(maker::street));
    ui->label_7->setText(QString::fromUtf8(maker::town));
    ui->label_8->setText(QString::fromUtf8(maker::country));
}

void InformationDialog::showLinks()
{
    ui->link->setLinks(webLink(QString::fromUtf8(maker::webAddress)));
    ui->libs->setLinks(libraryLinks());
}

void InformationDialog::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (!qrLoaded) {
        // Taking events can show the dialog once more.
        qrLoaded = true;
        showQrCode();
        setFixedSize(minimumSize().expandedTo(minimumSizeHint()));
    }
    // The window system shows a window that was minimised: the focus stays.
    if (!event->spontaneous())
        ui->exit->setFocus();
    move(middlePlace(QGuiApplication::primaryScreen()->availableGeometry().size(), size()));
    event->accept();
}

void InformationDialog::showQrCode()
{
    const QImage code(QStringLiteral(":/images/qr.png"));
    if (code.isNull())
        return;
    // The layout settles. What the user does meanwhile waits.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    // Without smoothing the edges of the modules stay sharp.
    const int side = qRound(ui->frame_2->height() * devicePixelRatioF());
    QPixmap picture =
        QPixmap::fromImage(code.scaled(side, side, Qt::IgnoreAspectRatio, Qt::FastTransformation));
    picture.setDevicePixelRatio(devicePixelRatioF());
    ui->qrCode->setPixmap(picture);
}

void InformationDialog::on_exit_clicked()
{
    close();
}
