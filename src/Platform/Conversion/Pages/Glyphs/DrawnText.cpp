#include "DrawnText.h"

void DrawnText::read() {
    for (qsizetype start = 0; start < m_bytes.size();) {
        qsizetype end = start;
        while (end < m_bytes.size() && m_bytes[end] > ' ')
            ++end;
        if (end > start)
            handle(QByteArrayView(m_bytes).sliced(start, end - start), start);
        start = end + 1;
    }
}

void DrawnText::handle(QByteArrayView word, qsizetype start) {
    if (word == "BT") {
        m_text = {};
        beginText(start);
    } else if (word == "ET") {
        endText(start, start + word.size());
    } else if (word == "q") {
        m_saved.push_back(m_page);
    } else if (word == "Q") {
        if (!m_saved.empty()) {
            m_page = m_saved.back();
            m_saved.pop_back();
        }
    } else if (word == "cm") {
        m_page = matrix() * m_page;
    } else if (word == "Tm") {
        m_text = matrix();
    } else if (word == "Td") {
        m_text.translate(number(2), number(1));
    } else if (word == "Tf") {
        m_font = this->word(2);
        m_size = number(1);
    } else if (word == "Tj" && m_size > 0) {
        const QByteArrayView code = this->word(1);
        if (code.startsWith('<') && code.endsWith('>'))
            showGlyph({m_text * m_page, m_font, m_size, code, code.data() - m_bytes.data(), start + word.size()});
    }
    m_operands[m_count++ % m_operands.size()] = word;
}

/// Number 1 is the last operand.
QByteArrayView DrawnText::word(std::size_t fromEnd) const {
    return fromEnd > m_count ? QByteArrayView("0") : m_operands[(m_count - fromEnd) % m_operands.size()];
}

double DrawnText::number(std::size_t fromEnd) const {
    return word(fromEnd).toDouble();
}

QTransform DrawnText::matrix() const {
    return {number(6), number(5), number(4), number(3), number(2), number(1)};
}
