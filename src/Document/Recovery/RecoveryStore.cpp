#include "RecoveryStore.h"

#include "RecoveryRecord.h"
#include "StateFolder.h"

#include <QDateTime>
#include <QDir>

#include <algorithm>

namespace {

/// What a process was at when it was killed; where it lives, a record is in the making for a moment only.
constexpr int daysToKeepUnfinished = 1;

bool isLeftover(const QString& name, const QDateTime& modified, const QDateTime& now) {
    return name.startsWith(RecoveryRecord::removedPrefix) ||
           (name.startsWith(RecoveryRecord::newPrefix) && modified.daysTo(now) > daysToKeepUnfinished);
}

} // namespace

QString RecoveryStore::standardFolder() {
    return StateFolder::path() + QStringLiteral("/quillo/recovery");
}

std::vector<std::unique_ptr<RecoveryRecord>> RecoveryStore::takeLost(const QString& folder, const QDateTime& now) {
    std::vector<std::unique_ptr<RecoveryRecord>> lost;
    const QFileInfoList entries =
        QDir(folder).entryInfoList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot | QDir::NoSymLinks, QDir::Time);
    for (const QFileInfo& entry : entries) {
        const QString name = entry.fileName();
        const QDateTime modified = entry.lastModified(); // taking a record may change it
        if (isLeftover(name, modified, now)) {
            QDir(entry.filePath()).removeRecursively();
            continue;
        }
        if (!RecoveryRecord::isId(name) || lost.size() >= std::size_t(maximumLostCount))
            continue;
        std::unique_ptr<RecoveryRecord> record = RecoveryRecord::take(entry.filePath());
        if (!record)
            continue;
        if (record->manifest())
            lost.push_back(std::move(record));
        else if (record->isUnfinished() && modified.daysTo(now) > daysToKeepUnfinished)
            record->remove();
    }
    std::stable_sort(lost.begin(), lost.end(), [](const auto& a, const auto& b) {
        return a->manifest()->description.writeTime > b->manifest()->description.writeTime;
    });
    return lost;
}
