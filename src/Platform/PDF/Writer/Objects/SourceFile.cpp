#include "SourceFile.h"

#include "Logging.h"
#include "PDFError.h"
#include "PDFSource.h"
#include "PdfValues.h"

#include <qpdf/QPDFExc.hh>

#include <QRegularExpression>

#include <exception>
#include <set>
#include <utility>

namespace {

constexpr int deepestPageTree = 256;

/// The bytes with a trailer that names the last catalogue in them, for files whose own end is lost: without any trailer
/// QPDF gives up. Empty when there is no catalogue to be found.
QByteArray withTrailer(const QByteArray& bytes) {
    static const QRegularExpression object(QStringLiteral("(\\d+)\\s+(\\d+)\\s+obj\\b"));
    const qsizetype catalog = bytes.lastIndexOf("/Catalog");
    const qsizetype start = catalog < 0 ? -1 : bytes.lastIndexOf("obj", catalog);
    if (start < 0)
        return {};
    const auto match = object.match(QString::fromLatin1(bytes.mid(std::max<qsizetype>(0, start - 24), 27 + 24)));
    if (!match.hasMatch())
        return {};
    return bytes + "\ntrailer\n<< /Root " + match.captured(1).toLatin1() + ' ' + match.captured(2).toLatin1() +
           " R >>\nstartxref\n0\n%%EOF\n";
}

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

std::unique_ptr<QPDF> opened(const QByteArray& bytes, const QByteArray& password, bool repair) {
    auto pdf = std::make_unique<QPDF>();
    pdf->setSuppressWarnings(true);
    pdf->setAttemptRecovery(repair);
    pdf->processMemoryFile("document", bytes.constData(), std::size_t(bytes.size()), password.constData());
    return pdf;
}

/// Null for a file that can't be opened even so.
std::unique_ptr<QPDF> openedIfPossible(const QByteArray& bytes, const QByteArray& password) {
    try {
        return opened(bytes, password, true);
    } catch (const std::exception& error) {
        qCWarning(Logging::pdf) << "opening a repaired file failed:" << Logging::causes(error);
        return nullptr;
    }
}

/// True when the file has the pages of the source, as far as their objects tell.
bool hasPages(QPDF& pdf, const PDFSource& source) {
    try {
        const std::vector<QPDFObjectHandle>& pages = pdf.getAllPages();
        if (int(pages.size()) != source.pageCount())
            return false;
        for (int number = 0; number < source.pageCount(); ++number) {
            const int object = source.pageObjectNumber(number);
            if (object > 0 && object != pages[std::size_t(number)].getObjectID())
                return false;
        }
        return true;
    } catch (const std::exception& error) {
        qCWarning(Logging::pdf) << "looking for the pages of a damaged file failed:" << Logging::causes(error);
        return false;
    }
}

} // namespace

SourceFile::SourceFile(std::shared_ptr<PDFSource> source, bool repair) : m_source(std::move(source)) {
    const QByteArray password = m_source->password();
    try {
        m_pdf = opened(m_source->bytes(), password, repair);
    } catch (const QPDFExc& error) {
        if (!repair || error.getErrorCode() == qpdf_e_password)
            throw;
        qCWarning(Logging::pdf) << "opening a file by its own trailer failed:" << Logging::causes(error);
        m_bytes = withTrailer(m_source->bytes());
        if (!m_bytes.isEmpty())
            m_pdf = openedIfPossible(m_bytes, password);
    }
    // What was damaged was seen as the engine has repaired it, so that is what is to be saved.
    const bool isDamaged = !m_pdf || m_source->wasRepaired() || m_pdf->anyWarnings();
    if (repair && isDamaged && !(m_pdf && hasPages(*m_pdf, *m_source))) {
        const QByteArray copy = m_source->repairedBytes();
        auto pdf = copy.isEmpty() ? nullptr : openedIfPossible(copy, password);
        if (pdf && (!m_pdf || hasPages(*pdf, *m_source))) {
            m_pdf = std::move(pdf); // before the bytes that the former one reads
            m_bytes = copy;
        }
    }
    if (!m_pdf)
        throw PDFError(PDFError::Kind::writeFailed, QStringLiteral("It is too damaged to be saved."));
    for (const auto& [id, place] : m_pdf->getXRefTable())
        if (id.getGen() != 0)
            m_generations[id.getObj()] = id.getGen();
}

bool SourceFile::findAllPages() {
    std::vector<QPDFObjectHandle> pages;
    std::set<QPDFObjGen> seen;
    QPDFObjectHandle root = m_pdf->getRoot().getKey("/Pages");
    if (!PdfValues::entry(root, "/Type").isNameAndEquals("/Pages") || !collectPages(root, pages, seen, 0) ||
        int(pages.size()) != m_source->pageCount())
        return false;
    m_pages = std::move(pages);
    return true;
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
    const std::vector<QPDFObjectHandle>& pages = m_pdf->getAllPages();
    if (int(pages.size()) == m_source->pageCount() && pageNumber >= 0 && pageNumber < int(pages.size()))
        return pages[std::size_t(pageNumber)];
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
