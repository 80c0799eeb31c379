#pragma once

#include <QString>

class QUrl;

/// What the user is told about a file that isn't there, or not on this computer.
struct FileRefusal {
    QString title;
    QString sentence;

    [[nodiscard]] static FileRefusal of(const QUrl& url);
};
