#pragma once

#include "OfficeFormat.h"

#include <QString>

#include <optional>
#include <stop_token>

/// LibreOffice, started for one file at a time: without windows, with a profile of its own that runs no macro and
/// updates no link, confined to that file.
class OfficeProgram {
public:
    enum class Outcome {
        written,
        failed, ///< also when it took longer than two minutes
        stopped,
    };

    /// None when it isn't installed, or only without this component. By PATH, then where distributions put it. Any
    /// thread; waits for the disk.
    [[nodiscard]] static std::optional<OfficeProgram> find(OfficeComponent component);

    /// Lays the file out and writes its pages to `destination`, which is there only afterwards, whole. `source` may be
    /// of any name, since its format is known. Any thread, several at once.
    [[nodiscard]] Outcome writePages(const QString& source, const OfficeFormat& format, const QString& destination,
                                     const std::stop_token& stop) const;

private:
    explicit OfficeProgram(QString path) : m_path(std::move(path)) {}

    QString m_path;
};
