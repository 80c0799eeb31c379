#include "HtmlSource.h"

#include "HtmlElements.h"
#include "HtmlHiding.h"
#include "HtmlNumbers.h"
#include "HtmlTag.h"
#include "LetterPages.h"

#include <QRegularExpression>

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

namespace {

/// A picture's width or height, in pixels or in a share of the page, from its style: Qt reads attributes in pixels.
void setSize(HtmlTag& picture, const QString& side, qreal whole) {
    const QRegularExpression inStyle(QStringLiteral("(?:^|[;\\s])") + side +
                                     QStringLiteral("\\s*:\\s*([\\d.]+)\\s*(px|%)"));
    static const QRegularExpression inAttribute(QStringLiteral("^\\s*([\\d.]+)\\s*(px|%|)"));
    const QRegularExpressionMatch style = inStyle.match(picture.attribute(QStringLiteral("style")));
    const QRegularExpressionMatch match = style.hasMatch() ? style : inAttribute.match(picture.attribute(side));
    if (!match.hasMatch())
        return;
    const double value = match.captured(1).toDouble();
    const bool isShare = match.captured(2) == QLatin1Char('%');
    picture.set(side, QString::number(isShare ? value / 100 * whole : value));
}

class Simplifying {
    struct OpenList {
        QString name;
        std::optional<int> start; ///< the number of its first item, until that comes
    };

public:
    explicit Simplifying(QStringView html) : m_rest(html), m_hiding(html) {}

    QString run() {
        while (!m_rest.isEmpty()) {
            const qsizetype text = lengthTo(QLatin1Char('<'));
            addText(m_rest.left(text));
            m_rest = m_rest.mid(text);
            if (!m_rest.isEmpty())
                addMarkup();
        }
        return m_result;
    }

private:
    void addText(QStringView text) {
        if (!text.trimmed().isEmpty())
            startLine();
        m_result += text;
    }

    /// Text right behind a division: Qt would go on in that one's last line.
    void startLine() {
        if (m_number)
            m_result += HtmlNumbers::marker(*m_number);
        m_number.reset();
        if (m_isBehindDivision)
            m_result += QStringLiteral("<div>");
        m_isInOwnDivision = m_isInOwnDivision || m_isBehindDivision;
        m_isBehindDivision = false;
    }

    void endLineBefore(const QString& element) {
        if (!HtmlElements::isBlock(element))
            return;
        if (m_isInOwnDivision)
            m_result += QStringLiteral("</div>");
        m_isInOwnDivision = false;
        m_isBehindDivision = false;
    }

    /// Keeps what an ordered list says of its numbers, which Qt doesn't read.
    void count(const HtmlTag& tag) {
        const bool isList = tag.name == QLatin1String("ol") || tag.name == QLatin1String("ul");
        const auto number = [&tag](const QString& attribute) {
            bool isNumber = false;
            const int value = tag.attribute(attribute).trimmed().toInt(&isNumber);
            return isNumber ? std::optional(value) : std::nullopt;
        };
        if (isList && tag.isEnd) {
            const auto opened = std::find_if(m_lists.rbegin(), m_lists.rend(),
                                             [&tag](const OpenList& list) { return list.name == tag.name; });
            if (opened != m_lists.rend())
                m_lists.erase(std::prev(opened.base()), m_lists.end());
        } else if (isList && m_lists.size() < deepest) {
            m_lists.push_back(
                {tag.name, tag.name == QLatin1String("ol") ? number(QStringLiteral("start")) : std::nullopt});
        } else if (tag.name == QLatin1String("li") && !tag.isEnd && !m_lists.empty()) {
            const auto start = std::exchange(m_lists.back().start, std::nullopt);
            const auto value = number(QStringLiteral("value"));
            m_number = m_lists.back().name == QLatin1String("ol") ? (value ? value : start) : std::nullopt;
        }
    }

    [[nodiscard]] qsizetype lengthTo(QChar character) const {
        const qsizetype length = m_rest.indexOf(character);
        return length < 0 ? m_rest.size() : length;
    }

    /// Leaves out all up to and with `end`, or to the end of the document.
    void skipBehind(const QString& end) {
        const qsizetype found = m_rest.indexOf(end);
        m_rest = found < 0 ? QStringView() : m_rest.mid(found + end.size());
    }

    void addMarkup() {
        if (m_rest.startsWith(QStringLiteral("<!--")))
            return skipBehind(QStringLiteral("-->"));
        if (m_rest.startsWith(QStringLiteral("<!")) || m_rest.startsWith(QStringLiteral("<?")))
            return skipBehind(QStringLiteral(">"));
        const QStringView before = m_rest;
        std::optional<HtmlTag> tag = HtmlTag::read(m_rest);
        if (!tag) {
            addText(QStringLiteral("&lt;"));
            m_rest = m_rest.mid(1);
        } else if (tag->isEnd) {
            count(*tag);
            if (tag->name == QLatin1String("q"))
                m_result += QChar(0x201D);
            const QString name = HtmlElements::nameForQt(tag->name);
            endLineBefore(name);
            m_result += QStringLiteral("</") + name + QLatin1Char('>');
            m_isBehindDivision = m_isBehindDivision || name == QLatin1String("div");
        } else {
            addElement(*tag, before);
        }
    }

    void addElement(HtmlTag& tag, QStringView start) {
        const bool isRaw = HtmlElements::isRawText(tag.name);
        if (HtmlElements::isNeverShown(tag.name) || m_hiding.hides(tag)) {
            if (!HtmlElements::isVoid(tag.name))
                isRaw ? void(takeRawText(tag.name)) : skipContent(tag.name);
            return;
        }
        if (tag.name == QLatin1String("svg")) {
            skipContent(tag.name);
            return addDrawing(tag, start.left(start.size() - m_rest.size()));
        }
        if (tag.name == QLatin1String("img")) {
            setSize(tag, QStringLiteral("width"), LetterPages::frame.width());
            setSize(tag, QStringLiteral("height"), LetterPages::frame.height());
        }
        const QString name = tag.name;
        if (name == QLatin1String("link") && !tag.has(QStringLiteral("type"))) // Qt takes no other for a style sheet
            tag.set(QStringLiteral("type"), QStringLiteral("text/css"));
        tag.name = HtmlElements::nameForQt(name);
        endLineBefore(tag.name);
        if (tag.name == QLatin1String("img"))
            startLine();
        m_result += tag.written();
        count(tag);
        if (name == QLatin1String("link")) // which otherwise takes the whole document in, unless it is in the head
            m_result += QStringLiteral("</link>");
        if (name == QLatin1String("q"))
            m_result += QChar(0x201C);
        if (!isRaw)
            return;
        QString text = takeRawText(name).toString();
        if (name != QLatin1String("style"))
            text.replace(QLatin1Char('<'), QStringLiteral("&lt;"));
        m_result += text + QStringLiteral("</") + tag.name + QLatin1Char('>');
        m_isBehindDivision = tag.name == QLatin1String("div");
    }

    /// What is in front of the end of the element, behind which the rest starts then.
    QStringView takeRawText(const QString& name) {
        const QString end = QStringLiteral("</") + name;
        const qsizetype found = m_rest.indexOf(end, 0, Qt::CaseInsensitive);
        const QStringView text = found < 0 ? m_rest : m_rest.left(found);
        m_rest = found < 0 ? QStringView() : m_rest.mid(found);
        skipBehind(QStringLiteral(">"));
        return text;
    }

    /// Up to the end of an element, which often has no tag.
    void skipContent(const QString& name) {
        std::vector<QString> open; // elements within it
        while (!m_rest.isEmpty()) {
            m_rest = m_rest.mid(lengthTo(QLatin1Char('<')));
            if (m_rest.startsWith(QStringLiteral("<!--"))) {
                skipBehind(QStringLiteral("-->"));
                continue;
            }
            const QStringView before = m_rest;
            const std::optional<HtmlTag> tag = m_rest.isEmpty() ? std::nullopt : HtmlTag::read(m_rest);
            if (!tag) {
                m_rest = m_rest.mid(std::min<qsizetype>(1, m_rest.size()));
            } else if (tag->isEnd) {
                const auto opened = std::find(open.rbegin(), open.rend(), tag->name);
                if (opened != open.rend()) {
                    open.erase(std::prev(opened.base()), open.end());
                } else if (tag->name == name) {
                    return;
                } else if (HtmlElements::needsNoEnd(name) &&
                           HtmlElements::isBlock(HtmlElements::nameForQt(tag->name))) { // of what it stands in
                    m_rest = before;
                    return;
                }
            } else {
                while (!open.empty() && HtmlElements::isEndedBy(open.back(), tag->name))
                    open.pop_back();
                if (std::none_of(open.begin(), open.end(), HtmlElements::isBlock) &&
                    HtmlElements::isEndedBy(name, tag->name)) {
                    m_rest = before;
                    return;
                }
                if (HtmlElements::isRawText(tag->name))
                    takeRawText(tag->name);
                else if (!HtmlElements::isVoid(tag->name) && open.size() < deepest)
                    open.push_back(tag->name);
            }
        }
    }

    void addDrawing(HtmlTag tag, QStringView source) {
        QStringView content = source;
        if (!HtmlTag::read(content))
            return;
        tag.set(QStringLiteral("xmlns"), QStringLiteral("http://www.w3.org/2000/svg"));
        tag.set(QStringLiteral("xmlns:xlink"), QStringLiteral("http://www.w3.org/1999/xlink"));
        HtmlTag picture{QStringLiteral("img"), false, {}};
        for (auto& [name, value] : tag.attributes)
            if (name == QLatin1String("viewbox"))
                name = QStringLiteral("viewBox");
        picture.set(QStringLiteral("src"),
                    QStringLiteral("data:image/svg+xml;base64,") +
                        QString::fromLatin1((tag.written() + content.toString()).toUtf8().toBase64()));
        startLine();
        m_result += picture.written();
    }

    static constexpr std::size_t deepest = 60; ///< of elements that are followed; more are no work of a person

    QStringView m_rest;
    HtmlHiding m_hiding;
    std::vector<OpenList> m_lists; ///< from the outermost on
    std::optional<int> m_number;   ///< of the item that has begun, if its list doesn't count so far
    QString m_result;
    bool m_isBehindDivision = false;
    bool m_isInOwnDivision = false; ///< in one that has been added
};

} // namespace

QString HtmlSource::simplified(QStringView html) {
    return Simplifying(html).run();
}
