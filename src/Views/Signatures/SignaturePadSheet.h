#pragma once

#include <QDialog>

#include <memory>

class QPushButton;
class SignaturePad;
class SignatureStore;

/// The sheet on which a signature is drawn. Saving trims the drawing to its ink and adds it to the store; a drawing
/// without ink is not saved, and the sheet stays open.
class SignaturePadSheet : public QDialog {
    Q_OBJECT

public:
    explicit SignaturePadSheet(std::shared_ptr<SignatureStore> store, QWidget* parent = nullptr);
    ~SignaturePadSheet() override;

private:
    void save();
    void updateButtons();

    std::shared_ptr<SignatureStore> m_store;
    SignaturePad* m_pad;
    QPushButton* m_clear;
    QPushButton* m_save;
};
