#include "RewriteOutput.h"

#include "FileEncryption.h"
#include "PDFDocument.h"
#include "PDFError.h"
#include "ReachableWriter.h"
#include "SaslPrep.h"

#include <qpdf/Pipeline.hh>
#include <qpdf/QPDFWriter.hh>

#include <QIODevice>

#include <algorithm>
#include <optional>
#include <string>

namespace {

/// Passes what is written on in large pieces.
class DevicePipeline : public Pipeline {
public:
    explicit DevicePipeline(QIODevice& device) : Pipeline("document", nullptr), m_device(device) {}
    void write(const unsigned char* data, std::size_t size) override {
        m_piece.append(reinterpret_cast<const char*>(data), qsizetype(size));
        if (m_piece.size() >= pieceSize)
            finish();
    }
    void finish() override {
        m_device.write(m_piece);
        m_piece.resize(0); // keeps its memory
    }

private:
    static constexpr qsizetype pieceSize = 1 << 20;

    QIODevice& m_device;
    QByteArray m_piece;
};

/// Empty for none. A password that would have to be cut, or of which nothing is left, is refused: the file would open
/// with another one than was given, or with none.
std::string checkedPassword(const QString& password) {
    const QByteArray bytes = passwordBytes(password);
    if (bytes.size() > longestPassword || bytes.contains('\0') || bytes.isEmpty() != password.isEmpty())
        throw PDFError(PDFError::Kind::unusablePassword, QStringLiteral("No file can have that password."));
    return bytes.toStdString();
}

/// The latest of them; empty for none.
std::string latest(const std::vector<PDFVersion>& versions) {
    PDFVersion latest;
    for (const PDFVersion& version : versions)
        latest.updateIfGreater(version);
    std::string text;
    int extension = 0;
    latest.getVersion(text, extension);
    return versions.empty() ? std::string() : text;
}

} // namespace

void RewriteOutput::write(QIODevice& device) {
    QPDF& pdf = objects.pdf();
    if (isCopy)
        pdf.getTrailer().removeKey("/ID"); // it is another document
    const std::string user = checkedPassword(options.userPassword);
    const std::string owner = checkedPassword(options.ownerPassword);
    // Without an owner's password anybody would be taken for the owner.
    const std::string& ownerOrUser = owner.empty() ? user : owner;
    std::optional<FileEncryption> encryption;
    if (!ownerOrUser.empty())
        encryption.emplace(user, ownerOrUser);
    if (isSound && ReachableWriter::write(objects, latest(versions), encryption ? &*encryption : nullptr, device))
        return;
    objects.buildTexts();
    objects.buildLinks();
    // The writer corrects the size, but only one that is there.
    pdf.getTrailer().replaceKey("/Size", QPDFObjectHandle::newInteger(0));
    DevicePipeline pipeline(device);
    QPDFWriter writer(pdf);
    writer.setOutputPipeline(&pipeline);
    writer.setObjectStreamMode(isCopy ? qpdf_o_generate : qpdf_o_preserve);
    writer.setPreserveEncryption(!isCopy);
    // Streams are written as they are: to pack them again would take most of the time and gain little.
    writer.setStreamDataMode(qpdf_s_preserve);
    writer.setDecodeLevel(qpdf_dl_none);
    for (const PDFVersion& version : versions)
        writer.setMinimumPDFVersion(version);
    // What is recorded or marked with a highlighter is transparent.
    writer.setMinimumPDFVersion("1.4");
    if (encryption) {
        writer.setR6EncryptionParameters(user.c_str(), ownerOrUser.c_str(), true, true, true, true, true, true,
                                         qpdf_r3p_full, true);
    } else if (isCopy || !pdf.isEncrypted()) {
        writer.setDeterministicID(true);
    }
    writer.write();
    pipeline.finish();
}
