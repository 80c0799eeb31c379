#pragma once

#include "GlyphPlaces.h"

#include <QFont>
#include <QPainter>
#include <QPdfWriter>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QTemporaryFile>

#include <vector>

/// A PDF of US Letter pages that is being written, with a margin of 54 points on each side. Lengths are in the pixels
/// of web pages, of which 96 make an inch; the origin is the upper left corner of the frame inside of the margins. The
/// text is real text in embedded fonts. One thread at a time; needs a QGuiApplication.
class LetterPages {
public:
    /// 504 by 684 points.
    static constexpr QSizeF frame{672, 912};

    static constexpr qreal margin = 54;      ///< points
    static constexpr qreal pageHeight = 792; ///< points

    /// What can be clicked, on one page (zero-based) within the frame.
    struct Link {
        int page = 0;
        QRectF area;
        QString address;     ///< where it leads outside of this document, percent-encoded; empty for a place within
        int targetPage = 0;  ///< the place within
        qreal targetTop = 0; ///< from the frame's top
    };

    /// Pages for a file at `destination`, which isn't touched before `finish`. The first page is there at once.
    explicit LetterPages(const QString& destination);
    ~LetterPages();
    LetterPages(const LetterPages&) = delete;
    LetterPages& operator=(const LetterPages&) = delete;

    /// False when there is no writing in the folder of the destination; then there is no painter either.
    [[nodiscard]] bool isOpen() const { return m_painter.isActive(); }

    /// The title among the file's information; without one, readers show the file's name.
    void setTitle(const QString& title) { m_title = title; }
    [[nodiscard]] QPaintDevice* device() { return &m_writer; }
    [[nodiscard]] QPainter& painter() { return m_painter; }
    [[nodiscard]] int pageCount() const { return m_pageCount; }
    void startPage();
    /// For drawing that hides lines by clipping at the ends of pages: their text won't be in the file.
    void dropHiddenText() { m_dropsHiddenText = true; }
    void addLink(const Link& link) { m_links.push_back(link); }
    /// What glyphs on a page stand for together, in whose text they are found. `places`: of their origins, in points.
    void addGlyphs(int page, const QString& text, const std::vector<QPointF>& places) {
        m_places.add(page, text, places);
    }
    /// A place within the frame as one on the page, in points from the lower left.
    [[nodiscard]] static QPointF inPoints(QPointF place);

    /// Writes the file. False, with nothing left at `destination`, when it can't be written.
    [[nodiscard]] bool finish();

private:
    QString m_destination;
    QTemporaryFile m_drawn; ///< what Qt writes; without links
    QPdfWriter m_writer;
    QPainter m_painter;
    QString m_title;
    std::vector<Link> m_links;
    GlyphPlaces m_places;
    int m_pageCount = 1;
    bool m_dropsHiddenText = false;
};
