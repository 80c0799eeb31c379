#include "InlineMarkdownParser.h"

#include "CharacterReference.h"

#include <md4c.h>

#include <utility>

// The library reads blocks as well, and folds white space at line ends. Both come from line feeds and from what stands
// at the start of a line, so the text is given as one line between two form feeds, with a form feed for each line feed:
// white space to the rules of emphasis and links, but neither a line end nor an indent.
static constexpr char16_t standIn = u'\f';
static constexpr unsigned grammar =
    MD_FLAG_NOHTML | MD_FLAG_NOINDENTEDCODEBLOCKS | MD_FLAG_STRIKETHROUGH | MD_FLAG_PERMISSIVEURLAUTOLINKS;

static QByteArray asOneLine(QStringView text) {
    QString line(standIn);
    line.reserve(text.size() + 2);
    for (const QChar character : text) {
        if (character == u'\n')
            line.append(standIn);
        else if (character >= u' ' || character == u'\t')
            line.append(character);
    }
    line.append(standIn);
    return line.toUtf8();
}

static QString fromLine(const char* text, std::size_t size) {
    return QString::fromUtf8(text, static_cast<qsizetype>(size)).replace(standIn, u'\n');
}

static QString fromAttribute(const MD_ATTRIBUTE& attribute) {
    QString value;
    for (int part = 0; attribute.text && attribute.substr_offsets[part] < attribute.size; ++part) {
        const MD_OFFSET start = attribute.substr_offsets[part];
        const QString text = fromLine(attribute.text + start, attribute.substr_offsets[part + 1] - start);
        value.append(attribute.substr_types[part] == MD_TEXT_ENTITY ? CharacterReference::decoded(text) : text);
    }
    return value;
}

namespace {

/// Takes the calls of the library.
class RunCollector {
public:
    int enter(MD_SPANTYPE span, const void* detail) {
        if (span == MD_SPAN_A)
            m_links.push_back(fromAttribute(static_cast<const MD_SPAN_A_DETAIL*>(detail)->href));
        else if (span == MD_SPAN_IMG)
            m_links.push_back(fromAttribute(static_cast<const MD_SPAN_IMG_DETAIL*>(detail)->src));
        else
            ++depth(span);
        if (span == MD_SPAN_IMG)
            m_imageHasText = false;
        return 0;
    }

    int leave(MD_SPANTYPE span) {
        if (span == MD_SPAN_IMG && !m_imageHasText)
            add(m_links.back());
        if (span == MD_SPAN_A || span == MD_SPAN_IMG)
            m_links.pop_back();
        else
            --depth(span);
        return 0;
    }

    int text(MD_TEXTTYPE type, const char* text, MD_SIZE size) {
        const QString piece = fromLine(text, size);
        add(type == MD_TEXT_ENTITY ? CharacterReference::decoded(piece) : piece);
        return 0;
    }

    /// None when the first or the last character isn't the one that was put there.
    std::optional<std::vector<InlineRun>> runs() {
        if (m_runs.empty() || !m_runs.front().text.startsWith(u'\n') || !m_runs.back().text.endsWith(u'\n'))
            return std::nullopt;
        m_runs.front().text.remove(0, 1);
        m_runs.back().text.chop(1);
        std::erase_if(m_runs, [](const InlineRun& run) { return run.text.isEmpty(); });
        return std::move(m_runs);
    }

private:
    int& depth(MD_SPANTYPE span) {
        switch (span) {
        case MD_SPAN_STRONG:
            return m_strong;
        case MD_SPAN_EM:
            return m_emphasis;
        case MD_SPAN_CODE:
            return m_code;
        case MD_SPAN_DEL:
            return m_strikethrough;
        default:
            return m_unknown;
        }
    }

    void add(const QString& text) {
        InlineRun::Traits traits;
        traits.setFlag(InlineRun::Trait::strong, m_strong > 0);
        traits.setFlag(InlineRun::Trait::emphasis, m_emphasis > 0);
        traits.setFlag(InlineRun::Trait::code, m_code > 0);
        traits.setFlag(InlineRun::Trait::strikethrough, m_strikethrough > 0);
        const QString link = m_links.empty() ? QString() : m_links.front();
        m_imageHasText = true;
        if (!m_runs.empty() && m_runs.back().traits == traits && m_runs.back().link == link)
            m_runs.back().text.append(text);
        else
            m_runs.push_back({text, traits, link, {}});
    }

    std::vector<InlineRun> m_runs;
    std::vector<QString> m_links; // the outermost counts
    bool m_imageHasText = false;
    int m_strong = 0;
    int m_emphasis = 0;
    int m_code = 0;
    int m_strikethrough = 0;
    int m_unknown = 0;
};

} // namespace

static RunCollector& collector(void* user) {
    return *static_cast<RunCollector*>(user);
}

static int passOver(MD_BLOCKTYPE, void*, void*) {
    return 0;
}

std::optional<std::vector<InlineRun>> InlineMarkdownParser::parse(QStringView text) {
    if (text.size() > longestText)
        return std::nullopt;
    MD_PARSER parser{};
    parser.flags = grammar;
    parser.enter_block = passOver;
    parser.leave_block = passOver;
    parser.enter_span = [](MD_SPANTYPE span, void* detail, void* user) { return collector(user).enter(span, detail); };
    parser.leave_span = [](MD_SPANTYPE span, void*, void* user) { return collector(user).leave(span); };
    parser.text = [](MD_TEXTTYPE type, const char* piece, MD_SIZE size, void* user) {
        return collector(user).text(type, piece, size);
    };
    const QByteArray line = asOneLine(text);
    RunCollector runs;
    if (md_parse(line.constData(), static_cast<MD_SIZE>(line.size()), &parser, &runs) != 0)
        return std::nullopt;
    return runs.runs();
}
