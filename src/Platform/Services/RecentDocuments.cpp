#include "RecentDocuments.h"

#include "FileWork.h"
#include "UserDefaults.h"

#include <QFileInfo>
#include <QSet>

#include <algorithm>

/// More than are listed: some turn out to be gone, or to be files that are listed already.
static constexpr int mostStored = 2 * RecentDocuments::maximumCount;

static const QString storeKey = QStringLiteral("DocumentController.recentDocumentPaths");

RecentDocuments::RecentDocuments(UserDefaults& defaults, QObject* parent) : QObject(parent), m_defaults(defaults) {
    lookUp();
}

RecentDocuments::~RecentDocuments() = default;

QStringList RecentDocuments::paths() const {
    return m_defaults.stringListForKey(storeKey).value_or(QStringList());
}

void RecentDocuments::setPaths(const QStringList& paths) {
    m_defaults.setStringList(storeKey, paths);
}

QList<QUrl> RecentDocuments::urls() const {
    QList<QUrl> urls;
    for (const QString& path : paths()) {
        const auto found = m_found.find(path);
        if (urls.size() < maximumCount && (found == m_found.end() || found->second.exists))
            urls.append(QUrl::fromLocalFile(path));
    }
    return urls;
}

void RecentDocuments::note(const QUrl& url) {
    if (!url.isLocalFile())
        return;
    const QString path = QFileInfo(url.toLocalFile()).absoluteFilePath();
    const QStringList former = paths();
    QStringList next = former;
    next.removeAll(path);
    next.prepend(path);
    next = withoutRepeats(next);
    next.resize(std::min<qsizetype>(next.size(), mostStored));
    const auto known = m_found.find(path);
    const bool wasGone = known != m_found.end() && !known->second.exists;
    if (wasGone)
        m_found.erase(known); // whoever opens or saves it has seen it
    if (next != former)
        setPaths(next);
    if (next != former || wasGone)
        Q_EMIT changed();
    lookUp(path);
}

void RecentDocuments::clear() {
    if (!m_defaults.contains(storeKey))
        return;
    m_defaults.removeObject(storeKey);
    m_found.clear();
    Q_EMIT changed();
}

void RecentDocuments::lookUp() {
    for (const QString& path : paths())
        lookUp(path);
}

void RecentDocuments::lookUp(const QString& path) {
    if (const auto running = m_lookedUp.find(path); running != m_lookedUp.end()) {
        *running = true; // it may have looked before what is to be seen now
        return;
    }
    m_lookedUp.insert(path, false);
    FileWork::run(
        this,
        [path] {
            const QFileInfo file(path);
            return Found{file.exists(), file.canonicalFilePath()};
        },
        [this, path](const Found& found) { take(path, found); });
}

void RecentDocuments::take(const QString& path, const Found& found) {
    if (m_lookedUp.take(path))
        lookUp(path);
    const QStringList former = paths();
    if (!former.contains(path))
        return; // cleared or pushed out meanwhile
    const QList<QUrl> shown = urls();
    m_found[path] = found;
    if (const QStringList next = withoutRepeats(former); next != former)
        setPaths(next);
    if (urls() != shown)
        Q_EMIT changed();
}

/// Of several paths to one file the newest stays.
QStringList RecentDocuments::withoutRepeats(QStringList paths) const {
    QSet<QString> seen;
    paths.removeIf([&](const QString& path) {
        const auto found = m_found.find(path);
        if (found == m_found.end() || found->second.canonicalPath.isEmpty())
            return false;
        const bool isRepeat = seen.contains(found->second.canonicalPath);
        seen.insert(found->second.canonicalPath);
        return isRepeat;
    });
    return paths;
}
