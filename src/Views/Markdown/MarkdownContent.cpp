#include "MarkdownContent.h"

#include "MarkdownBrowser.h"
#include "MarkdownParser.h"
#include "MarkdownTextWriter.h"

#include <QEvent>
#include <QResizeEvent>

MarkdownContent::MarkdownContent(const QString& text, const QColor& color, const MathImageSource& mathImages,
                                 int pageCount, QWidget* parent)
    : QWidget(parent), m_text(text), m_color(color), m_mathImages(mathImages), m_pageCount(pageCount),
      m_browser(new MarkdownBrowser(pageCount, this)) {
    setObjectName(QStringLiteral("markdownContent"));
    m_browser->setAccessibleName(QStringLiteral("Reply"));
    setFocusProxy(m_browser);
    connect(m_browser, &MarkdownBrowser::pageRequested, this, &MarkdownContent::pageRequested);
    // No layout object: it would lay the text out at widths that it never gets.
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    rebuild(false);
}

MarkdownContent::~MarkdownContent() = default;

void MarkdownContent::setText(const QString& text) {
    if (text == m_text)
        return;
    m_text = text;
    rebuild(false);
}

void MarkdownContent::setColor(const QColor& color) {
    if (color == m_color)
        return;
    m_color = color;
    rebuild(true);
}

void MarkdownContent::changeEvent(QEvent* event) {
    // The colours of links, markers and quotes are in the document.
    if (event->type() == QEvent::PaletteChange)
        rebuild(true);
    QWidget::changeEvent(event);
}

void MarkdownContent::paintEvent(QPaintEvent*) {
    if (devicePixelRatioF() == m_ratio)
        return;
    // The window came to another screen. What is being painted must stay as it is meanwhile.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (devicePixelRatioF() != m_ratio)
                rebuild(true);
        },
        Qt::QueuedConnection);
}

int MarkdownContent::heightForWidth(int width) const {
    return m_browser->heightForWidth(width);
}

QSize MarkdownContent::sizeHint() const {
    return m_browser->sizeHint();
}

QSize MarkdownContent::minimumSizeHint() const {
    return m_browser->minimumSizeHint();
}

void MarkdownContent::resizeEvent(QResizeEvent* event) {
    m_browser->resize(event->size());
}

void MarkdownContent::rebuild(bool keepsSelection) {
    m_ratio = devicePixelRatioF();
    const QStringView shown = QStringView(m_text).left(longestText);
    MarkdownTextWriter writer(MarkdownStyle(palette()), m_color, m_mathImages, m_pageCount);
    m_browser->display(MarkdownDocument::write(MarkdownParser::parse(shown), shown.size() < m_text.size(), writer),
                       keepsSelection);
    updateGeometry();
}
