#pragma once

class QWidget;

/// What Quillo is, and which version of it.
namespace AboutBox {

/// Returns at once. `parent` may be null. Main thread only.
void show(QWidget* parent);

} // namespace AboutBox
