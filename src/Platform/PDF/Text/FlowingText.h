#pragma once

#include <QString>

#include <vector>

class PageText;

/// Text of a page as it was typed, for what leaves the page: copied, spoken or asked about. A word that was hyphenated
/// at the end of a line is whole again, with the rest of the next line behind it; all else is the page's own text.
///
/// A hyphen goes when the word goes on with a small letter. It stays, with the word joined, where the page has the word
/// with a hyphen elsewhere, where it has several of them, or where it is part of an address. Where even joining would
/// be a guess ("Haupt- / und Nebensatz", program text) the line end stays as well. An immutable value; any thread.
class FlowingText {
public:
    /// Of the range [start, end) of the page's text, whose ends are clamped to it.
    FlowingText(const PageText& page, int start, int end);
    /// Of the whole page.
    explicit FlowingText(const PageText& page);

    [[nodiscard]] const QString& string() const { return m_string; }

    /// The offset in the page's text of the character at an offset of `string`.
    [[nodiscard]] int pageOffset(int offset) const;
    /// The offset in `string` for one in the page's text. What was left out is where the word goes on.
    [[nodiscard]] int offsetOf(int pageOffset) const;

private:
    /// What was left out of the page's text, as a range of it.
    struct Gap {
        int start = 0;
        int end = 0;
    };

    QString m_string;
    int m_start = 0;
    std::vector<Gap> m_gaps; // ascending
};
