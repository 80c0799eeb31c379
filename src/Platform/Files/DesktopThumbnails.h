#pragma once

#include <QString>

/// The pictures of files that file managers keep ("Thumbnail Managing Standard" of freedesktop.org, version 0.9).
namespace DesktopThumbnails {

/// Removes those of a file whose content has changed, which would show the old content on: what was taken out of it may
/// be legible there. Absolute path. Any thread; touches the disk.
void forget(const QString& path);

} // namespace DesktopThumbnails
