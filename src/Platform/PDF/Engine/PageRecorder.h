#pragma once

#include "SourceEngine.h"

/// Records what a page draws, for replay in tiles. Any thread.
///
/// Annotations are drawn by the appearances that the file gives them; those without one draw themselves
/// (`PDFAnnotation::drawsItself`).
namespace PageRecorder {

/// From the engine's recent recordings when it is there. Null when the page can't be read or `cookie` was aborted.
[[nodiscard]] std::shared_ptr<const RecordedPage> record(SourceEngine& engine, const SourceEngine::RecordingKey& key,
                                                         fz_cookie* cookie);

/// The appearance of the file's annotation at `index` of the page's list, in page coordinates.
/// Null when there is none.
[[nodiscard]] std::shared_ptr<const RecordedPage> recordAnnotation(SourceEngine& engine, int pageNumber, int index);

/// The appearance that the annotation has for one of its states (an entry of AP, N), fitted into its rectangle of the
/// file. Null when there is none.
[[nodiscard]] std::shared_ptr<const RecordedPage> recordState(SourceEngine& engine, int pageNumber, int index,
                                                              const QByteArray& state);

} // namespace PageRecorder
