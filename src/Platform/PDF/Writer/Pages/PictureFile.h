#pragma once

#include "PDFPageGeometry.h"

#include <QByteArray>
#include <QTransform>

#include <map>
#include <optional>
#include <vector>

class QIODevice;

/// Writes a file of pages that show one picture each, so that no more of it is in memory than the page that comes next.
/// One thread at a time. The device's errors are for whoever gave it to notice.
class PictureFile {
public:
    /// An image of the file: the keys that tell how it is packed, and its bytes.
    struct Image {
        QByteArray keys;
        QByteArray data;
        QByteArray iccProfile = {}; ///< takes the place of a colour space among the keys
        int components = 0;         ///< that the profile is for
    };

    /// Begins the file. The device outlives it.
    explicit PictureFile(QIODevice& device);

    /// Pages come in any order; `place` says in which they stand. `upright` turns and mirrors the unit square, in which
    /// the picture is, to what is to be shown in the media box. `transparency` becomes the picture's soft mask.
    void addPage(int place, const PDFPageGeometry& page, const QTransform& upright, const Image& picture,
                 const std::optional<Image>& transparency = std::nullopt);
    /// Once, at the end.
    void finish();

private:
    int reserve();
    void write(const QByteArray& bytes);
    void writeObject(int number, const QByteArray& value);
    void writeStream(int number, const QByteArray& keys, const QByteArray& data);
    /// The keys of the image with those that lead to what stands in objects of its own.
    QByteArray completeKeys(const Image& image);

    QIODevice& m_device;
    qint64 m_position = 0;
    std::vector<qint64> m_offsets; // of the objects, the first having number 1
    std::map<int, int> m_pages;    // their objects by their places
};
