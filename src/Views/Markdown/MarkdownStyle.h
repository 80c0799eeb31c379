#pragma once

#include <QColor>
#include <QTextCharFormat>

class QPalette;
struct InlineRun;

/// The letters of a reply. Sizes are in points of 1/96 inch of the screen, so they follow its text scale. The main text
/// has no colour of its own and takes that of what it is shown in. Needs the application object.
class MarkdownStyle {
public:
    explicit MarkdownStyle(const QPalette& palette);

    [[nodiscard]] QTextCharFormat body() const { return rounded(14.5, QFont::Normal); }
    [[nodiscard]] QTextCharFormat heading(int level) const;
    [[nodiscard]] QTextCharFormat tableHeader() const { return rounded(13.5, QFont::DemiBold); }
    [[nodiscard]] QTextCharFormat codeBlock() const { return monospaced(13); }
    [[nodiscard]] QTextCharFormat equationSource() const { return monospaced(14); }

    /// That format in the weaker colour of markers and quotes.
    [[nodiscard]] QTextCharFormat secondary(QTextCharFormat format) const;

    /// `base` with the traits and the link of a run.
    [[nodiscard]] QTextCharFormat applied(const InlineRun& run, QTextCharFormat base) const;

    /// The text colour at 65 percent.
    [[nodiscard]] static QColor secondaryColor(const QPalette& palette);

private:
    [[nodiscard]] QTextCharFormat rounded(double size, QFont::Weight weight) const;
    [[nodiscard]] QTextCharFormat monospaced(double size) const;

    QStringList m_roundedFamilies;
    QStringList m_monospacedFamilies;
    QColor m_secondary;
    QColor m_link;
};
