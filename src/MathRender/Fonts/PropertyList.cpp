#include "PropertyList.h"

#include "QuilloAssert.h"

#include <QByteArray>
#include <QLocale>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace {

class ListReader {
public:
    explicit ListReader(const QByteArray& xml) : m_xml(xml) {}

    QVariantMap read() {
        if (!m_xml.readNextStartElement() || m_xml.name() != QLatin1String("plist"))
            fail(QStringLiteral("this is no property list"));
        if (!m_xml.readNextStartElement() || m_xml.name() != QLatin1String("dict"))
            fail(QStringLiteral("there is no dictionary"));
        QVariantMap result = dictionary(1);
        if (m_xml.readNextStartElement())
            fail(QStringLiteral("something follows the dictionary"));
        while (!m_xml.atEnd())
            m_xml.readNext();
        failOnXmlError();
        return result;
    }

private:
    /// Far more than a list of ours has, and far less than the stack takes.
    static constexpr int deepestNesting = 64;

    [[noreturn]] void fail(const QString& reason) const {
        throw PropertyListError(
            QStringLiteral("line %1: %2").arg(m_xml.lineNumber()).arg(m_xml.hasError() ? m_xml.errorString() : reason));
    }

    void failOnXmlError() const {
        if (m_xml.hasError())
            fail({});
    }

    QVariantMap dictionary(int depth) {
        QVariantMap result;
        while (m_xml.readNextStartElement()) {
            if (m_xml.name() != QLatin1String("key"))
                fail(QStringLiteral("a key is missing"));
            const QString key = text();
            if (!m_xml.readNextStartElement())
                fail(QStringLiteral("the key %1 has no value").arg(key));
            result.insert(key, value(depth + 1));
        }
        failOnXmlError();
        return result;
    }

    QVariantList array(int depth) {
        QVariantList result;
        while (m_xml.readNextStartElement())
            result.append(value(depth + 1));
        failOnXmlError();
        return result;
    }

    QVariant value(int depth) {
        if (depth > deepestNesting)
            fail(QStringLiteral("the list is nested too deeply"));
        const QStringView kind = m_xml.name();
        if (kind == QLatin1String("string"))
            return text();
        if (kind == QLatin1String("integer"))
            return number([](const QString& digits, bool& ok) { return digits.toLongLong(&ok); });
        if (kind == QLatin1String("real"))
            return number([](const QString& digits, bool& ok) { return digits.toDouble(&ok); });
        if (kind == QLatin1String("dict"))
            return dictionary(depth);
        if (kind == QLatin1String("array"))
            return array(depth);
        if (kind == QLatin1String("true") || kind == QLatin1String("false")) {
            const bool isTrue = kind == QLatin1String("true");
            text();
            return isTrue;
        }
        fail(QStringLiteral("%1 is no kind of value").arg(kind));
    }

    template <typename Convert>
    QVariant number(Convert convert) {
        const QString digits = text();
        bool ok = false;
        const auto converted = convert(digits, ok);
        if (!ok)
            fail(QStringLiteral("%1 is not a number").arg(digits));
        return converted;
    }

    QString text() {
        QString result = m_xml.readElementText();
        failOnXmlError();
        return result;
    }

    QXmlStreamReader m_xml;
};

void writeValue(QXmlStreamWriter& xml, const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::QString:
        xml.writeTextElement(QStringLiteral("string"), value.toString());
        return;
    case QMetaType::Int:
    case QMetaType::LongLong:
        xml.writeTextElement(QStringLiteral("integer"), QString::number(value.toLongLong()));
        return;
    case QMetaType::Double:
        xml.writeTextElement(QStringLiteral("real"),
                             QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest));
        return;
    case QMetaType::Bool:
        xml.writeEmptyElement(value.toBool() ? QStringLiteral("true") : QStringLiteral("false"));
        return;
    case QMetaType::QVariantList:
        xml.writeStartElement(QStringLiteral("array"));
        for (const QVariant& element : value.toList())
            writeValue(xml, element);
        xml.writeEndElement();
        return;
    case QMetaType::QVariantMap: {
        xml.writeStartElement(QStringLiteral("dict"));
        const QVariantMap dictionary = value.toMap();
        for (auto entry = dictionary.cbegin(); entry != dictionary.cend(); ++entry) {
            xml.writeTextElement(QStringLiteral("key"), entry.key());
            writeValue(xml, entry.value());
        }
        xml.writeEndElement();
        return;
    }
    default:
        QUILLO_ASSERT(false, "A property list holds only the kinds of values that it knows.");
    }
}

} // namespace

QVariantMap PropertyList::fromXml(const QByteArray& xml) {
    return ListReader(xml).read();
}

QByteArray PropertyList::toXml(const QVariantMap& dictionary) {
    QByteArray result;
    QXmlStreamWriter xml(&result);
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(0);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("plist"));
    xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1.0"));
    writeValue(xml, dictionary);
    xml.writeEndElement();
    xml.writeEndDocument();
    return result;
}
