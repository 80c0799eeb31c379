#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QTransform>

#include <array>
#include <vector>

/// Goes through the drawing instructions of a page, as Qt has written them, and tells of the text among them. Offsets
/// are in bytes from the start of the instructions.
class DrawnText {
public:
    virtual ~DrawnText() = default;
    DrawnText(const DrawnText&) = delete;
    DrawnText& operator=(const DrawnText&) = delete;

protected:
    /// `instructions` has to outlive this.
    explicit DrawnText(const QByteArray& instructions) : m_bytes(instructions) {}

    struct Glyph {
        QTransform toPage;   ///< from the glyph's origin, in the units of the text
        QByteArrayView font; ///< the name of a resource, with its slash
        double size = 1;     ///< of the font, in the units of the text
        QByteArrayView code; ///< hexadecimal, with brackets
        qsizetype start = 0; ///< of the code
        qsizetype end = 0;   ///< behind the instruction
    };

    void read();
    [[nodiscard]] const QByteArray& bytes() const { return m_bytes; }

    virtual void beginText(qsizetype /*start*/) {}
    virtual void showGlyph(const Glyph& /*glyph*/) {}
    virtual void endText(qsizetype /*start*/, qsizetype /*end*/) {}

private:
    void handle(QByteArrayView word, qsizetype start);
    [[nodiscard]] QByteArrayView word(std::size_t fromEnd) const;
    [[nodiscard]] double number(std::size_t fromEnd) const;
    [[nodiscard]] QTransform matrix() const;

    const QByteArray& m_bytes;
    std::array<QByteArrayView, 8> m_operands; ///< of the operator that is being read, in a ring
    std::size_t m_count = 0;
    std::vector<QTransform> m_saved;
    QTransform m_page; ///< from what is drawn to the page
    QTransform m_text; ///< from the text to what is drawn
    QByteArrayView m_font;
    double m_size = 1;
};
