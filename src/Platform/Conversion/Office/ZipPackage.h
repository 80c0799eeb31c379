#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

/// A file that is a package of compressed files, as far as its table of contents and single members go. One thread at a
/// time.
class ZipPackage {
public:
    struct Member {
        QByteArray name; ///< with slashes between folders
        quint64 packedSize = 0;
        quint64 size = 0; ///< as the table says, which may not be true
        quint64 offset = 0;
        quint16 method = 0; ///< 0 stored, 8 deflated
        bool isEncrypted = false;
    };

    /// Null when the file is no such package, or its table of contents is broken.
    [[nodiscard]] static std::unique_ptr<ZipPackage> open(const QString& path);

    [[nodiscard]] const std::vector<Member>& members() const { return m_members; }
    [[nodiscard]] bool contains(const QByteArray& name) const { return find(name) != nullptr; }
    [[nodiscard]] bool containsFolder(const QByteArray& name) const;
    [[nodiscard]] bool isEncrypted() const;
    /// What all members would take, in bytes, by the table.
    [[nodiscard]] quint64 unpackedSize() const;

    /// None for a member that isn't there, is protected, broken or larger than `most` bytes.
    [[nodiscard]] std::optional<QByteArray> read(const QByteArray& name, qsizetype most);

private:
    ZipPackage() = default;
    bool readTable();
    [[nodiscard]] const Member* find(const QByteArray& name) const;

    QFile m_file;
    std::vector<Member> m_members;
};
