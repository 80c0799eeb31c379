#pragma once

#include "CopySheet.h"

#include <QPointer>

#include <memory>

class PDFDocument;
class QLabel;
class QLineEdit;

/// Asks for a password and saves a copy of the document, as it is now, that opens with nothing else. The open document
/// stays as it is. Main thread only.
class SetPasswordSheetView : public CopySheet {
    Q_OBJECT

public:
    /// `suggestedName` is what the copy's name begins with.
    SetPasswordSheetView(std::shared_ptr<PDFDocument> pdfDocument, QString suggestedName, QWidget* parent = nullptr);
    ~SetPasswordSheetView() override;

    /// There is a password, and it has been typed twice.
    [[nodiscard]] bool canSave() const;
    /// Asks where, and saves there.
    void save();

private:
    void act() override { save(); }
    void update();
    QLineEdit* addField(const QString& label, const QString& name);

    const std::shared_ptr<PDFDocument> m_pdfDocument;
    const QString m_suggestedName;
    QLineEdit* m_password;
    QLineEdit* m_confirmPassword;
    QLabel* m_mismatch;
    bool m_isSaving = false;
    QPointer<QObject> m_work; ///< null unless it saves
};
