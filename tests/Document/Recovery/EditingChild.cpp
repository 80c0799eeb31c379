// A process for tests of what a kill leaves behind: opens a PDF file, goes on changing and saving it, and tells a line
// for each thing that it does, before anything of it can be on the disk.
//
// editing_child FOLDER: takes the lost records below FOLDER, tells their ids and an empty line, and holds them until
// its input ends. editing_child FOLDER FILE SEED: records go below FOLDER. The lines:
//     edit STATE        the document is in this state now
//     saving STATE      it begins to be saved
//     saved             and is in its file
//     recording STATE   a recovery record begins to be written
//     recorded          and is on the disk
//     clean             nothing is unsaved; the record goes

#include "DocumentController.h"
#include "DocumentRecovery.h"
#include "EditedPdf.h"
#include "PDFFormField.h"
#include "RecoveryRecord.h"
#include "RecoveryStore.h"
#include "SilentPresenter.h"
#include "UserDefaults.h"

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

RecoveryPace quickPace() {
    RecoveryPace pace;
    pace.afterChange = 8ms;
    pace.betweenWrites = 15ms;
    pace.longestBetweenWrites = pace.longestBetweenWholeWrites = 30ms;
    pace.betweenPictures = 100ms;
    return pace;
}

void tell(const char* what, const QString& state = {}) {
    std::printf("%s%s%s\n", what, state.isEmpty() ? "" : " ", state.toUtf8().constData());
    std::fflush(stdout);
}

/// Changes that take each other back.
class Editor {
public:
    Editor(PDFEditorDocument& document, unsigned seed) : m_document(document), m_random(seed) {}

    void step() {
        UndoManager& undoManager = *m_document.undoManager();
        const int kind = below(12);
        if (kind == 0 && undoManager.canUndo())
            return undoManager.undo();
        if (kind == 1 && undoManager.canRedo())
            return undoManager.redo();
        setTitle(QString::number(++m_number));
        change(kind);
    }

private:
    using Annotation = std::shared_ptr<PDFAnnotation>;
    using Page = std::shared_ptr<PDFPage>;

    int below(int limit) { return std::uniform_int_distribution(0, limit - 1)(m_random); }
    PDFDocument& pages() const { return *m_document.pdfDocument(); }

    void change(int kind) {
        const Page page = pages().page(below(pages().pageCount()));
        if (kind < 4) {
            fillField();
        } else if (kind == 4 && pages().pageCount() > 1) {
            removePage(pages().index(page.get()));
        } else if (kind == 5 && pages().pageCount() < mostPages) {
            insertPage(page->copy(), below(pages().pageCount() + 1));
        } else if (kind == 6) {
            movePage(pages().index(page.get()), below(pages().pageCount()));
        } else if (kind == 7 && !page->annotations().empty() &&
                   page->annotations().back()->type() != PDFAnnotationSubtype::widget) {
            removeAnnotation(page, page->annotations().back());
        } else {
            const auto note = std::make_shared<PDFAnnotation>(QRectF(50, 300, 200, 60), PDFAnnotationSubtype::square);
            note->setColor(Qt::red);
            note->setContents(QStringLiteral("note %1").arg(m_number));
            addAnnotation(page, note);
        }
    }

    void fillField() {
        for (int i = 0; i < pages().pageCount(); ++i) {
            const auto widgets = PDFFormField::fillableWidgets(*pages().page(i));
            if (!widgets.empty()) {
                setValue(widgets.front(), {QStringLiteral("value %1").arg(m_number)});
                return;
            }
        }
    }

    void onUndo(std::function<void()> reverse) const {
        m_document.undoManager()->registerUndo(&m_document, std::move(reverse));
    }

    void setTitle(const QString& title) {
        QVariantMap attributes = pages().documentAttributes();
        const QString former = std::exchange(attributes[QStringLiteral("Title")], title).toString();
        pages().setDocumentAttributes(attributes);
        onUndo([this, former] { setTitle(former); });
    }
    void addAnnotation(const Page& page, const Annotation& annotation) {
        page->addAnnotation(annotation);
        onUndo([this, page, annotation] { removeAnnotation(page, annotation); });
    }
    void removeAnnotation(const Page& page, const Annotation& annotation) {
        // First: the caller's may be the page's own, which goes.
        onUndo([this, page, annotation] { addAnnotation(page, annotation); });
        page->removeAnnotation(annotation);
    }
    void setValue(const Annotation& widget, const QStringList& value) {
        auto field = PDFFormField::of(widget);
        const QStringList former = field->value();
        field->setValue(value);
        onUndo([this, widget, former] { setValue(widget, former); });
    }
    void removePage(int index) {
        const Page page = pages().removePage(index);
        onUndo([this, page, index] { insertPage(page, index); });
    }
    void insertPage(const Page& page, int index) {
        pages().insert(page, index);
        onUndo([this, index] { removePage(index); });
    }
    void movePage(int from, int to) {
        pages().insert(pages().removePage(from), to);
        onUndo([this, from, to] { movePage(to, from); });
    }

    PDFEditorDocument& m_document;
    std::mt19937 m_random;
    int m_number = 0;
};

int run(const QString& folder, const QString& path, unsigned seed) {
    FileReading::patience = 1min;
    SilentPresenter presenter;
    UserDefaults defaults(folder + QStringLiteral("/settings.ini"));
    DocumentController controller([] { return std::make_shared<PDFEditorDocument>(); }, presenter, defaults);
    // Connected first, so that it is told before the record goes.
    QObject::connect(&controller, &DocumentController::documentAdded, &controller, [](const auto& added) {
        QObject::connect(added.get(), &Document::documentEditedChanged, added.get(), [](bool isEdited) {
            if (!isEdited)
                tell("clean");
        });
    });
    DocumentRecovery recovery(controller, folder, quickPace());
    std::shared_ptr<PDFEditorDocument> document;
    controller.openDocument(QUrl::fromLocalFile(path), false, [&](const auto& opened, bool, const QString&) {
        document = std::dynamic_pointer_cast<PDFEditorDocument>(opened);
    });
    if (!document)
        return 1;
    const auto state = [&document] { return EditedPdf::state(*document->pdfDocument()); };
    // Asked for when a record is begun.
    recovery.setCurrentPage([&state](const PDFEditorDocument&) {
        tell("recording", state());
        return 0;
    });
    QObject::connect(&recovery, &DocumentRecovery::written, &recovery, [] { tell("recorded"); });

    Editor editor(*document, seed);
    int steps = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        editor.step();
        tell("edit", state());
        if (++steps % stepsBetweenSaves == 0 && !controller.isSaving(*document)) {
            tell("saving", state());
            controller.saveDocument(document, [](bool isSaved) { tell(isSaved ? "saved" : "failed"); });
        }
    });
    tell("edit", state());
    timer.start(timeBetweenSteps);
    return QApplication::exec();
}

int take(const QString& folder) {
    const auto lost = RecoveryStore::takeLost(folder, QDateTime::currentDateTime());
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
