// Colours by the names that formulas use.

#include "FormulaRewriter.h"

#include <QColor>

using Type = MTMathAtomType;

QString FormulaRewriter::readColor() {
    const QString model = rawOption().value_or(QString());
    // "blue!50" is a blue with white.
    const QString name = rawArgument().section(u'!', 0, 0).trimmed().toLower();
    if (model == u"HTML")
        return QColor(u'#' + name).isValid() ? u'#' + name : QString();
    if (const QStringList parts = name.split(u','); model.toLower() == u"rgb" && parts.size() == 3) {
        const double scale = model == u"RGB" ? 1 : 255;
        const auto part = [&](int index) { return std::clamp(int(parts[index].toDouble() * scale), 0, 255); };
        return QColor(part(0), part(1), part(2)).name();
    }
    return QColor::isValidColor(name) ? QColor(name).name() : QString();
}

FormulaPiece FormulaRewriter::readColored(const Row& row, MTLineStyle style) {
    const QString color = readColor();
    if (row.kind == DialectCommands::Kind::textColor) {
        const List list = argumentList(style);
        const QString latex = QLatin1String("\\textcolor") + braced(color) + braced(list.latex());
        return {latex, list.writer.left(), list.writer.left(), Type::ordinary};
    }
    m_tokens.skipBlanks();
    if (m_tokens.next().kind != Kind::open)
        fail();
    // Letters that can be read on it, whatever colour the text around has.
    const QString ink = qGray(QColor(color).rgb()) < 128 ? QStringLiteral("#ffffff") : QStringLiteral("#000000");
    const QString words = QLatin1String("\\,\\mathrm") + braced(readWords(style)) + QLatin1String("\\,");
    if (color.isEmpty())
        return keptPiece(kept(words), Type::ordinary);
    return keptPiece(QLatin1String("\\colorbox") + braced(color) + QLatin1String("{\\color") + braced(ink) +
                         braced(words) + u'}',
                     Type::ordinary);
}

void FormulaRewriter::readColorSwitch(List& list, bool scripts) {
    const QString color = QLatin1String("\\color") + braced(readColor());
    m_tokens.skipBlanks();
    // With braces behind it the colour is for them, as most people mean it.
    if (m_tokens.peek().kind == Kind::open) {
        const List content = argumentList(list.style);
        return addScripted({color + braced(content.latex()), content.writer.left(), Type::color, Type::ordinary}, list,
                           scripts);
    }
    list.writer.addUnspaced(QString(color + u'{'));
    list.closers += u'}';
}
