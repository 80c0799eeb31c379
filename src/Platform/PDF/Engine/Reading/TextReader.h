#pragma once

#include <memory>
#include <stop_token>

class PageText;
class SourceEngine;

/// Reads the text of a page of a file. Any thread.
namespace TextReader {

/// Never null; empty for a page that can't be read. Text outside the crop box isn't part of the page. Broken content
/// yields the text before the break, and so does a page that takes longer than some seconds; `stop` yields none.
[[nodiscard]] std::shared_ptr<const PageText> read(SourceEngine& engine, int pageNumber, const std::stop_token& stop);

} // namespace TextReader
