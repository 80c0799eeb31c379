#include "CompressPDFSheetView.h"

#include "CompressedCopy.h"
#include "ErrorSentence.h"
#include "FileWork.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFSource.h"
#include "SavePanel.h"

#include <QGridLayout>
#include <QLabel>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <utility>

CompressPDFSheetView::CompressPDFSheetView(std::shared_ptr<PDFDocument> pdfDocument, QString suggestedName,
                                           QWidget* parent)
    : CopySheet(QStringLiteral("Compress PDF"),
                QStringLiteral("Best for scanned or image-heavy PDFs. Every page is converted to an image — text will "
                               "no longer be searchable or selectable in the compressed copy. The original is left "
                               "untouched."),
                QStringLiteral("Compress…"), parent),
      m_pdfDocument(std::move(pdfDocument)), m_suggestedName(std::move(suggestedName)), m_choices(new QWidget),
      m_below(new QStackedWidget), m_warning(new QLabel), m_progressText(new QLabel), m_bar(new QProgressBar),
      m_clock(new QTimer(this)) {
    setObjectName(QStringLiteral("compressSheet"));
    if (m_pdfDocument->source())
        m_presentSize = m_pdfDocument->source()->bytes().size();
    makeChoices();
    makeProgress();
    // A copy that waits is one of the document as it was.
    const auto forget = [this] { m_copy.reset(); };
    connect(m_pdfDocument.get(), &PDFDocument::pagesChanged, this, forget);
    connect(m_pdfDocument.get(), &PDFDocument::pageContentChanged, this, forget);
    connect(m_clock, &QTimer::timeout, this, &CompressPDFSheetView::showCourse);
    estimate();
}

CompressPDFSheetView::~CompressPDFSheetView() {
    m_estimating.request_stop();
    if (m_course)
        m_course->stop.request_stop();
}

void CompressPDFSheetView::makeChoices() {
    auto* grid = new QGridLayout(m_choices);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setColumnStretch(1, 1);
    auto* title = new QLabel(QStringLiteral("Quality"));
    grid->addWidget(title, 0, 0);
    m_choices->setAccessibleName(title->text());
    for (std::size_t i = 0; i < PDFCompressor::qualities.size(); ++i) {
        const Quality quality = PDFCompressor::qualities.at(i);
        auto* button = new QRadioButton(PDFCompressor::label(quality));
        button->setObjectName(QStringLiteral("quality%1").arg(i));
        button->setChecked(quality == Quality::better);
        auto* size = new QLabel(QStringLiteral("Estimating…"));
        size->setObjectName(QStringLiteral("size%1").arg(i));
        size->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        grid->addWidget(button, int(i), 1);
        grid->addWidget(size, int(i), 2);
        connect(button, &QRadioButton::toggled, this, [this] {
            setErrorMessage({});
            updateWarning();
        });
        m_buttons.at(i) = button;
        m_sizes.at(i) = size;
    }
    content().addWidget(m_choices);
    m_warning->setObjectName(QStringLiteral("growthWarning"));
    m_warning->setAlignment(Qt::AlignTop);
    m_below->addWidget(m_warning);
    content().addWidget(m_below);
    m_buttons.at(static_cast<std::size_t>(Quality::better))->setFocus();
}

void CompressPDFSheetView::makeProgress() {
    auto* progress = new QWidget;
    auto* layout = new QVBoxLayout(progress);
    layout->setContentsMargins(0, 0, 0, 0);
    m_progressText->setObjectName(QStringLiteral("progressText"));
    m_bar->setObjectName(QStringLiteral("progress"));
    m_bar->setAccessibleName(QStringLiteral("Progress"));
    m_bar->setTextVisible(false);
    layout->addWidget(m_progressText);
    layout->addWidget(m_bar);
    m_below->addWidget(progress);
}

CompressPDFSheetView::Quality CompressPDFSheetView::quality() const {
    for (std::size_t i = 0; i < m_buttons.size(); ++i)
        if (m_buttons.at(i)->isChecked())
            return PDFCompressor::qualities.at(i);
    return Quality::better;
}

// What it would give

void CompressPDFSheetView::estimate() {
    const auto compressor = std::make_shared<const PDFCompressor>(*m_pdfDocument);
    FileWork::run(
        this,
        [compressor, stop = m_estimating.get_token()]() -> std::optional<CompressionEstimate::Sizes> {
            try {
                return CompressionEstimate::of(*compressor, stop);
            } catch (...) {
                static_cast<void>(sentenceOfCurrentError("estimating a size")); // it goes to the log
                return std::nullopt;
            }
        },
        [this](const std::optional<CompressionEstimate::Sizes>& sizes) { showEstimate(sizes); });
}

void CompressPDFSheetView::showEstimate(const std::optional<CompressionEstimate::Sizes>& sizes) {
    m_estimate = sizes;
    for (std::size_t i = 0; i < m_sizes.size(); ++i) {
        const QString text =
            sizes ? CompressionEstimate::sentence(sizes->at(i), m_presentSize) : QStringLiteral("Size unknown");
        m_sizes.at(i)->setText(text);
        m_buttons.at(i)->setAccessibleDescription(text);
    }
    updateWarning();
}

void CompressPDFSheetView::updateWarning() {
    const bool grows =
        m_estimate && m_presentSize && m_estimate->at(static_cast<std::size_t>(quality())) > *m_presentSize;
    m_warning->setText(grows ? QStringLiteral("At this quality the copy would be larger than the document.")
                             : QString());
}

// Making it

void CompressPDFSheetView::begin(const QString& sentence, int pageCount) {
    setErrorMessage({});
    m_course = std::make_shared<Course>();
    m_progressText->setText(sentence);
    m_bar->setRange(0, pageCount);
    m_bar->setValue(0);
    m_below->setCurrentIndex(1);
    m_choices->setEnabled(false);
    actionButton().setEnabled(false);
    constexpr int betweenLooks = 100; // milliseconds
    m_clock->start(betweenLooks);
}

void CompressPDFSheetView::end() {
    m_clock->stop();
    m_course.reset();
    m_below->setCurrentIndex(0);
    m_choices->setEnabled(true);
    actionButton().setEnabled(true);
    m_buttons.at(static_cast<std::size_t>(quality()))->setFocus(); // which went when it couldn't be chosen
}

void CompressPDFSheetView::showCourse() {
    const int count = m_bar->maximum();
    if (!m_course || count == 0)
        return;
    const int done = m_course->pagesDone;
    m_bar->setValue(done);
    m_progressText->setText(QStringLiteral("Compressing page %1 of %2")
                                .arg(QString::number(qMin(done + 1, count)), QString::number(count)));
}

void CompressPDFSheetView::compress() {
    if (m_course)
        return;
    if (m_copy && m_qualityOfCopy == quality()) {
        save();
        return;
    }
    m_estimating.request_stop();
    m_copy.reset();
    m_qualityOfCopy = quality();
    const auto compressor = std::make_shared<const PDFCompressor>(*m_pdfDocument);
    begin(QStringLiteral("Compressing…"), compressor->pageCount());
    FileWork::run(
        this,
        [compressor, course = m_course, chosen = quality()]() -> Made {
            try {
                return {CompressedCopy::of(*compressor, chosen, course->stop.get_token(),
                                           [&course](int done) { course->pagesDone = done; })};
            } catch (...) {
                static_cast<void>(sentenceOfCurrentError("compressing")); // it goes to the log
                return {nullptr, true};
            }
        },
        [this, course = m_course](const Made& made) {
            if (course == m_course)
                take(made);
        });
}

void CompressPDFSheetView::take(const Made& made) {
    end();
    m_copy = made.copy;
    if (m_copy)
        save();
    else
        setErrorMessage(QStringLiteral("Couldn't compress this PDF."));
}

void CompressPDFSheetView::save() {
    const std::shared_ptr<const CompressedCopy> copy = m_copy;
    const QPointer<CompressPDFSheetView> self(this);
    const std::optional<QString> path =
        SavePanel::chooseForCopy(this, m_suggestedName + QStringLiteral(" (Compressed).pdf"));
    if (!self || !path)
        return;
    enum class Outcome { written, stopped, failed };
    begin(QStringLiteral("Saving…"), 0);
    FileWork::run(
        this,
        [copy, path, course = m_course] {
            try {
                return copy->write(*path, course->stop.get_token()) ? Outcome::written : Outcome::stopped;
            } catch (...) {
                static_cast<void>(sentenceOfCurrentError("writing a compressed copy"));
                return Outcome::failed;
            }
        },
        [this, path](Outcome outcome) {
            end();
            if (outcome == Outcome::written)
                finish(*path);
            else if (outcome == Outcome::failed)
                setErrorMessage(QStringLiteral("Couldn't write the compressed copy to that location."));
        });
}

void CompressPDFSheetView::reject() {
    if (!m_course) {
        CopySheet::reject();
        return;
    }
    m_course->stop.request_stop();
    if (m_bar->maximum() > 0)
        end(); // what the threads still do goes with them
}
