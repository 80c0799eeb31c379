#include "FormulaFitting.h"

#include <QImage>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextImageFormat>
#include <QTextList>
#include <QUrl>

#include <algorithm>
#include <vector>

static constexpr double smallestScale = 0.5; // letters of half the size can still be read

/// What the margins of a block leave of the document's width.
static double lineWidth(const QTextDocument& document, const QTextBlock& block, double width) {
    const QTextBlockFormat format = block.blockFormat();
    const int steps = format.indent() + (block.textList() ? block.textList()->format().indent() : 0);
    return width - 2 * document.documentMargin() - format.leftMargin() - format.rightMargin() -
           steps * document.indentWidth();
}

void FormulaFitting::fit(QTextDocument& document, double width) {
    struct Change {
        int position;
        QTextImageFormat format;
    };
    std::vector<Change> changes; // made afterwards: they would upset the walk
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        for (auto part = block.begin(); !part.atEnd(); ++part) {
            QTextImageFormat format = part.fragment().charFormat().toImageFormat();
            if (!format.isValid())
                continue;
            const auto image = document.resource(QTextDocument::ImageResource, QUrl(format.name())).value<QImage>();
            const QSizeF natural = image.deviceIndependentSize();
            const double room = lineWidth(document, block, width);
            if (natural.isEmpty())
                continue;
            const double scale = std::clamp(room / natural.width(), smallestScale, 1.0);
            const QSizeF wanted = natural * scale;
            if (format.width() == wanted.width() || (scale == 1 && !format.hasProperty(QTextFormat::ImageWidth)))
                continue;
            format.setWidth(wanted.width());
            format.setHeight(wanted.height());
            changes.push_back({part.fragment().position(), format});
        }
    }
    QTextCursor cursor(&document);
    for (const Change& change : changes) {
        cursor.setPosition(change.position);
        cursor.movePosition(QTextCursor::NextCharacter, QTextCursor::KeepAnchor);
        cursor.setCharFormat(change.format);
    }
}
