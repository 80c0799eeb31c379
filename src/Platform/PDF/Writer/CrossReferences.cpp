#include "CrossReferences.h"

#include "PdfValues.h"

namespace {

constexpr int positionBytes = 5;
constexpr int detailBytes = 2;
constexpr int rowBytes = 1 + positionBytes + detailBytes;
constexpr int upPredictor = 12; // each byte of a row less the byte above it, as PNG has it

void appendNumber(QByteArray& bytes, qint64 number, int count) {
    for (int shift = (count - 1) * 8; shift >= 0; shift -= 8)
        bytes += char((number >> shift) & 0xFF);
}

/// Rows below one another are alike, so that their differences pack to a fraction.
QByteArray differences(const QByteArray& rows) {
    constexpr char up = 2;
    QByteArray result;
    result.reserve(rows.size() + rows.size() / rowBytes);
    for (qsizetype i = 0; i < rows.size(); ++i) {
        if (i % rowBytes == 0)
            result += up;
        result += char(rows[i] - (i < rowBytes ? 0 : rows[i - rowBytes]));
    }
    return result;
}

} // namespace

QPDFObjectHandle CrossReferences::plainTrailer(QPDF& pdf) {
    QPDFObjectHandle trailer = pdf.getTrailer().shallowCopy();
    for (const char* key : {"/Size", "/Prev", "/XRefStm", "/Type", "/W", "/Index", "/Length", "/Filter", "/DecodeParms",
                            "/F", "/FFilter", "/FDecodeParms", "/DL"})
        trailer.removeKey(key);
    return trailer;
}

void CrossReferences::setIds(QPDFObjectHandle trailer, const QByteArray& fingerprint) {
    QPDFObjectHandle changing = QPDFObjectHandle::newString(fingerprint.toStdString());
    QPDFObjectHandle ids = trailer.getKey("/ID");
    QPDFObjectHandle permanent =
        ids.isArray() && ids.getArrayNItems() == 2 && ids.getArrayItem(0).isString() ? ids.getArrayItem(0) : changing;
    trailer.replaceKey("/ID", QPDFObjectHandle::newArray({permanent, changing}));
}

QByteArray CrossReferences::streamObject(const Places& places, int number, QPDFObjectHandle trailer) {
    QByteArray rows;
    QPDFObjectHandle index = QPDFObjectHandle::newArray();
    forEachRun(places, [&](auto entry, int count) {
        index.appendItem(QPDFObjectHandle::newInteger(entry->first));
        index.appendItem(QPDFObjectHandle::newInteger(count));
        for (; count > 0; --count, ++entry) {
            const Place& place = entry->second;
            rows += char(place.kind);
            appendNumber(rows, place.position, positionBytes);
            appendNumber(rows, place.detail, detailBytes);
        }
    });
    const QByteArray packed = qCompress(differences(rows)).mid(4); // Qt puts the length before the zlib data
    QPDFObjectHandle parameters = QPDFObjectHandle::newDictionary();
    parameters.replaceKey("/Columns", QPDFObjectHandle::newInteger(rowBytes));
    parameters.replaceKey("/Predictor", QPDFObjectHandle::newInteger(upPredictor));
    trailer.replaceKey("/Type", PdfValues::name("XRef"));
    trailer.replaceKey("/W", PdfValues::numbers({1, positionBytes, detailBytes}));
    trailer.replaceKey("/Index", index);
    trailer.replaceKey("/Filter", PdfValues::name("FlateDecode"));
    trailer.replaceKey("/DecodeParms", parameters);
    trailer.replaceKey("/Length", QPDFObjectHandle::newInteger(packed.size()));
    return QByteArray::number(number) + " 0 obj\n" + QByteArray::fromStdString(trailer.unparse()) + "\nstream\n" +
           packed + "\nendstream\nendobj\n";
}
