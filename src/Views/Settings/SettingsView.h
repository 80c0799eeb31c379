#pragma once

#include <QDialog>

#include <functional>

class QLabel;
class QLineEdit;
class QPushButton;
class SymbolLabel;
class UserDefaults;

/// The settings window: Quillo as the default viewer, and the user's own key and address for the assistant. It is as
/// large as its content. Main thread only.
class SettingsView : public QDialog {
    Q_OBJECT

public:
    /// What the window asks about the default viewer. Answers may come later, on the main thread.
    struct DefaultViewer {
        bool canBeSet = false; ///< false where the desktop offers no way
        std::function<void(std::function<void(bool isDefault)> answer)> isDefault;
        std::function<void(std::function<void(bool succeeded)> completion)> setAsDefault;
    };

    /// `defaults` must outlive the window.
    SettingsView(UserDefaults& defaults, DefaultViewer defaultViewer, QWidget* parent = nullptr);
    ~SettingsView() override;

private:
    QWidget* makeGeneralSection();
    QWidget* makeAssistantSection();

    void setAsDefault();
    void showDefaultViewer(bool isDefault);
    void save();
    void useBuiltInAI();
    void fieldEdited();
    void showStatus();
    [[nodiscard]] QString statusNote() const;

    UserDefaults& m_defaults;
    DefaultViewer m_defaultViewer;

    QLineEdit* m_apiURL;
    QLineEdit* m_apiKey;
    bool m_isKeySaved = false;
    bool m_justSaved = false;
    bool m_justChangedService = false; ///< which reaches the documents that are opened later
    bool m_usingBuiltInAPI = false;

    QPushButton* m_setAsDefaultButton;
    SymbolLabel* m_isDefault;
    QLabel* m_refusal;
    SymbolLabel* m_status;
    QLabel* m_statusNote;
    QPushButton* m_saveButton = nullptr;
    SymbolLabel* m_saved;
};
