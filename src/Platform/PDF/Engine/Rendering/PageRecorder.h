#pragma once

#include "SourceEngine.h"

/// Records what a page draws, for replay in tiles. Any thread.
///
/// Annotations are drawn by the appearances that the file gives them; those without one draw themselves
/// (`PDFAnnotation::drawsItself`).
namespace PageRecorder {

/// From the engine's recent recordings when it is there. Null when the page can't be read, or when `cancelled` (which
/// may be null) became true meanwhile. A page that takes longer than some seconds is recorded as far as it got.
[[nodiscard]] std::shared_ptr<const RecordedPage> record(SourceEngine& engine, const SourceEngine::RecordingKey& key,
                                                         const std::atomic<bool>* cancelled);

/// The appearance of the file's annotation at `index` of the page's list, in page coordinates.
/// Null when there is none. For the main thread: what takes longer than a moment is recorded as far as it got.
[[nodiscard]] std::shared_ptr<const RecordedPage> recordAnnotation(SourceEngine& engine, int pageNumber, int index);

/// The appearance that the annotation has for one of its states (an entry of AP, N), fitted into its rectangle of the
/// file. Null when there is none. Time as above.
[[nodiscard]] std::shared_ptr<const RecordedPage> recordState(SourceEngine& engine, int pageNumber, int index,
                                                              const QByteArray& state);

} // namespace PageRecorder
