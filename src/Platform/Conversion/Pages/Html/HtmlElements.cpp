#include "HtmlElements.h"

#include <QHash>
#include <QSet>

bool HtmlElements::isVoid(const QString& name) {
    static const QSet<QString> names{QStringLiteral("area"),  QStringLiteral("base"),   QStringLiteral("br"),
                                     QStringLiteral("col"),   QStringLiteral("embed"),  QStringLiteral("hr"),
                                     QStringLiteral("img"),   QStringLiteral("input"),  QStringLiteral("link"),
                                     QStringLiteral("meta"),  QStringLiteral("param"),  QStringLiteral("source"),
                                     QStringLiteral("track"), QStringLiteral("keygen"), QStringLiteral("wbr")};
    return names.contains(name);
}

bool HtmlElements::isRawText(const QString& name) {
    static const QSet<QString> names{QStringLiteral("script"),   QStringLiteral("style"),   QStringLiteral("title"),
                                     QStringLiteral("textarea"), QStringLiteral("iframe"),  QStringLiteral("xmp"),
                                     QStringLiteral("noembed"),  QStringLiteral("noframes")};
    return names.contains(name);
}

bool HtmlElements::isNeverShown(const QString& name) {
    static const QSet<QString> names{QStringLiteral("script"), QStringLiteral("template"), QStringLiteral("iframe"),
                                     QStringLiteral("select"), QStringLiteral("datalist"), QStringLiteral("noembed"),
                                     QStringLiteral("video"),  QStringLiteral("audio"),    QStringLiteral("canvas"),
                                     QStringLiteral("input"),  QStringLiteral("noframes")};
    return names.contains(name);
}

QString HtmlElements::nameForQt(const QString& name) {
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

bool HtmlElements::isBlock(const QString& name) {
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

bool HtmlElements::needsNoEnd(const QString& name) {
    static const QSet<QString> names{QStringLiteral("p"),    QStringLiteral("li"),    QStringLiteral("dt"),
                                     QStringLiteral("dd"),   QStringLiteral("tr"),    QStringLiteral("td"),
                                     QStringLiteral("th"),   QStringLiteral("thead"), QStringLiteral("tbody"),
                                     QStringLiteral("tfoot")};
    return names.contains(name);
}

bool HtmlElements::isEndedBy(const QString& name, const QString& next) {
    static const QHash<QString, QSet<QString>> others{
        {QStringLiteral("dt"), {QStringLiteral("dd")}},
        {QStringLiteral("dd"), {QStringLiteral("dt")}},
        {QStringLiteral("td"), {QStringLiteral("th"), QStringLiteral("tr"), QStringLiteral("tbody")}},
        {QStringLiteral("th"), {QStringLiteral("td"), QStringLiteral("tr"), QStringLiteral("tbody")}},
        {QStringLiteral("tr"), {QStringLiteral("tbody"), QStringLiteral("tfoot")}}};
    if (name == QLatin1String("p"))
        return isBlock(nameForQt(next)) && next != QLatin1String("br");
    return needsNoEnd(name) && (name == next || others.value(name).contains(next));
}
