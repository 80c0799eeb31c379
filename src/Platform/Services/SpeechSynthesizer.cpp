#include "SpeechSynthesizer.h"

#include <QCoreApplication>
#include <QTextToSpeech>

SpeechSynthesizer::SpeechSynthesizer(QObject* parent) : QObject(parent) {}

SpeechSynthesizer::~SpeechSynthesizer() = default;

bool SpeechSynthesizer::startSpeaking(const QString& text) {
    // Without an engine the class would only warn on the console.
    if (QTextToSpeech::availableEngines().isEmpty())
        return false;
    if (!m_speech) {
        m_speech = new QTextToSpeech(this);
        // The state is set on a thread of the service and may be another one by the time the signal is here.
        connect(m_speech, &QTextToSpeech::stateChanged, this, [this](QTextToSpeech::State state) {
            if (state == QTextToSpeech::Speaking)
                m_isSpeaking = true;
            else if (state == QTextToSpeech::Error || (state == QTextToSpeech::Ready && m_isSpeaking))
                end(state == QTextToSpeech::Ready);
        });
    }
    // Where only the voices don't suit the user's language, the service speaks all the same.
    const auto hasFailed = [this](QTextToSpeech::ErrorReason reason) {
        return m_speech->state() == QTextToSpeech::Error && m_speech->errorReason() == reason;
    };
    if (hasFailed(QTextToSpeech::ErrorReason::Initialization))
        return false;
    m_speech->say(text);
    return !hasFailed(QTextToSpeech::ErrorReason::Input);
}

void SpeechSynthesizer::end(bool finished) {
    m_isSpeaking = false;
    Q_EMIT didFinishSpeaking(finished);
}

bool SpeechSynthesizer::speakToTheEnd(const QString& text) {
    auto* synthesizer = new SpeechSynthesizer(QCoreApplication::instance());
    if (!synthesizer->startSpeaking(text)) {
        delete synthesizer;
        return false;
    }
    connect(synthesizer, &SpeechSynthesizer::didFinishSpeaking, synthesizer, &QObject::deleteLater);
    return true;
}
