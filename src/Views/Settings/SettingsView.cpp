#include "SettingsView.h"

#include "APIKeyStore.h"
#include "BackendAIProvider.h"
#include "Palette.h"
#include "RecoverySetting.h"
#include "SymbolLabel.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>

#include <algorithm>

static constexpr int fieldWidth = 380;
static constexpr int noteWidth = 500;
static constexpr QColor success{0x2E, 0x9E, 0x4F}; // clear on light and dark

static QLabel* makeHeading(const QString& text) {
    auto* heading = new QLabel(text);
    QFont font = heading->font();
    font.setWeight(QFont::DemiBold);
    font.setPointSizeF(font.pointSizeF() * 0.9);
    font.setLetterSpacing(QFont::AbsoluteSpacing, 0.6);
    heading->setFont(font);
    return heading;
}

static void setNote(QLabel& note, const QString& text) {
    note.setText(text);
    note.setMinimumHeight(0); // or the height for a width would be no less
    note.setFixedHeight(std::max(0, note.heightForWidth(note.maximumWidth()))); // -1 without text
}

static QLabel* makeNote(const QString& text, int width = noteWidth) {
    auto* note = new QLabel;
    note->setWordWrap(true);
    note->setFixedWidth(width);
    QFont font = note->font();
    font.setPointSizeF(font.pointSizeF() * 0.9);
    note->setFont(font);
    setNote(*note, text);
    return note;
}

SettingsView::SettingsView(UserDefaults& defaults, DefaultViewer defaultViewer, QWidget* parent)
    : QDialog(parent), m_defaults(defaults), m_defaultViewer(std::move(defaultViewer)), m_apiURL(new QLineEdit),
      m_apiKey(new QLineEdit), m_setAsDefaultButton(new QPushButton(QStringLiteral("Set as Default"))),
      m_isDefault(new SymbolLabel), m_refusal(new QLabel(QStringLiteral("The desktop did not accept the change."))),
      m_status(new SymbolLabel), m_statusNote(makeNote({}, fieldWidth)), m_saved(new SymbolLabel) {
    setObjectName(QStringLiteral("settings"));
    setWindowTitle(QStringLiteral("Settings"));
    auto* line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 20, 24, 24);
    layout->setSpacing(14);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(makeGeneralSection());
    layout->addWidget(line);
    layout->addWidget(makeAssistantSection());
    // A button that becomes the default before the dialog has it stops being so once the focus leaves it.
    m_saveButton->setDefault(true);

    m_apiURL->setText(APIKeyStore::loadURL(m_defaults));
    m_isKeySaved = APIKeyStore::hasAnyKey(m_defaults);
    m_usingBuiltInAPI = !m_isKeySaved;
    connect(m_apiURL, &QLineEdit::textChanged, this, &SettingsView::fieldEdited);
    connect(m_apiKey, &QLineEdit::textChanged, this, &SettingsView::fieldEdited);
    showStatus();
    showDefaultViewer(false);
    if (m_defaultViewer.isDefault)
        m_defaultViewer.isDefault([self = QPointer(this)](bool isDefault) {
            if (self)
                self->showDefaultViewer(isDefault);
        });
}

SettingsView::~SettingsView() = default;

QWidget* SettingsView::makeGeneralSection() {
    m_setAsDefaultButton->setObjectName(QStringLiteral("setAsDefault"));
    m_setAsDefaultButton->setAccessibleName(m_setAsDefaultButton->text());
    m_setAsDefaultButton->setAutoDefault(false);
    m_setAsDefaultButton->setEnabled(m_defaultViewer.canBeSet && m_defaultViewer.setAsDefault);
    if (!m_setAsDefaultButton->isEnabled())
        m_setAsDefaultButton->setToolTip(
            QStringLiteral("Quillo has to be installed for this, on a desktop that lets it."));
    connect(m_setAsDefaultButton, &QPushButton::clicked, this, &SettingsView::setAsDefault);
    m_isDefault->setObjectName(QStringLiteral("isDefault"));
    m_isDefault->setContent(QStringLiteral("checkmark.circle.fill"), QStringLiteral("Quillo is your default"), success);
    m_refusal->setObjectName(QStringLiteral("defaultRefused"));
    m_refusal->hide();

    auto* row = new QHBoxLayout;
    row->addWidget(new QLabel(QStringLiteral("Default PDF Viewer")));
    row->addStretch(1);
    row->addWidget(m_refusal);
    row->addWidget(m_isDefault);
    row->addWidget(m_setAsDefaultButton);
    auto* recovery = new QCheckBox(QStringLiteral("Keep unsaved changes for recovery"));
    recovery->setObjectName(QStringLiteral("keepsUnsavedChanges"));
    recovery->setAccessibleName(recovery->text());
    recovery->setChecked(RecoverySetting::isOn(m_defaults));
    connect(recovery, &QCheckBox::toggled, this, [this](bool isOn) { RecoverySetting::setOn(m_defaults, isOn); });

    auto* section = new QWidget;
    auto* layout = new QVBoxLayout(section);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(10);
    layout->addWidget(makeHeading(QStringLiteral("GENERAL")));
    layout->addLayout(row);
    layout->addWidget(makeNote(QStringLiteral(
        "Makes PDFs open in Quillo automatically when double-clicked in the file manager, in your mail or "
        "anywhere else.")));
    layout->addWidget(recovery);
    layout->addWidget(
        makeNote(QStringLiteral("Stores them in your home folder until you save or close the document, so "
                                "that a crash loses nothing. Turn it off if they must not leave an "
                                "encrypted volume.")));
    return section;
}

QWidget* SettingsView::makeAssistantSection() {
    auto* form = new QFormLayout;
    form->setHorizontalSpacing(14);
    form->setVerticalSpacing(10);
    const auto addField = [form](const QString& label, const QString& name, QLineEdit* field) {
        field->setObjectName(name);
        field->setAccessibleName(label);
        field->setPlaceholderText(QStringLiteral("Enter %1...").arg(label));
        field->setMinimumWidth(fieldWidth);
        form->addRow(label, field);
    };
    addField(QStringLiteral("API URL"), QStringLiteral("apiURL"), m_apiURL);
    addField(QStringLiteral("API Key"), QStringLiteral("apiKey"), m_apiKey);
    m_apiKey->setEchoMode(QLineEdit::Password);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    const auto addButton = [this, buttons](const QString& label, const QString& name,
                                           void (SettingsView::*operation)()) {
        auto* button = new QPushButton(label);
        button->setObjectName(name);
        button->setAccessibleName(label);
        connect(button, &QPushButton::clicked, this, operation);
        buttons->addWidget(button);
        return button;
    };
    m_saveButton = addButton(QStringLiteral("Save"), QStringLiteral("save"), &SettingsView::save);
    addButton(QStringLiteral("Use Quillo's AI"), QStringLiteral("useBuiltInAI"), &SettingsView::useBuiltInAI)
        ->setAutoDefault(false);
    m_saved->setObjectName(QStringLiteral("saved"));
    m_saved->setContent(QStringLiteral("checkmark"), QStringLiteral("Saved"), success);
    buttons->addWidget(m_saved);
    buttons->addStretch(1);
    form->addRow(QString(), buttons);
    m_status->setObjectName(QStringLiteral("status"));
    form->addRow(QStringLiteral("Status"), m_status);
    m_statusNote->setObjectName(QStringLiteral("statusNote"));
    form->addRow(QString(), m_statusNote);

    auto* section = new QWidget;
    auto* layout = new QVBoxLayout(section);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(10);
    layout->addWidget(makeHeading(QStringLiteral("AI ASSISTANT")));
    layout->addLayout(form);
    layout->addWidget(makeNote(QStringLiteral(
        "By default, the Ask panel uses Quillo's built-in AI (routed through our server — we never see your "
        "own API key because you don't need one). Add your own Ollama Cloud or Groq key instead if you'd "
        "rather call the provider directly.")));
    return section;
}

void SettingsView::setAsDefault() {
    m_setAsDefaultButton->setEnabled(false);
    m_defaultViewer.setAsDefault([self = QPointer(this)](bool succeeded) {
        if (!self)
            return;
        self->m_setAsDefaultButton->setEnabled(true);
        self->m_refusal->setVisible(!succeeded);
        self->showDefaultViewer(succeeded);
    });
}

void SettingsView::showDefaultViewer(bool isDefault) {
    m_isDefault->setVisible(isDefault);
    m_setAsDefaultButton->setVisible(!isDefault);
}

void SettingsView::save() {
    APIKeyStore::saveURL(m_defaults, m_apiURL->text());
    APIKeyStore::save(m_defaults, m_apiKey->text(), APIProviderKind::ollama);
    m_justChangedService = !m_isKeySaved;
    m_isKeySaved = true;
    m_usingBuiltInAPI = false;
    m_justSaved = true;
    showStatus();
}

void SettingsView::useBuiltInAI() {
    m_apiKey->clear();
    m_apiURL->setText(APIKeyStore::defaultURL());
    APIKeyStore::saveURL(m_defaults, m_apiURL->text());
    APIKeyStore::clear(m_defaults, APIProviderKind::ollama);
    APIKeyStore::clear(m_defaults, APIProviderKind::groq);
    m_justChangedService = m_isKeySaved;
    m_isKeySaved = false;
    m_usingBuiltInAPI = true;
    m_justSaved = true;
    showStatus();
}

void SettingsView::fieldEdited() {
    m_justSaved = false;
    const QString key = m_apiKey->text();
    if (std::any_of(key.begin(), key.end(), [](QChar character) { return !character.isSpace(); }))
        m_usingBuiltInAPI = false;
    showStatus();
}

QString SettingsView::statusNote() const {
    if (m_usingBuiltInAPI && !BackendAIProvider::isConfigured())
        return QStringLiteral("This copy of Quillo has no built-in AI service: enter a key of your own above and save "
                              "it to use the assistant.");
    if (!m_justSaved || !m_justChangedService)
        return {};
    return m_usingBuiltInAPI ? QStringLiteral("Quillo's AI answers in documents that you open from now on.")
                             : QStringLiteral("Your key is used in documents that you open from now on.");
}

void SettingsView::showStatus() {
    const QString note = statusNote();
    setNote(*m_statusNote, note);
    m_statusNote->setVisible(!note.isEmpty());
    if (m_usingBuiltInAPI)
        m_status->setContent(QStringLiteral("checkmark.circle.fill"),
                             QStringLiteral("Using Quillo's built-in AI — no key needed"),
                             BackendAIProvider::isConfigured() ? success : QColor());
    else if (m_isKeySaved)
        m_status->setContent(QStringLiteral("checkmark.circle.fill"), QStringLiteral("Using your own API key"),
                             success);
    else
        m_status->setContent(QStringLiteral("info.circle"), QStringLiteral("No active configuration"));
    m_saved->setVisible(m_justSaved);
}
