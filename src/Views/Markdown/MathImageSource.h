#pragma once

#include <QImage>

#include <functional>

class QColor;
class QString;

/// Draws a formula for a reply: the LaTeX without delimiters, the size of its letters in points, its colour. A null
/// image when there is nothing to show; the source stands in then. An empty function draws no formula at all. Called on
/// the main thread whenever a reply is laid out anew, so it should remember its images.
using MathImageSource = std::function<QImage(const QString& latex, double fontSize, const QColor& color)>;
