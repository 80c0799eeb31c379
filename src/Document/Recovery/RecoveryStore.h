#pragma once

#include <QString>

#include <memory>
#include <vector>

class QDateTime;
class RecoveryRecord;

/// The folder that holds the recovery records of all processes of this user. Any thread.
namespace RecoveryStore {

/// One look for lost records finds no more than these; the next one finds what is beyond.
inline constexpr int maximumLostCount = 100;

/// `quillo/recovery` in the user's state folder.
[[nodiscard]] QString standardFolder();

/// Takes the readable records that no living process holds, newest first. Deletes what was left of records that were
/// being made or removed and is old at the time `now`. One that can't be read stays: it may hold work that a person or
/// a later version gets out of it.
[[nodiscard]] std::vector<std::unique_ptr<RecoveryRecord>> takeLost(const QString& folder, const QDateTime& now);

} // namespace RecoveryStore
