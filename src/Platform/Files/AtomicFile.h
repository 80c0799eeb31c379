#pragma once

#include "FileStamp.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

class QFile;

/// Replaces the content of the file at `path`, or makes the file: a reader, and whoever looks after a crash, finds
/// either the old content or the new one, complete. Returns when the bytes are safely on the disk.
///
/// Symbolic links are followed and kept. An existing file keeps its permission bits, its extended attributes and, as
/// far as the user may give files away, its owner and group; a new one gets the usual permissions. Programs that have
/// the old file open go on reading the old content; other hard links to it keep the old content too.
///
/// A file that the user may write to, in a folder where it can't be replaced, is written in its place: its new content
/// is complete in the user's state folder first, and stays there when that fails midway, which the error tells.
///
/// A process that is killed meanwhile leaves a file ".saving-" with a number, which a later call for the same folder
/// deletes when it is an hour old.
///
/// With `expected`, what is replaced is the file with that stamp: when the file that is there just before it would be
/// replaced has another, it stays. A file that has gone is no obstacle.
///
/// Gives the stamp of what was written, which the file keeps until somebody else writes to it or replaces it.
///
/// Throws FileError, with nothing changed and no file left behind; FileChangedError for a file that isn't the expected
/// one. A file that the user may not write to is refused, even where the folder would let it be replaced.
FileStamp writeFileAtomically(const QString& path, const QByteArray& bytes,
                              const std::optional<FileStamp>& expected = std::nullopt);

/// Returns when the names in the folder at `path` are safely on the disk, if its file system can tell.
void synchronizeFolder(const QString& path);

/// The same as the first for content that is written piece by piece: `write` gets a new, empty temporary file in the
/// target's folder, open for reading and writing, without a buffer. It need not check its writes: a failed one makes
/// the whole fail. It may close the file, or write to `fileName()` by other means, whose errors it must report itself.
/// Whatever it throws passes through and leaves the target as it was.
FileStamp writeFileAtomically(const QString& path, const std::function<void(QFile& file)>& write,
                              const std::optional<FileStamp>& expected = std::nullopt);
