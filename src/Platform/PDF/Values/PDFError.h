#pragma once

#include <QString>

#include <stdexcept>

/// What went wrong with a PDF file. `what()` is a sentence for the user, in UTF-8 and without the file's name,
/// so that the caller can put the name in front of it.
class PDFError : public std::runtime_error {
public:
    enum class Kind {
        unreadable,            ///< the file can't be read at all: missing, a folder, no permission
        empty,                 ///< zero bytes
        notPDF,                ///< no trace of a PDF in the bytes, or nothing that could be repaired
        unsupportedEncryption, ///< protected by a handler or an algorithm that the engine doesn't know
        locked,                ///< the operation needs the document's password first
        breaksSignatures,      ///< writing would invalidate a digital signature that was to be kept
        unusablePassword,      ///< no file can be protected with that password
        writeFailed,           ///< the new file couldn't be composed or stored
    };

    PDFError(Kind kind, const QString& sentence) : std::runtime_error(sentence.toStdString()), m_kind(kind) {}

    [[nodiscard]] Kind kind() const { return m_kind; }
    [[nodiscard]] QString sentence() const { return QString::fromUtf8(what()); }

private:
    Kind m_kind;
};
