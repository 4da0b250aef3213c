// Works the licence links of the box by keyboard and prints the title of each document that they
// lead to, or why there is none.

#include "about/informationdialog.h"
#include "support/desktop.h"

#include <QApplication>
#include <QFile>
#include <QRegularExpression>
#include <QWindow>
#include <QtTest>

#include <cstdio>

namespace {

QString titleOf(const QUrl& document)
{
    QFile file(document.toLocalFile());
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("no file %1").arg(file.fileName());
    static const QRegularExpression title(QStringLiteral("<title>(.*)</title>"));
    return title.match(QString::fromUtf8(file.readAll())).captured(1);
}

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const Desktop desktop;
    InformationDialog dialog(nullptr);
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    if (!QTest::qWaitForWindowActive(&dialog))
        return EXIT_FAILURE;
    for (int link = 0; link < 2; ++link) {
        QTest::keyClick(dialog.windowHandle(), Qt::Key_Tab);
        QTest::keyClick(dialog.windowHandle(), Qt::Key_Return);
    }
    for (const QUrl& document : desktop.opened)
        std::puts(qPrintable(titleOf(document)));
    return EXIT_SUCCESS;
}
