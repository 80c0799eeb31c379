#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <map>

class UserDefaults;

/// The files that were opened or saved last, newest first, kept in the settings. Nothing here waits for a disk: whether
/// a file is still there, and whether two paths lead to one file, is looked up on other threads, for each file by
/// itself; what that changes is told by `changed`. Until then, and on a disk that doesn't answer, a file counts as
/// there and as another than all others. Main thread only.
class RecentDocuments : public QObject {
    Q_OBJECT

public:
    static constexpr int maximumCount = 10;

    /// `defaults` must outlive it.
    explicit RecentDocuments(UserDefaults& defaults, QObject* parent = nullptr);
    ~RecentDocuments() override;

    /// Without those of which it is known that they are gone.
    [[nodiscard]] QList<QUrl> urls() const;
    /// Puts a local file at the front, and looks it up.
    void note(const QUrl& url);
    void clear();
    /// Looks all files up again.
    void lookUp();

Q_SIGNALS:
    /// `urls()` is another.
    void changed();

private:
    struct Found {
        bool exists = false;   ///< some documents are folders
        QString canonicalPath; ///< empty where there is nothing
    };

    [[nodiscard]] QStringList paths() const;
    void setPaths(const QStringList& paths);
    void lookUp(const QString& path);
    void take(const QString& path, const Found& found);
    [[nodiscard]] QStringList withoutRepeats(QStringList paths) const;

    UserDefaults& m_defaults;
    std::map<QString, Found> m_found; ///< as last seen
    /// The files that are being looked up, and whether that is to be done again afterwards: one that hangs isn't tried
    /// a second time.
    QHash<QString, bool> m_lookedUp;
};
