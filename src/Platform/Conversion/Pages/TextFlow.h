#pragma once

#include "ShapedText.h"

#include <QFont>
#include <QString>
#include <QStringView>
#include <QTextOption>

class LetterPages;

/// Lays text out in lines and draws them, page after page. The lines of a text file stand apart; a long one is broken
/// at spaces, or anywhere when there are none. Takes time in proportion to the text, however long its lines are, since
/// these are laid out in pieces. One thread at a time.
class TextFlow {
public:
    /// `pages` has to outlive the flow.
    explicit TextFlow(LetterPages& pages);

    void add(QStringView text);

    /// Draws what is left, at the end of the text.
    void end();

private:
    void addToLine(QStringView text);
    void endLine();
    void layOut(qsizetype length);
    [[nodiscard]] qreal placeOf(qreal height);

    LetterPages& m_pages;
    ShapedText m_shaped;
    QFont m_font;
    QTextOption m_options;
    qreal m_blankHeight;         ///< of a line without characters
    qreal m_top = 0;             ///< of the next line within the frame
    QString m_line;              ///< what of the file's current line isn't drawn yet
    qsizetype m_pieceLength;     ///< how much of a line is laid out at once
    bool m_hasDirection = false; ///< whether `m_options` tells the direction of the current line
    bool m_endedByReturn = false;
};
