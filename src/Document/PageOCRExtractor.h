#pragma once

#include <QCoroTask>
#include <QString>

#include <memory>
#include <optional>
#include <stop_token>

class PDFPage;

/// Reads the text of a page from its picture. Main thread only; the drawing and the reading are done on another.
namespace PageOCRExtractor {

/// Pixels for one unit of page coordinates: 216 dots per inch. A page that would become larger than
/// `PDFPageRasterizer::maximumPixelCount` is read at the greatest scale that stays below.
inline constexpr double renderScale = 3.0;

/// The lines that were recognized, joined with "\n": upright as the page is shown, the whole media box, annotations
/// included. None when no line was found, the page can't be drawn, or `stop` was asked for. Changes nothing. One page
/// is read at a time; others wait for their turn.
///
/// Keeps the page alive until it is drawn. The awaiting coroutine is resumed later from the event loop, when its own
/// object may be gone, and dropping the task doesn't stop it. So an object that awaits this looks before it touches
/// itself, and asks for a stop when it goes, so that the program can end without waiting for the page:
///
///     QCoro::Task<> Window::read(std::shared_ptr<const PDFPage> page) {
///         const QPointer self(this);
///         const auto text = co_await PageOCRExtractor::recognizeText(page, m_stop.get_token());
///         if (self) …
///     }
///     Window::~Window() { m_stop.request_stop(); }
[[nodiscard]] QCoro::Task<std::optional<QString>> recognizeText(std::shared_ptr<const PDFPage> page,
                                                                std::stop_token stop = {});

} // namespace PageOCRExtractor
