#include "VisibleText.h"

#include "DrawnText.h"
#include "LetterPages.h"

namespace {

class Dropping : private DrawnText {
public:
    explicit Dropping(const QByteArray& instructions) : DrawnText(instructions) {}

    std::optional<QByteArray> run() {
        read();
        if (m_copied == 0)
            return std::nullopt;
        return m_kept + bytes().mid(m_copied);
    }

private:
    void beginText(qsizetype start) override {
        m_textStart = start;
        m_isPlaced = false;
        m_isVisible = true;
    }

    void showGlyph(const Glyph& glyph) override {
        if (m_isPlaced)
            return;
        m_isPlaced = true;
        const qreal baseline = glyph.toPage.dy();
        m_isVisible = glyph.toPage.m12() != 0 ||
                      (baseline > LetterPages::margin && baseline < LetterPages::pageHeight - LetterPages::margin);
    }

    void endText(qsizetype /*start*/, qsizetype end) override {
        if (m_isVisible)
            return;
        m_kept += bytes().mid(m_copied, m_textStart - m_copied);
        m_copied = end;
    }

    QByteArray m_kept;
    qsizetype m_copied = 0; ///< up to where the bytes are kept or dropped already
    qsizetype m_textStart = 0;
    bool m_isPlaced = false; ///< whether it is known where that text is
    bool m_isVisible = true;
};

} // namespace

std::optional<QByteArray> VisibleText::only(const QByteArray& instructions) {
    return Dropping(instructions).run();
}
