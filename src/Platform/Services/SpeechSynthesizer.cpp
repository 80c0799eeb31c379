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
        connect(m_speech, &QTextToSpeech::stateChanged, this, &SpeechSynthesizer::stateChanged);
    }
    if (m_speech->state() == QTextToSpeech::Error)
        return false;
    m_speech->say(text);
    return m_speech->state() != QTextToSpeech::Error;
}

void SpeechSynthesizer::stateChanged() {
    const QTextToSpeech::State state = m_speech->state();
    if (state == QTextToSpeech::Speaking) {
        m_isSpeaking = true;
    } else if (state == QTextToSpeech::Error || (state == QTextToSpeech::Ready && m_isSpeaking)) {
        m_isSpeaking = false;
        Q_EMIT didFinishSpeaking(state == QTextToSpeech::Ready);
    }
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
