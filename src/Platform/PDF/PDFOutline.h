#pragma once

#include "PDFDestination.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class PDFSource;

/// An item of a document's outline; the root is an item without a label whose children are the top level.
/// Main thread only. Changes reach the file only when the tree's root is set as `PDFDocument::setOutlineRoot`.
class PDFOutline : public std::enable_shared_from_this<PDFOutline> {
public:
    /// Tells the live page that stands for a page of the file, zero-based; null for none.
    using PageOf = std::function<std::shared_ptr<PDFPage>(int page)>;
    /// The root of the file's outline, leading to these pages; null when the file has none. May wait for the file.
    [[nodiscard]] static std::shared_ptr<PDFOutline> of(const std::shared_ptr<PDFSource>& file, const PageOf& pageOf);
    /// The same with those entries only that lead to one of these pages, as `copyWhere` would leave it.
    [[nodiscard]] static std::shared_ptr<PDFOutline> partOf(const std::shared_ptr<PDFSource>& file,
                                                            const PageOf& pageOf);

    [[nodiscard]] QString label() const { return m_label; }
    void setLabel(const QString& label) {
        m_inFile.hasLabel = m_inFile.hasLabel && label == m_label;
        m_label = label;
    }

    /// None for an item that points nowhere or that carries an action instead.
    [[nodiscard]] const std::optional<PDFDestination>& destination() const { return m_destination; }
    void setDestination(std::optional<PDFDestination> destination) {
        m_inFile.hasTarget = false;
        m_destination = std::move(destination);
    }

    /// The web address of an item that opens one; empty otherwise.
    [[nodiscard]] QString url() const { return m_url; }
    void setUrl(const QString& url) {
        m_inFile.hasTarget = m_inFile.hasTarget && url == m_url;
        m_url = url;
    }

    [[nodiscard]] bool isOpen() const { return m_open; }
    void setOpen(bool open) { m_open = open; }

    [[nodiscard]] int numberOfChildren() const { return static_cast<int>(m_children.size()); }
    /// Null when `index` is out of range.
    [[nodiscard]] std::shared_ptr<PDFOutline> child(int index) const;
    /// `index` is clamped to the range of the children. A child that has a parent already is taken from it first.
    void insertChild(const std::shared_ptr<PDFOutline>& child, int index);
    void removeFromParent();
    [[nodiscard]] std::shared_ptr<PDFOutline> parent() const { return m_parent.lock(); }

    /// Where in a copy an item leads that leads to a page here; none when that page isn't among the copy's.
    using Place = std::function<std::optional<PDFDestination>(const PDFOutline& item)>;
    /// A copy of the item and of what is below it. An item below whose page isn't among the copy's is left out, unless
    /// some of its own stay: it is their heading then. A heading of which nothing is left goes too.
    [[nodiscard]] std::shared_ptr<PDFOutline> copyWhere(const Place& place) const;

    /// What an item that was read from a file is there, so that what this class doesn't know of it (colour, style,
    /// other actions, how a destination fits the window) survives where it isn't changed.
    struct InFile {
        std::shared_ptr<PDFSource> file; ///< null for an item that was made here
        int object = 0;                  ///< the number of its dictionary
        bool hasLabel = false;           ///< the label is still the one there
        bool hasTarget = false;          ///< so is where it leads
    };
    [[nodiscard]] const InFile& inFile() const { return m_inFile; }
    void setInFile(const InFile& inFile) { m_inFile = inFile; }

private:
    QString m_label;
    std::optional<PDFDestination> m_destination;
    QString m_url;
    bool m_open = false;
    InFile m_inFile;
    std::vector<std::shared_ptr<PDFOutline>> m_children;
    std::weak_ptr<PDFOutline> m_parent;
};
