#pragma once

#include <QByteArray>
#include <QFile>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <zlib.h>

/// Files for the tests of this folder.
namespace OfficeFiles {

inline QString write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    return path;
}

inline QByteArray bytesOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline QByteArray number(quint64 value, int bytes) {
    QByteArray text;
    for (; bytes > 0; --bytes, value >>= 8)
        text += char(value);
    return text;
}

/// A package of stored members; `claimedSize`, unless 0, is what the table says of each.
inline QByteArray package(const std::vector<std::pair<QByteArray, QByteArray>>& members, quint32 claimedSize = 0) {
    QByteArray text;
    QByteArray table;
    for (const auto& [name, bytes] : members) {
        const auto size = quint32(bytes.size());
        const auto sum = quint32(crc32(0, reinterpret_cast<const Bytef*>(bytes.constData()), size));
        // Version, flags, method, time and date, then the sum, both sizes and the lengths of name and extra field.
        const QByteArray common = number(20, 2) + number(0, 4) + number(0x00210000, 4) + number(sum, 4) +
                                  number(size, 4) + number(claimedSize ? claimedSize : size, 4) +
                                  number(quint32(name.size()), 2) + number(0, 2);
        table += "PK\1\2" + number(20, 2) + common + number(0, 10) + number(quint32(text.size()), 4) + name;
        text += "PK\3\4" + common + name + bytes;
    }
    return text + table + "PK\5\6" + number(0, 4) + number(quint32(members.size()), 2) +
           number(quint32(members.size()), 2) + number(quint32(table.size()), 4) + number(quint32(text.size()), 4) +
           number(0, 2);
}

/// A book of two chapters; the second one says “Second”.
inline QByteArray book(const QByteArray& chapter) {
    return package({{"mimetype", "application/epub+zip"},
                    {"META-INF/container.xml",
                     R"(<container version="1.0" xmlns="urn:oasis:names:tc:opendocument:xmlns:container"><rootfiles>
<rootfile full-path="book.opf" media-type="application/oebps-package+xml"/></rootfiles></container>)"},
                    {"book.opf", R"(<package xmlns="http://www.idpf.org/2007/opf" version="2.0"><manifest>
<item id="a" href="a.xhtml" media-type="application/xhtml+xml"/><item id="b" href="b.xhtml"
media-type="application/xhtml+xml"/></manifest><spine><itemref idref="a"/><itemref idref="b"/></spine></package>)"},
                    {"a.xhtml", chapter},
                    {"b.xhtml", "<html xmlns=\"http://www.w3.org/1999/xhtml\"><body><h1>Second</h1><p><a "
                                "href=\"a.xhtml\">back</a></p></body></html>"}});
}

/// What another program says; empty when it isn't there or fails.
inline QString output(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    return process.waitForFinished(120'000) && process.exitCode() == 0
               ? QString::fromUtf8(process.readAllStandardOutput())
               : QString();
}

/// Lets LibreOffice write a file of its own in another format, beside it; the new path.
inline QString converted(const QString& source, const QString& suffix, const QString& filter = {}) {
    const QString folder = source.left(source.lastIndexOf(u'/'));
    output(QStringLiteral("soffice"),
           {QStringLiteral("-env:UserInstallation=file://") + folder + QStringLiteral("/maker"),
            QStringLiteral("--headless"), QStringLiteral("--convert-to"),
            filter.isEmpty() ? suffix : suffix + u':' + filter, QStringLiteral("--outdir"), folder, source});
    return source.left(source.lastIndexOf(u'.') + 1) + suffix;
}

} // namespace OfficeFiles
