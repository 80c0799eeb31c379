#pragma once

#include <QFrame>

#include <memory>

class QLabel;
class QPushButton;
class QScrollArea;
class SignatureStore;

/// The popover of the signature tool: the saved signatures to choose from, and a button for a new one. It closes with a
/// choice, with Escape and with a click outside, and is deleted then.
class SignaturePickerView : public QFrame {
    Q_OBJECT

public:
    explicit SignaturePickerView(std::shared_ptr<SignatureStore> store, QWidget* parent = nullptr);
    ~SignaturePickerView() override;

    /// Below `anchor`, moved so that the screen shows all of it.
    void popUp(const QWidget& anchor);

private:
    void showSignatures();
    void newSignature();

    std::shared_ptr<SignatureStore> m_store;
    QLabel* m_none;
    QScrollArea* m_scrollArea;
    QPushButton* m_new;
};
