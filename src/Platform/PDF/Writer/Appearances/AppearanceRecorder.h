#pragma once

#include "ObjectStore.h"

#include <QBuffer>
#include <QPainter>

#include <map>
#include <memory>
#include <vector>

class PDFAnnotation;
class QPdfWriter;

/// Records what annotations draw, as vectors with embedded fonts, for their appearances in the file. All recordings of
/// one file share their fonts, so add every annotation first and finish once.
class AppearanceRecorder {
public:
    explicit AppearanceRecorder(ObjectStore& objects);
    ~AppearanceRecorder();
    AppearanceRecorder(const AppearanceRecorder&) = delete;
    AppearanceRecorder& operator=(const AppearanceRecorder&) = delete;

    /// Runs the annotation's `draw`. `finish` makes the result the normal appearance of `dictionary`, which stands for
    /// the annotation in the file and has its final rectangle.
    void record(const PDFAnnotation& annotation, QPDFObjectHandle dictionary);
    /// The same for what it draws within `box`, in upright coordinates.
    void record(const PDFAnnotation& annotation, QPDFObjectHandle dictionary, const QRectF& box);

    /// Puts the recordings into the file. Throws `std::exception` when one can't be read back.
    void finish();

private:
    struct Recording {
        std::vector<QPDFObjectHandle> dictionaries; ///< more than one where they share a look
        QSizeF size;
        int turn; // degrees anticlockwise against the page
    };

    ObjectStore& m_objects;
    QBuffer m_buffer;
    std::unique_ptr<QPdfWriter> m_writer;
    QPainter m_painter;
    std::vector<Recording> m_recordings;
    std::map<QByteArray, std::size_t> m_shared; // recordings by `PDFAnnotation::sharedLook`, size and turn
    QPDF m_recorded;                            // open until the file is written, since streams are copied then
};
