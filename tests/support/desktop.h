#pragma once

#include <QList>
#include <QObject>
#include <QUrl>

/// Stands in for the desktop while it lives: files and web addresses that are to be opened come
/// here instead.
class Desktop final : public QObject
{
    Q_OBJECT

public:
    enum class Readers {
        Present,
        Missing ///< Nothing is opened, and the caller is told so.
    };

    explicit Desktop(Readers readers = Readers::Present);
    ~Desktop() override;

    QList<QUrl> opened;

public slots:
    void open(const QUrl& url) { opened.append(url); }
};
