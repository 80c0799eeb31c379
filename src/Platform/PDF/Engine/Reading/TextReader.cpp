#include "TextReader.h"

#include "CancellationWatch.h"
#include "PageObjects.h"
#include "PageText.h"
#include "PageTextBuilder.h"
#include "ReadingOrder.h"
#include "SourceEngine.h"

#include <QChar>

#include <atomic>
#include <chrono>
#include <vector>

namespace {

/// Of the processor. The fullest pages of newspapers and maps take a tenth of it on a slow machine. The main thread
/// reads as well.
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
    switch (c) {
    case '.':
    case '_':
    case 0xB7:
    case 0x2024:
    case 0x2025:
    case 0x2026:
    case 0x22C5:
        return true;
    default:
        return false;
    }
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
    const int first = line.first_char ? line.first_char->c : 0;
    shape.goesOn =
        first > 0 && first <= 0xFFFF && QChar(char16_t(first)).isLetter() && !QChar(char16_t(first)).isUpper();
    return shape;
}

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
    std::size_t characters = 0;
    int block = 0;
    for (const fz_stext_block* b = structured.text->first_block; b; b = b->next, ++block) {
        if (b->type != FZ_STEXT_BLOCK_TEXT)
            continue;
        for (const fz_stext_line* line = b->u.t.first_line; line && lines.size() < lineLimit; line = line->next) {
            lines.push_back(line);
            shapes.push_back(shapeOf(*line, block));
            for (const fz_stext_char* c = line->first_char; c; c = c->next)
                ++characters;
            ++characters;
        }
    }
    PageTextBuilder builder(borrowed.context(), fromEngine(structured.pageTransform).inverted());
    builder.reserve(characters);
    for (const std::size_t index : ReadingOrder::order(shapes))
        builder.addLine(*lines[index], shapes[index].block);
    return builder.take();
}
