#pragma once

#include <memory>

class PageText;
class SourceEngine;

/// Reads the text of a page of a file. Any thread.
namespace TextReader {

/// Never null; empty for a page that can't be read. Text outside the crop box isn't part of the page. Broken content
/// yields the text before the break.
[[nodiscard]] std::shared_ptr<const PageText> read(SourceEngine& engine, int pageNumber);

} // namespace TextReader
