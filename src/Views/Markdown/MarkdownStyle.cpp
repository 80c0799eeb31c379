#include "MarkdownStyle.h"

#include "AnnotationFont.h"
#include "InlineRun.h"
#include "PageLinks.h"

#include <QPalette>
#include <QUrl>

static constexpr double fontPointsPerPoint = 72.0 / 96.0; // a font's points are 1/72 inch
static constexpr float secondaryOpacity = 0.65F;
static constexpr double codeScale = 0.92; // monospaced letters look larger
static constexpr int longestToolTip = 300;

static QTextCharFormat format(const QStringList& families, double size, QFont::Weight weight) {
    QTextCharFormat result;
    result.setFontFamilies(families);
    result.setFontPointSize(size * fontPointsPerPoint);
    result.setFontWeight(weight);
    return result;
}

MarkdownStyle::MarkdownStyle(const QPalette& palette)
    : m_roundedFamilies(platformFont(AnnotationFont::rounded, 1).families()),
      m_monospacedFamilies(platformFont(AnnotationFont::mono, 1).families()), m_secondary(secondaryColor(palette)),
      m_link(palette.color(QPalette::Link)) {}

QTextCharFormat MarkdownStyle::rounded(double size, QFont::Weight weight) const {
    return format(m_roundedFamilies, size, weight);
}

QTextCharFormat MarkdownStyle::monospaced(double size) const {
    return format(m_monospacedFamilies, size, QFont::Normal);
}

QTextCharFormat MarkdownStyle::heading(int level) const {
    return rounded(level == 1 ? 18 : level == 2 ? 16 : 15, QFont::DemiBold);
}

QTextCharFormat MarkdownStyle::secondary(QTextCharFormat format) const {
    format.setForeground(m_secondary);
    return format;
}

QTextCharFormat MarkdownStyle::applied(const InlineRun& run, QTextCharFormat base) const {
    if (run.traits.testFlag(InlineRun::Trait::strong))
        base.setFontWeight(QFont::Bold);
    if (run.traits.testFlag(InlineRun::Trait::emphasis))
        base.setFontItalic(true);
    if (run.traits.testFlag(InlineRun::Trait::strikethrough))
        base.setFontStrikeOut(true);
    if (run.traits.testFlag(InlineRun::Trait::code)) {
        base.setFontFamilies(m_monospacedFamilies);
        base.setFontPointSize(base.fontPointSize() * codeScale);
    }
    if (!run.link.isEmpty()) {
        base.setAnchor(true);
        base.setAnchorHref(run.link);
        base.setForeground(m_link);
        base.setFontUnderline(true);
        const auto page = PageLinks::page(QUrl(run.link));
        base.setToolTip(page ? QStringLiteral("Go to page %1").arg(*page)
                             : QStringLiteral("<qt>%1</qt>").arg(run.link.left(longestToolTip).toHtmlEscaped()));
    }
    return base;
}

QColor MarkdownStyle::secondaryColor(const QPalette& palette) {
    QColor color = palette.color(QPalette::Text);
    color.setAlphaF(secondaryOpacity);
    return color;
}
