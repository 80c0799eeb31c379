#include "MTMathUILabel.h"

#include "MTFont.h"
#include "MTFontManager.h"
#include "MTLabel.h"
#include "MTMathList.h"
#include "MTMathListBuilder.h"
#include "MTTypesetter.h"

#include <QPainter>
#include <QPalette>

#include <cmath>
#include <utility>

MTMathUILabel::MTMathUILabel(QWidget* parent)
    : QWidget(parent), m_font(MTFontManager::fontManager().defaultFont()), m_fontSize(MTFontManager::kDefaultFontSize),
      m_errorLabel(new MTLabel(this)) {
    setObjectName(QStringLiteral("mathLabel"));
    QPalette red = m_errorLabel->palette();
    red.setColor(QPalette::WindowText, Qt::red);
    m_errorLabel->setPalette(red);
    m_errorLabel->setObjectName(QStringLiteral("mathErrorLabel"));
    m_errorLabel->hide();
}

MTMathUILabel::~MTMathUILabel() = default;

void MTMathUILabel::setLatex(const QString& latex) {
    m_latex = latex;
    m_mathList = MTMathListBuilder::build(latex, m_error);
    showError();
    contentChanged();
}

void MTMathUILabel::setMathList(std::shared_ptr<MTMathList> list) {
    m_mathList = std::move(list);
    m_latex = MTMathListBuilder::mathListToString(m_mathList);
    m_error.reset();
    showError();
    contentChanged();
}

void MTMathUILabel::setDisplayErrorInline(bool displayInline) {
    m_displayErrorInline = displayInline;
    showError();
    updateGeometry();
}

void MTMathUILabel::showError() {
    m_errorLabel->setText(m_error ? m_error->message : QString());
    m_errorLabel->setAccessibleName(m_errorLabel->text());
    m_errorLabel->setGeometry(rect());
    m_errorLabel->setVisible(m_error && m_displayErrorInline);
}

void MTMathUILabel::contentChanged() {
    setAccessibleName(m_latex);
    m_needsLayout = true;
    updateGeometry();
    update();
}

void MTMathUILabel::setMathFont(std::shared_ptr<const MTFont> font) {
    if (!font)
        return;
    m_font = std::move(font);
    m_fontSize = m_font->fontSize();
    contentChanged();
}

void MTMathUILabel::setFontSize(double points) {
    m_fontSize = points;
    m_font = m_font->copy(points);
    contentChanged();
}

void MTMathUILabel::setTextColor(const QColor& color) {
    if (!color.isValid())
        return;
    m_textColor = color;
    if (m_displayList)
        m_displayList->setTextColor(color);
    update();
}

void MTMathUILabel::setContentInsets(const QMarginsF& insets) {
    m_content.insets = insets;
    contentChanged();
}

void MTMathUILabel::setLabelMode(MTMathUILabelMode mode) {
    m_content.mode = mode;
    contentChanged();
}

void MTMathUILabel::setTextAlignment(MTTextAlignment alignment) {
    m_content.alignment = alignment;
    contentChanged();
}

void MTMathUILabel::layoutSubviews() {
    m_needsLayout = false;
    m_displayList.reset();
    if (m_mathList) {
        m_displayList = MTTypesetter::createLineForMathList(*m_mathList, m_font, m_content.style());
        m_displayList->setTextColor(m_textColor);
        m_displayList->setPosition(m_content.positionOf(*m_displayList, QSizeF(size()), m_fontSize));
    }
    m_errorLabel->setGeometry(rect());
}

QSizeF MTMathUILabel::sizeThatFits(QSizeF size) const {
    if (!m_mathList)
        return size;
    return m_content.sizeOf(*MTTypesetter::createLineForMathList(*m_mathList, m_font, m_content.style()));
}

QSize MTMathUILabel::sizeHint() const {
    if (m_error && m_displayErrorInline)
        return m_errorLabel->sizeHint();
    const QSizeF fitting = fittingSize();
    return {static_cast<int>(std::ceil(fitting.width())), static_cast<int>(std::ceil(fitting.height()))};
}

void MTMathUILabel::paintEvent(QPaintEvent*) {
    if (m_needsLayout)
        layoutSubviews();
    if (!m_displayList)
        return;
    QPainter painter(this);
    painter.translate(0, height());
    painter.scale(1, -1);
    m_displayList->draw(painter);
}

void MTMathUILabel::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    layoutSubviews();
}
