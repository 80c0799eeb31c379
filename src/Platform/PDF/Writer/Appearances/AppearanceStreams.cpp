#include "AppearanceStreams.h"

#include "PdfValues.h"

namespace {

QByteArray point(const QPainterPath::Element& element) {
    return PdfValues::real(element.x) + ' ' + PdfValues::real(element.y) + ' ';
}

QByteArray pathOperators(const QPainterPath& path) {
    QByteArray operators;
    QPointF start;
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element element = path.elementAt(i);
        if (element.isMoveTo()) {
            start = element;
            operators += point(element) + "m\n";
            const bool alone = i + 1 == path.elementCount() || path.elementAt(i + 1).isMoveTo();
            if (alone) // a dot; a path of one point paints nothing
                operators += point(element) + "l\n";
            continue;
        }
        if (element.isCurveTo() && i + 2 < path.elementCount()) {
            operators += point(element) + point(path.elementAt(i + 1)) + point(path.elementAt(i + 2)) + "c\n";
            i += 2;
        } else {
            operators += point(element) + "l\n";
        }
        const bool last = i + 1 == path.elementCount() || path.elementAt(i + 1).isMoveTo();
        const QPainterPath::Element end = path.elementAt(i);
        const bool isDot = i > 0 && path.elementAt(i - 1).isMoveTo();
        if (last && !isDot && QPointF(end) == start)
            operators += "h\n";
    }
    return operators;
}

QByteArray colorOperator(const QColor& color, const char* name) {
    const QColor rgb = color.toRgb();
    return PdfValues::real(rgb.redF()) + ' ' + PdfValues::real(rgb.greenF()) + ' ' + PdfValues::real(rgb.blueF()) +
           ' ' + name + '\n';
}

/// Selects the graphics state for the part's opacity and for the way the drawing blends.
QByteArray stateOperator(const AnnotationDrawing& drawing, const AnnotationDrawing::Part& part,
                         QPDFObjectHandle resources) {
    const float fill = part.fill ? part.fill->alphaF() : 1;
    const float stroke = part.stroke ? part.stroke->alphaF() : 1;
    if (fill >= 1 && stroke >= 1 && !drawing.multiplies)
        return {};
    QPDFObjectHandle state = QPDFObjectHandle::newDictionary();
    state.replaceKey("/ca", PdfValues::number(double(fill)));
    state.replaceKey("/CA", PdfValues::number(double(stroke)));
    if (drawing.multiplies)
        state.replaceKey("/BM", PdfValues::name("Multiply"));
    if (!resources.hasKey("/ExtGState"))
        resources.replaceKey("/ExtGState", QPDFObjectHandle::newDictionary());
    int suffix = 0;
    const std::string name = resources.getUniqueResourceName("/GS", suffix);
    resources.getKey("/ExtGState").replaceKey(name, state);
    return QByteArray::fromStdString(name) + " gs\n";
}

} // namespace

QByteArray AppearanceStreams::paintOperators(const AnnotationDrawing& drawing, QPDFObjectHandle resources) {
    QByteArray operators;
    for (const AnnotationDrawing::Part& part : drawing.parts) {
        if (part.path.isEmpty() || !(part.fill || part.stroke))
            continue;
        operators += "q\n" + stateOperator(drawing, part, resources);
        if (part.fill)
            operators += colorOperator(*part.fill, "rg");
        if (part.stroke) {
            operators += colorOperator(*part.stroke, "RG") + PdfValues::real(part.lineWidth) + " w\n";
            if (part.cap == Qt::RoundCap)
                operators += "1 J\n";
            if (part.join == Qt::RoundJoin)
                operators += "1 j\n";
            if (!part.dashes.empty())
                operators += QByteArray::fromStdString(PdfValues::numbers(part.dashes).unparse()) + " 0 d\n";
        }
        const bool evenOdd = part.path.fillRule() == Qt::OddEvenFill;
        operators += pathOperators(part.path);
        if (part.fill && part.stroke)
            operators += evenOdd ? "B*\n" : "B\n";
        else if (part.fill)
            operators += evenOdd ? "f*\n" : "f\n";
        else
            operators += "S\n";
        operators += "Q\n";
    }
    return operators;
}

QPDFObjectHandle AppearanceStreams::form(ObjectStore& objects, const AnnotationDrawing& drawing, const QRectF& box) {
    QPDFObjectHandle resources = QPDFObjectHandle::newDictionary();
    const QByteArray operators = paintOperators(drawing, resources);
    return form(objects, operators, resources, box);
}

QPDFObjectHandle AppearanceStreams::form(ObjectStore& objects, const QByteArray& operators, QPDFObjectHandle resources,
                                         const QRectF& box, int turn) {
    QPDFObjectHandle dictionary = QPDFObjectHandle::newDictionary();
    dictionary.replaceKey("/Type", PdfValues::name("XObject"));
    dictionary.replaceKey("/Subtype", PdfValues::name("Form"));
    dictionary.replaceKey("/BBox", PdfValues::rect(box));
    dictionary.replaceKey("/Resources", resources);
    setTurn(dictionary, turn);
    return objects.addStream(dictionary, operators);
}

void AppearanceStreams::setTurn(QPDFObjectHandle form, int turn) {
    const int quarters = ((turn / 90) % 4 + 4) % 4;
    if (quarters == 0)
        return;
    static const double cosines[] = {1, 0, -1, 0};
    static const double sines[] = {0, 1, 0, -1};
    const double c = cosines[quarters];
    const double s = sines[quarters];
    form.replaceKey("/Matrix", PdfValues::numbers({c, s, -s, c, 0, 0}));
}
