#pragma once

#include "CGGlyph.h"

#include <QHash>
#include <QString>

#include <vector>

/// A name for every glyph of a font, each unique and none empty. Fonts may lack names or give one to several glyphs; a
/// glyph that goes without is called "gid" and its index ("gid123"), with underscores behind it while some glyph is
/// really called so. Property lists are written and read by these names. They depend on nothing but `fontNames`.
class GlyphNames {
public:
    /// What the font calls its glyphs, by glyph; empty where it has no name.
    explicit GlyphNames(std::vector<QString> fontNames);

    [[nodiscard]] const QString& name(CGGlyph glyph) const { return m_names[glyph]; }
    /// 0 when no glyph is called so.
    [[nodiscard]] CGGlyph glyph(const QString& name) const { return m_glyphs.value(name, 0); }

private:
    std::vector<QString> m_names;
    QHash<QString, CGGlyph> m_glyphs;
};
