#pragma once

#include <QString>

#include <optional>
#include <vector>

/// What a file calls its pages (ISO 32000-1, 12.4.2): "iv", "12", "A-3". A value that any thread may read.
class PageLabels {
public:
    enum class Style { none, decimal, upperRoman, lowerRoman, upperLetters, lowerLetters };

    /// A prefix and, in every style but `none`, a number of 1 or more.
    struct Label {
        Style style = Style::decimal;
        QString prefix = {};
        int number = 1;

        /// As it is shown. Numbers that would be too long in letters or roman numerals are shown as they are.
        [[nodiscard]] QString text() const;
        /// The label of the page after.
        [[nodiscard]] Label next() const { return {style, prefix, style == Style::none ? number : number + 1}; }
        bool operator==(const Label&) const = default;
    };

    /// From its first page on, zero-based, to that of the next one.
    struct Range {
        int firstPage = 0;
        Label first;
    };

    PageLabels() = default;
    /// In any order; of two that begin with the same page the later one counts.
    explicit PageLabels(std::vector<Range> ranges);

    /// None before the first range, and in a file without labels.
    [[nodiscard]] std::optional<Label> of(int page) const;

private:
    std::vector<Range> m_ranges; // ascending
};
