#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

class PDFDocument;
class PDFOutline;
class PDFPage;
class PDFSource;

/// The document that pages were copied from, for those who have the copies: what it says of its pages as a whole comes
/// along with them. May outlive the document, and tells then what it was when it went. Main thread only.
class PDFOrigin {
public:
    explicit PDFOrigin(const PDFDocument& document) : m_document(&document) {}

    /// To be called by the document before it goes, while it still has its pages.
    void keepAll();

    /// The name of its file; without one its title, or a word for it.
    [[nodiscard]] QString name() const;
    /// Null for a document that wasn't opened from a file.
    [[nodiscard]] std::shared_ptr<PDFSource> source() const;
    [[nodiscard]] int pageCount() const;
    /// The identity (`PDFPage::identity`) of its page; 0 for one that nobody has asked for yet.
    [[nodiscard]] quint64 pageAt(int index) const;

    [[nodiscard]] QVariantMap attributes() const;
    /// True while its outline, or its attributes, are what its source says.
    [[nodiscard]] bool hasOutlineOfSource() const;
    [[nodiscard]] bool hasAttributesOfSource() const;

    /// What stands for one of its pages, given by its identity; null when nothing does.
    using Copies = std::function<std::shared_ptr<PDFPage>(quint64 page)>;
    /// Lets a worker read the outline, so that whoever asks for it later finds it.
    void readAhead() const;
    /// The entries of its outline that lead to pages of which there are copies, leading to those. Null when it has
    /// none.
    [[nodiscard]] std::shared_ptr<PDFOutline> outlineFor(const Copies& copies) const;

private:
    const PDFDocument* m_document; // null once it is gone, when the following holds what it said
    QString m_name;
    std::shared_ptr<PDFSource> m_source;
    std::vector<quint64> m_pages;
    QVariantMap m_attributes;
    bool m_outlineOfSource = false;
    bool m_attributesOfSource = false;
    bool m_outlineRead = false; // and otherwise still in the source alone
    std::shared_ptr<PDFOutline> m_outline;
    std::unordered_map<const PDFOutline*, quint64> m_targets; // pages that its entries led to
    std::unordered_map<int, quint64> m_bySourcePage;          // the first of each
};
