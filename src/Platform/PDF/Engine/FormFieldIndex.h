#pragma once

#include <QHash>
#include <QString>

#include <memory>
#include <unordered_set>
#include <vector>

class SourceEngine;

/// On which pages of a file the widgets of its fields are. Immutable; any thread.
class FormFieldIndex {
public:
    /// Walks the form's tree of fields, and the pages' lists of annotations only for widgets that don't tell their
    /// page. At most 200,000 fields and widgets are looked at.
    [[nodiscard]] static std::shared_ptr<const FormFieldIndex> read(SourceEngine& engine);

    /// Zero-based numbers of the pages that hold widgets of the fields with that full name, ascending.
    [[nodiscard]] std::vector<int> pages(const QString& fieldName) const { return m_pages.value(fieldName); }

    /// True when the page holds a widget of a field of the form.
    [[nodiscard]] bool hasFields(int page) const { return m_pagesWithFields.count(page) > 0; }
    /// True for a file whose form lists no field of a page.
    [[nodiscard]] bool isEmpty() const { return m_pagesWithFields.empty(); }

private:
    std::unordered_set<int> m_pagesWithFields;
    QHash<QString, std::vector<int>> m_pages;
};
