#include "SearchablePage.h"

#include "GlyphlessFont.h"
#include "InvisibleText.h"
#include "Logging.h"
#include "OnlyPicture.h"
#include "PDFSource.h"
#include "PackedStream.h"
#include "PdfValues.h"
#include "PictureResolution.h"
#include "SourceFile.h"
#include "StoredPicture.h"

#include <QImage>

#include <qpdf/QPDFWriter.hh>

#include <array>
#include <exception>
#include <utility>

namespace {

constexpr std::array<std::pair<const char*, PDFDisplayBox>, 4> smallerBoxes{{{"/CropBox", PDFDisplayBox::cropBox},
                                                                             {"/BleedBox", PDFDisplayBox::bleedBox},
                                                                             {"/TrimBox", PDFDisplayBox::trimBox},
                                                                             {"/ArtBox", PDFDisplayBox::artBox}}};

QPDFObjectHandle pageDictionary(const PDFPageGeometry& geometry) {
    QPDFObjectHandle page = QPDFObjectHandle::parse("<< /Type /Page >>");
    const QRectF media = geometry.box(PDFDisplayBox::mediaBox);
    page.replaceKey("/MediaBox", PdfValues::rect(media));
    for (const auto& [key, which] : smallerBoxes)
        if (geometry.box(which) != media)
            page.replaceKey(key, PdfValues::rect(geometry.box(which)));
    if (geometry.rotation != 0)
        page.replaceKey("/Rotate", QPDFObjectHandle::newInteger(geometry.rotation));
    if (geometry.userUnit != 1)
        page.replaceKey("/UserUnit", PdfValues::number(geometry.userUnit));
    return page;
}

QByteArray written(QPDF& file) {
    QPDFWriter writer(file);
    writer.setOutputMemory();
    writer.setObjectStreamMode(qpdf_o_generate);
    writer.setStreamDataMode(qpdf_s_preserve);
    writer.setDecodeLevel(qpdf_dl_none);
    writer.setDeterministicID(true);
    writer.write();
    const std::shared_ptr<Buffer> bytes = writer.getBufferSharedPointer();
    return {reinterpret_cast<const char*>(bytes->getBuffer()), static_cast<qsizetype>(bytes->getSize())};
}

/// `place` maps the unit square, in which the picture stands upright, to page coordinates.
QByteArray pageOf(QPDF& file, QPDFObjectHandle image, const QTransform& place, const QByteArray& paint,
                  const PDFPageGeometry& geometry, const std::vector<SearchablePage::Line>& lines,
                  QPDFObjectHandle colorSpaces = QPDFObjectHandle::newNull()) {
    GlyphlessFont font;
    QByteArray content = "q " + paint;
    for (const double value : {place.m11(), place.m12(), place.m21(), place.m22(), place.dx(), place.dy()})
        content += PdfValues::real(value) + ' ';
    content += "cm /Im0 Do Q\n";
    for (const SearchablePage::Line& line : lines)
        content += InvisibleText::line(line.text, line.box, geometry, font);

    QPDFObjectHandle resources = QPDFObjectHandle::parse("<< /XObject << >> >>");
    resources.getKey("/XObject").replaceKey("/Im0", image);
    if (colorSpaces.isDictionary())
        resources.replaceKey("/ColorSpace", colorSpaces);
    if (!font.isUnused()) {
        resources.replaceKey("/Font", QPDFObjectHandle::newDictionary());
        resources.getKey("/Font").replaceKey("/F0", font.dictionary(file));
    }
    QPDFObjectHandle page = pageDictionary(geometry);
    page.replaceKey("/Resources", resources);
    page.replaceKey("/Contents", PackedStream::add(file, content));
    file.addPage(file.makeIndirectObject(page), false);
    return written(file);
}

/// What the device colours of the page's picture mean, where its file says so.
QPDFObjectHandle defaultColors(QPDF& file, QPDFObjectHandle page) {
    QPDFObjectHandle given = PdfValues::entry(SourceFile::inheritable(page, "/Resources"), "/ColorSpace");
    QPDFObjectHandle kept = QPDFObjectHandle::newDictionary();
    for (const char* key : {"/DefaultGray", "/DefaultRGB", "/DefaultCMYK"}) {
        QPDFObjectHandle space = PdfValues::entry(given, key);
        if (space.isArray())
            kept.replaceKey(key, file.copyForeignObject(given.getOwningQPDF()->makeIndirectObject(space)));
    }
    return kept.getKeys().empty() ? QPDFObjectHandle::newNull() : kept;
}

} // namespace

QByteArray SearchablePage::fromPicture(const QImage& picture, const PDFPageGeometry& geometry,
                                       const std::vector<Line>& lines) {
    if (picture.isNull())
        return {};
    constexpr auto media = PDFDisplayBox::mediaBox;
    const QSizeF shown = geometry.displaySize(media);
    const QTransform upright(shown.width(), 0, 0, -shown.height(), 0, shown.height());
    try {
        QPDF file;
        file.emptyPDF();
        return pageOf(file, StoredPicture::add(file, picture), upright * geometry.displayTransform(media).inverted(),
                      {}, geometry, lines);
    } catch (const std::exception& error) {
        qCWarning(Logging::pdf) << "making a page of a picture failed:" << Logging::causes(error);
        return {};
    }
}

QByteArray SearchablePage::fromOwnPicture(const PDFPageContent& content, const PDFPageGeometry& geometry,
                                          const std::vector<Line>& lines) {
    try {
        SourceFile source(content.source, SourceFile::Base::repaired);
        QPDFObjectHandle page = source.page(content.pageNumber);
        const auto picture = OnlyPicture::on(page, geometry.box(PDFDisplayBox::cropBox));
        if (!picture || source.isInDoubt())
            return {};
        QPDFObjectHandle original = picture->image;
        for (const char* key : {"/StructParent", "/Alternates", "/PieceInfo", "/Metadata"})
            original.getDict().removeKey(key);
        QPDF file;
        file.emptyPDF();
        QPDFObjectHandle image = file.copyForeignObject(original);
        return pageOf(file, image, picture->place, picture->paint, geometry, lines, defaultColors(file, page));
    } catch (const std::exception& error) {
        qCWarning(Logging::pdf) << "taking the picture of a page failed:" << Logging::causes(error);
        return {};
    }
}

double SearchablePage::finestImage(const PDFPageContent& page) {
    return PictureResolution::finest(page) / page.source->geometry(page.pageNumber).userUnit;
}
