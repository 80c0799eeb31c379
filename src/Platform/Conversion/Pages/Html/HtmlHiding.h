#pragma once

#include "HtmlTag.h"

#include <QHash>
#include <QString>
#include <QStringView>

#include <vector>

/// Which elements of an HTML document its style sheets hide. Selectors are those of single elements: by name, class, id
/// or several of these, and lists of them. Rules for certain media or states are passed over.
class HtmlHiding {
public:
    /// Looks through the sheets within the document. Takes time in proportion to the text.
    explicit HtmlHiding(QStringView html);

    [[nodiscard]] bool hides(const HtmlTag& tag) const;

private:
    struct Rule {
        QString name;                 ///< empty for any
        QString id;                   ///< the same
        std::vector<QString> classes; ///< all of which the element has
        bool isHiding = false;
        int rank = 0;  ///< the highest one counts, and of several the last
        int order = 0; ///< in the document
    };

    void addSheet(QStringView sheet);
    void addRules(QStringView selectors, bool isHiding);
    int m_count = 0;                           ///< of all rules
    QHash<QString, std::vector<Rule>> m_rules; ///< by what they ask for first: an id, a class or a name, with its mark
};
