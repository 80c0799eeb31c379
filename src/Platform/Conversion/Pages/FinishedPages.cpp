#include "FinishedPages.h"

#include "GlyphText.h"
#include "VisibleText.h"

#include <QByteArray>
#include <QFile>

#include <map>
#include <optional>
#include <set>
#include <string>

#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFWriter.hh>

namespace {

using Pages = std::vector<QPDFObjectHandle>;

constexpr double pointsPerPixel = 0.75;

QPDFObjectHandle real(double value) {
    return QPDFObjectHandle::newReal(value, 3);
}

double x(qreal pixels) {
    return LetterPages::margin + pixels * pointsPerPixel;
}

double y(qreal pixels) {
    return LetterPages::pageHeight - LetterPages::margin - pixels * pointsPerPixel;
}

QByteArray bytesOf(QPDFObjectHandle stream) {
    const auto bytes = stream.getStreamData();
    return {reinterpret_cast<const char*>(bytes->getBuffer()), qsizetype(bytes->getSize())};
}

void replaceBytes(QPDFObjectHandle stream, const QByteArray& bytes) {
    stream.replaceStreamData(bytes.toStdString(), QPDFObjectHandle::newNull(), QPDFObjectHandle::newNull());
}

QPDFObjectHandle annotationOf(const LetterPages::Link& link, const Pages& pages) {
    auto annotation = QPDFObjectHandle::newDictionary();
    annotation.replaceKey("/Type", QPDFObjectHandle::newName("/Annot"));
    annotation.replaceKey("/Subtype", QPDFObjectHandle::newName("/Link"));
    annotation.replaceKey("/Rect", QPDFObjectHandle::newArray({real(x(link.area.left())), real(y(link.area.bottom())),
                                                               real(x(link.area.right())), real(y(link.area.top()))}));
    const auto zero = QPDFObjectHandle::newInteger(0);
    annotation.replaceKey("/Border", QPDFObjectHandle::newArray({zero, zero, zero}));
    if (link.address.isEmpty()) {
        annotation.replaceKey("/Dest",
                              QPDFObjectHandle::newArray(
                                  {pages.at(std::size_t(link.targetPage)), QPDFObjectHandle::newName("/XYZ"),
                                   QPDFObjectHandle::newNull(), real(y(link.targetTop)), QPDFObjectHandle::newNull()}));
    } else {
        auto action = QPDFObjectHandle::newDictionary();
        action.replaceKey("/S", QPDFObjectHandle::newName("/URI"));
        action.replaceKey("/URI", QPDFObjectHandle::newString(link.address.toStdString()));
        annotation.replaceKey("/A", action);
    }
    return annotation;
}

void addLinks(QPDF& pdf, const std::vector<LetterPages::Link>& links, const Pages& pages) {
    std::map<int, std::vector<QPDFObjectHandle>> annotations;
    for (const LetterPages::Link& link : links)
        annotations[link.page].push_back(pdf.makeIndirectObject(annotationOf(link, pages)));
    for (const auto& [page, ofPage] : annotations)
        QPDFObjectHandle(pages.at(std::size_t(page))).replaceKey("/Annots", QPDFObjectHandle::newArray(ofPage));
}

/// Each font once, although all pages name it.
void makeTextSearchable(const Pages& pages) {
    std::set<QPDFObjGen> seen;
    for (const QPDFObjectHandle& page : pages) {
        const QPDFObjectHandle fonts = QPDFObjectHandle(page).getKey("/Resources").getKey("/Font");
        if (!QPDFObjectHandle(fonts).isDictionary())
            continue;
        for (auto& [name, font] : QPDFObjectHandle(fonts).getDictAsMap()) {
            QPDFObjectHandle map = font.getKey("/ToUnicode");
            if (!map.isStream() || !seen.insert(map.getObjGen()).second)
                continue;
            GlyphText::Texts texts = GlyphText::read(bytesOf(map));
            for (QString& text : texts)
                text = GlyphText::typed(text);
            replaceBytes(map, GlyphText::written(texts));
        }
    }
}

void dropHiddenText(const Pages& pages) {
    for (const QPDFObjectHandle& page : pages) {
        const QPDFObjectHandle content = QPDFObjectHandle(page).getKey("/Contents");
        if (const std::optional<QByteArray> visible = VisibleText::only(bytesOf(content)))
            replaceBytes(content, *visible);
    }
}

void setInformation(QPDF& pdf, const QString& title) {
    QPDFObjectHandle information = pdf.getTrailer().getKey("/Info");
    if (!information.isDictionary())
        return;
    information.removeKey("/Creator"); // an empty one
    if (title.isEmpty())
        information.removeKey("/Title");
    else
        information.replaceKey("/Title", QPDFObjectHandle::newUnicodeString(title.toStdString()));
}

} // namespace

void FinishedPages::write(const QString& drawn, const QString& finished, const Changes& changes) {
    QPDF pdf;
    pdf.processFile(QFile::encodeName(drawn).constData());
    const Pages pages = pdf.getAllPages();
    addLinks(pdf, changes.links, pages);
    makeTextSearchable(pages);
    setInformation(pdf, changes.title);
    if (changes.dropsHiddenText)
        dropHiddenText(pages);
    const QByteArray path = QFile::encodeName(finished); // which the writer looks at until the end
    QPDFWriter writer(pdf, path.constData());
    writer.setObjectStreamMode(qpdf_o_preserve);
    writer.setDecodeLevel(qpdf_dl_none); // what is packed already stays as it is
    writer.write();
}
