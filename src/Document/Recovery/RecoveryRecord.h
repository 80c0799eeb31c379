#pragma once

#include "RecoveryManifest.h"

#include <QByteArray>
#include <QImage>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

/// What is kept on the disk of a document whose changes aren't saved: a folder for this user only, named by a random
/// id. Whenever the process or the machine stops, the folder holds the last complete write.
///
/// The object holds the record's lock, which the system takes back when the process ends in whatever way. So a record
/// whose lock can be taken belongs to nobody who lives. Any thread, one at a time. Failures are a `FileError`.
class RecoveryRecord {
public:
    /// Makes a record in `folder`, which is made with its parents when it isn't there, and takes its lock.
    [[nodiscard]] static std::unique_ptr<RecoveryRecord> create(const QString& folder);
    /// Takes the lock of the record at `path`. Null when someone holds it, this process included, and when there is no
    /// record.
    [[nodiscard]] static std::unique_ptr<RecoveryRecord> take(const QString& path);
    /// Lets the record go; it stays on the disk.
    ~RecoveryRecord();
    RecoveryRecord(const RecoveryRecord&) = delete;
    RecoveryRecord& operator=(const RecoveryRecord&) = delete;

    /// Whether a folder of that name may be a record: a record's folder is named by its id.
    [[nodiscard]] static bool isId(const QString& name);
    [[nodiscard]] QString id() const;
    /// False when someone removed the folder from under the record.
    [[nodiscard]] bool isInPlace() const;
    /// True when nothing was ever written completely.
    [[nodiscard]] bool isUnfinished() const;

    /// None until the first write, and when the record on the disk is cut, damaged or lacks a part. Contents of parts
    /// are checked by `bytes`.
    [[nodiscard]] const std::optional<RecoveryManifest>& manifest() const { return m_manifest; }

    /// Replaces what the record holds. Small when `base` is the very array of the write before: only `update` is
    /// written then. When it fails, what was there before stays.
    void write(const RecoveryDescription& description, const QByteArray& base, const QByteArray& update);

    /// The same with a document that `writeWhole` puts into the file at the path that it gets, without being in memory.
    void write(const RecoveryDescription& description, const std::function<void(const QString& path)>& writeWhole);

    /// The document: the base with the update after it. Throws also when they aren't what was written.
    [[nodiscard]] QByteArray bytes();

    void setPicture(const QImage& picture);
    /// Null when there is none that can be read.
    [[nodiscard]] QImage picture() const;

    /// Deletes the record, which vanishes at once. The object is of no use afterwards.
    void remove();

    /// What a record is called while it is being made and while it is being deleted: prefixes of its id.
    static constexpr QLatin1String newPrefix{".new-"};
    static constexpr QLatin1String removedPrefix{".removed-"};

private:
    RecoveryRecord(QString path, int lock);
    [[nodiscard]] QString filePath(const QString& name) const;
    [[nodiscard]] RecoveryManifest::Part writePart(const QString& kind, const QByteArray& bytes);
    [[nodiscard]] QByteArray readPart(const RecoveryManifest::Part& part) const;
    [[nodiscard]] bool hasPart(const RecoveryManifest::Part& part) const;
    void load();
    void replace(const RecoveryDescription& description, const QByteArray& base,
                 const std::function<void(RecoveryManifest& next)>& writeParts);
    void removeUnnamedFiles() const;

    QString m_path;
    int m_lock; ///< a file descriptor
    std::optional<RecoveryManifest> m_manifest;
    /// The bytes of `m_manifest->base`, when this object wrote or read them.
    QByteArray m_base;
    qint64 m_lastPartNumber = 0;
};
