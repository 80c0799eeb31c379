#pragma once

#include <QObject>
#include <QString>

#include <functional>

class UserDefaults;

/// Whether PDF files open in Quillo, and making it so, through the desktop's `xdg-mime`. Nothing blocks: answers come
/// through callbacks on the main thread.
class DefaultPDFHandler : public QObject {
    Q_OBJECT

public:
    /// Shows the question and returns at once; `answered` gets true for its first button.
    using Question = std::function<void(std::function<void(bool accepted)> answered)>;

    /// `defaults` must outlive the handler.
    DefaultPDFHandler(UserDefaults& defaults, Question question, QObject* parent = nullptr);
    ~DefaultPDFHandler() override;

    /// False where the desktop offers no way: no `xdg-mime`, or Quillo's desktop entry isn't installed.
    [[nodiscard]] static bool canBeSet();

    /// `answer` gets false as well when the desktop can't tell.
    void isDefault(std::function<void(bool)> answer);

    /// `completion`, which may be empty, gets whether it worked.
    void setAsDefault(std::function<void(bool)> completion = {});

    /// Asks once in the life of the settings, and not while Quillo is the default or can't become it.
    void promptIfNeeded();

private:
    UserDefaults& m_defaults;
    Question m_question;
};
