#include "OfficeFormat.h"

#include "CompoundFile.h"
#include "ZipPackage.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

namespace {

constexpr quint64 largestUnpacked = quint64(1) << 30U; // bytes
constexpr qint64 looked = 8192;                        // bytes at the start of a file that tell what text it is

using Component = OfficeComponent;

OfficeFormat format(Component component, const char* suffix, const char* filter) {
    return {component, QString::fromLatin1(suffix), QString::fromLatin1(filter)};
}

/// Apple's formats are told from each other by the name alone.
std::optional<OfficeFormat> ofApple(const QString& suffix) {
    if (suffix == u"pages")
        return format(Component::writer, "pages", "Apple Pages");
    if (suffix == u"numbers")
        return format(Component::calc, "numbers", "Apple Numbers");
    if (suffix == u"key")
        return format(Component::impress, "key", "Apple Keynote");
    return std::nullopt;
}

std::optional<OfficeFormat> ofPackage(ZipPackage& package, const QString& suffix) {
    if (package.isEncrypted() || package.unpackedSize() > largestUnpacked)
        return std::nullopt;
    if (package.contains("[Content_Types].xml")) {
        if (package.containsFolder("word"))
            return format(Component::writer, "docx", "MS Word 2007 XML");
        if (package.contains("xl/workbook.bin"))
            return format(Component::calc, "xlsb", "Calc MS Excel 2007 Binary");
        if (package.containsFolder("xl"))
            return format(Component::calc, "xlsx", "Calc MS Excel 2007 XML");
        if (package.containsFolder("ppt"))
            return format(Component::impress, "pptx", "Impress MS PowerPoint 2007 XML");
        return std::nullopt;
    }
    const QByteArray type = package.read("mimetype", 256).value_or(QByteArray());
    const QByteArray open = "application/vnd.oasis.opendocument.";
    if (type.startsWith(open + "text"))
        return format(Component::writer, "odt", "writer8");
    if (type.startsWith(open + "spreadsheet"))
        return format(Component::calc, "ods", "calc8");
    if (type.startsWith(open + "presentation"))
        return format(Component::impress, "odp", "impress8");
    for (const char* member : {"index.xml", "index.xml.gz", "index.apxl", "index.apxl.gz", "Index.zip"}) {
        if (package.contains(member))
            return ofApple(suffix);
    }
    return package.containsFolder("Index") ? ofApple(suffix) : std::nullopt;
}

std::optional<OfficeFormat> ofCompoundFile(CompoundFile& file) {
    if (file.contains(QStringLiteral("WordDocument"))) {
        const QByteArray start = file.beginning(QStringLiteral("WordDocument"));
        constexpr quint16 protectedBit = 0x100;
        constexpr quint16 firstOf97 = 0xc1;
        if (start.size() >= 12 && qFromLittleEndian<quint16>(start.constData() + 10) & protectedBit)
            return std::nullopt;
        const bool is97 = start.size() < 4 || qFromLittleEndian<quint16>(start.constData() + 2) >= firstOf97;
        return format(Component::writer, "doc", is97 ? "MS Word 97" : "MS WinWord 6.0");
    }
    if (file.contains(QStringLiteral("Workbook")))
        return format(Component::calc, "xls", "MS Excel 97");
    if (file.contains(QStringLiteral("Book")))
        return format(Component::calc, "xls", "MS Excel 95");
    if (file.contains(QStringLiteral("PowerPoint Document")) && !file.contains(QStringLiteral("EncryptedSummary")))
        return format(Component::impress, "ppt", "MS PowerPoint 97");
    return std::nullopt; // a protected document of today is such a file, too
}

std::optional<OfficeFormat> ofText(QByteArray start, const QString& suffix) {
    if (start.startsWith("{\\rtf"))
        return format(Component::writer, "rtf", "Rich Text Format");
    if (start.startsWith("\xef\xbb\xbf"))
        start.remove(0, 3);
    start = start.trimmed().toLower();
    if (start.startsWith("<?xml")) {
        if (start.contains("urn:schemas-microsoft-com:office:spreadsheet"))
            return format(Component::calc, "xml", "MS Excel 2003 XML");
        if (start.contains("http://schemas.microsoft.com/office/word/2003/wordml"))
            return format(Component::writer, "xml", "MS Word 2003 XML");
    }
    const bool isPage = start.startsWith("<!doctype html") || start.startsWith("<html") ||
                        ((start.startsWith("<?xml") || start.startsWith("<!--")) && start.contains("<html"));
    if (isPage && suffix == u"doc")
        return format(Component::writer, "html", "HTML (StarWriter)");
    if (isPage && suffix == u"xls")
        return format(Component::calc, "html", "HTML (StarCalc)");
    return std::nullopt;
}

std::optional<Component> componentFor(const QString& suffix) {
    if (suffix == u"doc" || suffix == u"docx" || suffix == u"rtf" || suffix == u"pages")
        return Component::writer;
    if (suffix == u"xls" || suffix == u"xlsx" || suffix == u"numbers")
        return Component::calc;
    if (suffix == u"ppt" || suffix == u"pptx" || suffix == u"key")
        return Component::impress;
    return std::nullopt;
}

} // namespace

std::optional<OfficeFormat> OfficeFormat::of(const QString& path) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    const std::optional<Component> expected = componentFor(suffix);
    QFile file(path);
    if (!expected || !QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    std::optional<OfficeFormat> found;
    if (const auto package = ZipPackage::open(path))
        found = ofPackage(*package, suffix);
    else if (const auto compound = CompoundFile::open(path))
        found = ofCompoundFile(*compound);
    else
        found = ofText(file.read(looked), suffix);
    return found && found->component == *expected ? found : std::nullopt;
}
