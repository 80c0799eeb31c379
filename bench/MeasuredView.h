#pragma once

#include "Measurement.h"
#include "PDFView.h"

#include <QElapsedTimer>
#include <QEvent>

#include <optional>
#include <vector>

/// A view that measures what the main thread takes for a frame, from `beginFrame` to the end of painting.
class MeasuredView : public PDFView {
public:
    void beginFrame() {
        if (m_frame)
            return;
        m_frame.emplace().start();
        m_cpuStart = Measurement::threadCpu();
    }

    std::vector<double> frames;   // milliseconds on the clock
    std::vector<double> frameCpu; // milliseconds of the processor, which other programs don't lengthen
    int framesWithStandIn = 0;

protected:
    bool event(QEvent* event) override {
        const bool handled = PDFView::event(event);
        if (event->type() == QEvent::UpdateRequest && m_frame) {
            frames.push_back(Measurement::milliseconds(m_frame->nsecsElapsed()));
            frameCpu.push_back(Measurement::threadCpu() - m_cpuStart);
            m_frame.reset();
            if (!isSharp())
                ++framesWithStandIn;
        }
        return handled;
    }

private:
    std::optional<QElapsedTimer> m_frame;
    double m_cpuStart = 0;
};
