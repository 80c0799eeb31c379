#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFError.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

/// A file that is signed with a key made for it: the signature covers all but its own digits.
QByteArray signedFile(const QByteArray& terms = {}) {
    PdfFixture fixture;
    fixture.addPages(3, QStringLiteral("What is agreed on page %1."));
    constexpr int room = 4000; // bytes of the signature
    const QByteArray value = fixture.addObject(
        "<< /Type /Sig /Filter /Adobe.PPKLite /SubFilter /adbe.pkcs7.detached /ByteRange [ 0 1000000001 "
        "1000000002 1000000003 ] /Contents <" +
        QByteArray(qsizetype(2) * room, '0') + "> " + terms + " >>");
    const QByteArray field = fixture.addAnnotation(
        0, "<< /Type /Annot /Subtype /Widget /FT /Sig /T (Signature) /Rect [ 72 72 200 100 ] /V " + value + " >>");
    const QByteArray text = fixture.addAnnotation(
        1, "<< /Type /Annot /Subtype /Widget /FT /Tx /T (Name) /Rect [ 72 72 200 100 ] /DA (/Helv 12 Tf 0 g) >>");
    fixture.setRootKey("/AcroForm", "<< /SigFlags 3 /Fields [ " + field + " " + text + " ] >>");
    QByteArray file = fixture.bytes();
    const qsizetype begin = file.indexOf('<' + QByteArray(64, '0'));
    const qsizetype end = file.indexOf('>', begin) + 1;
    const auto number = [](qsizetype offset) { return QByteArray::number(offset).rightJustified(10, '0'); };
    file.replace("1000000001", number(begin)).replace("1000000002", number(end));
    file.replace("1000000003", number(file.size() - end));
    const QByteArray covered = file.left(begin) + file.mid(end);
    const QByteArray signature =
        PdfPrograms::run(
            QStringLiteral("sh"),
            {QStringLiteral("-c"),
             QStringLiteral("d=$(mktemp -d) && openssl req -x509 -newkey rsa:2048 -nodes -subj /CN=Somebody "
                            "-keyout $d/key -out $d/certificate 2>$d/log && openssl cms -sign -binary "
                            "-outform DER -in FILE -signer $d/certificate -inkey $d/key; rm -r $d")},
            covered)
            .output;
    EXPECT_GT(signature.size(), 500);
    EXPECT_LE(signature.size(), room);
    return file.replace(begin + 1, signature.size() * 2, signature.toHex());
}

QByteArray opinionOfSignature(const QByteArray& file) {
    return PdfPrograms::run(QStringLiteral("pdfsig FILE"), file).output;
}

bool isValid(const QByteArray& file) {
    return opinionOfSignature(file).contains("Signature is Valid");
}

} // namespace

TEST(WriterSignatureTest, KeepsSignaturesHoweverLargeTheUpdates) {
    const QByteArray original = signedFile();
    ASSERT_TRUE(isValid(original)) << opinionOfSignature(original).data();
    const auto document = PDFDocument::fromData(original);
    auto note = std::make_shared<PDFAnnotation>(QRectF(72, 600, 100, 12), PDFAnnotationSubtype::highlight);
    QString words;
    for (int i = 0; i < 20000; ++i)
        words += QString::number(i * 7919 % 10007);
    note->setContents(words);
    document->page(0)->addAnnotation(note);
    const QByteArray saved = document->dataRepresentation();
    EXPECT_GT(saved.size(), 2 * original.size());
    EXPECT_TRUE(isValid(saved)) << opinionOfSignature(saved).data();

    // Pages that are taken from it are somebody else's paper.
    PdfFixture fixture;
    fixture.addPage({});
    const auto other = PDFDocument::fromData(fixture.bytes());
    other->insert(document->page(0)->copy(), 0);
    const QByteArray imported = PdfPrograms::unpacked(other->dataRepresentation());
    EXPECT_TRUE(imported.contains("/FT /Sig"));
    EXPECT_FALSE(imported.contains("/ByteRange"));
}

/// What a signer forbids isn't written unasked, and neither is what no signature outlives.
TEST(WriterSignatureTest, BreaksNoSignatureUnasked) {
    const auto annotate = [](PDFDocument& document) {
        document.page(0)->addAnnotation(
            std::make_shared<PDFAnnotation>(QRectF(72, 600, 100, 12), PDFAnnotationSubtype::square));
    };
    const auto fill = [](PDFDocument& document) {
        document.page(1)->annotations().front()->setWidgetStringValue(QStringLiteral("Ada"));
    };
    const auto move = [](PDFDocument& document) {
        const auto page = document.page(2);
        document.removePage(2);
        document.insert(page, 0);
    };
    const auto remove = [](PDFDocument& document) { document.removePage(2); };
    const auto reference = [](const QByteArray& method, const QByteArray& parameters) {
        return "/Reference [ << /TransformMethod /" + method + " /TransformParams << " + parameters + " >> >> ]";
    };
    struct Case {
        const char* what;
        std::function<void(PDFDocument&)> change;
        QByteArray terms;
        bool breaks;
    };
    const Case cases[] = {
        {"annotating", annotate, "", false},
        {"filling", fill, "", false},
        {"moving a page", move, "", true},
        {"removing a page", remove, "", true},
        {"annotating where filling is allowed", annotate, reference("DocMDP", ""), true},
        {"filling where that is allowed", fill, reference("DocMDP", "/P 2"), false},
        {"annotating where that is allowed", annotate, reference("DocMDP", "/P 3"), false},
        {"filling where nothing is allowed", fill, reference("DocMDP", "/P 1"), true},
        {"filling a locked field", fill, reference("FieldMDP", "/Action /Include /Fields [ (Name) ]"), true},
        {"filling another field", fill, reference("FieldMDP", "/Action /Include /Fields [ (Na) ]"), false},
        {"filling one of the others", fill, reference("FieldMDP", "/Action /Exclude /Fields [ (Na) ]"), true},
        {"filling where all is locked", fill, reference("FieldMDP", "/Action /All"), true},
    };
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("signed.pdf"));
    PDFWriteOptions keeping;
    keeping.keepsSignatures = true;
    for (const Case& each : cases) {
        SCOPED_TRACE(each.what);
        const auto document = PDFDocument::fromData(signedFile(each.terms));
        each.change(*document);
        if (!each.breaks) {
            document->write(path, keeping);
            QFile file(path);
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            EXPECT_TRUE(isValid(file.readAll()));
            QFile::remove(path);
            continue;
        }
        try {
            document->write(path, keeping);
            ADD_FAILURE() << "it was written";
        } catch (const PDFError& error) {
            EXPECT_EQ(error.kind(), PDFError::Kind::breaksSignatures);
        }
        EXPECT_FALSE(QFile::exists(path));
        EXPECT_EQ(PdfPrograms::complaints(document->dataRepresentation()), "");
    }
    const auto document = PDFDocument::fromData(signedFile());
    remove(*document);
    EXPECT_TRUE(opinionOfSignature(document->dataRepresentation()).contains("is not signed"))
        << "what can't be valid isn't shown as if somebody had tampered with it";
}
