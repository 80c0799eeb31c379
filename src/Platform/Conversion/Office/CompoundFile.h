#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <map>
#include <memory>

/// A file that holds several streams under names, as office programs wrote them before packages: as far as the names
/// and the beginnings of streams go. One thread at a time.
class CompoundFile {
public:
    /// Null when the file is no such file.
    [[nodiscard]] static std::unique_ptr<CompoundFile> open(const QString& path);

    [[nodiscard]] bool contains(const QString& name) const { return m_streams.contains(name); }
    /// At most as many bytes as a sector has, 512 or 4096; empty for a stream below 4096 bytes, which stands elsewhere.
    [[nodiscard]] QByteArray beginning(const QString& name);

private:
    CompoundFile() = default;
    bool readDirectory();
    QByteArray sector(quint32 number);

    struct Stream {
        quint32 firstSector = 0;
        quint32 size = 0;
    };

    QFile m_file;
    qint64 m_sectorSize = 0;
    std::map<QString, Stream> m_streams;
};
