#include "MTFont.h"

#include "MathFontsBundle.h"
#include "QuilloAssert.h"

#include <utility>

MTFont::MTFont(const QString& name, double size) : MTFont(name, size, MathFontsBundle::folder()) {}

MTFont::MTFont(const QString& name, double size, const QString& bundleFolder)
    : MTFont(std::make_shared<const CTFont>(CGFont::read(MathFontsBundle::fontPath(bundleFolder, name)), size)) {
    m_rawMathTable = MTRawMathTable::read(MathFontsBundle::propertyListPath(bundleFolder, name), *defaultCGFont());
    m_mathTable = std::make_unique<const MTFontMathTable>(*this, m_rawMathTable);
}

MTFont::MTFont(std::shared_ptr<const CTFont> ctFont) : m_ctFont(std::move(ctFont)) {}

MTFont::MTFont(std::shared_ptr<const CTFont> ctFont, std::shared_ptr<const MTRawMathTable> rawMathTable)
    : m_ctFont(std::move(ctFont)), m_rawMathTable(std::move(rawMathTable)),
      m_mathTable(std::make_unique<const MTFontMathTable>(*this, m_rawMathTable)) {}

MTFont::~MTFont() = default;

std::shared_ptr<MTFont> MTFont::copy(double size) const {
    return std::shared_ptr<MTFont>(new MTFont(std::make_shared<const CTFont>(defaultCGFont(), size), m_rawMathTable));
}

const MTFontMathTable& MTFont::mathTable() const {
    QUILLO_ASSERT(m_mathTable, "A font that gets its table elsewhere overrides this.");
    return *m_mathTable;
}

std::shared_ptr<const MTRawMathTable> MTFont::rawMathTable() const {
    return m_rawMathTable;
}
