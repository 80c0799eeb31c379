#pragma once

class QUrl;
class QWidget;

/// Addresses behind the links of documents and replies.
namespace WebLink {

/// True for what may leave the program once the user agrees: web pages and mail.
[[nodiscard]] bool canBeOpened(const QUrl& url);

/// Shows the whole address over the window of `parent` and opens it in the desktop's program only when the user says
/// so; any other kind of address gets a sentence. Returns at once. The host is shown in its ASCII form, so that letters
/// that look alike can't pretend to be another one.
void confirmAndOpen(const QUrl& url, QWidget* parent);

} // namespace WebLink
