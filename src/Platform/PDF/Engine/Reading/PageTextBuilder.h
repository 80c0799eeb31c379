#pragma once

#include "EngineContext.h"
#include "PageText.h"

#include <QHash>
#include <QString>
#include <QTransform>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>

/// Makes the text of a page from the lines that the engine found, given one after the other. Letters and the accents
/// that are drawn over them become one character.
class PageTextBuilder {
public:
    /// `toPage` maps the engine's coordinates to the page's.
    PageTextBuilder(fz_context* context, const QTransform& toPage) : m_context(context), m_toPage(toPage) {}

    /// Room for all that is going to be added, in characters with the line ends.
    void reserve(std::size_t characters);
    /// The line isn't looked at again.
    void addLine(const fz_stext_line& line, int block);
    /// Once, at the end.
    [[nodiscard]] std::shared_ptr<const PageText> take();

private:
    /// The edges of a line so far, page coordinates.
    struct Box {
        double left = std::numeric_limits<double>::max();
        double bottom = std::numeric_limits<double>::max();
        double right = std::numeric_limits<double>::lowest();
        double top = std::numeric_limits<double>::lowest();

        void add(QPointF point);
    };

    /// True for an accent that goes into a letter: one that is still to come, or the last one that was added.
    bool isOver(const fz_stext_char& c, char16_t accent, const fz_stext_line& line, int lineStart);
    void addCharacter(const fz_stext_char& c);
    [[nodiscard]] QPointF map(const fz_point& point) const;
    std::uint16_t fontIndex(fz_font* font);
    std::uint16_t lookUp(fz_font* font);

    fz_context* m_context;
    QTransform m_toPage;
    PageText m_text;
    QString m_accents;                     // combining, for the letter to come
    const fz_stext_char* m_last = nullptr; // that was added
    Box m_box;                             // of the line that is being added
    QHash<fz_font*, std::uint16_t> m_fontIndex;
    fz_font* m_lastFont = nullptr;
    std::uint16_t m_lastFontIndex = 0;
};
