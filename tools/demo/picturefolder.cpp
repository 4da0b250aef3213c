#include "demo/picturefolder.h"

#include "app/messagelog.h"

#include <QCommandLineParser>
#include <QCoreApplication>

void startAsTheApplication()
{
    qputenv("LC_NUMERIC", "C");
    qInstallMessageHandler(writeToMessageLog);
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
}

QString pictureFolder(const QString& description)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(description);
    parser.addHelpOption();
    parser.addPositionalArgument("folder", "Where the pictures go; it must exist.");
    parser.process(*QCoreApplication::instance());
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(1);
    return parser.positionalArguments().first();
}
