#include "FieldScripts.h"

#include "Logging.h"
#include "PdfValues.h"

#include <qpdf/Buffer.hh>

#include <QRegularExpression>

#include <algorithm>
#include <vector>

namespace {

constexpr int longestChain = 64;

QString scriptOf(QPDFObjectHandle action) {
    QPDFObjectHandle script = action.getKey("/JS");
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

/// The texts in the script, comments skipped.
QStringList literals(const QString& script) {
    QStringList found;
    for (qsizetype i = 0; i < script.size(); ++i) {
        const QChar sign = script[i];
        const QChar next = i + 1 < script.size() ? script[i + 1] : QChar();
        if (sign == QLatin1Char('/') && next == QLatin1Char('/')) {
            static const QRegularExpression lineEnd(QStringLiteral("[\\r\\n]"));
            i = script.indexOf(lineEnd, i);
        } else if (sign == QLatin1Char('/') && next == QLatin1Char('*')) {
            i = script.indexOf(QLatin1String("*/"), i + 2);
        } else if (sign == QLatin1Char('"') || sign == QLatin1Char('\'')) {
            QString text;
            for (++i; i < script.size() && script[i] != sign; ++i) {
                if (script[i] == QLatin1Char('\\') && i + 1 < script.size())
                    ++i;
                text += script[i];
            }
            found += text;
        }
        if (i < 0)
            break; // a comment to the end
    }
    return found;
}

bool tellsOfOther(QPDFObjectHandle action, const std::function<bool(const QString&)>& isOther, bool anyComputed,
                  int depth = 0) {
    if (!action.isDictionary() || depth > longestChain)
        return false;
    if (action.getKey("/S").isNameAndEquals("/JavaScript")) {
        const FieldScripts::Names names = FieldScripts::namesIn(scriptOf(action));
        if ((anyComputed && names.computes) || std::any_of(names.texts.begin(), names.texts.end(), isOther))
            return true;
    }
    QPDFObjectHandle next = action.getKey("/Next");
    const std::vector<QPDFObjectHandle> all = next.isArray() ? next.getArrayAsVector() : std::vector{next};
    return std::any_of(all.begin(), all.end(), [&](const QPDFObjectHandle& each) {
        return tellsOfOther(each, isOther, anyComputed, depth + 1);
    });
}

} // namespace

FieldScripts::Names FieldScripts::namesIn(const QString& script) {
    static const QRegularExpression computing(
        QStringLiteral("getField\\s*\\(\\s*[^\"'\\s]|getField\\s*\\(\\s*(\"[^\"]*\"|'[^']*')\\s*\\+|"
                       "getNthFieldName|numFields|\\beval\\s*\\("));
    Names names;
    names.computes = script.contains(computing);
    for (const QString& text : literals(script)) {
        names.texts += text;
        // AFSimple_Calculate("SUM", "price, tax")
        if (text.contains(QLatin1Char(',')))
            for (const QString& part : text.split(QLatin1Char(',')))
                names.texts += part.trimmed();
    }
    return names;
}

void FieldScripts::dropAbout(QPDFObjectHandle field, const std::function<bool(const QString&)>& isOther,
                             bool anyComputed) {
    if (tellsOfOther(field.getKey("/A"), isOther, anyComputed))
        field.removeKey("/A");
    QPDFObjectHandle triggers = field.getKey("/AA");
    if (!triggers.isDictionary())
        return;
    QPDFObjectHandle kept = triggers.shallowCopy(); // other fields may have the same
    for (const std::string& trigger : triggers.getKeys())
        if (tellsOfOther(triggers.getKey(trigger), isOther, anyComputed))
            kept.removeKey(trigger);
    if (kept.getKeys().size() != triggers.getKeys().size())
        field.replaceKey("/AA", kept);
}
