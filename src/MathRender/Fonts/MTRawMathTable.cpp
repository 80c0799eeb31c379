#include "MTRawMathTable.h"

#include "CGFont.h"
#include "FontError.h"
#include "MTException.h"
#include "MathTableKeys.h"
#include "PropertyList.h"

#include <QFile>
#include <QFileInfo>

#include <limits>
#include <numeric>

using namespace MathTableKeys;

namespace {

[[noreturn]] void fail(const QString& reason) {
    throw FontError(FontError::Kind::invalidMathTable,
                    QStringLiteral("The property list of a math font is damaged: %1.").arg(reason));
}

/// Throws when the list is of another version.
void checkVersionOf(const QString& version) {
    if (version != supportedVersion)
        throw MTException(QStringLiteral("Invalid version of math table plist: ") + version);
}

QVariantMap dictionaryOf(const QVariant& value, const QString& place) {
    if (value.typeId() != QMetaType::QVariantMap)
        fail(QStringLiteral("%1 is not a dictionary").arg(place));
    return value.toMap();
}

QVariantList arrayOf(const QVariant& value, const QString& place) {
    if (value.typeId() != QMetaType::QVariantList)
        fail(QStringLiteral("%1 is not an array").arg(place));
    return value.toList();
}

/// Without its fraction.
int integerOf(const QVariant& value, const QString& place) {
    const bool isNumber = value.typeId() == QMetaType::LongLong || value.typeId() == QMetaType::Int ||
                          value.typeId() == QMetaType::Double;
    const double number = value.toDouble();
    if (!isNumber || !(number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max()))
        fail(QStringLiteral("%1 is not a number of font units").arg(place));
    return static_cast<int>(number);
}

} // namespace

/// Fills a table from a list.
class MTRawMathTable::Reader {
public:
    Reader(MTRawMathTable& table, const QVariantMap& list, const CGFont& font)
        : m_table(table), m_list(list), m_font(font) {}

    void read() {
        // The first stretch of the variants is every glyph in order, so that a glyph without an entry has its own list.
        const auto count = static_cast<std::size_t>(m_font.numberOfGlyphs());
        m_table.m_variants.resize(count);
        std::iota(m_table.m_variants.begin(), m_table.m_variants.end(), CGGlyph{0});
        m_table.m_entries.resize(count);

        readConstants();
        readVariants(kVertVariants, &GlyphEntry::verticalVariants);
        readVariants(kHorizVariants, &GlyphEntry::horizontalVariants);
        forEachGlyph(kItalic, [](GlyphEntry& entry, const QVariant& value, const QString& place) {
            entry.italicCorrection = integerOf(value, place);
        });
        forEachGlyph(kAccents, [](GlyphEntry& entry, const QVariant& value, const QString& place) {
            entry.topAccent = integerOf(value, place);
        });
        forEachGlyph(kVertAssembly, [this](GlyphEntry& entry, const QVariant& value, const QString& place) {
            entry.verticalAssembly = assembly(dictionaryOf(value, place), place);
        });
    }

private:
    /// The dictionary under `key`, empty when the list has none.
    [[nodiscard]] QVariantMap section(QLatin1String key) const {
        const auto found = m_list.constFind(key);
        return found == m_list.cend() ? QVariantMap() : dictionaryOf(*found, key);
    }

    void readConstants() {
        const QVariantMap constants = section(kConstants);
        for (auto entry = constants.cbegin(); entry != constants.cend(); ++entry)
            m_table.m_constantsByName.insert_or_assign(entry.key(), integerOf(entry.value(), entry.key()));
        for (std::size_t which = 0; which < mathConstantNames.size(); ++which)
            m_table.m_constants[which] = m_table.constant(QString(mathConstantNames[which])).value_or(0);
    }

    /// Calls `read` with the entry of each glyph that the section under `key` names, its value, and its place for
    /// errors. What is said of a glyph that the font does not have is passed over: nobody can ask for it.
    template <typename Read>
    void forEachGlyph(QLatin1String key, Read read) {
        const QVariantMap entries = section(key);
        for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry) {
            const CGGlyph glyph = m_font.glyphWithName(entry.key());
            if (glyph != 0 || entry.key() == m_font.glyphName(0))
                read(m_table.m_entries[glyph], entry.value(), QStringLiteral("%1 of %2").arg(key, entry.key()));
        }
    }

    void readVariants(QLatin1String key, Slice GlyphEntry::*kind) {
        forEachGlyph(key, [&](GlyphEntry& entry, const QVariant& value, const QString& place) {
            const QVariantList names = arrayOf(value, place);
            entry.*kind = {static_cast<quint32>(m_table.m_variants.size()), static_cast<quint32>(names.size())};
            for (const QVariant& name : names)
                m_table.m_variants.push_back(glyphOf(name, place));
        });
    }

    Slice assembly(const QVariantMap& dictionary, const QString& place) {
        const QVariantList parts = arrayOf(dictionary.value(kAssemblyParts), place);
        const Slice slice{static_cast<quint32>(m_table.m_parts.size()), static_cast<quint32>(parts.size())};
        for (const QVariant& value : parts) {
            const QVariantMap part = dictionaryOf(value, place);
            m_table.m_parts.push_back({glyphOf(part.value(kPartGlyph), place),
                                       integerOf(part.value(kPartAdvance), place),
                                       integerOf(part.value(kPartStart), place), integerOf(part.value(kPartEnd), place),
                                       part.value(kPartExtender).toBool()});
        }
        return slice;
    }

    [[nodiscard]] CGGlyph glyphOf(const QVariant& name, const QString& place) const {
        if (name.typeId() != QMetaType::QString)
            fail(QStringLiteral("%1 does not name a glyph").arg(place));
        return m_font.glyphWithName(name.toString());
    }

    MTRawMathTable& m_table;
    const QVariantMap& m_list;
    const CGFont& m_font;
};

std::shared_ptr<const MTRawMathTable> MTRawMathTable::read(const QString& path, const CGFont& font) {
    QFile file(path);
    if (!QFileInfo(path).isFile()) {
        throw FontError(FontError::Kind::fontPathNotFound,
                        QStringLiteral("The property list “%1” is missing.").arg(path));
    }
    if (!file.open(QIODevice::ReadOnly)) {
        throw FontError(FontError::Kind::invalidMathTable,
                        QStringLiteral("The property list “%1” can't be read: %2.").arg(path, file.errorString()));
    }
    QVariantMap list;
    try {
        list = PropertyList::fromXml(file.readAll());
    } catch (const PropertyListError& error) {
        throw FontError(
            FontError::Kind::invalidMathTable,
            QStringLiteral("The property list “%1” is damaged: %2.").arg(path, QString::fromUtf8(error.what())));
    }
    checkVersionOf(list.value(kVersion).toString());
    return std::make_shared<const MTRawMathTable>(list, font);
}

MTRawMathTable::MTRawMathTable(const QVariantMap& propertyList, const CGFont& font)
    : m_version(propertyList.value(kVersion).toString()) {
    Reader(*this, propertyList, font).read();
}

void MTRawMathTable::checkVersion() const {
    checkVersionOf(m_version);
}

std::optional<int> MTRawMathTable::constant(QStringView name) const {
    const auto found = m_constantsByName.find(name);
    return found == m_constantsByName.end() ? std::nullopt : std::optional(found->second);
}

std::span<const CGGlyph> MTRawMathTable::variants(CGGlyph glyph, Slice GlyphEntry::*kind) const {
    if (glyph >= m_entries.size())
        glyph = 0;
    Slice slice = m_entries[glyph].*kind;
    if (slice.count == 0)
        slice = {glyph, 1};
    return std::span(m_variants).subspan(slice.start, slice.count);
}

std::span<const CGGlyph> MTRawMathTable::verticalVariants(CGGlyph glyph) const {
    return variants(glyph, &GlyphEntry::verticalVariants);
}

std::span<const CGGlyph> MTRawMathTable::horizontalVariants(CGGlyph glyph) const {
    return variants(glyph, &GlyphEntry::horizontalVariants);
}

int MTRawMathTable::italicCorrection(CGGlyph glyph) const {
    return glyph < m_entries.size() ? m_entries[glyph].italicCorrection : 0;
}

std::optional<int> MTRawMathTable::topAccent(CGGlyph glyph) const {
    return glyph < m_entries.size() ? m_entries[glyph].topAccent : std::nullopt;
}

std::span<const MTRawMathTable::AssemblyPart> MTRawMathTable::verticalAssembly(CGGlyph glyph) const {
    if (glyph >= m_entries.size())
        return {};
    const Slice slice = m_entries[glyph].verticalAssembly;
    return std::span(m_parts).subspan(slice.start, slice.count);
}
