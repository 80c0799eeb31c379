#pragma once

#include <QByteArray>

#include <optional>

class UpdateObjects;

/// The file's own side of an incremental update (ISO 32000-1, 7.5.6): where its cross-reference sections are, and how
/// changed objects are put behind its bytes.
namespace IncrementalUpdate {

struct Sections {
    qint64 lastOffset = 0;   ///< of the newest section
    bool isStream = false;   ///< the newest section is a stream and no table
    qint64 updatedBytes = 0; ///< how much earlier updates have added to the first version of the file
};

/// None for a file that can't be appended to: bytes before its header, or no section where it says.
[[nodiscard]] std::optional<Sections> inspect(const QByteArray& file);

/// What to put behind the file's bytes so that it has all of `objects`, in the style of the newest section.
[[nodiscard]] QByteArray compose(const QByteArray& file, const Sections& sections, const UpdateObjects& objects);

} // namespace IncrementalUpdate
