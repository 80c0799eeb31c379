#include "AppearanceRecorder.h"

#include "AppearanceStreams.h"
#include "ObjectCopier.h"
#include "PDFAnnotation.h"
#include "PdfValues.h"

#include <qpdf/QPDFPageDocumentHelper.hh>

#include <QPageSize>
#include <QPdfWriter>

#include <cmath>

namespace {

/// Dots per inch of the recording: text is laid out as finely as on a good printer.
constexpr int resolution = 1200;
constexpr double dotsPerPoint = resolution / 72.0;

/// Pages are measured in whole points, so a page may be larger than what is recorded on its lower left.
QSize pageSizeFor(QSizeF size) {
    return {std::clamp(int(std::ceil(size.width())), 1, 14400), std::clamp(int(std::ceil(size.height())), 1, 14400)};
}

/// True when the operators show anything.
bool paints(QPDFObjectHandle page) {
    class Watcher : public QPDFObjectHandle::ParserCallbacks {
    public:
        void handleObject(QPDFObjectHandle object) override {
            static const std::set<std::string> painting{"S",  "s",  "f",  "F",  "f*", "B", "B*", "b",
                                                        "b*", "sh", "Do", "Tj", "TJ", "'", "\""};
            if (object.isOperator() && painting.count(object.getOperatorValue()) > 0) {
                found = true;
                terminateParsing();
            }
        }
        void handleEOF() override {}
        bool found = false;
    };
    Watcher watcher;
    QPDFObjectHandle::parseContentStream(page.getKey("/Contents"), &watcher);
    return watcher.found;
}

} // namespace

AppearanceRecorder::AppearanceRecorder(ObjectStore& objects) : m_objects(objects) {}

AppearanceRecorder::~AppearanceRecorder() = default;

void AppearanceRecorder::record(const PDFAnnotation& annotation, QPDFObjectHandle dictionary) {
    record(annotation, dictionary, annotation.uprightBounds());
}

void AppearanceRecorder::record(const PDFAnnotation& annotation, QPDFObjectHandle dictionary, const QRectF& bounds) {
    const std::optional<PDFAnnotationFrame>& frame = annotation.values().frame;
    const int turn = frame ? frame->turn : 0;
    if (QByteArray look = annotation.sharedLook(); !look.isEmpty()) {
        for (const double part : {bounds.width(), bounds.height(), double(turn)})
            look += ' ' + PdfValues::real(part);
        const auto [known, isNew] = m_shared.try_emplace(look, m_recordings.size());
        if (!isNew) {
            m_recordings[known->second].dictionaries.push_back(dictionary);
            return;
        }
    }
    const QSize page = pageSizeFor(bounds.size());
    const QPageSize pageSize(page, QPageSize::Point, QString(), QPageSize::ExactMatch);
    if (!m_writer) {
        m_buffer.open(QIODevice::WriteOnly);
        m_writer = std::make_unique<QPdfWriter>(&m_buffer);
        m_writer->setResolution(resolution);
        m_writer->setPageMargins(QMarginsF());
        m_writer->setPageSize(pageSize);
        m_painter.begin(m_writer.get());
    } else {
        m_writer->setPageSize(pageSize);
        m_writer->newPage();
    }
    m_painter.save();
    m_painter.setTransform(QTransform(dotsPerPoint, 0, 0, -dotsPerPoint, -bounds.left() * dotsPerPoint,
                                      (page.height() + bounds.top()) * dotsPerPoint));
    annotation.draw(PDFDisplayBox::mediaBox, m_painter);
    m_painter.restore();
    m_recordings.push_back({{dictionary}, bounds.size(), turn});
}

void AppearanceRecorder::finish() {
    if (m_recordings.empty())
        return;
    m_painter.end();
    const QByteArray& bytes = m_buffer.data();
    m_recorded.setSuppressWarnings(true);
    m_recorded.processMemoryFile("recorded appearances", bytes.constData(), std::size_t(bytes.size()));
    ObjectCopier copier(m_objects);
    const std::vector<QPDFObjectHandle>& pages = m_recorded.getAllPages();
    for (std::size_t i = 0; i < m_recordings.size(); ++i) {
        Recording& recording = m_recordings[i];
        QPDFObjectHandle page = pages.at(i);
        QPDFObjectHandle form = QPDFObjectHandle::newDictionary();
        form.replaceKey("/Type", PdfValues::name("XObject"));
        form.replaceKey("/Subtype", PdfValues::name("Form"));
        form.replaceKey("/BBox", PdfValues::rect(QRectF(QPointF(), recording.size)));
        AppearanceStreams::setTurn(form, recording.turn);
        QPDFObjectHandle look;
        if (paints(page)) {
            QPDFObjectHandle content = page.getKey("/Contents");
            form.replaceKey("/Resources", copier.copy(page.getKey("/Resources")));
            for (const char* key : {"/Filter", "/DecodeParms"})
                if (content.getDict().hasKey(key))
                    form.replaceKey(key, copier.copy(content.getDict().getKey(key)));
            look = m_objects.reserveStream();
            m_objects.fillStream(look, form, content);
        } else {
            form.replaceKey("/Resources", QPDFObjectHandle::newDictionary());
            look = m_objects.addStream(form, {});
        }
        for (QPDFObjectHandle& dictionary : recording.dictionaries) {
            QPDFObjectHandle appearances = QPDFObjectHandle::newDictionary();
            appearances.replaceKey("/N", look);
            dictionary.replaceKey("/AP", appearances);
        }
    }
    m_recordings.clear();
    m_shared.clear();
}
