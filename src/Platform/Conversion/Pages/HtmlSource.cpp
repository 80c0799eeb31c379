#include "HtmlSource.h"

#include "HtmlTag.h"
#include "LetterPages.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>

#include <optional>

namespace {

/// Elements without an end.
bool isVoid(const QString& name) {
    static const QSet<QString> names{QStringLiteral("area"),  QStringLiteral("base"),   QStringLiteral("br"),
                                     QStringLiteral("col"),   QStringLiteral("embed"),  QStringLiteral("hr"),
                                     QStringLiteral("img"),   QStringLiteral("input"),  QStringLiteral("link"),
                                     QStringLiteral("meta"),  QStringLiteral("param"),  QStringLiteral("source"),
                                     QStringLiteral("track"), QStringLiteral("keygen"), QStringLiteral("wbr")};
    return names.contains(name);
}

/// Elements whose content is no HTML up to their end.
bool isRawText(const QString& name) {
    static const QSet<QString> names{QStringLiteral("script"),   QStringLiteral("style"),   QStringLiteral("title"),
                                     QStringLiteral("textarea"), QStringLiteral("iframe"),  QStringLiteral("xmp"),
                                     QStringLiteral("noembed"),  QStringLiteral("noframes")};
    return names.contains(name);
}

bool isNeverShown(const HtmlTag& tag) {
    static const QSet<QString> names{QStringLiteral("script"), QStringLiteral("template"), QStringLiteral("iframe"),
                                     QStringLiteral("select"), QStringLiteral("datalist"), QStringLiteral("noembed"),
                                     QStringLiteral("video"),  QStringLiteral("audio"),    QStringLiteral("canvas"),
                                     QStringLiteral("input"),  QStringLiteral("noframes")};
    static const QRegularExpression hiding(QStringLiteral("display\\s*:\\s*none"),
                                           QRegularExpression::CaseInsensitiveOption);
    return names.contains(tag.name) || tag.has(QStringLiteral("hidden")) ||
           tag.attribute(QStringLiteral("style")).contains(hiding);
}

/// What Qt calls the elements that it would take for text in the line.
QString nameForQt(const QString& name) {
    static const QSet<QString> divisions{
        QStringLiteral("section"),  QStringLiteral("article"), QStringLiteral("header"),  QStringLiteral("footer"),
        QStringLiteral("nav"),      QStringLiteral("main"),    QStringLiteral("aside"),   QStringLiteral("figure"),
        QStringLiteral("details"),  QStringLiteral("summary"), QStringLiteral("form"),    QStringLiteral("figcaption"),
        QStringLiteral("fieldset"), QStringLiteral("legend"),  QStringLiteral("textarea")};
    static const QHash<QString, QString> others{{QStringLiteral("xmp"), QStringLiteral("pre")},
                                                {QStringLiteral("strike"), QStringLiteral("s")},
                                                {QStringLiteral("ins"), QStringLiteral("u")},
                                                {QStringLiteral("listing"), QStringLiteral("pre")}};
    return divisions.contains(name) ? QStringLiteral("div") : others.value(name, name);
}

/// Elements that start a line of their own, by their names for Qt.
bool isBlock(const QString& name) {
    static const QSet<QString> names{
        QStringLiteral("html"), QStringLiteral("body"),  QStringLiteral("div"),    QStringLiteral("p"),
        QStringLiteral("h1"),   QStringLiteral("h2"),    QStringLiteral("h3"),     QStringLiteral("h4"),
        QStringLiteral("h5"),   QStringLiteral("h6"),    QStringLiteral("ul"),     QStringLiteral("ol"),
        QStringLiteral("li"),   QStringLiteral("dl"),    QStringLiteral("dt"),     QStringLiteral("dd"),
        QStringLiteral("pre"),  QStringLiteral("table"), QStringLiteral("tr"),     QStringLiteral("td"),
        QStringLiteral("th"),   QStringLiteral("thead"), QStringLiteral("tbody"),  QStringLiteral("tfoot"),
        QStringLiteral("hr"),   QStringLiteral("br"),    QStringLiteral("center"), QStringLiteral("blockquote")};
    return names.contains(name);
}

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
public:
    explicit Simplifying(QStringView html) : m_rest(html) {}

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
        if (m_isBehindDivision)
            m_result += QStringLiteral("<div>");
        m_isInOwnDivision = m_isInOwnDivision || m_isBehindDivision;
        m_isBehindDivision = false;
    }

    void endLineBefore(const QString& element) {
        if (!isBlock(element))
            return;
        if (m_isInOwnDivision)
            m_result += QStringLiteral("</div>");
        m_isInOwnDivision = false;
        m_isBehindDivision = false;
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
            if (tag->name == QLatin1String("q"))
                m_result += QChar(0x201D);
            const QString name = nameForQt(tag->name);
            endLineBefore(name);
            m_result += QStringLiteral("</") + name + QLatin1Char('>');
            m_isBehindDivision = m_isBehindDivision || name == QLatin1String("div");
        } else {
            addElement(*tag, before);
        }
    }

    void addElement(HtmlTag& tag, QStringView start) {
        const bool isRaw = isRawText(tag.name);
        if (isNeverShown(tag)) {
            if (!isVoid(tag.name))
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
        tag.name = nameForQt(name);
        endLineBefore(tag.name);
        if (tag.name == QLatin1String("img"))
            startLine();
        m_result += tag.written();
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

    void skipContent(const QString& name) {
        for (int depth = 1; depth > 0 && !m_rest.isEmpty();) {
            m_rest = m_rest.mid(lengthTo(QLatin1Char('<')));
            if (m_rest.isEmpty())
                return;
            if (m_rest.startsWith(QStringLiteral("<!--"))) {
                skipBehind(QStringLiteral("-->"));
                continue;
            }
            const std::optional<HtmlTag> tag = HtmlTag::read(m_rest);
            if (!tag)
                m_rest = m_rest.mid(1);
            else if (tag->name == name)
                depth += tag->isEnd ? -1 : 1;
            else if (!tag->isEnd && isRawText(tag->name))
                takeRawText(tag->name);
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

    QStringView m_rest;
    QString m_result;
    bool m_isBehindDivision = false;
    bool m_isInOwnDivision = false; ///< in one that has been added
};

} // namespace

QString HtmlSource::simplified(QStringView html) {
    return Simplifying(html).run();
}
