#pragma once

#include <QDialog>

#include <memory>

class PDFEditorDocument;
class QLineEdit;
class QPushButton;
class QSlider;
class UndoManager;

/// The sheet that stamps words across every page of a document. Main thread only.
class WatermarkSheetView : public QDialog {
    Q_OBJECT

public:
    /// `undoManager` may be null; it must outlive the sheet.
    WatermarkSheetView(std::shared_ptr<PDFEditorDocument> document, UndoManager* undoManager,
                       QWidget* parent = nullptr);
    ~WatermarkSheetView() override;

    /// Stamps the words as they were typed, and ends the sheet. Does nothing while they are blank.
    void apply();

private:
    [[nodiscard]] bool isBlank() const;

    std::shared_ptr<PDFEditorDocument> m_document;
    UndoManager* m_undoManager;
    QLineEdit* m_text;
    QSlider* m_opacity; ///< in hundredths
    QPushButton* m_apply;
};
