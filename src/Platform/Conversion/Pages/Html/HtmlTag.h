#pragma once

#include <QString>
#include <QStringView>

#include <optional>
#include <utility>
#include <vector>

/// One tag of an HTML document.
struct HtmlTag {
    QString name; ///< in lower case
    bool isEnd = false;
    std::vector<std::pair<QString, QString>> attributes; ///< names in lower case; values as written, without quotes

    /// Reads the tag at the start of `html` and moves `html` behind it. None, with `html` unchanged, where its "<" is
    /// just a character.
    [[nodiscard]] static std::optional<HtmlTag> read(QStringView& html);

    [[nodiscard]] QString attribute(const QString& attributeName) const;
    [[nodiscard]] bool has(const QString& attributeName) const;
    void set(const QString& attributeName, const QString& value);

    /// The tag as HTML, with its values in double quotes.
    [[nodiscard]] QString written() const;
};
