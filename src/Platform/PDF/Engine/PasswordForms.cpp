#include "PasswordForms.h"

#include "EngineContext.h"
#include "SaslPrep.h"

#include <QStringEncoder>

#include <algorithm>
#include <iterator>
#include <optional>

namespace {

constexpr int firstRevisionWithUtf8 = 5;

std::optional<QByteArray> inDocumentEncoding(const QString& password) {
    QByteArray bytes;
    for (const QChar character : password) {
        const auto* const end = std::end(fz_unicode_from_pdf_doc_encoding);
        const auto* const found = std::find(std::begin(fz_unicode_from_pdf_doc_encoding), end, character.unicode());
        if (found == end)
            return std::nullopt;
        bytes += char(found - std::begin(fz_unicode_from_pdf_doc_encoding));
    }
    return bytes;
}

/// The engine writes what it is given in PDFDocEncoding.
std::optional<QByteArray> engineTextFor(const QByteArray& bytes) {
    QString text;
    for (const char byte : bytes) {
        const ushort character = fz_unicode_from_pdf_doc_encoding[static_cast<unsigned char>(byte)];
        if (character == 0)
            return std::nullopt; // a code that the encoding leaves free
        text += QChar(character);
    }
    return text.toUtf8();
}

} // namespace

std::vector<PasswordForm> PasswordForm::all(const QString& password, int securityRevision) {
    std::vector<PasswordForm> forms;
    const auto add = [&forms](const QByteArray& taken, const std::optional<QByteArray>& given) {
        const bool isKnown = std::any_of(forms.begin(), forms.end(),
                                         [&taken](const PasswordForm& known) { return known.bytes == taken; });
        if (given && !isKnown)
            forms.push_back({taken, *given});
    };
    if (securityRevision >= firstRevisionWithUtf8) {
        for (const QByteArray& utf8 : {passwordBytes(password), password.toUtf8()})
            add(utf8.left(longestPassword), utf8.left(longestPassword));
        return forms;
    }
    if (const auto bytes = inDocumentEncoding(password.normalized(QString::NormalizationForm_C)))
        add(*bytes, engineTextFor(*bytes));
    add(password.toUtf8(), engineTextFor(password.toUtf8()));
    const QByteArray latin = password.toLatin1();
    if (QString::fromLatin1(latin) == password)
        add(latin, engineTextFor(latin));
    return forms;
}
