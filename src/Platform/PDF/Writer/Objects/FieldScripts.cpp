#include "FieldScripts.h"

#include "Logging.h"
#include "PdfValues.h"

#include <qpdf/Buffer.hh>

#include <QRegularExpression>

#include <algorithm>
#include <vector>

namespace {

constexpr int longestChain = 64;

/// A script taken apart: the texts in it, and the rest with a space in the place of each text and comment.
struct Parts {
    QStringList texts;
    QString code;
};

Parts partsOf(const QString& script) {
    static const QRegularExpression lineEnd(QStringLiteral("[\\r\\n]"));
    Parts parts;
    for (qsizetype i = 0; i < script.size(); ++i) {
        const QChar sign = script[i];
        const QChar next = i + 1 < script.size() ? script[i + 1] : QChar();
        const bool isComment = sign == QLatin1Char('/') && (next == QLatin1Char('/') || next == QLatin1Char('*'));
        const bool isText = sign == QLatin1Char('"') || sign == QLatin1Char('\'');
        parts.code += isComment || isText ? QLatin1Char(' ') : sign;
        if (isComment)
            i = next == QLatin1Char('/') ? script.indexOf(lineEnd, i) : script.indexOf(QLatin1String("*/"), i + 2);
        if (i < 0)
            break; // a comment to the end
        if (isComment && next == QLatin1Char('*'))
            ++i;
        if (!isText)
            continue;
        QString text;
        for (++i; i < script.size() && script[i] != sign; ++i) {
            if (script[i] == QLatin1Char('\\') && i + 1 < script.size())
                ++i;
            text += script[i];
        }
        parts.texts += text;
    }
    return parts;
}

/// What the code names, and what it gives a name to outside of all braces.
void addNames(const QString& code, FieldScripts::Names& names) {
    static const QRegularExpression token(QStringLiteral("[{}]|[A-Za-z_$][\\w$]*"));
    int depth = 0;
    bool defines = false;
    for (auto match = token.globalMatch(code); match.hasNext();) {
        const QString word = match.next().captured();
        if (word == QLatin1Char('{') || word == QLatin1Char('}')) {
            depth += word == QLatin1Char('{') ? 1 : -1;
            defines = false;
            continue;
        }
        names.words.insert(word);
        if (defines)
            names.defined.insert(word);
        defines = depth == 0 && (word == QLatin1String("function") || word == QLatin1String("var"));
    }
}

bool setsOff(QPDFObjectHandle action, const FieldScripts::Test& isMeant, int depth = 0) {
    if (!action.isDictionary() || depth > longestChain)
        return false;
    if (action.getKey("/S").isNameAndEquals("/JavaScript") && isMeant(FieldScripts::namesIn(action)))
        return true;
    QPDFObjectHandle next = action.getKey("/Next");
    const std::vector<QPDFObjectHandle> all = next.isArray() ? next.getArrayAsVector() : std::vector{next};
    return std::any_of(all.begin(), all.end(),
                       [&](const QPDFObjectHandle& each) { return setsOff(each, isMeant, depth + 1); });
}

} // namespace

QString FieldScripts::textOf(QPDFObjectHandle action) {
    QPDFObjectHandle script = PdfValues::entry(action, "/JS");
    if (!script.isStream())
        return PdfValues::toText(script);
    try {
        const auto data = script.getStreamData();
        return PdfValues::toText(QPDFObjectHandle::newString(
            std::string(reinterpret_cast<const char*>(data->getBuffer()), data->getSize())));
    } catch (const std::exception& error) {
        qCWarning(Logging::pdf) << "unpacking a script failed:" << Logging::causes(error);
        return {};
    }
}

FieldScripts::Names FieldScripts::namesIn(QPDFObjectHandle action) {
    const QString script = textOf(action);
    static const QRegularExpression computing(
        QStringLiteral("getField\\s*\\(\\s*[^\"'\\s]|getField\\s*\\(\\s*(\"[^\"]*\"|'[^']*')\\s*\\+|"
                       "getNthFieldName|numFields|\\beval\\s*\\("));
    Names names;
    names.computes = script.contains(computing);
    const Parts parts = partsOf(script);
    addNames(parts.code, names);
    for (const QString& text : parts.texts) {
        names.texts += text;
        // AFSimple_Calculate("SUM", "price, tax")
        if (text.contains(QLatin1Char(',')))
            for (const QString& part : text.split(QLatin1Char(',')))
                names.texts += part.trimmed();
    }
    return names;
}

void FieldScripts::dropWhere(QPDFObjectHandle field, const Test& isMeant) {
    if (setsOff(field.getKey("/A"), isMeant))
        field.removeKey("/A");
    QPDFObjectHandle triggers = field.getKey("/AA");
    if (!triggers.isDictionary())
        return;
    QPDFObjectHandle kept = triggers.shallowCopy(); // other fields may have the same
    for (const std::string& trigger : triggers.getKeys())
        if (setsOff(triggers.getKey(trigger), isMeant))
            kept.removeKey(trigger);
    if (kept.getKeys().size() != triggers.getKeys().size())
        field.replaceKey("/AA", kept);
}
