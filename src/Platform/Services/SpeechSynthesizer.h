#pragma once

#include <QObject>

class QTextToSpeech;

/// Reads one text aloud through the speech service of the desktop. Main thread only. Going away ends the speech.
class SpeechSynthesizer : public QObject {
    Q_OBJECT

public:
    explicit SpeechSynthesizer(QObject* parent = nullptr);
    ~SpeechSynthesizer() override;

    /// Waits until the service has been started where it isn't running yet. False when there is none.
    [[nodiscard]] bool startSpeaking(const QString& text);

    /// Speaks all of `text` with a synthesizer of its own, which lasts to the end of the speech. False as above.
    [[nodiscard]] static bool speakToTheEnd(const QString& text);

Q_SIGNALS:
    /// `finished` is false when the service gave up.
    void didFinishSpeaking(bool finished);

private:
    void end(bool finished);

    QTextToSpeech* m_speech = nullptr;
    bool m_isSpeaking = false;
};
