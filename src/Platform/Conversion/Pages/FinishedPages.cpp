#include "FinishedPages.h"

#include "ClusterText.h"
#include "EmbeddedFont.h"
#include "PDFStreams.h"
#include "VisibleText.h"

#include <QByteArray>
#include <QFile>

#include <map>
#include <optional>
#include <string>
#include <utility>

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFWriter.hh>

namespace {

using Pages = std::vector<QPDFObjectHandle>;

QPDFObjectHandle real(double value) {
    return QPDFObjectHandle::newReal(value, 3);
}

QPDFObjectHandle annotationOf(const LetterPages::Link& link, const Pages& pages) {
    auto annotation = QPDFObjectHandle::newDictionary();
    annotation.replaceKey("/Type", QPDFObjectHandle::newName("/Annot"));
    annotation.replaceKey("/Subtype", QPDFObjectHandle::newName("/Link"));
    const QPointF corner = LetterPages::inPoints(link.area.bottomLeft());
    const QPointF opposite = LetterPages::inPoints(link.area.topRight());
    annotation.replaceKey("/Rect", QPDFObjectHandle::newArray(
                                       {real(corner.x()), real(corner.y()), real(opposite.x()), real(opposite.y())}));
    const auto zero = QPDFObjectHandle::newInteger(0);
    annotation.replaceKey("/Border", QPDFObjectHandle::newArray({zero, zero, zero}));
    if (link.address.isEmpty()) {
        annotation.replaceKey(
            "/Dest",
            QPDFObjectHandle::newArray(
                {pages.at(std::size_t(link.targetPage)), QPDFObjectHandle::newName("/XYZ"), QPDFObjectHandle::newNull(),
                 real(LetterPages::inPoints({0, link.targetTop}).y()), QPDFObjectHandle::newNull()}));
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

/// The fonts of all pages, each once.
class Fonts {
public:
    /// Those that a page names.
    ClusterText::Fonts on(QPDFObjectHandle page) {
        ClusterText::Fonts fonts;
        QPDFObjectHandle named = page.getKey("/Resources").getKey("/Font");
        if (!named.isDictionary())
            return fonts;
        for (auto& [name, font] : named.getDictAsMap())
            if (EmbeddedFont::isOne(font))
                fonts[QByteArray::fromStdString(name)] = &m_fonts.try_emplace(font.getObjGen(), font).first->second;
        return fonts;
    }

    void writeBack() {
        for (auto& [number, font] : m_fonts)
            font.writeBack();
    }

private:
    std::map<QPDFObjGen, EmbeddedFont> m_fonts;
};

void makeTextSearchable(const Pages& pages, const FinishedPages::Changes& changes) {
    Fonts fonts;
    for (std::size_t i = 0; i < pages.size(); ++i) {
        const ClusterText::Fonts onPage = fonts.on(pages[i]);
        const GlyphPlaces::Page* places = changes.places.page(int(i));
        if (!places && !changes.dropsHiddenText)
            continue;
        const QPDFObjectHandle content = QPDFObjectHandle(pages[i]).getKey("/Contents");
        const QByteArray drawn = PDFStreams::bytesOf(content);
        std::optional<QByteArray> changed = changes.dropsHiddenText ? VisibleText::only(drawn) : std::nullopt;
        if (places)
            if (auto told = ClusterText::told(changed.value_or(drawn), changes.places, *places, onPage))
                changed = std::move(told);
        if (changed)
            PDFStreams::replace(content, *changed);
    }
    fonts.writeBack();
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
    makeTextSearchable(pages, changes);
    setInformation(pdf, changes.title);
    const QByteArray path = QFile::encodeName(finished); // which the writer looks at until the end
    QPDFWriter writer(pdf, path.constData());
    writer.setObjectStreamMode(qpdf_o_preserve);
    writer.setDecodeLevel(qpdf_dl_none); // what is packed already stays as it is
    writer.write();
}
