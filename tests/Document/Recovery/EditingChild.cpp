// A process for tests of what a kill leaves behind: opens a PDF file, goes on changing and saving it, and tells a line
// for each thing that it does, before anything of it can be on the disk.
//
// editing_child FOLDER: takes the lost records below FOLDER/recovery, tells their ids and an empty line, and holds them
// until its input ends. editing_child FOLDER FILE SEED: records go there. The lines:
//     edit STATE        the document is in this state now
//     saving STATE      it begins to be saved
//     saved             and is in its file
//     recording STATE   a recovery record begins to be written
//     recorded          and is on the disk
//     clean             nothing is unsaved; the record goes

#include "MetadataOperations.h"
#include "PDFFormField.h"
#include "PageOperations.h"
#include "RecoveryRecord.h"
#include "RecoverySession.h"
#include "RecoveryStore.h"

#include <QApplication>
#include <QDateTime>
#include <QTimer>

#include <cstdio>
#include <random>

namespace {

using namespace std::chrono_literals;

constexpr int stepsBetweenSaves = 14;
constexpr int mostPages = 8;
constexpr auto timeBetweenSteps = 2ms;

void tell(const char* what, const QByteArray& state = {}) {
    std::printf("%s%s%s\n", what, state.isEmpty() ? "" : " ", state.constData());
    std::fflush(stdout);
}

/// Changes that take each other back.
class Editor {
public:
    Editor(PDFEditorDocument& document, unsigned seed) : m_document(document), m_random(seed) {}

    void step() {
        const int kind = below(12);
        if (kind == 0 && m_undoManager.canUndo())
            return m_undoManager.undo();
        if (kind == 1 && m_undoManager.canRedo())
            return m_undoManager.redo();
        MetadataOperations::save({QString::number(++m_number), {}, {}, {}}, m_document, &m_undoManager);
        change(kind);
    }

private:
    int below(int limit) { return std::uniform_int_distribution(0, limit - 1)(m_random); }

    void change(int kind) {
        const PDFDocument& pdf = *m_document.pdfDocument();
        const int count = pdf.pageCount();
        const int index = below(count);
        const auto& annotations = pdf.page(index)->annotations();
        if (kind < 4)
            fillField(pdf);
        else if (kind == 4 && count > 1)
            PageOperations::deletePages(m_document, {index}, &m_undoManager);
        else if (kind == 5 && count < mostPages)
            PageOperations::merge(m_document, *PageOperations::extractPages({index}, pdf), below(count + 1),
                                  &m_undoManager);
        else if (kind == 6)
            PageOperations::movePage(m_document, index, below(count), &m_undoManager);
        else if (kind == 7 && !annotations.empty() && annotations.back()->type() != PDFAnnotationSubtype::widget)
            EditedPdf::setAnnotation(m_document, pdf.page(index), annotations.back(), false);
        else
            EditedPdf::addSquare(m_document, index, QStringLiteral("note %1").arg(m_number));
    }

    void fillField(const PDFDocument& pdf) {
        for (int i = 0; i < pdf.pageCount(); ++i) {
            const auto widgets = PDFFormField::fillableWidgets(*pdf.page(i));
            if (!widgets.empty())
                return setValue(widgets.front(), {QStringLiteral("value %1").arg(m_number)});
        }
    }

    void setValue(const std::shared_ptr<PDFAnnotation>& widget, const QStringList& value) {
        auto field = PDFFormField::of(widget);
        const QStringList former = field->value();
        field->setValue(value);
        m_undoManager.registerUndo(&m_document, [this, widget, former] { setValue(widget, former); });
    }

    PDFEditorDocument& m_document;
    UndoManager& m_undoManager = *m_document.undoManager();
    std::mt19937 m_random;
    int m_number = 0;
};

int run(const QString& folder, const QString& path, unsigned seed) {
    Session session(folder);
    session.recovery.setOn(false);
    const std::shared_ptr<PDFEditorDocument> document = session.open(path);
    // Connected first, so that it is told before the record goes.
    QObject::connect(document.get(), &Document::documentEditedChanged, document.get(), [](bool isEdited) {
        if (!isEdited)
            tell("clean");
    });
    session.recovery.setOn(true);
    const auto state = [&document] { return EditedPdf::state(*document->pdfDocument()); };
    // Asked for when a record is begun.
    session.recovery.setCurrentPage([&state](const PDFEditorDocument&) {
        tell("recording", state());
        return 0;
    });
    QObject::connect(&session.recovery, &DocumentRecovery::written, document.get(), [] { tell("recorded"); });

    Editor editor(*document, seed);
    int steps = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        editor.step();
        tell("edit", state());
        if (++steps % stepsBetweenSaves == 0 && !session.controller.isSaving(*document)) {
            tell("saving", state());
            session.controller.saveDocument(document, [](bool isSaved) { tell(isSaved ? "saved" : "failed"); });
        }
    });
    tell("edit", state());
    timer.start(timeBetweenSteps);
    return QApplication::exec();
}

int take(const QString& folder) {
    const auto lost = RecoveryStore::takeLost(folder + QStringLiteral("/recovery"), QDateTime::currentDateTime());
    for (const auto& record : lost)
        std::puts(qPrintable(record->id()));
    std::puts("");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    return arguments.size() == 4 ? run(arguments[1], arguments[2], arguments[3].toUInt()) : take(arguments[1]);
}
