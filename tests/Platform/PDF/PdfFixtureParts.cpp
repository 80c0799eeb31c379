#include "PdfFixtureObjects.h"
#include "PdfFixtures.h"

#include <qpdf/Buffer.hh>
#include <qpdf/QPDFWriter.hh>

#include <cstdio>

PdfFixture::Objects::Objects() {
    pdf.emptyPDF();
    pages = reference(pdf.getRoot().getKey("/Pages"));
}

QPDFObjectHandle PdfFixture::Objects::parse(const QByteArray& value) {
    // A reference alone isn't parsed as one: it is inside an array.
    return QPDFObjectHandle::parse(&pdf, "[ " + value.toStdString() + " ]").getArrayItem(0);
}

QByteArray PdfFixture::Objects::reference(QPDFObjectHandle object) {
    return QByteArray::fromStdString(object.unparse());
}

QByteArray PdfFixture::Objects::write(const std::function<void(QPDFWriter&)>& adjust) {
    QPDFWriter writer(pdf);
    writer.setOutputMemory();
    writer.setStaticID(true);
    writer.setStreamDataMode(qpdf_s_preserve);
    adjust(writer);
    writer.write();
    const auto buffer = writer.getBufferSharedPointer();
    return {reinterpret_cast<const char*>(buffer->getBuffer()), qsizetype(buffer->getSize())};
}

QByteArray PdfFixture::addObject(const QByteArray& value) {
    return Objects::reference(m_objects->pdf.makeIndirectObject(m_objects->parse(value)));
}

QByteArray PdfFixture::addStream(const QByteArray& dictionary, const QByteArray& data) {
    QPDFObjectHandle stream = m_objects->pdf.newStream(data.toStdString());
    QPDFObjectHandle keys = m_objects->parse(dictionary);
    for (const auto& key : keys.getKeys())
        stream.getDict().replaceKey(key, keys.getKey(key));
    return Objects::reference(stream);
}

// A dictionary drops a reference to a null object.
QByteArray PdfFixture::reserveObject() {
    return addObject("<< >>");
}

void PdfFixture::fillObject(const QByteArray& reference, const QByteArray& value) {
    m_objects->pdf.replaceObject(m_objects->parse(reference).getObjGen(), m_objects->parse(value));
}

void PdfFixture::setKey(const QByteArray& reference, const QByteArray& key, const QByteArray& value) {
    QPDFObjectHandle object = m_objects->parse(reference);
    (object.isStream() ? object.getDict() : object).replaceKey(key.toStdString(), m_objects->parse(value));
}

void PdfFixture::appendToArray(const QByteArray& reference, const QByteArray& key, const QByteArray& value) {
    QPDFObjectHandle object = m_objects->parse(reference);
    if (!object.hasKey(key.toStdString()))
        object.replaceKey(key.toStdString(), QPDFObjectHandle::newArray());
    object.getKey(key.toStdString()).appendItem(m_objects->parse(value));
}

void PdfFixture::removeFromArray(const QByteArray& reference, const QByteArray& key, const QByteArray& value) {
    QPDFObjectHandle array = m_objects->parse(reference).getKey(key.toStdString());
    for (int i = array.getArrayNItems() - 1; i >= 0; --i)
        if (array.getArrayItem(i).unparse() == value.toStdString())
            array.eraseItem(i);
}

void PdfFixture::setRootKey(const QByteArray& key, const QByteArray& value) {
    setKey(Objects::reference(m_objects->pdf.getRoot()), key, value);
}

void PdfFixture::setTrailerKey(const QByteArray& key, const QByteArray& value) {
    m_objects->pdf.getTrailer().replaceKey(key.toStdString(), m_objects->parse(value));
}

void PdfFixture::setInfo(const QByteArray& key, const QString& value) {
    QPDFObjectHandle trailer = m_objects->pdf.getTrailer();
    if (!trailer.hasKey("/Info"))
        setTrailerKey("/Info", addObject("<< >>"));
    trailer.getKey("/Info").replaceKey(key.toStdString(), QPDFObjectHandle::newUnicodeString(value.toStdString()));
}

namespace {

/// Writes the items below `parent`, each linked to its neighbours; returns how many of the file's rows are visible.
int addOutlineItems(PdfFixture& fixture, const QByteArray& parent, const std::vector<PdfFixture::OutlineItem>& items) {
    std::vector<QByteArray> references;
    for (std::size_t i = 0; i < items.size(); ++i)
        references.push_back(fixture.reserveObject());
    int visible = int(items.size());
    for (std::size_t i = 0; i < items.size(); ++i) {
        const PdfFixture::OutlineItem& item = items[i];
        QByteArray keys = "/Title " + PdfFixture::textString(item.title) + " /Parent " + parent;
        if (i > 0)
            keys += " /Prev " + references[i - 1];
        if (i + 1 < items.size())
            keys += " /Next " + references[i + 1];
        if (!item.url.isEmpty())
            keys += " /A << /S /URI /URI (" + item.url.toLatin1() + ") >>";
        else if (!item.name.isEmpty())
            keys += " /Dest (" + item.name + ')';
        else if (item.page >= 0)
            keys += " /Dest [" + fixture.pageReference(item.page) + " /XYZ 0 792 null]";
        fixture.fillObject(references[i], "<< " + keys + ' ' + item.keys + " >>");
        if (!item.children.empty()) {
            const int below = addOutlineItems(fixture, references[i], item.children);
            fixture.setKey(references[i], "/Count", QByteArray::number(item.open ? below : -below));
            visible += item.open ? below : 0;
        }
    }
    fixture.setKey(parent, "/First", references.front());
    fixture.setKey(parent, "/Last", references.back());
    return visible;
}

} // namespace

void PdfFixture::setOutline(const std::vector<OutlineItem>& items) {
    const QByteArray root = addObject("<< /Type /Outlines >>");
    setKey(root, "/Count", QByteArray::number(addOutlineItems(*this, root, items)));
    setRootKey("/Outlines", root);
}

void PdfFixture::setNamesKey(const QByteArray& key, const QByteArray& value) {
    if (m_objects->names.isEmpty()) {
        m_objects->names = addObject("<< >>");
        setRootKey("/Names", m_objects->names);
    }
    setKey(m_objects->names, key, value);
}

void PdfFixture::addNamedDestination(const QByteArray& name, int page, bool oldDictionary) {
    const QByteArray target = "[" + pageReference(page) + " /XYZ 0 792 null]";
    if (oldDictionary) {
        if (m_objects->oldNames.isEmpty()) {
            m_objects->oldNames = addObject("<< >>");
            setRootKey("/Dests", m_objects->oldNames);
        }
        setKey(m_objects->oldNames, '/' + name, target);
        return;
    }
    if (m_objects->nameTree.isEmpty()) {
        m_objects->nameTree = addObject("<< /Names [] >>");
        setNamesKey("/Dests", m_objects->nameTree);
    }
    // A place may stand in the tree or be an object of its own.
    const QByteArray value = page % 2 == 0 ? target : addObject(target);
    // In order, since readers look it up by halves.
    QPDFObjectHandle names = m_objects->parse(m_objects->nameTree).getKey("/Names");
    int at = 0;
    while (at < names.getArrayNItems() && names.getArrayItem(at).getStringValue() < name.toStdString())
        at += 2;
    names.insertItem(at, m_objects->parse(value));
    names.insertItem(at, QPDFObjectHandle::newString(name.toStdString()));
}

void PdfFixture::attach(const QString& fileName, const QByteArray& data) {
    if (m_objects->attachments.isEmpty()) {
        m_objects->attachments = addObject("<< /Names [] >>");
        setNamesKey("/EmbeddedFiles", m_objects->attachments);
    }
    const QByteArray stream = addStream("<< /Type /EmbeddedFile >>", data);
    const QByteArray name = textString(fileName);
    appendToArray(m_objects->attachments, "/Names", name);
    appendToArray(m_objects->attachments, "/Names",
                  addObject("<< /Type /Filespec /F " + name + " /UF " + name + " /EF << /F " + stream + " >> >>"));
}

void PdfFixture::wrapContent(int page, const QByteArray& before, const QByteArray& after) {
    QPDFObjectHandle old = m_objects->parse(pageReference(page)).getKey("/Contents");
    QByteArray streams = addStream("<< >>", before) + ' ';
    for (const QPDFObjectHandle& stream : old.isArray() ? old.getArrayAsVector() : std::vector{old})
        streams += Objects::reference(stream) + ' ';
    setPageKey(page, "/Contents", '[' + streams + addStream("<< >>", after) + ']');
}

QByteArray PdfFixture::addLayer(int page, const QString& name, const QByteArray& content, bool visible) {
    if (m_objects->layerDefault.isEmpty()) {
        m_objects->layerDefault = addObject("<< /BaseState /ON /ON [] /OFF [] /Order [] >>");
        setRootKey("/OCProperties", addObject("<< /OCGs [] /D " + m_objects->layerDefault + " >>"));
    }
    QByteArray layer = addObject("<< /Type /OCG /Name " + textString(name) + " >>");
    appendToArray(Objects::reference(m_objects->pdf.getRoot().getKey("/OCProperties")), "/OCGs", layer);
    appendToArray(m_objects->layerDefault, visible ? "/ON" : "/OFF", layer);
    appendToArray(m_objects->layerDefault, "/Order", layer);

    QPDFObjectHandle dictionary = m_objects->parse(pageReference(page));
    QPDFObjectHandle resources = dictionary.getKey("/Resources").shallowCopy();
    QPDFObjectHandle properties = m_objects->parse("<< /Layer " + layer + " >>");
    resources.replaceKey("/Properties", properties);
    dictionary.replaceKey("/Resources", resources);
    wrapContent(page, "", "/OC /Layer BDC " + content + " EMC");
    return layer;
}

void PdfFixture::tagPage(int page, const QString& actualText, const QString& title) {
    QPDFObjectHandle root = m_objects->pdf.getRoot();
    if (!root.hasKey("/StructTreeRoot")) {
        const QByteArray tree = addObject("<< /Type /StructTreeRoot /ParentTree << /Nums [] >> >>");
        m_objects->section = addObject("<< /Type /StructElem /S /Sect /P " + tree + " /K [] >>");
        setKey(tree, "/K", m_objects->section);
        setRootKey("/StructTreeRoot", tree);
        setRootKey("/MarkInfo", "<< /Marked true >>");
    }
    QByteArray keys = "/Type /StructElem /S /P /P " + m_objects->section + " /Pg " + pageReference(page) +
                      " /K 0 /ActualText " + textString(actualText) + " /Alt " + textString(actualText);
    if (!title.isEmpty())
        keys += " /T " + textString(title);
    const QByteArray element = addObject("<< " + keys + " >>");
    appendToArray(m_objects->section, "/K", element);
    setPageKey(page, "/StructParents", QByteArray::number(page));
    appendToParentTree(page, '[' + element + ']');

    wrapContent(page, "/P << /MCID 0 >> BDC\n", "\nEMC");
}

void PdfFixture::appendToStructure(const QByteArrayList& elements) {
    for (const QByteArray& element : elements) {
        setKey(element, "/P", m_objects->section);
        appendToArray(m_objects->section, "/K", element);
    }
}

void PdfFixture::setStructureKey(const QByteArray& key, const QByteArray& value) {
    setKey(Objects::reference(m_objects->pdf.getRoot().getKey("/StructTreeRoot")), key, value);
}

void PdfFixture::appendToParentTree(int key, const QByteArray& value) {
    QPDFObjectHandle tree = m_objects->pdf.getRoot().getKey("/StructTreeRoot").getKey("/ParentTree");
    tree.getKey("/Nums").appendItem(QPDFObjectHandle::newInteger(key));
    tree.getKey("/Nums").appendItem(m_objects->parse(value));
}

void PdfFixture::setPageLabels(const QByteArray& nums) {
    setRootKey("/PageLabels", "<< /Nums [" + nums + "] >>");
}

void PdfFixture::setMetadata(const QByteArray& xmp) {
    setRootKey("/Metadata", addStream("<< /Type /Metadata /Subtype /XML >>", xmp));
}

void PdfFixture::addThread(const QString& title, const std::vector<int>& pages) {
    const QByteArray thread = reserveObject();
    std::vector<QByteArray> beads;
    for (std::size_t i = 0; i < pages.size(); ++i)
        beads.push_back(reserveObject());
    for (std::size_t i = 0; i < pages.size(); ++i) {
        const QByteArray next = beads[(i + 1) % beads.size()];
        const QByteArray previous = beads[(i + beads.size() - 1) % beads.size()];
        fillObject(beads[i], "<< /Type /Bead /T " + thread + " /N " + next + " /V " + previous + " /P " +
                                 pageReference(pages[i]) + " /R [0 0 100 100] >>");
        appendToArray(pageReference(pages[i]), "/B", beads[i]);
    }
    fillObject(thread, "<< /Type /Thread /F " + beads.front() + " /I << /Title " + textString(title) + " >> >>");
    appendToArray(Objects::reference(m_objects->pdf.getRoot()), "/Threads", thread);
}
