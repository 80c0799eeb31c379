#include "PdfFixtures.h"

#include "PdfFixtureObjects.h"

#include <qpdf/QPDFWriter.hh>

#include <QBuffer>
#include <QImage>

namespace {

QByteArray formAppearance(const QRectF& rect) {
    return "/Type /XObject /Subtype /Form /BBox [0 0 " + QByteArray::number(rect.width()) + ' ' +
           QByteArray::number(rect.height()) + ']';
}

} // namespace

PdfFixture::PdfFixture() : m_objects(std::make_unique<Objects>()) {}

PdfFixture::~PdfFixture() = default;

QByteArray PdfFixture::textString(const QString& text) {
    return QByteArray::fromStdString(QPDFObjectHandle::newUnicodeString(text.toStdString()).unparse());
}

QByteArray PdfFixture::rectArray(const QRectF& rect) {
    return '[' + QByteArray::number(rect.left()) + ' ' + QByteArray::number(rect.top()) + ' ' +
           QByteArray::number(rect.right()) + ' ' + QByteArray::number(rect.bottom()) + ']';
}

QByteArray PdfFixture::textContent(const QStringList& lines, QSizeF size) {
    QByteArray content = "BT /F1 12 Tf 72 " + QByteArray::number(size.height() - 72) + " Td 16 TL\n";
    for (const QString& line : lines) {
        const std::string shown = QPDFObjectHandle::newString(line.toLatin1().toStdString()).unparse();
        content += QByteArray::fromStdString(shown) + " Tj T*\n";
    }
    return content + "ET\n";
}

QByteArray PdfFixture::jpegOf(const QImage& image) {
    constexpr int quality = 90;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPEG", quality);
    return bytes;
}

QByteArray PdfFixture::defaultResources() {
    if (m_objects->resources.isEmpty())
        m_objects->resources = addObject("<< /Font << /F1 << /Type /Font /Subtype /Type1 /BaseFont /Helvetica "
                                         "/Encoding /WinAnsiEncoding >> >> >>");
    return m_objects->resources;
}

int PdfFixture::addPage(const QStringList& lines, QSizeF size) {
    return addPageWithContent(textContent(lines, size), defaultResources(), size);
}

void PdfFixture::addPages(int count, const QString& line) {
    for (int i = 0; i < count; ++i) {
        const QString text = QString(line).replace(QLatin1String("%1"), QString::number(i));
        addPage(text.isEmpty() ? QStringList() : QStringList(text));
    }
}

int PdfFixture::addPageWithContent(const QByteArray& content, const QByteArray& resources, QSizeF size) {
    const QByteArray stream = addStream("<< >>", content);
    const QByteArray page =
        addObject("<< /Type /Page /Parent " + m_objects->pages + " /MediaBox " + rectArray(QRectF(QPointF(), size)) +
                  " /Resources " + resources + " /Contents " + stream + " >>");
    m_objects->pageList.push_back(page);
    appendToArray(m_objects->pages, "/Kids", page);
    setKey(m_objects->pages, "/Count", QByteArray::number(pageCount()));
    return pageCount() - 1;
}

QByteArray PdfFixture::addEndlessForm() {
    constexpr int depth = 20;
    const QByteArray dictionary = "/Type /XObject /Subtype /Form /BBox [0 0 612 792]";
    QByteArray form = addStream("<< " + dictionary + " /Resources " + defaultResources() + " >>",
                                "BT /F1 12 Tf 72 700 Td (Again) Tj ET 0 0 9 9 re f");
    QByteArray draws;
    for (int i = 0; i < 10; ++i)
        draws += "/X Do ";
    for (int i = 0; i < depth; ++i)
        form = addStream("<< " + dictionary + " /Resources << /XObject << /X " + form + " >> >> >>", draws);
    return form;
}

QByteArray PdfFixture::pageReference(int page) const {
    return m_objects->pageList.at(std::size_t(page));
}

void PdfFixture::setPageKey(int page, const QByteArray& key, const QByteArray& value) {
    setKey(pageReference(page), key, value);
}

int PdfFixture::pageCount() const {
    return int(m_objects->pageList.size());
}

void PdfFixture::nestPageTree(int fanOut, const QByteArray& inherited) {
    QByteArray nodes;
    for (int first = 0; first < pageCount(); first += fanOut) {
        const int count = std::min(fanOut, pageCount() - first);
        const QByteArray node = reserveObject();
        QByteArray kids;
        for (int page = first; page < first + count; ++page) {
            kids += pageReference(page) + ' ';
            setPageKey(page, "/Parent", node);
        }
        fillObject(node, "<< /Type /Pages /Parent " + m_objects->pages + " /Kids [" + kids + "] /Count " +
                             QByteArray::number(count) + ' ' + inherited + " >>");
        nodes += node + ' ';
    }
    setKey(m_objects->pages, "/Kids", '[' + nodes + ']');
}

QByteArray PdfFixture::addAnnotation(int page, const QByteArray& dictionary) {
    QByteArray annotation = addObject(dictionary);
    if (dictionary.startsWith("<<"))
        setKey(annotation, "/P", pageReference(page));
    appendToArray(pageReference(page), "/Annots", annotation);
    return annotation;
}

QByteArray PdfFixture::addLink(int page, const QRectF& rect, int targetPage) {
    return addAnnotation(page, "<< /Type /Annot /Subtype /Link /Border [0 0 0] /Rect " + rectArray(rect) + " /Dest [" +
                                   pageReference(targetPage) + " /XYZ 0 792 null] >>");
}

QByteArray PdfFixture::addNamedLink(int page, const QRectF& rect, const QByteArray& name) {
    return addAnnotation(page, "<< /Type /Annot /Subtype /Link /Border [0 0 0] /Rect " + rectArray(rect) +
                                   " /A << /S /GoTo /D (" + name + ") >> >>");
}

QByteArray PdfFixture::addUriLink(int page, const QRectF& rect, const QByteArray& url) {
    return addAnnotation(page, "<< /Type /Annot /Subtype /Link /Border [0 0 0] /Rect " + rectArray(rect) +
                                   " /A << /S /URI /URI (" + url + ") >> >>");
}

QByteArray PdfFixture::form() {
    if (m_objects->form.isEmpty()) {
        m_objects->form = addObject("<< /Fields [] /DA (/Helv 0 Tf 0 g) /DR << /Font << /Helv << /Type /Font /Subtype "
                                    "/Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >> >> >> >>");
        setRootKey("/AcroForm", m_objects->form);
    }
    return m_objects->form;
}

QByteArray PdfFixture::addTextField(int page, const QString& name, const QRectF& rect, const QString& value,
                                    const QByteArray& moreKeys) {
    const QByteArray look = addStream("<< " + formAppearance(rect) + " /Resources " + defaultResources() + " >>",
                                      "/Tx BMC BT /F1 10 Tf 2 4 Td " + textString(value) + " Tj ET EMC");
    QByteArray field = addAnnotation(page, "<< /Type /Annot /Subtype /Widget /FT /Tx /F 4 /T " + textString(name) +
                                               " /V " + textString(value) + " /DA (/Helv 10 Tf 0 g) /Rect " +
                                               rectArray(rect) + " /AP << /N " + look + " >> " + moreKeys + " >>");
    appendToArray(form(), "/Fields", field);
    return field;
}

QByteArray PdfFixture::addCheckBox(int page, const QString& name, const QRectF& rect, bool on) {
    const QByteArray onLook = addStream("<< " + formAppearance(rect) + " >>", "0 0 10 10 re f");
    const QByteArray offLook = addStream("<< " + formAppearance(rect) + " >>", "0 0 10 10 re S");
    const QByteArray state = on ? "/Yes" : "/Off";
    QByteArray field = addAnnotation(page, "<< /Type /Annot /Subtype /Widget /FT /Btn /F 4 /T " + textString(name) +
                                               " /V " + state + " /AS " + state + " /Rect " + rectArray(rect) +
                                               " /AP << /N << /Yes " + onLook + " /Off " + offLook + " >> >> >>");
    appendToArray(form(), "/Fields", field);
    return field;
}

QByteArray PdfFixture::addRadioGroup(const QString& name, const std::vector<RadioButton>& buttons,
                                     const QByteArray& chosen) {
    QByteArray field = addObject("<< /FT /Btn /Ff 49152 /T " + textString(name) + " /V /" + chosen + " /Kids [] >>");
    for (const RadioButton& button : buttons) {
        const QByteArray look = addStream("<< " + formAppearance(button.rect) + " >>", "0 0 10 10 re f");
        const QByteArray state = button.state == chosen ? button.state : QByteArray("Off");
        appendToArray(field, "/Kids",
                      addAnnotation(button.page, "<< /Type /Annot /Subtype /Widget /F 4 /Parent " + field + " /AS /" +
                                                     state + " /Rect " + rectArray(button.rect) + " /AP << /N << /" +
                                                     button.state + ' ' + look + " >> >> >>"));
    }
    appendToArray(form(), "/Fields", field);
    return field;
}

QByteArray PdfFixture::addSharedTextField(const QString& name, const std::vector<std::pair<int, QRectF>>& places,
                                          const QString& value) {
    QByteArray field = addObject("<< /FT /Tx /T " + textString(name) + " /V " + textString(value) +
                                 " /DA (/Helv 10 Tf 0 g) /Kids [] >>");
    for (const auto& [page, rect] : places)
        appendToArray(field, "/Kids",
                      addAnnotation(page, "<< /Type /Annot /Subtype /Widget /F 4 /Parent " + field + " /Rect " +
                                              rectArray(rect) + " >>"));
    appendToArray(form(), "/Fields", field);
    return field;
}

QByteArray PdfFixture::bytes(Style style) {
    return m_objects->write([style](QPDFWriter& writer) {
        writer.setObjectStreamMode(style == Style::objectStreams ? qpdf_o_generate : qpdf_o_disable);
        writer.setLinearization(style == Style::linearized);
    });
}

QByteArray PdfFixture::withStreamsInflated(const QByteArray& file) {
    QByteArray all = file;
    for (qsizetype at = file.indexOf("stream\n"); at >= 0; at = file.indexOf("stream\n", at)) {
        at += 7;
        const QByteArray length = QByteArray::fromHex("00100000"); // a guess, which Qt wants before the data
        const qsizetype end = file.indexOf("endstream", at);
        if (file.mid(at, 1) == "x" && end > 0)
            all += qUncompress(length + file.mid(at, end - at));
    }
    return all;
}

QByteArray PdfFixture::encrypted(const QByteArray& userPassword, const QByteArray& ownerPassword,
                                 Encryption encryption) {
    return m_objects->write([&](QPDFWriter& writer) {
        writer.setObjectStreamMode(qpdf_o_disable);
        const char* user = userPassword.constData();
        const char* owner = ownerPassword.constData();
        switch (encryption) {
        case Encryption::rc4:
            writer.setR3EncryptionParametersInsecure(user, owner, true, true, true, true, true, true, qpdf_r3p_full);
            break;
        case Encryption::aes128:
            writer.setR4EncryptionParametersInsecure(user, owner, true, true, true, true, true, true, qpdf_r3p_full,
                                                     true, true);
            break;
        case Encryption::aes256:
            writer.setR6EncryptionParameters(user, owner, true, true, true, true, true, true, qpdf_r3p_full, true);
            break;
        }
    });
}

QByteArray PdfFixture::damaged(QByteArray file) {
    file.truncate(file.lastIndexOf("startxref"));
    const qsizetype table = file.lastIndexOf("\nxref");
    return table > 0 ? file.left(table) : file.chopped(20);
}
