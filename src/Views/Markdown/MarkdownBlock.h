#pragma once

#include <QString>
#include <QStringList>

#include <variant>
#include <vector>

/// One piece of a reply, from top to bottom. Texts keep their inline marks and formulas; several lines are joined with
/// a line feed.
struct MarkdownBlock {
    struct Heading {
        int level = 1; ///< 1 to 6
        QString text;
        bool operator==(const Heading&) const = default;
    };
    struct Paragraph {
        QString text;
        bool operator==(const Paragraph&) const = default;
    };
    struct BulletList {
        QStringList items;
        bool operator==(const BulletList&) const = default;
    };
    /// The numbers of the source are not kept: the items count from 1.
    struct NumberedList {
        QStringList items;
        bool operator==(const NumberedList&) const = default;
    };
    struct CodeBlock {
        QString text; ///< the lines as they came
        bool operator==(const CodeBlock&) const = default;
    };
    struct Table {
        QStringList header;
        std::vector<QStringList> rows; ///< each as long as it came: neither padded nor cut to the header
        bool operator==(const Table&) const = default;
    };
    struct Blockquote {
        QString text;
        bool operator==(const Blockquote&) const = default;
    };
    using Content = std::variant<Heading, Paragraph, BulletList, NumberedList, CodeBlock, Table, Blockquote>;

    Content content;
    bool operator==(const MarkdownBlock&) const = default;
};
