#include "FormFixture.h"

namespace {

/// A widget of a field of its own, without an appearance.
void addField(PdfFixture& fixture, const char* name, const QRectF& rect, const QByteArray& keys, int rotation) {
    const QByteArray look = "/MK << /BC [0.4 0.4 0.4] /R " + QByteArray::number(rotation) + " >>";
    const QByteArray field = fixture.addAnnotation(0, "<< /Type /Annot /Subtype /Widget /F 4 /T (" + QByteArray(name) +
                                                          ") /Rect " + PdfFixture::rectArray(rect) +
                                                          " /DA (/Helv 10 Tf 0 g) " + look + ' ' + keys + " >>");
    fixture.appendToArray(fixture.form(), "/Fields", field);
}

} // namespace

QByteArray FormFixture::bytes(int rotation) {
    PdfFixture fixture;
    fixture.addPage({QStringLiteral("A form to be filled")});
    fixture.addPage({QStringLiteral("Nothing to fill here")});
    fixture.addPage({QStringLiteral("The last page")});
    fixture.setPageKey(0, "/Rotate", QByteArray::number(rotation));
    const auto add = [&](const char* name, const QRectF& rect, const QByteArray& keys) {
        addField(fixture, name, rect, keys, rotation);
    };
    add("name", name, "/FT /Tx /Ff 2 /TU (Your name)");
    add("code", code, "/FT /Tx /Ff 16777216 /MaxLen 5");
    fixture.addLink(0, link, 2);
    add("secret", secret, "/FT /Tx /Ff 8192");
    add("amount", amount, "/FT /Tx /Q 2 /MaxLen 6");
    add("notes", notes, "/FT /Tx /Ff 4096 /MaxLen 40");
    add("fixed", fixed, "/FT /Tx /Ff 1 /V (unchangeable)");
    fixture.addCheckBox(0, QStringLiteral("agree"), agree, false);
    fixture.addRadioGroup(QStringLiteral("size"), {{0, small, "small"}, {0, large, "large"}}, "Off");
    add("color", color, "/FT /Ch /Ff 131072 /V (red) /Opt [[(red) (Red)] [(green) (Green)] [(blue) (Blue)]]");
    add("city", city, "/FT /Ch /Ff 393216 /Opt [(Rome) (Oslo)]");
    add("fruit", fruit, "/FT /Ch /Ff 2097152 /Opt [(apple) (banana) (cherry) (date)]");
    add("send", send, "/FT /Btn /Ff 65536 /A << /S /JavaScript /JS (app.alert\\(1\\)) >>");
    fixture.addTextField(2, QStringLiteral("remark"), remark, QString());
    return fixture.bytes();
}

QByteArray FormFixture::many(int pages, int count) {
    PdfFixture fixture;
    constexpr int columns = 25;
    for (int page = 0; page < pages; ++page) {
        fixture.addPage({QStringLiteral("Page %1").arg(page + 1)});
        for (int i = 0; i < count; ++i) {
            const int rows = 1 + (count - 1) / columns;
            const int row = i / columns;
            const double height = 750.0 / rows;
            const QRectF rect(20 + (i % columns) * 23, 20 + row * height, 20, std::min(height * 0.8, 16.0));
            const QString fieldName = QStringLiteral("field%1x%2").arg(page).arg(i);
            if (i % 2 == 0)
                fixture.addTextField(page, fieldName, rect, QString());
            else
                fixture.addCheckBox(page, fieldName, rect, false);
        }
    }
    return fixture.bytes();
}
