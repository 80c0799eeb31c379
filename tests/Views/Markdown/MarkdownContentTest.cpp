#include "MarkdownContent.h"

#include "MarkdownBrowser.h"
#include "ViewTest.h"

#include <QAbstractTextDocumentLayout>
#include <QAccessible>
#include <QClipboard>
#include <QDialog>
#include <QMimeData>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QTextBlock>
#include <QVBoxLayout>

#include <map>
#include <tuple>
#include <utility>

class MarkdownContentTest : public ViewTest {
protected:
    void SetUp() override {
        m_area.setWidgetResizable(true);
        show(m_area, {360, 500});
    }

    MarkdownBrowser& display(const QString& text, const MathImageSource& mathImages = {}) {
        m_content = new MarkdownContent(text, Qt::black, mathImages, 5);
        m_area.setWidget(m_content);
        QCoreApplication::processEvents();
        return *m_content->findChild<MarkdownBrowser*>();
    }

    /// Where the first letter of the first line that holds `text` is, in the viewport of the browser.
    static QPoint placeOf(const MarkdownBrowser& browser, const QString& text) {
        const QTextCursor found = browser.document()->find(text);
        EXPECT_FALSE(found.isNull()) << text.toStdString();
        QTextCursor start(found);
        start.setPosition(found.selectionStart());
        return browser.cursorRect(start).center() + QPoint(2, 0);
    }

    static QString copied(MarkdownBrowser& browser) {
        QGuiApplication::clipboard()->clear();
        QTest::keyClick(&browser, Qt::Key_C, Qt::ControlModifier);
        return QGuiApplication::clipboard()->text();
    }

    QScrollArea m_area;
    MarkdownContent* m_content = nullptr;
};

TEST_F(MarkdownContentTest, everythingIsCopiedAsAPersonWouldTypeIt) {
    const MathImageSource images = [](const QString&, double, const QColor&) {
        return QImage(20, 10, QImage::Format_ARGB32);
    };
    MarkdownBrowser& browser = display(
        QStringLiteral("|a|b|\n|-|-|\n|1|**2**|\n\n# Title\n\none *two*\nthree $x$\n\n- p\n- q\n\n7. n\n\n> quote\n\n"
                       "```\nint i;\n\n  i++;\n```\n\n$$y$$\n\n") +
            QString(1000, u'w'),
        images);
    m_content->setFocus();
    EXPECT_TRUE(browser.hasFocus());
    QTest::keyClick(&browser, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(copied(browser).toStdString(),
              ("a\tb\n1\t2\nTitle\none two\nthree $x$\n\u2022\tp\n\u2022\tq\n1.\tn\nquote\n"
               "int i;\n\n  i++;\n$$y$$\n" +
               std::string(1000, 'w')));
    EXPECT_FALSE(browser.accessibleName().isEmpty());
}

TEST_F(MarkdownContentTest, aDragSelectsAcrossBlocks) {
    MarkdownBrowser& browser =
        display(QStringLiteral("# Head\n\nfirst words\n\n- item one\n\n| left | right |\n|-|-|\n| low | high |"));
    const auto drag = [&browser](const QString& from, const QString& to) {
        QTest::mousePress(browser.viewport(), Qt::LeftButton, {}, placeOf(browser, from) - QPoint(3, 0));
        QTest::mouseMove(browser.viewport(), placeOf(browser, to) - QPoint(3, 0));
        QTest::mouseRelease(browser.viewport(), Qt::LeftButton, {}, placeOf(browser, to) - QPoint(3, 0));
    };
    drag(QStringLiteral("words"), QStringLiteral("one"));
    EXPECT_EQ(copied(browser).toStdString(), "words\n\u2022\titem ");
    drag(QStringLiteral("left"), QStringLiteral("high")); // the cells between
    EXPECT_EQ(copied(browser).toStdString(), "left\tright\nlow\thigh");
}

TEST_F(MarkdownContentTest, aLinkAsksFirst) {
    MarkdownBrowser& browser =
        display(QStringLiteral("go [here](https://example.org/x) or [there](https://example.org/y)"));
    const auto askedAddress = [this] {
        auto* dialog = m_area.findChild<QDialog*>(QStringLiteral("webLinkConfirmation"));
        if (!dialog)
            return QString();
        QString address = dialog->findChild<QPlainTextEdit*>(QStringLiteral("address"))->toPlainText();
        dialog->reject();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return address;
    };
    QTest::mouseClick(browser.viewport(), Qt::LeftButton, {}, placeOf(browser, QStringLiteral("here")));
    EXPECT_EQ(askedAddress(), QStringLiteral("https://example.org/x"));
    QTest::mouseClick(browser.viewport(), Qt::LeftButton, {}, placeOf(browser, QStringLiteral("or")));
    EXPECT_EQ(askedAddress(), QString());

    m_area.activateWindow();
    m_content->setFocus();
    browser.moveCursor(QTextCursor::Start);
    for (const QString& address : {QStringLiteral("https://example.org/x"), QStringLiteral("https://example.org/y")}) {
        QTest::keyClick(&browser, Qt::Key_Tab);
        QTest::keyClick(&browser, Qt::Key_Return);
        EXPECT_EQ(askedAddress(), address);
    }
}

TEST_F(MarkdownContentTest, aNamedPageIsALink) {
    MarkdownBrowser& browser = display(QStringLiteral("On **page 2** and [there](https://a.b), pages 4–5; page 6, "
                                                      "[far](page:6).\n\n|a|\n|-|\n|p. 3|\n\n```\npage 1\n```"));
    std::vector<int> pages;
    QObject::connect(m_content, &MarkdownContent::pageRequested, m_content,
                     [&pages](int page) { pages.push_back(page); });
    for (const char* words : {"page 2", "5", "p. 3", "page 6", "page 1"})
        QTest::mouseClick(browser.viewport(), Qt::LeftButton, {}, placeOf(browser, QLatin1String(words)));
    EXPECT_EQ(pages, std::vector({2, 5, 3}));
    QTest::mouseClick(browser.viewport(), Qt::LeftButton, {}, placeOf(browser, QStringLiteral("far")));
    QDialog* refusal = m_area.findChild<QDialog*>(QStringLiteral("webLinkRefusal"));
    ASSERT_TRUE(refusal) << "The document has no such page.";
    refusal->reject();

    QTest::keyClick(&browser, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(copied(browser), QStringLiteral("On page 2 and there, pages 4–5; page 6, far.\na\np. 3\npage 1"));
}

TEST_F(MarkdownContentTest, theHeightFollowsTheWidthAndTheTextStaysInside) {
    const QString word(10'000, u'x');
    MarkdownBrowser& browser =
        display(QStringLiteral("some words that are wrapped more often when it is narrow\n\n- ") + word +
                QStringLiteral("\n\n> ") + word + QStringLiteral("\n\n```\n") + word +
                QStringLiteral("\n```\n\n|a|\n|-|\n|") + word + QStringLiteral("|"));
    const int narrow = m_content->height();
    EXPECT_LE(browser.document()->size().width(), browser.viewport()->width());
    EXPECT_EQ(browser.verticalScrollBar()->maximum(), 0);
    m_area.resize(800, 500);
    QCoreApplication::processEvents();
    EXPECT_LT(m_content->height(), narrow);
    EXPECT_EQ(browser.verticalScrollBar()->maximum(), 0);
}

TEST_F(MarkdownContentTest, aWideTableScrollsSidewaysByItself) {
    MarkdownBrowser& browser = display(QStringLiteral("intro\n\n") + QStringLiteral("|cell").repeated(200) +
                                       QStringLiteral("\n|-|\n") + QStringLiteral("|x").repeated(200));
    EXPECT_LE(m_content->width(), m_area.viewport()->width());
    EXPECT_GT(browser.horizontalScrollBar()->maximum(), 1'000);
    EXPECT_EQ(browser.verticalScrollBar()->maximum(), 0);
    EXPECT_EQ(browser.document()->rootFrame()->childFrames().size(), 1);
    // Beyond what a grid is good for, the rows are lines.
    MarkdownBrowser& lines = display(QStringLiteral("|cell").repeated(201) + QStringLiteral("\n|-|\n|x|y|"));
    EXPECT_TRUE(lines.document()->rootFrame()->childFrames().isEmpty());
    EXPECT_EQ(lines.document()->lastBlock().text(), QStringLiteral("x|y"));
    EXPECT_EQ(lines.horizontalScrollBar()->maximum(), 0);
}

/// These would hang, crash or take all memory in a viewer that trusts its input.
TEST_F(MarkdownContentTest, hostileRepliesAreShown) {
    constexpr qsizetype size = 1'000'000;
    for (const QStringView part : std::initializer_list<QStringView>{
             u"*",   u"**a",     u"[",      u"[a](b",  u"![](",   u"|",      u"`",      u"$",     u"\\(", u"- a\n",
             u"a\n", u"|a|b|\n", u"\u0301", u"\u202E", u"\uFDD0", u"\uFFFC", u"\u2029", u"&#10;", u"> ",  u"\xD800"}) {
        const QString text = part.toString();
        MarkdownBrowser& browser = display(QStringLiteral("|a|b|\n|-|-|\n") + text.repeated(size / text.size()));
        EXPECT_LE(browser.document()->blockCount(), 30'000) << text.toStdString();
        EXPECT_LE(browser.document()->characterCount(), MarkdownContent::longestText * 11 / 10) << text.toStdString();
        EXPECT_EQ(browser.document()->lastBlock().text().left(8), QStringLiteral("The rest")) << text.toStdString();
    }
    for (const QString& mark : {QStringLiteral("> "), QStringLiteral("- "), QStringLiteral("*"), QStringLiteral("**"),
                                QStringLiteral("["), QStringLiteral("~~"), QStringLiteral("_")}) {
        const QString deep = mark.repeated(1'000) + QStringLiteral("core") +
                             (mark == QStringLiteral("[") ? QStringLiteral("](u)") : mark).repeated(1'000);
        EXPECT_TRUE(display(deep).toPlainText().contains(QStringLiteral("core"))) << mark.toStdString();
    }
}

TEST_F(MarkdownContentTest, signsThatMisleadAreLeftOutAndNothingIsLoaded) {
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("p.png"));
    QImage(30, 30, QImage::Format_RGB32).save(path);
    MarkdownBrowser& browser = display(
        QStringLiteral("a\u202Eb\u2066c") + QChar(0) + QStringLiteral("d&#x202e;e\x1B[1m\uFDD0\n\n![picture](") + path +
        QStringLiteral(") <img src=\"") + path + QStringLiteral("\"><style>*{color:red}</style>"));
    EXPECT_EQ(browser.document()->firstBlock().text(), QStringLiteral("abcde[1m\uFFFD"));
    EXPECT_TRUE(browser.document()->lastBlock().text().startsWith(QStringLiteral("picture <img src=")));
    EXPECT_FALSE(browser.toPlainText().contains(QChar::ObjectReplacementCharacter));
}

TEST_F(MarkdownContentTest, lightAndDarkFollowThePalette) {
    MarkdownBrowser& browser = display(QStringLiteral("plain [link](http://a.b)\n\n> quote"));
    m_content->setFocus();
    QTest::keyClick(&browser, Qt::Key_A, Qt::ControlModifier);
    QPalette palette;
    palette.setColor(QPalette::Text, Qt::yellow);
    palette.setColor(QPalette::Link, Qt::cyan);
    m_content->setPalette(palette);
    const auto colorOf = [&browser](const QString& text) {
        return browser.document()->find(text).charFormat().foreground();
    };
    EXPECT_EQ(colorOf(QStringLiteral("plain")).style(), Qt::NoBrush); // that of the palette
    EXPECT_EQ(colorOf(QStringLiteral("link")).color(), QColor(Qt::cyan));
    EXPECT_EQ(colorOf(QStringLiteral("quote")).color().rgb(), QColor(Qt::yellow).rgb());
    EXPECT_EQ(copied(browser), QStringLiteral("plain link\nquote")) << "the selection stays";
}

TEST_F(MarkdownContentTest, keysMoveWhatItStandsInAndTheWheelIsLeftToIt) {
    MarkdownBrowser& browser = display(QStringLiteral("line\n\n").repeated(300) + QStringLiteral("last"));
    m_content->setFocus();
    QTest::keyClick(&browser, Qt::Key_End, Qt::ControlModifier | Qt::ShiftModifier);
    QScrollBar& bar = *m_area.verticalScrollBar();
    EXPECT_EQ(bar.value(), bar.maximum());
    QWheelEvent wheel(QPointF(5, 5), browser.mapToGlobal(QPointF(5, 5)), {}, QPoint(0, 120), Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(browser.viewport(), &wheel);
    EXPECT_FALSE(wheel.isAccepted()); // and so goes on to the area
}

TEST_F(MarkdownContentTest, aFormulaAloneStandsInTheMiddle) {
    double size = 0;
    const MathImageSource images = [&size](const QString& latex, double fontSize, const QColor&) {
        size = fontSize;
        return latex == QStringLiteral("x") ? QImage(20, 10, QImage::Format_ARGB32) : QImage();
    };
    MarkdownBrowser& browser = display(QStringLiteral(" $$x$$\n\n\\[bad\\]"), images);
    EXPECT_EQ(size, 22);
    for (QTextBlock block = browser.document()->begin(); block.isValid(); block = block.next())
        EXPECT_EQ(block.blockFormat().alignment(), Qt::AlignHCenter);
    EXPECT_EQ(browser.document()->lastBlock().text(), QStringLiteral("bad"));
}

TEST_F(MarkdownContentTest, aWideFormulaIsMadeToFit) {
    const MathImageSource images = [](const QString&, double, const QColor&) {
        return QImage(500, 50, QImage::Format_ARGB32);
    };
    MarkdownBrowser& browser = display(QStringLiteral("intro\n\n$$x$$\n\n- in a list $y$"), images);
    EXPECT_EQ(browser.horizontalScrollBar()->maximum(), 0);
    const auto shownWidth = [&browser](int width) {
        std::ignore = browser.heightForWidth(width);
        return browser.document()->begin().next().begin().fragment().charFormat().toImageFormat().width();
    };
    EXPECT_EQ(shownWidth(300), 300);
    EXPECT_EQ(shownWidth(800), 500) << "with room it has its own size";

    // Of one that is too wide at half its size a part is seen, and the wheel shows the rest.
    QImage wide(2000, 50, QImage::Format_RGB32);
    wide.fill(Qt::white);
    QPainter(&wide).fillRect(1960, 0, 40, 50, Qt::red);
    MarkdownBrowser& narrow =
        display(QStringLiteral("intro\n\n$$x$$"), [&](const QString&, double, const QColor&) { return wide; });
    EXPECT_EQ(narrow.horizontalScrollBar()->maximum(), 0);
    const auto showsEnd = [&narrow] {
        const QImage seen = narrow.grab().toImage().convertToFormat(QImage::Format_RGB32);
        for (int y = 0; y < seen.height(); ++y)
            for (int x = 0; x < seen.width(); ++x)
                if (qRed(seen.pixel(x, y)) - qGreen(seen.pixel(x, y)) > 60)
                    return true;
        return false;
    };
    EXPECT_FALSE(showsEnd());
    QPointF onFormula(100, 0);
    while (onFormula.y() < narrow.height() && narrow.document()->documentLayout()->imageAt(onFormula).isEmpty())
        onFormula += QPointF(0, 1);
    for (int i = 0; i < 20; ++i) {
        QWheelEvent wheel(onFormula, narrow.mapToGlobal(onFormula), {}, QPoint(0, -120), Qt::NoButton,
                          Qt::ShiftModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(narrow.viewport(), &wheel);
    }
    EXPECT_TRUE(showsEnd());
}

TEST_F(MarkdownContentTest, formulasAreDrawnAnewForAnotherScreen) {
    /// On a screen of which the test says how many pixels it has.
    class Content : public MarkdownContent {
    public:
        using MarkdownContent::MarkdownContent;
        int ratio = 1;

    protected:
        int metric(PaintDeviceMetric metric) const override {
            if (metric == PdmDevicePixelRatioScaled)
                return static_cast<int>(ratio * devicePixelRatioFScale());
            return metric == PdmDevicePixelRatio ? ratio : MarkdownContent::metric(metric);
        }
    };
    int drawn = 0;
    const MathImageSource images = [&drawn](const QString&, double, const QColor&) {
        ++drawn;
        return QImage(20, 10, QImage::Format_ARGB32);
    };
    auto* content = new Content(QStringLiteral("$$x$$"), Qt::black, images);
    m_area.setWidget(content);
    QCoreApplication::processEvents();
    EXPECT_EQ(drawn, 1);
    content->ratio = 2;
    content->update();
    EXPECT_TRUE(QTest::qWaitFor([&] { return drawn == 2; }));
}

TEST_F(MarkdownContentTest, aScreenReaderReadsFormulasAsTheirSource) {
    const MathImageSource images = [](const QString&, double, const QColor&) {
        return QImage(20, 10, QImage::Format_ARGB32);
    };
    MarkdownBrowser& browser = display(QStringLiteral("a $x²$ b\n\n$$y$$"), images);
    QAccessibleInterface* const reply = QAccessible::queryAccessibleInterface(&browser);
    ASSERT_TRUE(reply && reply->textInterface());
    QAccessibleTextInterface& text = *reply->textInterface();
    EXPECT_EQ(text.text(0, text.characterCount()), QStringLiteral("a $x²$ b\n$$y$$"));
    EXPECT_EQ(reply->text(QAccessible::Name), QStringLiteral("Reply"));

    text.setSelection(0, 2, 6);
    EXPECT_EQ(copied(browser), QStringLiteral("$x²$"));
    int start = 0;
    int end = 0;
    text.selection(0, &start, &end);
    EXPECT_EQ(std::pair(start, end), std::pair(2, 6));
    const QRect formula = text.characterRect(4);
    EXPECT_GE(formula.width(), 20);
    EXPECT_EQ(text.offsetAtPoint(formula.center() - QPoint(5, 0)), 2);

    m_content->setText(QStringLiteral("$z$"));
    EXPECT_EQ(text.text(0, text.characterCount()), QStringLiteral("$z$"));
}

TEST_F(MarkdownContentTest, formulasOfOneParagraphKeepTheirOwnImages) {
    const MathImageSource images = [](const QString& latex, double, const QColor&) {
        QImage image(12, 12, QImage::Format_RGB32);
        image.fill(QColor(latex));
        return image;
    };
    display(QStringLiteral("first $red$, then $lime$ and $blue$\n\n$$yellow$$"), images);
    const QImage shown = m_content->grab().toImage();
    std::map<QRgb, int> count;
    for (int y = 0; y < shown.height(); ++y)
        for (int x = 0; x < shown.width(); ++x)
            ++count[shown.pixel(x, y)];
    for (const char* name : {"red", "lime", "blue", "yellow"})
        EXPECT_EQ(count[QColor(name).rgb()], 144) << name;
}

TEST_F(MarkdownContentTest, aLastBlockOfCodeIsAsHighBelowAsAbove) {
    const auto edges = [this](const QString& text) {
        display(text);
        const int width = m_content->width();
        const QImage shown = m_content->grab(QRect(0, 0, width, m_content->heightForWidth(width))).toImage();
        const QRgb ground = shown.pixel(shown.width() / 2, shown.height() / 2);
        int above = 0;
        int below = 0;
        for (int y = 0; y < shown.height() / 2; ++y) {
            above += shown.pixel(shown.width() / 2, y) == ground ? 1 : 0;
            below += shown.pixel(shown.width() / 2, shown.height() - 1 - y) == ground ? 1 : 0;
        }
        return std::pair(above, below);
    };
    const auto [above, below] = edges(QStringLiteral("```\nx\n```"));
    EXPECT_NEAR(above, below, 2);
}
