#include "TextReader.h"

#include "Accents.h"
#include "CancellationWatch.h"
#include "PageObjects.h"
#include "PageText.h"
#include "ReadingOrder.h"
#include "SourceEngine.h"

#include <QHash>

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

namespace {

/// The fullest pages of newspapers and maps take a tenth of it on a slow machine. The main thread reads as well.
constexpr std::chrono::seconds timeLimit(5);

/// Far more than a page can show. Putting them in order takes its time as well.
constexpr std::size_t lineLimit = 50000;

/// What the engine hands over, to be dropped in any case.
struct StructuredPage {
    fz_context* context;
    pdf_page* page = nullptr;
    fz_stext_page* text = nullptr;
    fz_device* device = nullptr;
    fz_matrix pageTransform = fz_identity; // page coordinates to the engine's

    explicit StructuredPage(fz_context* ctx) : context(ctx) {}
    ~StructuredPage() {
        fz_drop_device(context, device);
        fz_drop_stext_page(context, text);
        fz_drop_page(context, reinterpret_cast<fz_page*>(page));
    }
    StructuredPage(const StructuredPage&) = delete;
    StructuredPage& operator=(const StructuredPage&) = delete;
};

void interpret(StructuredPage& structured, pdf_document* document, int pageNumber, fz_cookie* cookie) {
    fz_context* context = structured.context;
    structured.page = PageObjects::load(context, document, pageNumber);
    if (!structured.page)
        return;
    engineTry(context, [&] {
        fz_rect box;
        pdf_page_transform(context, structured.page, &box, &structured.pageTransform);
        const fz_rect shown = fz_transform_rect(box, structured.pageTransform);
        structured.text = fz_new_stext_page(context, shown);
        fz_stext_options options{};
        options.flags = FZ_STEXT_MEDIABOX_CLIP;
        structured.device = fz_new_stext_device(context, structured.text, &options);
    });
    if (!structured.device)
        return;
    engineTry(context,
              [&] { pdf_run_page_contents(context, structured.page, structured.device, fz_identity, cookie); });
}

bool isLeader(int c) {
    constexpr int leaders[] = {'.', '_', 0xB7, 0x2024, 0x2025, 0x2026, 0x22C5};
    return std::find(std::begin(leaders), std::end(leaders), c) != std::end(leaders);
}

ReadingOrder::Line shapeOf(const fz_stext_line& line, int block) {
    constexpr int leastDots = 3;
    ReadingOrder::Line shape{fromEngine(line.bbox), 0, line.wmode == 0 && line.dir.x > 0.99F, block};
    int dots = 0; // since the last letter
    bool hasLetters = false;
    for (const fz_stext_char* c = line.first_char; c && shape.length < 1000; c = c->next) {
        ++shape.length;
        if (isLeader(c->c)) {
            ++dots;
            shape.isLed = shape.isLed || (!hasLetters && dots >= leastDots);
        } else if (c->c != ' ') {
            dots = 0;
            hasLetters = true;
        }
    }
    shape.leads = dots >= leastDots;
    return shape;
}

class Builder {
public:
    Builder(fz_context* context, const QTransform& toPage) : m_context(context), m_toPage(toPage) {}

    void addLine(const fz_stext_line& line, int block) {
        if (!m_text.string.isEmpty()) {
            m_text.string += QLatin1Char('\n');
            m_text.glyphs.emplace_back();
        }
        PageText::Line built;
        built.start = int(m_text.string.size());
        built.block = block;
        const QPointF along = m_toPage.map(QPointF(line.dir.x, line.dir.y)) - m_toPage.map(QPointF(0, 0));
        const double length = std::hypot(along.x(), along.y());
        built.direction = length > 0 ? along / length : QPointF(1, 0);
        for (const fz_stext_char* c = line.first_char; c; c = c->next) {
            if (const char16_t accent = Accents::combining(c->c); accent && isOver(*c, accent, line, built))
                continue;
            addCharacter(*c, built);
        }
        m_accents.clear();
        built.end = int(m_text.string.size());
        m_text.measureHeight(built);
        m_text.lines.push_back(built);
    }

    std::shared_ptr<const PageText> take() { return std::make_shared<const PageText>(std::move(m_text)); }

private:
    /// True for an accent that goes into a letter: one that is still to come, or the last one that was added.
    bool isOver(const fz_stext_char& c, char16_t accent, const fz_stext_line& line, const PageText::Line& built) {
        const auto extent = [&line](const fz_stext_char& of) {
            return Accents::Extent{double(of.quad.ll.x) * line.dir.x + double(of.quad.ll.y) * line.dir.y,
                                   double(of.quad.lr.x) * line.dir.x + double(of.quad.lr.y) * line.dir.y};
        };
        const fz_stext_char* letter = c.next;
        for (int more = 0; letter && more < mostAccents && Accents::combining(letter->c); ++more)
            letter = letter->next;
        if (letter && Accents::covers(extent(c), extent(*letter)) &&
            !Accents::joined(letter->c, QString(QChar(accent))).isEmpty()) {
            m_accents += QChar(accent);
            return true;
        }
        // A combining accent goes with the letter before it wherever it is drawn.
        if (m_text.string.size() == built.start || !m_accents.isEmpty() ||
            (accent != c.c && !Accents::covers(extent(c), extent(*m_last))))
            return false;
        const QString both = Accents::joined(m_text.string.back().unicode(), QString(QChar(accent)));
        if (both.size() != 1)
            return false;
        m_text.string.back() = both.front();
        return true;
    }

    void addCharacter(const fz_stext_char& c, PageText::Line& line) {
        PageText::Glyph glyph;
        glyph.quad.upperLeft = map(c.quad.ul);
        glyph.quad.upperRight = map(c.quad.ur);
        glyph.quad.lowerLeft = map(c.quad.ll);
        glyph.quad.lowerRight = map(c.quad.lr);
        glyph.origin = map(c.origin);
        glyph.size = c.size;
        glyph.color = QRgb(c.color) | 0xFF000000U;
        glyph.font = fontIndex(c.font);
        char32_t character = char32_t(c.c);
        if (character < 32 || (character >= 0xD800 && character < 0xE000) || character > 0x10FFFF)
            character = U' ';
        QString units = QString::fromUcs4(&character, 1);
        if (!m_accents.isEmpty()) {
            const QString accents = std::exchange(m_accents, {});
            const QString both = Accents::joined(c.c, accents);
            units = both.isEmpty() ? accents + units : both;
        }
        m_last = &c;
        m_text.string += units;
        for (int i = 0; i < units.size(); ++i)
            m_text.glyphs.push_back(glyph);
        const QRectF box = glyph.quad.boundingRect();
        line.bounds = line.start + units.size() == m_text.string.size() ? box : line.bounds.united(box);
    }

    QPointF map(const fz_point& point) const { return m_toPage.map(QPointF(point.x, point.y)); }

    std::uint16_t fontIndex(fz_font* font) {
        const auto known = m_fontIndex.constFind(font);
        if (known != m_fontIndex.cend())
            return *known;
        PageText::Font described;
        described.name = QString::fromUtf8(fz_font_name(m_context, font));
        if (described.name.size() > 7 && described.name.at(6) == QLatin1Char('+'))
            described.name.remove(0, 7);
        described.bold = fz_font_is_bold(m_context, font) != 0;
        described.italic = fz_font_is_italic(m_context, font) != 0;
        described.serif = fz_font_is_serif(m_context, font) != 0;
        described.monospaced = fz_font_is_monospaced(m_context, font) != 0;
        const auto index = std::uint16_t(std::min<std::size_t>(m_text.fonts.size(), 0xFFFF));
        if (index == m_text.fonts.size())
            m_text.fonts.push_back(described);
        m_fontIndex.insert(font, index);
        return index;
    }

    static constexpr int mostAccents = 3; // over one letter

    fz_context* m_context;
    QTransform m_toPage;
    PageText m_text;
    QString m_accents;                     // combining, for the letter to come
    const fz_stext_char* m_last = nullptr; // that was added
    QHash<fz_font*, std::uint16_t> m_fontIndex;
};

} // namespace

std::shared_ptr<const PageText> TextReader::read(SourceEngine& engine, int pageNumber, const std::stop_token& stop) {
    SourceEngine::Lease borrowed = engine.lease();
    if (!borrowed || pageNumber < 0 || pageNumber >= engine.pageCount())
        return std::make_shared<const PageText>();
    StructuredPage structured(borrowed.context());
    {
        std::atomic<bool> cancelled = false;
        const std::stop_callback cancel(stop, [&cancelled] { cancelled = true; });
        fz_cookie cookie{};
        const CancellationWatch watch(&cancelled, &cookie, timeLimit);
        interpret(structured, borrowed.document(), pageNumber, &cookie);
        if (cookie.abort)
            borrowed.abandon();
    }
    engineTry(borrowed.context(), [&] { fz_close_device(borrowed.context(), structured.device); });
    if (!structured.text || stop.stop_requested())
        return std::make_shared<const PageText>();

    std::vector<const fz_stext_line*> lines;
    std::vector<ReadingOrder::Line> shapes;
    int block = 0;
    for (const fz_stext_block* b = structured.text->first_block; b; b = b->next, ++block) {
        if (b->type != FZ_STEXT_BLOCK_TEXT)
            continue;
        for (const fz_stext_line* line = b->u.t.first_line; line && lines.size() < lineLimit; line = line->next) {
            lines.push_back(line);
            shapes.push_back(shapeOf(*line, block));
        }
    }
    Builder builder(borrowed.context(), fromEngine(structured.pageTransform).inverted());
    for (const std::size_t index : ReadingOrder::order(shapes))
        builder.addLine(*lines[index], shapes[index].block);
    return builder.take();
}
