#include "SourceFile.h"

#include "Logging.h"
#include "PDFError.h"
#include "PDFSource.h"
#include "PdfValues.h"

#include <qpdf/QPDFExc.hh>

#include <exception>
#include <set>
#include <utility>

namespace {

constexpr int deepestPageTree = 256;

/// Collects the pages below a node of which there is no doubt which they are. False when there is.
bool collectPages(QPDFObjectHandle node, std::vector<QPDFObjectHandle>& pages, std::set<QPDFObjGen>& seen, int depth) {
    long long count = 0;
    QPDFObjectHandle kids = PdfValues::entry(node, "/Kids");
    if (depth > deepestPageTree || !kids.isArray() || !node.getKey("/Count").getValueAsInt(count))
        return false;
    const std::size_t before = pages.size();
    for (const QPDFObjectHandle& kid : kids.aitems()) {
        if (!kid.isIndirect() || !seen.insert(kid.getObjGen()).second)
            return false;
        QPDFObjectHandle type = PdfValues::entry(kid, "/Type");
        if (type.isNameAndEquals("/Page") && !QPDFObjectHandle(kid).hasKey("/Kids"))
            pages.push_back(kid);
        else if (!type.isNameAndEquals("/Pages") || !collectPages(kid, pages, seen, depth + 1))
            return false;
    }
    return count >= 0 && pages.size() - before == std::size_t(count);
}

std::unique_ptr<QPDF> opened(QByteArrayView bytes, const QByteArray& password, bool repair) {
    auto pdf = std::make_unique<QPDF>();
    pdf->setSuppressWarnings(true);
    pdf->setAttemptRecovery(repair);
    pdf->processMemoryFile("document", bytes.data(), std::size_t(bytes.size()), password.constData());
    if (QPDFObjectHandle ids = pdf->getTrailer().getKey("/ID"); repair && ids.isArray())
        for (QPDFObjectHandle id : ids.getArrayAsVector())
            if (!id.isString())
                pdf->getTrailer().removeKey("/ID");
    if (QPDFObjectHandle root = pdf->getRoot(); repair && !root.isIndirect())
        pdf->getTrailer().replaceKey("/Root", pdf->makeIndirectObject(root));
    return pdf;
}

} // namespace

SourceFile::SourceFile(std::shared_ptr<PDFSource> source, Base base) : m_source(std::move(source)) {
    const bool repair = base != Base::asItCame;
    // What was damaged was seen as the engine has repaired it, so that is what is to be saved.
    if (base == Base::copy || (repair && m_source->wasRepaired()))
        openCopy();
    if (!m_pdf) {
        try {
            m_pdf = opened(m_source->bytes(), m_source->password(), repair);
        } catch (const QPDFExc& error) {
            if (!repair || error.getErrorCode() == qpdf_e_password)
                throw;
            qCWarning(Logging::pdf) << "opening a file as it came failed:" << Logging::causes(error);
            openCopy();
        }
    }
    if (!m_pdf)
        throw PDFError(PDFError::Kind::writeFailed, QStringLiteral("It is too damaged to be saved."));
    noteGenerations();
    if (base == Base::repaired && isInDoubt() && (m_source->hasLooseReferences() || !holdsPages()))
        openCopy();
}

void SourceFile::noteGenerations() {
    m_generations.clear();
    for (const auto& [id, place] : m_pdf->getXRefTable())
        if (id.getGen() != 0)
            m_generations[id.getObj()] = id.getGen();
}

bool SourceFile::isInDoubt() const {
    return m_bytes.isEmpty() && (m_pdf->anyWarnings() || m_source->hasLooseReferences());
}

bool SourceFile::holdsPages() {
    try {
        for (int number = 0; number < m_source->pageCount(); ++number)
            if (!page(number).isDictionary())
                return false;
        // Readers take no higher numbers (ISO 32000-1, annex C), and new objects need some.
        constexpr int highestObjectNumber = 8388607;
        const auto table = m_pdf->getXRefTable();
        return !table.empty() && table.rbegin()->first.getObj() < highestObjectNumber / 2;
    } catch (const std::exception& error) {
        qCWarning(Logging::pdf) << "looking for the pages of a damaged file failed:" << Logging::causes(error);
        return false;
    }
}

void SourceFile::openCopy() {
    const QByteArray copy = m_source->repairedBytes();
    if (copy.isEmpty())
        return;
    try {
        m_pdf = opened(copy, m_source->password(), true); // before the bytes that the former one reads
        m_bytes = copy;
        noteGenerations();
    } catch (const QPDFExc& error) {
        qCWarning(Logging::pdf) << "opening a repaired file failed:" << Logging::causes(error);
    }
}

void SourceFile::takeLinks() {
    if (!m_source->wasRepaired() && m_bytes.isEmpty() && !m_pdf->isEncrypted() && !m_pdf->anyWarnings())
        m_links = PackedLinks(*m_pdf);
}

bool SourceFile::findAllPages() {
    std::vector<QPDFObjectHandle> pages;
    std::set<QPDFObjGen> seen;
    QPDFObjectHandle root = m_pdf->getRoot().getKey("/Pages");
    if (!PdfValues::entry(root, "/Type").isNameAndEquals("/Pages") || !collectPages(root, pages, seen, 0) ||
        int(pages.size()) != m_source->pageCount())
        return false;
    m_pages = std::move(pages);
    return m_knowsPages = true;
}

QPDFObjectHandle SourceFile::page(int pageNumber) {
    if (pageNumber >= 0 && pageNumber < int(m_pages.size()))
        return m_pages[std::size_t(pageNumber)];
    const int number = m_source->pageObjectNumber(pageNumber);
    if (number > 0) {
        const auto generation = m_generations.find(number);
        QPDFObjectHandle page = m_pdf->getObject(number, generation == m_generations.end() ? 0 : generation->second);
        if (page.isDictionary())
            return page;
    }
    // A page that stands directly in its node of the tree, or a file whose objects had to be found again.
    try {
        const std::vector<QPDFObjectHandle>& pages = m_pdf->getAllPages();
        if (int(pages.size()) == m_source->pageCount() && pageNumber >= 0 && pageNumber < int(pages.size()))
            return pages[std::size_t(pageNumber)];
    } catch (const std::exception& error) { // another page can't be read
        qCWarning(Logging::pdf) << "walking through the pages of a file failed:" << Logging::causes(error);
    }
    return QPDFObjectHandle::newNull();
}

QPDFObjectHandle SourceFile::annotation(int pageNumber, int index) {
    QPDFObjectHandle annotations = PdfValues::entry(page(pageNumber), "/Annots");
    if (!annotations.isArray() || index < 0 || index >= annotations.getArrayNItems())
        return QPDFObjectHandle::newNull();
    QPDFObjectHandle annotation = annotations.getArrayItem(index);
    return annotation.isDictionary() ? annotation : QPDFObjectHandle::newNull();
}

QPDFObjectHandle SourceFile::inheritedFrom(QPDFObjectHandle page, const std::string& key) {
    for (int depth = 0; page.isDictionary() && depth < deepestPageTree; ++depth) {
        if (page.hasKey(key))
            return page;
        page = page.getKey("/Parent");
    }
    return QPDFObjectHandle::newNull();
}

QPDFObjectHandle SourceFile::inheritable(QPDFObjectHandle page, const std::string& key) {
    return PdfValues::entry(inheritedFrom(page, key), key);
}
