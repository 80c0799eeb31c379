#include "PaperLight.h"

#include <QLinearGradient>
#include <QPainter>

#include <gtest/gtest.h>

namespace {

constexpr QSize pageSize(600, 800);

/// A page with a filled box and some lines of ink.
QImage page(const QBrush& paper, const QColor& ink = Qt::black, int lineHeight = 4) {
    QImage image(pageSize, QImage::Format_Grayscale8);
    QPainter painter(&image);
    painter.fillRect(image.rect(), paper);
    painter.fillRect(QRect(50, 40, 500, 100), ink);
    for (int y = 200; y < 760; y += 20)
        painter.fillRect(QRect(60, y, 480, lineHeight), ink);
    return image;
}

QBrush light(QPointF from, int first, QPointF to, int last) {
    QLinearGradient gradient(from, to);
    gradient.setColorAt(0, QColor(first, first, first));
    gradient.setColorAt(1, QColor(last, last, last));
    return gradient;
}

TEST(PaperLight, PaperBecomesEquallyBrightAndInkStaysDark) {
    const QBrush lights[] = {
        light({0, 0}, 250, {600, 0}, 110),
        light({0, 0}, 90, {0, 800}, 230),
        light({0, 0}, 120, {600, 800}, 245),
    };
    for (const QBrush& paper : lights) {
        const QImage even = PaperLight::evenOut(page(paper, QColor(30, 30, 30)));
        ASSERT_EQ(even.size(), pageSize);
        ASSERT_EQ(even.format(), QImage::Format_Grayscale8);
        for (const QPoint place :
             {QPoint(20, 20), QPoint(580, 20), QPoint(20, 780), QPoint(580, 780), QPoint(300, 410)})
            EXPECT_GE(qGray(even.pixel(place)), 235) << place.x() << ", " << place.y();
        for (const QPoint place : {QPoint(60, 50), QPoint(540, 130), QPoint(100, 202), QPoint(500, 742)})
            EXPECT_LE(qGray(even.pixel(place)), 100) << place.x() << ", " << place.y();
    }
}

TEST(PaperLight, WhatHasNoUnevenPaperStaysAsItIs) {
    const QImage night = page(QColor(20, 20, 20), Qt::white, 1);
    QImage halves = page(Qt::white); // a picture over half of the page
    QPainter(&halves).fillRect(QRect(0, 0, 600, 400), light({0, 0}, 20, {600, 0}, 90));
    const QImage images[] = {
        page(Qt::white),
        page(QColor(190, 190, 190)),
        night,
        halves,
        QImage(pageSize, QImage::Format_Grayscale8).scaled(3, 2),
        QImage(),
    };
    for (const QImage& image : images)
        EXPECT_EQ(PaperLight::evenOut(image).constBits(), image.constBits()) << "picture " << &image - images;
}

} // namespace
