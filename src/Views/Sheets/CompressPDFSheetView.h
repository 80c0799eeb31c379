#pragma once

#include "CompressionEstimate.h"
#include "CopySheet.h"
#include "PDFCompressor.h"

#include <array>
#include <atomic>
#include <memory>
#include <optional>
#include <stop_token>

class CompressedCopy;
class PDFDocument;
class QLabel;
class QProgressBar;
class QRadioButton;
class QStackedWidget;
class QTimer;

/// Asks for a quality, tells how large a copy in pictures would be, makes it while a bar shows how far it is, and then
/// asks where to save it. The open document stays as it is. Main thread only.
class CompressPDFSheetView : public CopySheet {
    Q_OBJECT

public:
    using Quality = PDFCompressor::Quality;

    /// `suggestedName` is what the copy's name begins with.
    CompressPDFSheetView(std::shared_ptr<PDFDocument> pdfDocument, QString suggestedName, QWidget* parent = nullptr);
    ~CompressPDFSheetView() override;

    [[nodiscard]] Quality quality() const;
    /// Makes the copy, asks where, and saves it there. A copy for which no place was chosen is kept while the quality
    /// and the document stay.
    void compress();
    /// Stops the work that goes on, which leaves nothing behind; when there is none, closes the sheet.
    void reject() override;

private:
    /// Work on another thread, and what this one knows of it.
    struct Course {
        std::stop_source stop;
        std::atomic<int> pagesDone = 0;
    };
    struct Made {
        std::shared_ptr<const CompressedCopy> copy; ///< null for none
        bool hasFailed = false;
    };

    void act() override { compress(); }
    void makeChoices();
    void makeProgress();
    void estimate();
    void showEstimate(const std::optional<CompressionEstimate::Sizes>& sizes);
    void updateWarning();
    void begin(const QString& sentence, int pageCount);
    void end();
    void showCourse();
    void take(const Made& made);
    void save();

    const std::shared_ptr<PDFDocument> m_pdfDocument;
    const QString m_suggestedName;
    QWidget* m_choices;
    std::array<QRadioButton*, PDFCompressor::qualities.size()> m_buttons{};
    std::array<QLabel*, PDFCompressor::qualities.size()> m_sizes{};
    QStackedWidget* m_below; ///< the warning, or the progress in its place
    QLabel* m_warning;
    QLabel* m_progressText;
    QProgressBar* m_bar;
    QTimer* m_clock;
    std::optional<qint64> m_presentSize; ///< of the document's file, in bytes
    std::optional<CompressionEstimate::Sizes> m_estimate;
    std::stop_source m_estimating;
    std::shared_ptr<Course> m_course;             ///< null while nothing goes on
    std::shared_ptr<const CompressedCopy> m_copy; ///< that waits for a place; null for none
    Quality m_qualityOfCopy = Quality::better;
};
