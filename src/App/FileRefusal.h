#pragma once

#include <QString>

class QUrl;

/// What the user is told about a file that Quillo can't show.
struct FileRefusal {
    QString title;
    QString sentence;

    [[nodiscard]] static FileRefusal of(const QUrl& url);
};
