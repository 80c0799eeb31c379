#include "VisibleText.h"

#include "LetterPages.h"

#include <QByteArrayView>

#include <array>
#include <vector>

namespace {

/// How a place in what is drawn gets to the page, in the vertical direction.
struct Vertical {
    double fromX = 0;
    double fromY = 1;
    double shift = 0;

    [[nodiscard]] double of(double x, double y) const { return x * fromX + y * fromY + shift; }
};

class Scan {
public:
    explicit Scan(const QByteArray& instructions) : m_bytes(instructions) {}

    std::optional<QByteArray> run() {
        for (qsizetype start = 0; start < m_bytes.size();) {
            qsizetype end = start;
            while (end < m_bytes.size() && m_bytes[end] > ' ')
                ++end;
            if (end > start)
                handle(QByteArrayView(m_bytes).sliced(start, end - start), start);
            start = end + 1;
        }
        if (m_copied == 0)
            return std::nullopt;
        return m_kept + m_bytes.mid(m_copied);
    }

private:
    void handle(QByteArrayView word, qsizetype start) {
        if (word == "BT") {
            m_textStart = start;
            m_text = {};
            m_isPlaced = false;
            m_isVisible = true;
        } else if (word == "q") {
            m_saved.push_back(m_page);
        } else if (word == "Q") {
            if (!m_saved.empty()) {
                m_page = m_saved.back();
                m_saved.pop_back();
            }
        } else if (word == "cm") {
            m_page = {operand(6) * m_page.fromX + operand(5) * m_page.fromY,
                      operand(4) * m_page.fromX + operand(3) * m_page.fromY, m_page.of(operand(2), operand(1))};
        } else if (word == "Tm") {
            m_text = {operand(5), operand(3), operand(1)};
        } else if (word == "Td" && !m_isPlaced) {
            const double baseline = m_page.of(0, m_text.of(operand(2), operand(1)));
            m_isPlaced = true;
            m_isVisible = m_page.fromX != 0 ||
                          (baseline > LetterPages::margin && baseline < LetterPages::pageHeight - LetterPages::margin);
        } else if (word == "ET" && !m_isVisible) {
            m_kept += m_bytes.mid(m_copied, m_textStart - m_copied);
            m_copied = start + word.size();
        }
        m_operands[m_count++ % m_operands.size()] = word;
    }

    /// Of the operator that is being read; number 1 is the last one.
    [[nodiscard]] double operand(std::size_t fromEnd) const {
        return fromEnd > m_count ? 0 : m_operands[(m_count - fromEnd) % m_operands.size()].toDouble();
    }

    const QByteArray& m_bytes;
    QByteArray m_kept;
    qsizetype m_copied = 0; ///< up to where the bytes are kept or dropped already
    std::array<QByteArrayView, 8> m_operands;
    std::size_t m_count = 0;
    std::vector<Vertical> m_saved;
    Vertical m_page;
    Vertical m_text; ///< from the coordinates of the text that is being read to those of `m_page`
    qsizetype m_textStart = 0;
    bool m_isPlaced = false; ///< whether it is known where that text is
    bool m_isVisible = true;
};

} // namespace

std::optional<QByteArray> VisibleText::only(const QByteArray& instructions) {
    return Scan(instructions).run();
}
